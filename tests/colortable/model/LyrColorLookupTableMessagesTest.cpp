#include <lyr_core/LyrLinkProperty.h>

#include <gmock/gmock.h>

#include "ModelTools.h"

using namespace model;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr int CHANGED = 204800299;

/** Owns a table through a hard link, as data that it colours would, and remembers what it hears. */
class Owner : public LyrObject {
public:
    Owner() { addProperty(Lyr::ColorLookupTable, &link); }
    bool iocCallback(Message& message) override {
        ear.iocCallback(message);
        return LyrObject::iocCallback(message);
    }
    LyrObjectHardLinkOP link;
    Ear ear;
};

struct OwnedTable {
    OwnedTable() : owner(new Owner), table(newTable()) {
        EXPECT_TRUE(self().link.setValue(LyrObjectLink(table.get(), nullptr, -1)));
        self().ear.take();
    }
    Owner& self() const { return static_cast<Owner&>(*owner); }
    LyrObjectPtr owner;
    Held<Table> table;
};

int id(Lyrenum name) {
    return int(name);
}

}  // namespace

TEST(LyrColorLookupTableMessages, a_changed_section_is_one_message_of_the_table_to_its_listeners) {
    const auto table = newTable();
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, table.get());
    const Heard relayed{table.get(), table.get(), CHANGED, id(Lyr::SectionList), -1};
    ASSERT_TRUE(setType(sectionAt(*table, 1), Lyr::HueCycle));
    EXPECT_THAT(ear.take(), ElementsAre(relayed));
    ASSERT_TRUE(setRed(sectionAt(*table, 0), {{0, 0.25f}}));
    EXPECT_THAT(ear.take(), ElementsAre(relayed));
    ASSERT_TRUE(setRed(sectionAt(*table, 0), {{0, 0.25f}}));
    EXPECT_THAT(ear.take(), IsEmpty());
}

TEST(LyrColorLookupTableMessages, a_message_of_any_type_is_relayed_as_a_change) {
    const auto table = newTable();
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, table.get());
    Section& section = sectionAt(*table, 2);
    LyrIOC::Message message(&section, 4711, 12);
    section.iocBroadcast(message);
    EXPECT_THAT(ear.take(), ElementsAre(Heard{table.get(), table.get(), CHANGED, id(Lyr::SectionList), -1}));
}

TEST(LyrColorLookupTableMessages, owners_hear_the_table_first_and_then_the_section) {
    const OwnedTable owned;
    Section& section = sectionAt(*owned.table, 1);
    ASSERT_TRUE(setType(section, Lyr::HueCycle));
    const int link = id(Lyr::ColorLookupTable);
    EXPECT_THAT(owned.self().ear.take(),
                ElementsAre(Heard{owned.table.get(), owned.table.get(), CHANGED, id(Lyr::SectionList), link},
                            Heard{owned.table.get(), &section, CHANGED, id(Lyr::Type), link}));
}

TEST(LyrColorLookupTableMessages, owners_of_owners_hear_both_as_well) {
    struct Grandparent : Owner {};
    const OwnedTable owned;
    const LyrObjectPtr top(new Grandparent);
    auto& grandparent = static_cast<Grandparent&>(*top);
    ASSERT_TRUE(grandparent.link.setValue(LyrObjectLink(owned.owner.get(), nullptr, -1)));
    grandparent.ear.take();
    Section& section = sectionAt(*owned.table, 1);
    ASSERT_TRUE(setType(section, Lyr::HueCycle));
    const int link = id(Lyr::ColorLookupTable);
    EXPECT_THAT(grandparent.ear.take(),
                ElementsAre(Heard{owned.owner.get(), owned.table.get(), CHANGED, id(Lyr::SectionList), link},
                            Heard{owned.owner.get(), &section, CHANGED, id(Lyr::Type), link}));
}

TEST(LyrColorLookupTableMessages, a_write_of_the_list_itself_is_told_once_and_not_relayed) {
    const OwnedTable owned;
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, owned.table.get());
    ASSERT_TRUE(setSections(*owned.table, {redSection(0), redSection(1), redSection(2)}));
    EXPECT_THAT(ear.take(),
                ElementsAre(Heard{owned.table.get(), owned.table.get(), CHANGED, id(Lyr::SectionList), -1}));
    EXPECT_THAT(owned.self().ear.take(), SizeIs(1));
    ASSERT_TRUE(owned.table->getProperty(Lyr::SectionList)->resetData());
    EXPECT_THAT(ear.take(), SizeIs(1));
}

TEST(LyrColorLookupTableMessages, each_written_property_is_one_message) {
    const auto table = newTable();
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, table.get());
    const auto expectOne = [&](bool written, Lyrenum property) {
        EXPECT_TRUE(written);
        EXPECT_THAT(ear.take(), ElementsAre(Heard{table.get(), table.get(), CHANGED, id(property), -1}));
    };
    expectOne(setList<float>(*table, Lyr::PositionList, {0, 1}), Lyr::PositionList);
    expectOne(setList<Color>(*table, Lyr::ExtensionColorList, {Color()}), Lyr::ExtensionColorList);
    expectOne(setList<Lyrenum>(*table, Lyr::ExtensionEnumList, {1}), Lyr::ExtensionEnumList);
    expectOne(lyrSetValue<Lyrenum>(table.get(), Lyr::AutoLabel, 0), Lyr::AutoLabel);
    expectOne(lyrSetValue<Lyrenum>(table.get(), Lyr::AutoScale, 0), Lyr::AutoScale);
    expectOne(setFiniteMode(*table, 1, 1), Lyr::FiniteMode);
    expectOne(lyrSetValue<Lyrenum>(table.get(), Lyr::Quantity, Lyr::Volume), Lyr::Quantity);
    expectOne(lyrSetValue(table.get(), Lyr::CreationParameters, LyrVector3<float>{1, 2, 3}), Lyr::CreationParameters);
    expectOne(lyrSetValue(table.get(), Lyr::CreationType, Lyr::HueCycle), Lyr::CreationType);
    expectOne(lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{0, 1}), Lyr::MaximumRange);
}

TEST(LyrColorLookupTableMessages, a_section_that_left_the_table_is_not_heard_any_more) {
    const auto table = newTable();
    const LyrObjectPtr gone(&sectionAt(*table, 1));
    ASSERT_TRUE(setSections(*table, {redSection(0), redSection(1), redSection(2)}));
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, table.get());
    ASSERT_TRUE(setType(*gone, Lyr::HueCycle));
    EXPECT_THAT(ear.take(), IsEmpty());
}

TEST(LyrColorLookupTableMessages, a_section_listed_twice_is_heard_once) {
    const auto table = newTable();
    LyrObject* shared = redSection(0);
    ASSERT_TRUE(setSections(*table, {shared, redSection(1), shared}));
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, table.get());
    ASSERT_TRUE(setRed(*shared, {{0, 0.5f}}));
    EXPECT_THAT(ear.take(), SizeIs(1));
}

TEST(LyrColorLookupTableMessages, a_message_through_a_handle_is_not_relayed) {
    const auto table = newTable();
    const auto stranger = newSection();
    const LyrObjectIOCPtr toTable(table.get(), stranger.get());
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, table.get());
    ASSERT_TRUE(setType(*stranger, Lyr::HueCycle));
    EXPECT_THAT(ear.take(), IsEmpty());
}

TEST(LyrColorLookupTableMessages, a_message_through_another_link_is_passed_to_owners_and_not_relayed) {
    LyrObjectHardLinkOP other;
    const auto stranger = newSection();
    const OwnedTable owned;
    ASSERT_TRUE(owned.table->addProperty(Lyr::Object, &other));
    ASSERT_TRUE(other.setValue(LyrObjectLink(stranger.get(), nullptr, -1)));
    owned.self().ear.take();
    ASSERT_TRUE(setType(*stranger, Lyr::HueCycle));
    EXPECT_THAT(owned.self().ear.take(), ElementsAre(Heard{owned.table.get(), stranger.get(), CHANGED, id(Lyr::Type),
                                                           id(Lyr::ColorLookupTable)}));
    ASSERT_TRUE(owned.table->removeProperty(Lyr::Object));
}

TEST(LyrColorLookupTableMessages, a_listener_may_colour_values_and_let_the_table_go) {
    struct Careless : LyrIOC {
        bool iocCallback(Message& message) override {
            Color out;
            coloured = static_cast<const Table*>(message.getSender())->getColor(0.0f, out);
            color = out;
            *handle = nullptr;
            return LyrIOC::iocCallback(message);
        }
        LyrObjectIOCPtr* handle = nullptr;
        bool coloured = false;
        Color color;
    } careless;
    LyrObjectIOCPtr handle(&careless, new Table);
    careless.handle = &handle;
    const LyrObjectPtr section(&sectionAt(*handle.get(), 1));
    ASSERT_TRUE(setType(*section, Lyr::HueCycle));
    EXPECT_TRUE(careless.coloured);
    EXPECT_EQ(careless.color, Color(0, 1, 1, 1));
    EXPECT_FALSE(handle);
    EXPECT_EQ(section->getParentLink().getOwner(), nullptr);
}

TEST(LyrColorLookupTableMessages, a_table_that_nobody_counts_is_not_let_go_by_its_own_news) {
    Table* const table = new Table;
    ASSERT_EQ(table->getRefCount(), 0);
    const LyrObjectPtr section(&sectionAt(*table, 1));
    ASSERT_TRUE(setType(*section, Lyr::HueCycle));
    EXPECT_EQ(section->getParentLink().getOwner(), table);
    Color out;
    EXPECT_TRUE(table->getColor(0.0f, out));
    EXPECT_EQ(out, Color(0, 1, 1, 1));
    delete table;
    EXPECT_EQ(section->getParentLink().getOwner(), nullptr);
}

TEST(LyrColorLookupTableMessages, between_the_writes_of_its_two_lists_a_table_colours_nothing_and_then_again) {
    struct Watch : LyrIOC {
        bool iocCallback(Message& message) override {
            Color out = untouched;
            const bool done = static_cast<const Table*>(message.getSender())->getColor(0.5f, out);
            results.push_back(done);
            return LyrIOC::iocCallback(message);
        }
        std::vector<bool> results;
    } watch;
    const Errors errors;
    const auto table = newTable();
    const LyrObjectIOCPtr handle(&watch, table.get());
    ASSERT_TRUE(setList<float>(*table, Lyr::PositionList, {0, 1, 2}));
    ASSERT_TRUE(setSections(*table, {redSection(0), redSection(1), redSection(2), redSection(3)}));
    EXPECT_THAT(watch.results, ElementsAre(false, true));
}
