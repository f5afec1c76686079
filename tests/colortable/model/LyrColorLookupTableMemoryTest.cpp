#include <lyr_core/LyrClassManager.h>

#include <gmock/gmock.h>

#include <algorithm>

#include "ModelTools.h"
#include "scarce/EachAllocation.h"

using namespace model;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int NO_MEMORY = -204799994;

long long objectCount() {
    return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern::ofModule("lys_colortable"));
}

/** An object whose private part found no memory: the first allocation is the object's own. */
template <class T>
LyrObjectPtr withoutPrivatePart(Errors& errors) {
    LyrObjectPtr object;
    {
        const ScarceMemory scarce(1);
        object = new T;
        EXPECT_TRUE(scarce.hasFailed());
    }
    EXPECT_THAT(errors.take(), ElementsAre(Errors::Entry{object.get(), NO_MEMORY}));
    return object;
}

/** Runs `work` again and again, each time with the next of its allocations failing, once and for good, until none is
 * left to fail. Returns how many allocations failed once each. */
template <class Work>
int withEachAllocationFailing(Work work) {
    struct Nothing {};
    return scarce::withEachAllocationFailing<Nothing>([&](Nothing&) { return work(); }, [](Nothing&, bool) {});
}

/** A table with a constant section between each two of `count` boundaries from -1 on, and beside them. */
Held<Table> tableOfBoundaries(int count) {
    auto table = newTable();
    std::vector<float> positions;
    std::vector<LyrObject*> sections = {redSection(-1)};
    for (int i = 0; i < count; ++i) {
        positions.push_back(static_cast<float>(i) / 150.0f - 1.0f);
        sections.push_back(redSection(static_cast<float>(i)));
    }
    EXPECT_TRUE(setList(*table, Lyr::PositionList, positions));
    EXPECT_TRUE(setSections(*table, sections));
    return table;
}

/** Colours values below, in and above all sections of a table, with each allocation failing. Returns how many failed.
 */
int colouredWithEachAllocationFailing(const Table& table) {
    std::vector<float> values;
    for (int i = 0; i < 5000; ++i) {
        values.push_back(static_cast<float>(i) / 2000.0f - 1.25f);
    }
    std::vector<Color> expected(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_TRUE(table.getColor(values[i], expected[i]));
    }
    std::vector<Color> out(values.size());
    return withEachAllocationFailing([&] {
        std::fill(out.begin(), out.end(), untouched);
        const bool done = table.getColors(static_cast<long long>(values.size()), values.data(), out.data());
        EXPECT_TRUE(done);
        EXPECT_EQ(std::memcmp(out.data(), expected.data(), out.size() * sizeof(Color)), 0);
        return done;
    });
}

}  // namespace

TEST(LyrColorLookupTableMemory, a_section_without_private_part_has_no_properties_and_colours_nothing) {
    Errors errors;
    const LyrObjectPtr object = withoutPrivatePart<Section>(errors);
    const auto& section = static_cast<const Section&>(*object);
    EXPECT_EQ(section.getPropertyCount(), 0);
    EXPECT_EQ(section.getProperty(Lyr::Type), nullptr);
    EXPECT_EQ(section.getProperty(Lyr::PointListRed), nullptr);
    Color out = untouched;
    EXPECT_FALSE(section.getColor({0, 1}, 0.5f, out, nullptr, nullptr));
    EXPECT_TRUE(sameBits(out, untouched));
    EXPECT_FALSE(object->copyFrom(*newSection()));
    EXPECT_FALSE(Section::metaClass().copy(object.get(), newSection().get()));
    // Its neighbour finds it there, and asks it in vain.
    const auto neighbour = newSection();
    ASSERT_TRUE(setType(*neighbour, Lyr::Continue));
    EXPECT_FALSE(neighbour->getColor({0, 1}, 0.5f, out, &section, newSection().get()));
    EXPECT_TRUE(sameBits(out, transparent));
}

TEST(LyrColorLookupTableMemory, a_section_without_private_part_in_a_table_fails_untouched) {
    Errors errors;
    const LyrObjectPtr object = withoutPrivatePart<Section>(errors);
    const auto table = newTable();
    ASSERT_TRUE(setSections(*table, {redSection(0), object.get(), redSection(1)}));
    Color out = untouched;
    EXPECT_FALSE(table->getColor(0.5f, out));
    EXPECT_TRUE(sameBits(out, untouched));
    std::vector<float> values(1000, 2.0f);
    values[10] = 0.5f;
    std::vector<Color> many(1000, untouched);
    EXPECT_FALSE(table->getColors(1000, values.data(), many.data()));
    EXPECT_TRUE(sameBits(many[9], untouched));
    EXPECT_TRUE(sameBits(many[10], untouched));
    EXPECT_EQ(many[11].red, 1.0f);
    EXPECT_THAT(errors.take(), IsEmpty());
}

TEST(LyrColorLookupTableMemory, a_table_without_private_part_has_no_properties_and_colours_nothing) {
    Errors errors;
    const LyrObjectPtr object = withoutPrivatePart<Table>(errors);
    const auto& table = static_cast<const Table&>(*object);
    EXPECT_EQ(table.getPropertyCount(), 0);
    EXPECT_EQ(table.getProperty(Lyr::SectionList), nullptr);
    Color out = untouched;
    const float value = 0;
    EXPECT_FALSE(table.getColor(value, out));
    EXPECT_FALSE(table.getColors(1, &value, &out));
    EXPECT_TRUE(sameBits(out, untouched));
    EXPECT_FALSE(table.getColors(0, nullptr, nullptr));
    EXPECT_FALSE(object->copyFrom(*newTable()));
    EXPECT_FALSE(Table::metaClass().copy(object.get(), newTable().get()));
}

TEST(LyrColorLookupTableMemory, a_new_table_bears_every_failing_allocation) {
    const long long before = objectCount();
    const int failed = withEachAllocationFailing([] {
        const LyrObjectRefPtr table("LyrColorLookupTable", Lyr::DocumentScope);
        Color out;
        return table && static_cast<const Table&>(*table.get()).getColor(0.0f, out);
    });
    EXPECT_GT(failed, 10);
    EXPECT_EQ(objectCount(), before);
}

TEST(LyrColorLookupTableMemory, a_clone_bears_every_failing_allocation) {
    const auto table = newTable();
    ASSERT_TRUE(table->setNameTemplate("named"));
    const long long before = objectCount();
    const int failed = withEachAllocationFailing([&] {
        const LyrObjectPtr copy(static_cast<LyrObject*>(Table::metaClass().clone(table.get())));
        Color out;
        return copy && static_cast<const Table&>(*copy).getColor(0.0f, out);
    });
    EXPECT_GT(failed, 20);
    EXPECT_EQ(objectCount(), before);
}

TEST(LyrColorLookupTableMemory, an_assignment_bears_every_failing_allocation) {
    const auto table = newTable();
    const auto other = newTable();
    ASSERT_TRUE(setList<float>(*other, Lyr::PositionList, {0, 1, 2}));
    ASSERT_TRUE(setSections(*other, {redSection(0), redSection(1), redSection(2), redSection(3)}));
    const long long before = objectCount();
    const int failed = withEachAllocationFailing([&] { return table->copyFrom(*other); });
    EXPECT_GT(failed, 20);
    EXPECT_EQ(objectCount(), before + 1);
}

TEST(LyrColorLookupTableMemory, a_reset_bears_every_failing_allocation) {
    const auto table = newTable();
    const long long before = objectCount();
    const LyrValueArrayOPPtr<LyrLinkListIF> list(table.get(), Lyr::SectionList);
    const int failed = withEachAllocationFailing([&] {
        // A list that could not be built anew is empty: the table is not valid, but whole.
        const bool done = list->resetData();
        const long long size = list->getArraySize();
        EXPECT_TRUE(size == 3 || size == 0);
        return done && size == 3;
    });
    EXPECT_GT(failed, 10);
    EXPECT_EQ(objectCount(), before);
}

TEST(LyrColorLookupTableMemory, a_recorded_write_that_finds_no_memory_changes_nothing) {
    struct TableInAction {
        ~TableInAction() { LyrUndoJournal::instance().abort(token); }
        Held<Table> table = newTable();
        std::vector<LyrObject*> before = sectionsOf(*table);
        LyrObjectPtr fresh{redSection(0.5f)};
        LyrValueArrayOPPtr<LyrLinkListIF> list{table.get(), Lyr::SectionList};
        LyrUndoJournal::Token token = LyrUndoJournal::instance().begin(LyrString::fromUtf8("test"));
    };
    const int failed = scarce::withEachAllocationFailing<TableInAction>(
        [](TableInAction& own) {
            const LyrObjectLink links[] = {
                {own.fresh.get(), nullptr, -1}, {own.before[1], nullptr, -1}, {own.before[2], nullptr, -1}};
            return own.list->initArray(0, 2, links);
        },
        [](TableInAction& own, bool done) {
            const std::vector<LyrObject*> written = {own.fresh.get(), own.before[1], own.before[2]};
            EXPECT_EQ(sectionsOf(*own.table), done ? written : own.before);
            EXPECT_TRUE(LyrUndoJournal::instance().abort(own.token));
            EXPECT_EQ(sectionsOf(*own.table), own.before);
        });
    EXPECT_GT(failed, 3);
}

TEST(LyrColorLookupTableMemory, colouring_bears_every_failing_allocation_and_gives_the_same_colours) {
    // One for the sections as plain data, one for the plan itself; up to 63 boundaries have room inside of both.
    EXPECT_EQ(colouredWithEachAllocationFailing(*newTable()), 0);
    EXPECT_EQ(colouredWithEachAllocationFailing(*tableOfBoundaries(63)), 0);
    EXPECT_EQ(colouredWithEachAllocationFailing(*tableOfBoundaries(64)), 2);
    EXPECT_EQ(colouredWithEachAllocationFailing(*tableOfBoundaries(300)), 2);
}
