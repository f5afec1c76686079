#include <gmock/gmock.h>

#include "ModelTools.h"

using namespace model;
using testing::ElementsAre;
using testing::SizeIs;

namespace {

/** Runs `work` as one action and hands over its step. */
template <class Work>
std::unique_ptr<LyrUndoStep> stepOf(Work work) {
    Steps sink;
    auto& journal = LyrUndoJournal::instance();
    const auto token = journal.begin(LyrString::fromUtf8("test"));
    work();
    EXPECT_TRUE(journal.end(token));
    return sink.steps.empty() ? nullptr : std::move(sink.steps.front());
}

}  // namespace

TEST(LyrColorLookupTableUndo, records_writes_to_content_and_to_nothing_else) {
    const auto table = newTable();
    const struct {
        Lyrenum id;
        std::size_t entries;
        bool (*write)(Table&);
    } writes[] = {
        {Lyr::PositionList, 1,
         [](Table& t) {
             return setList<float>(t, Lyr::PositionList, {0, 1});
         }},
        {Lyr::SectionList, 1,
         [](Table& t) {
             const std::vector<LyrObject*> old = sectionsOf(t);
             return setSections(t, {old.rbegin(), old.rend()});
         }},
        {Lyr::ExtensionColorList, 1, [](Table& t) { return setList<Color>(t, Lyr::ExtensionColorList, {Color()}); }},
        {Lyr::ExtensionEnumList, 1, [](Table& t) { return setList<Lyrenum>(t, Lyr::ExtensionEnumList, {1}); }},
        {Lyr::AutoLabel, 1, [](Table& t) { return lyrSetValue<Lyrenum>(&t, Lyr::AutoLabel, 0); }},
        {Lyr::AutoScale, 1, [](Table& t) { return lyrSetValue<Lyrenum>(&t, Lyr::AutoScale, 0); }},
        {Lyr::FiniteMode, 0, [](Table& t) { return setFiniteMode(t, 1, 1); }},
        {Lyr::Quantity, 0, [](Table& t) { return lyrSetValue<Lyrenum>(&t, Lyr::Quantity, Lyr::Volume); }},
        {Lyr::CreationParameters, 0,
         [](Table& t) {
             return lyrSetValue(&t, Lyr::CreationParameters, LyrVector3<float>{1, 2, 3});
         }},
        {Lyr::CreationType, 0, [](Table& t) { return lyrSetValue(&t, Lyr::CreationType, Lyr::HueCycle); }},
        {Lyr::MaximumRange, 0,
         [](Table& t) {
             return lyrSetValue(&t, Lyr::MaximumRange, LyrValuePair<float>{0, 1});
         }},
    };
    for (const auto& write : writes) {
        bool done = false;
        EXPECT_EQ(recordedBy([&] { done = write.write(*table); }), write.entries) << write.id.getName();
        EXPECT_TRUE(done) << write.id.getName();
        // Written once more nothing changes, except that a list turned around is another list.
        const std::size_t again = recordedBy([&] { done = write.write(*table); });
        EXPECT_EQ(again, write.id == Lyr::SectionList ? 1u : 0u) << write.id.getName();
    }
}

TEST(LyrColorLookupTableUndo, records_every_property_of_a_section_but_not_its_name) {
    const auto table = newTable();
    Section& section = sectionAt(*table, 1);
    EXPECT_EQ(recordedBy([&] { EXPECT_TRUE(setType(section, Lyr::Gradient)); }), 1u);
    for (const Lyrenum channel : {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha}) {
        EXPECT_EQ(recordedBy([&] { EXPECT_TRUE(setList<Point>(section, channel, {{0, 0.5f}})); }), 1u);
        EXPECT_EQ(recordedBy([&] { EXPECT_TRUE(setList<Point>(section, channel, {{0, 0.5f}})); }), 0u);
    }
    EXPECT_EQ(recordedBy([&] { EXPECT_TRUE(section.setNameTemplate("renamed")); }), 0u);
}

TEST(LyrColorLookupTableUndo, records_nothing_while_a_new_table_is_built_and_one_write_for_a_reset_list) {
    LyrObjectPtr table;
    EXPECT_EQ(recordedBy([&] { table = newTable().operator->(); }), 0u);
    EXPECT_EQ(recordedBy([&] { EXPECT_TRUE(table->getProperty(Lyr::SectionList)->resetData()); }), 1u);
}

TEST(LyrColorLookupTableUndo, brings_back_the_very_sections_that_were_replaced) {
    const auto table = newTable();
    const std::vector<LyrObject*> before = sectionsOf(*table);
    const auto step = stepOf([&] {
        ASSERT_TRUE(setRed(*before[0], {{0, 0.125f}}));
        ASSERT_TRUE(setList<float>(*table, Lyr::PositionList, {0, 1, 2}));
        ASSERT_TRUE(setSections(*table, {redSection(0), redSection(1), redSection(2), redSection(3)}));
    });
    ASSERT_TRUE(step);
    const std::vector<LyrObject*> after = sectionsOf(*table);
    Color out;
    ASSERT_TRUE(table->getColor(3.0f, out));
    EXPECT_EQ(out.red, 3.0f);
    EXPECT_TRUE(step->undo());
    EXPECT_EQ(sectionsOf(*table), before);
    EXPECT_EQ(before[2]->getParentLink().getOwner(), table.get());
    EXPECT_EQ(after[2]->getParentLink().getOwner(), nullptr);
    ASSERT_TRUE(table->getColor(-2.0f, out));
    EXPECT_EQ(out, Color(0.6f, 0, 1, 1));
    EXPECT_TRUE(step->redo());
    EXPECT_EQ(sectionsOf(*table), after);
    ASSERT_TRUE(table->getColor(3.0f, out));
    EXPECT_EQ(out.red, 3.0f);
    EXPECT_THAT(listOf<Point>(*before[0], Lyr::PointListRed), ElementsAre(Point{0, 0.125f}));
}

TEST(LyrColorLookupTableUndo, takes_back_an_aborted_change_with_messages_as_of_ordinary_writes) {
    const auto table = newTable();
    const std::vector<LyrObject*> before = sectionsOf(*table);
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, table.get());
    auto& journal = LyrUndoJournal::instance();
    const auto token = journal.begin(LyrString::fromUtf8("test"));
    ASSERT_TRUE(setList<float>(*table, Lyr::PositionList, {0, 1, 2}));
    ASSERT_TRUE(setSections(*table, {redSection(0), redSection(1), redSection(2), redSection(3)}));
    ASSERT_TRUE(setFiniteMode(*table, 1, 1));
    ASSERT_TRUE(journal.abort(token));
    EXPECT_EQ(sectionsOf(*table), before);
    EXPECT_THAT(listOf<float>(*table, Lyr::PositionList), ElementsAre(-1.0f, 1.0f));
    // The side note stays as it was written.
    EXPECT_EQ((lyrGetValue<LyrValuePair<Lyrenum>>(table.get(), Lyr::FiniteMode, {0, 0})),
              (LyrValuePair<Lyrenum>{1, 1}));
    std::vector<int> properties;
    for (const Heard& heard : ear.heard) {
        properties.push_back(heard.property);
    }
    EXPECT_THAT(properties, ElementsAre(int(Lyr::PositionList), int(Lyr::SectionList), int(Lyr::FiniteMode),
                                        int(Lyr::SectionList), int(Lyr::PositionList)));
}
