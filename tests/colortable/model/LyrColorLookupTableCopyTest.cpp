#include <gmock/gmock.h>

#include "ModelTools.h"

using namespace model;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/** A table in which nothing is at its default. */
Held<Table> unusualTable() {
    auto table = newTable();
    Section* middle = redSection(0.5f);
    middle->setNameTemplate("middle");
    middle->setScope(31);
    EXPECT_TRUE(setType(*middle, Lyr::Gradient));
    EXPECT_TRUE(setList<float>(*table, Lyr::PositionList, {2, 3}));
    EXPECT_TRUE(setSections(*table, {redSection(0.25f), middle, redSection(0.75f)}));
    EXPECT_TRUE(setList<Color>(*table, Lyr::ExtensionColorList, {Color(1, 2, 3, 4)}));
    EXPECT_TRUE(setList<Lyrenum>(*table, Lyr::ExtensionEnumList, {Lyr::Continue, 5}));
    EXPECT_TRUE(lyrSetValue<Lyrenum>(table.get(), Lyr::AutoLabel, 0));
    EXPECT_TRUE(lyrSetValue<Lyrenum>(table.get(), Lyr::AutoScale, 0));
    EXPECT_TRUE(setFiniteMode(*table, 1, 2));
    EXPECT_TRUE(lyrSetValue<Lyrenum>(table.get(), Lyr::Quantity, Lyr::Volume));
    EXPECT_TRUE(lyrSetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{1, 2, 3}));
    EXPECT_TRUE(lyrSetValue(table.get(), Lyr::CreationType, Lyr::HueCycle));
    EXPECT_TRUE(lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{-5, 5}));
    EXPECT_TRUE(table->setNameTemplate("unusual"));
    return table;
}

void expectUnusual(const LyrObject& table) {
    EXPECT_THAT(listOf<float>(table, Lyr::PositionList), ElementsAre(2.0f, 3.0f));
    EXPECT_THAT(listOf<Color>(table, Lyr::ExtensionColorList), ElementsAre(Color(1, 2, 3, 4)));
    EXPECT_THAT(listOf<Lyrenum>(table, Lyr::ExtensionEnumList), ElementsAre(Lyr::Continue, Lyrenum(5)));
    EXPECT_EQ(int(lyrGetValue<Lyrenum>(&table, Lyr::AutoLabel, -1)), 0);
    EXPECT_EQ(int(lyrGetValue<Lyrenum>(&table, Lyr::AutoScale, -1)), 0);
    EXPECT_EQ((lyrGetValue<LyrValuePair<Lyrenum>>(&table, Lyr::FiniteMode, {0, 0})), (LyrValuePair<Lyrenum>{1, 2}));
    EXPECT_EQ(lyrGetValue<Lyrenum>(&table, Lyr::Quantity, -1), Lyr::Volume);
    EXPECT_EQ((lyrGetValue<LyrVector3<float>>(&table, Lyr::CreationParameters, {})), (LyrVector3<float>{1, 2, 3}));
    EXPECT_EQ(lyrGetValue<Lyrenum>(&table, Lyr::CreationType, -1), Lyr::HueCycle);
    EXPECT_EQ((lyrGetValue<LyrValuePair<float>>(&table, Lyr::MaximumRange, {0, 0})), (LyrValuePair<float>{-5, 5}));
    EXPECT_STREQ(table.getNameTemplate(), "unusual");
    const std::vector<LyrObject*> sections = sectionsOf(table);
    ASSERT_THAT(sections, SizeIs(3));
    const float red[] = {0.25f, 0.5f, 0.75f};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(&sections[i]->getMetaClass(), &Section::metaClass());
        EXPECT_THAT(listOf<Point>(*sections[i], Lyr::PointListRed), ElementsAre(Point{0, red[i]}));
        EXPECT_THAT(listOf<Point>(*sections[i], Lyr::PointListAlpha), ElementsAre(Point{0, 1}));
        EXPECT_EQ(sections[i]->getParentLink().getOwner(), &table);
        EXPECT_EQ(sections[i]->getFlags(), 0x30000000u);
    }
    EXPECT_EQ(lyrGetValue<Lyrenum>(sections[1], Lyr::Type, -1), Lyr::Gradient);
    EXPECT_STREQ(sections[1]->getNameTemplate(), "middle");
    EXPECT_EQ(int(sections[1]->getScope()), 31);
    EXPECT_STREQ(sections[0]->getNameTemplate(), "");
}

void expectNoSharedSections(const LyrObject& a, const LyrObject& b) {
    for (const LyrObject* section : sectionsOf(a)) {
        EXPECT_THAT(sectionsOf(b), testing::Not(testing::Contains(section)));
    }
}

LyrObjectPtr cloneOf(const LyrObject& table) {
    return LyrObjectPtr(static_cast<LyrObject*>(Table::metaClass().clone(&table)));
}

}  // namespace

TEST(LyrColorLookupTableCopy, has_every_value_and_sections_of_its_own) {
    const Errors errors;
    const auto table = unusualTable();
    const LyrObjectPtr copy = cloneOf(*table);
    ASSERT_TRUE(copy);
    expectUnusual(*copy);
    expectUnusual(*table);
    expectNoSharedSections(*copy, *table);
    EXPECT_EQ(copy->getFlags(), 0x30000000u);
    EXPECT_EQ(int(copy->getScope()), 204800161);
    EXPECT_EQ(copy->getProperty(Lyr::PositionList)->getFlags(), 0x30000000u);
    EXPECT_EQ(copy->getProperty(Lyr::MaximumRange)->getFlags(), 0x20000000u);
}

TEST(LyrColorLookupTableCopy, and_original_change_independently) {
    const auto table = unusualTable();
    const LyrObjectPtr copy = cloneOf(*table);
    ASSERT_TRUE(setRed(sectionAt(*copy, 0), {{0, 1}}));
    ASSERT_TRUE(setList<float>(*copy, Lyr::PositionList, {7, 8}));
    ASSERT_TRUE(setSections(*copy, {}));
    expectUnusual(*table);
}

TEST(LyrColorLookupTableCopy, lists_its_properties_in_the_order_of_the_original) {
    const auto table = unusualTable();
    const LyrObjectPtr copy = cloneOf(*table);
    ASSERT_EQ(copy->getPropertyCount(), table->getPropertyCount());
    for (std::int64_t i = 0; i < copy->getPropertyCount(); ++i) {
        EXPECT_EQ(copy->getPropertyAt(i)->getPropertyID().getName(),
                  table->getPropertyAt(i)->getPropertyID().getName());
    }
}

TEST(LyrColorLookupTableCopy, by_assignment_replaces_every_value_and_releases_the_old_sections) {
    const Errors errors;
    const auto table = newTable();
    const auto other = unusualTable();
    const LyrObjectPtr old(&sectionAt(*table, 0));
    const LyrTimestamp before = table->getModificationTimestamp();
    *table = *other;
    expectUnusual(*table);
    expectUnusual(*other);
    expectNoSharedSections(*table, *other);
    EXPECT_EQ(old->getParentLink().getOwner(), nullptr);
    EXPECT_EQ(old->getRefCount(), 1);
    EXPECT_GT(table->getModificationTimestamp(), before);
    EXPECT_TRUE(Table::metaClass().copy(table.get(), newTable().get()));
    EXPECT_THAT(listOf<float>(*table, Lyr::PositionList), ElementsAre(-1.0f, 1.0f));
}

TEST(LyrColorLookupTableCopy, of_itself_to_itself_changes_nothing) {
    const Errors errors;
    const auto table = unusualTable();
    const std::vector<LyrObject*> sections = sectionsOf(*table);
    const LyrTimestamp before = table->getModificationTimestamp();
    const Table& itself = *table;
    *table = itself;
    EXPECT_TRUE(Table::metaClass().copy(table.get(), table.get()));
    EXPECT_TRUE(table->copyFrom(*table));
    EXPECT_EQ(table->getModificationTimestamp(), before);
    EXPECT_EQ(sectionsOf(*table), sections);
    expectUnusual(*table);
}

TEST(LyrColorLookupTableCopy, by_construction_equals_a_clone) {
    const Errors errors;
    const auto table = unusualTable();
    const Table copy(*table);
    expectUnusual(copy);
    expectNoSharedSections(copy, *table);
}

TEST(LyrColorLookupTableCopy, keeps_empty_links_and_copies_whatever_else_is_linked) {
    const Errors errors;
    const auto table = newTable();
    ASSERT_TRUE(setSections(*table, {nullptr, new LyrObject, new Section}));
    const LyrObjectPtr copy = cloneOf(*table);
    const std::vector<LyrObject*> sections = sectionsOf(*copy);
    ASSERT_THAT(sections, SizeIs(3));
    EXPECT_EQ(sections[0], nullptr);
    EXPECT_EQ(&sections[1]->getMetaClass(), &LyrObject::metaClass());
    EXPECT_EQ(&sections[2]->getMetaClass(), &Section::metaClass());
    expectNoSharedSections(*copy, newTable().operator*());
}

TEST(LyrColorLookupTableCopy, inside_an_action_is_nothing_to_take_back) {
    const auto table = unusualTable();
    LyrObjectPtr copy;
    EXPECT_EQ(recordedBy([&] { copy = cloneOf(*table); }), 0u);
    EXPECT_EQ(recordedBy([&] { const Table local(*table); }), 0u);
    EXPECT_EQ(recordedBy([&] { const Section local(sectionAt(*table, 1)); }), 0u);
    expectUnusual(*copy);
    // The finished copy is content like any other.
    EXPECT_EQ(recordedBy([&] { EXPECT_TRUE(setList<float>(*copy, Lyr::PositionList, {0, 1})); }), 1u);
}

TEST(LyrColorLookupTableCopy, by_assignment_inside_an_action_is_taken_back_whole) {
    Steps sink;
    const auto table = newTable();
    const auto other = unusualTable();
    const std::vector<LyrObject*> before = sectionsOf(*table);
    auto& journal = LyrUndoJournal::instance();
    const auto token = journal.begin(LyrString::fromUtf8("assign"));
    *table = *other;
    const std::vector<LyrObject*> after = sectionsOf(*table);
    ASSERT_TRUE(journal.end(token));
    ASSERT_THAT(sink.steps, SizeIs(1));
    // The six lists and booleans that are content, each once; not the side notes.
    EXPECT_EQ(sink.steps[0]->getEntryCount(), 6u);
    EXPECT_TRUE(sink.steps[0]->undo());
    EXPECT_EQ(sectionsOf(*table), before);
    EXPECT_THAT(listOf<float>(*table, Lyr::PositionList), ElementsAre(-1.0f, 1.0f));
    EXPECT_THAT(listOf<Color>(*table, Lyr::ExtensionColorList), IsEmpty());
    EXPECT_TRUE(sink.steps[0]->redo());
    EXPECT_EQ(sectionsOf(*table), after);
    expectUnusual(*table);
}
