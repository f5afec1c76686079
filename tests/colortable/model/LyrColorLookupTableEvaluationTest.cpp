#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "ModelTools.h"

using namespace model;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();
constexpr float INF = std::numeric_limits<float>::infinity();
constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
constexpr int WRONG_TYPE = -204799995;

/** The colour of one value; both entry points have to agree. */
Color colorAt(const Table& table, float value) {
    Color one = untouched;
    EXPECT_TRUE(table.getColor(value, one)) << value;
    Color many = untouched;
    EXPECT_TRUE(table.getColors(1, &value, &many)) << value;
    EXPECT_TRUE(sameBits(one, many)) << value;
    return one;
}

/** Expects that both entry points refuse a value and leave `left` behind. */
void expectRefused(const Table& table, float value, const Color& left) {
    Color one = untouched;
    EXPECT_FALSE(table.getColor(value, one)) << value;
    EXPECT_TRUE(sameBits(one, left)) << value;
    Color many = untouched;
    EXPECT_FALSE(table.getColors(1, &value, &many)) << value;
    EXPECT_TRUE(sameBits(many, left)) << value;
}

/** Sections of red 0, 1, 2, … around the given boundaries. */
Held<Table> countingTable(const std::vector<float>& positions) {
    auto table = newTable();
    std::vector<LyrObject*> sections;
    for (std::size_t i = 0; i <= positions.size(); ++i) {
        sections.push_back(redSection(static_cast<float>(i)));
    }
    EXPECT_TRUE(setList(*table, Lyr::PositionList, positions));
    EXPECT_TRUE(setSections(*table, sections));
    return table;
}

/** A default table whose section `index` is replaced by an object that is no section, or by nothing. */
Held<Table> tableWithBadLink(std::size_t index, LyrObject* object) {
    auto table = newTable();
    std::vector<LyrObject*> sections = sectionsOf(*table);
    sections[index] = object;
    EXPECT_TRUE(setSections(*table, sections));
    return table;
}

}  // namespace

TEST(LyrColorLookupTableEvaluation, a_new_table_shows_violet_below_a_rainbow_and_pink_above) {
    const Errors errors;
    const auto table = newTable();
    EXPECT_EQ(colorAt(*table, -2.0f), Color(0.6f, 0, 1, 1));
    EXPECT_EQ(colorAt(*table, -1.0f), Color(0, 0, 1, 1));
    EXPECT_EQ(colorAt(*table, 0.0f), Color(0, 1, 0, 1));
    EXPECT_EQ(colorAt(*table, 1.0f), Color(1, 0, 0, 1));
    EXPECT_EQ(colorAt(*table, 2.0f), Color(1, 0, 0.6f, 1));
    EXPECT_EQ(colorAt(*table, -INF), Color(0.6f, 0, 1, 1));
    EXPECT_EQ(colorAt(*table, INF), Color(1, 0, 0.6f, 1));
}

TEST(LyrColorLookupTableEvaluation, a_value_on_a_boundary_belongs_below_but_on_the_first_one_above) {
    const auto table = countingTable({-1, 0, 1});
    EXPECT_EQ(colorAt(*table, std::nextafter(-1.0f, -2.0f)).red, 0.0f);
    EXPECT_EQ(colorAt(*table, -1.0f).red, 1.0f);
    EXPECT_EQ(colorAt(*table, 0.0f).red, 1.0f);
    EXPECT_EQ(colorAt(*table, -0.0f).red, 1.0f);
    EXPECT_EQ(colorAt(*table, std::numeric_limits<float>::denorm_min()).red, 2.0f);
    EXPECT_EQ(colorAt(*table, 1.0f).red, 2.0f);
    EXPECT_EQ(colorAt(*table, std::nextafter(1.0f, 2.0f)).red, 3.0f);
}

TEST(LyrColorLookupTableEvaluation, twins_of_the_first_boundary_are_passed_together_other_twins_are_not) {
    EXPECT_EQ(colorAt(*countingTable({2, 2, 2, 3}), 2.0f).red, 3.0f);
    EXPECT_EQ(colorAt(*countingTable({1, 2, 2, 2}), 2.0f).red, 1.0f);
    EXPECT_EQ(colorAt(*countingTable({-0.0f, 0.0f, 1.0f}), 0.0f).red, 2.0f);
}

TEST(LyrColorLookupTableEvaluation, boundaries_out_of_order_are_searched_by_bisection) {
    // The middle of the list is asked first: 5 is not below 4, so 1 and 3 behind it are never looked at.
    EXPECT_EQ(colorAt(*countingTable({9, 5, 1}), 4.0f).red, 0.0f);
    EXPECT_EQ(colorAt(*countingTable({9, 5, 1}), 10.0f).red, 3.0f);
    EXPECT_EQ(colorAt(*countingTable({1, 5, 3}), 4.0f).red, 1.0f);
}

TEST(LyrColorLookupTableEvaluation, a_finite_end_is_black_only_for_a_mode_of_exactly_1) {
    const Errors errors;
    const auto table = newTable();
    ASSERT_TRUE(setFiniteMode(*table, 1, 0));
    EXPECT_EQ(colorAt(*table, -2.0f), black);
    EXPECT_EQ(colorAt(*table, -INF), black);
    EXPECT_EQ(colorAt(*table, NOT_A_NUMBER), black);
    EXPECT_EQ(colorAt(*table, -1.0f), Color(0, 0, 1, 1));
    EXPECT_EQ(colorAt(*table, 2.0f), Color(1, 0, 0.6f, 1));
    ASSERT_TRUE(setFiniteMode(*table, 0, 1));
    EXPECT_EQ(colorAt(*table, -2.0f), Color(0.6f, 0, 1, 1));
    EXPECT_EQ(colorAt(*table, 1.0f), Color(1, 0, 0, 1));
    EXPECT_EQ(colorAt(*table, 2.0f), black);
    EXPECT_EQ(colorAt(*table, INF), black);
    for (const int other : {2, -1, 0x10001}) {
        ASSERT_TRUE(setFiniteMode(*table, other, other));
        EXPECT_EQ(colorAt(*table, -2.0f), Color(0.6f, 0, 1, 1));
        EXPECT_EQ(colorAt(*table, 2.0f), Color(1, 0, 0.6f, 1));
    }
}

TEST(LyrColorLookupTableEvaluation, a_table_without_matching_sections_colours_nothing_and_reports_nothing) {
    const Errors errors;
    const auto table = newTable();
    const std::vector<std::vector<float>> positions = {{}, {0}, {0, 1, 2}};
    for (const auto& list : positions) {
        ASSERT_TRUE(setList(*table, Lyr::PositionList, list));
        expectRefused(*table, 0.5f, untouched);
        EXPECT_FALSE(table->getColors(0, nullptr, nullptr));
        EXPECT_FALSE(table->getColors(-1, nullptr, nullptr));
    }
    // One boundary between two sections matches in number, but lacks the section between.
    ASSERT_TRUE(setList<float>(*table, Lyr::PositionList, {0}));
    ASSERT_TRUE(setSections(*table, {redSection(1), redSection(2)}));
    expectRefused(*table, 0.5f, untouched);
    ASSERT_TRUE(setSections(*table, {}));
    expectRefused(*table, 0.5f, untouched);
    ASSERT_TRUE(setList<float>(*table, Lyr::PositionList, {0, 1}));
    ASSERT_TRUE(setSections(*table, {redSection(1), redSection(2), redSection(3), redSection(4)}));
    expectRefused(*table, 0.5f, untouched);
    ASSERT_TRUE(setList<float>(*table, Lyr::PositionList, {}));
    ASSERT_TRUE(setSections(*table, {redSection(1)}));
    expectRefused(*table, 0.5f, untouched);
    ASSERT_TRUE(setFiniteMode(*table, 1, 1));
    expectRefused(*table, 0.5f, untouched);
}

TEST(LyrColorLookupTableEvaluation, calls_without_values_need_no_memory_and_values_without_memory_fail) {
    const Errors errors;
    const auto table = newTable();
    const float value = 0;
    Color out = untouched;
    EXPECT_TRUE(table->getColors(0, nullptr, nullptr));
    EXPECT_TRUE(table->getColors(-3, nullptr, nullptr));
    EXPECT_TRUE(table->getColors(0, &value, &out));
    EXPECT_FALSE(table->getColors(1, nullptr, nullptr));
    EXPECT_FALSE(table->getColors(1, &value, nullptr));
    EXPECT_FALSE(table->getColors(1, nullptr, &out));
    EXPECT_TRUE(sameBits(out, untouched));
}

TEST(LyrColorLookupTableEvaluation, an_outer_section_without_width_fails_untouched_and_silently) {
    const Errors errors;
    const auto table = countingTable({-LARGEST, LARGEST});
    expectRefused(*table, NOT_A_NUMBER, untouched);
    expectRefused(*table, -INF, untouched);
    expectRefused(*table, INF, untouched);
    EXPECT_EQ(colorAt(*table, -LARGEST).red, 1.0f);
    EXPECT_EQ(colorAt(*table, LARGEST).red, 1.0f);
    ASSERT_TRUE(setFiniteMode(*table, 1, 1));
    EXPECT_EQ(colorAt(*table, NOT_A_NUMBER), black);
    EXPECT_EQ(colorAt(*table, INF), black);
}

TEST(LyrColorLookupTableEvaluation, outer_gradients_end_at_the_largest_floats) {
    const Errors errors;
    const auto table = newTable();
    for (const std::size_t outer : {0u, 2u}) {
        Section& section = sectionAt(*table, outer);
        ASSERT_TRUE(setType(section, Lyr::Gradient));
        ASSERT_TRUE(setRed(section, {{0, 0}, {1, 1}}));
    }
    // Below: (v + MAX) / (-1 + MAX) is 1 for every ordinary v, 0 at the far end.
    EXPECT_EQ(colorAt(*table, -2.0f).red, 1.0f);
    EXPECT_EQ(colorAt(*table, -LARGEST).red, 0.0f);
    EXPECT_EQ(colorAt(*table, -LARGEST / 2).red, 0.5f);
    EXPECT_EQ(colorAt(*table, NOT_A_NUMBER).red, 0.0f);
    // Above: (v - 1) / (MAX - 1) is denormal for ordinary v, and no bit of it is flushed away.
    const float t = 1.0f / LARGEST;
    ASSERT_EQ(std::fpclassify(t), FP_SUBNORMAL);
    EXPECT_EQ(colorAt(*table, 2.0f).red, t);
    EXPECT_EQ(colorAt(*table, LARGEST).red, 1.0f);
}

TEST(LyrColorLookupTableEvaluation, not_a_number_shows_the_start_of_the_section_it_falls_into) {
    const Errors errors;
    const auto table = newTable();
    Section& below = sectionAt(*table, 0);
    ASSERT_TRUE(setType(below, Lyr::Rainbow));
    ASSERT_TRUE(setList<Point>(below, Lyr::PointListAlpha, {}));
    EXPECT_EQ(colorAt(*table, NOT_A_NUMBER), Color(0, 0, 1, 1));
}

TEST(LyrColorLookupTableEvaluation, outer_sections_continue_the_edges_of_their_inner_neighbours) {
    const Errors errors;
    const auto table = newTable();
    ASSERT_TRUE(setType(sectionAt(*table, 0), Lyr::Continue));
    ASSERT_TRUE(setType(sectionAt(*table, 2), Lyr::Continue));
    EXPECT_EQ(colorAt(*table, -5.0f), Color(0, 0, 1, 1));
    EXPECT_EQ(colorAt(*table, 5.0f), Color(1, 0, 0, 1));
    // An inner one continues what lies below it, and fails where that continues itself.
    const auto inner = countingTable({0, 1, 2});
    ASSERT_TRUE(setType(sectionAt(*inner, 1), Lyr::Continue));
    EXPECT_EQ(colorAt(*inner, 0.5f).red, 0.0f);
    ASSERT_TRUE(setType(sectionAt(*inner, 2), Lyr::Continue));
    expectRefused(*inner, 1.5f, transparent);
    EXPECT_EQ(colorAt(*inner, 0.5f).red, 0.0f);
}

TEST(LyrColorLookupTableEvaluation, a_type_without_a_rule_fails_with_transparent_black_and_reports_nothing) {
    const Errors errors;
    const auto table = newTable();
    for (const Lyrenum type : {Lyr::Custom, Lyr::InvertedHueCycle, Lyr::Full, Lyrenum(-1), Lyrenum(0)}) {
        ASSERT_TRUE(setType(sectionAt(*table, 1), type));
        expectRefused(*table, 0.0f, transparent);
    }
}

TEST(LyrColorLookupTableEvaluation, a_custom_section_outside_a_finite_range_does_not_fail) {
    const Errors errors;
    const auto table = newTable();
    ASSERT_TRUE(setType(sectionAt(*table, 0), Lyr::Custom));
    expectRefused(*table, -2.0f, transparent);
    ASSERT_TRUE(setFiniteMode(*table, 1, 0));
    EXPECT_EQ(colorAt(*table, -2.0f), black);
}

TEST(LyrColorLookupTableEvaluation, a_link_to_another_object_is_reported_once_for_each_call_with_that_object) {
    Errors errors;
    const LyrObjectPtr stranger(new LyrObject);
    const auto table = tableWithBadLink(1, stranger.get());
    const Errors::Entry wanted{stranger.get(), WRONG_TYPE};
    Color out = untouched;
    EXPECT_FALSE(table->getColor(0.0f, out));
    EXPECT_TRUE(sameBits(out, untouched));
    EXPECT_THAT(errors.take(), ElementsAre(wanted));
    const float values[] = {0.0f, 0.5f, 2.0f};
    Color many[] = {untouched, untouched, untouched};
    EXPECT_FALSE(table->getColors(3, values, many));
    EXPECT_THAT(errors.take(), ElementsAre(wanted));
    EXPECT_TRUE(sameBits(many[0], untouched));
    EXPECT_TRUE(sameBits(many[1], untouched));
    EXPECT_EQ(many[2], Color(1, 0, 0.6f, 1));
    // The sections that are there go on as before, without a word.
    EXPECT_EQ(colorAt(*table, -2.0f), Color(0.6f, 0, 1, 1));
    EXPECT_THAT(errors.take(), IsEmpty());
}

TEST(LyrColorLookupTableEvaluation, a_table_in_a_section_s_place_is_no_section) {
    Errors errors;
    const auto other = newTable();
    const auto table = tableWithBadLink(1, other.get());
    Color out = untouched;
    EXPECT_FALSE(table->getColor(0.0f, out));
    EXPECT_THAT(errors.take(), ElementsAre(Errors::Entry{other.get(), WRONG_TYPE}));
}

TEST(LyrColorLookupTableEvaluation, a_link_to_nothing_is_reported_with_the_table) {
    Errors errors;
    const auto table = tableWithBadLink(2, nullptr);
    const Errors::Entry wanted{table.get(), WRONG_TYPE};
    expectRefused(*table, 3.0f, untouched);
    EXPECT_THAT(errors.take(), ElementsAre(wanted, wanted));
}

TEST(LyrColorLookupTableEvaluation, outside_a_finite_range_a_bad_link_fails_for_many_values_but_not_for_one) {
    Errors errors;
    const LyrObjectPtr stranger(new LyrObject);
    for (LyrObject* object : {stranger.get(), static_cast<LyrObject*>(nullptr)}) {
        const auto table = tableWithBadLink(0, object);
        ASSERT_TRUE(setFiniteMode(*table, 1, 0));
        Color out = untouched;
        EXPECT_TRUE(table->getColor(-2.0f, out));
        EXPECT_EQ(out, black);
        EXPECT_THAT(errors.take(), IsEmpty());
        const float values[] = {0.0f, -2.0f, 0.0f};
        Color many[] = {untouched, untouched, untouched};
        EXPECT_FALSE(table->getColors(3, values, many));
        const LyrClass* source = object ? object : table.get();
        EXPECT_THAT(errors.take(), ElementsAre(Errors::Entry{source, WRONG_TYPE}));
        EXPECT_TRUE(sameBits(many[0], untouched));
        EXPECT_TRUE(sameBits(many[1], untouched));
        EXPECT_EQ(many[2], Color(0, 1, 0, 1));
    }
    const auto above = tableWithBadLink(2, nullptr);
    ASSERT_TRUE(setFiniteMode(*above, 0, 1));
    Color out = untouched;
    EXPECT_TRUE(above->getColor(2.0f, out));
    EXPECT_EQ(out, black);
    EXPECT_THAT(errors.take(), IsEmpty());
}

TEST(LyrColorLookupTableEvaluation, a_neighbour_that_is_no_section_is_absent_without_a_word) {
    const Errors errors;
    const auto table = countingTable({0, 1, 2});
    std::vector<LyrObject*> sections = sectionsOf(*table);
    sections[0] = new LyrObject;
    sections[1] = new Section;
    ASSERT_TRUE(setSections(*table, sections));
    ASSERT_TRUE(setType(sectionAt(*table, 1), Lyr::Continue));
    EXPECT_EQ(colorAt(*table, 0.5f).red, 2.0f);
    sections[2] = nullptr;
    ASSERT_TRUE(setSections(*table, sections));
    expectRefused(*table, 0.5f, transparent);
}

TEST(LyrColorLookupTableEvaluation, the_last_section_is_a_neighbour_of_the_one_before_it) {
    const Errors errors;
    const auto table = countingTable({0, 1, 2});
    std::vector<LyrObject*> sections = sectionsOf(*table);
    sections[1] = new LyrObject;
    ASSERT_TRUE(setSections(*table, sections));
    ASSERT_TRUE(setType(sectionAt(*table, 2), Lyr::Continue));
    EXPECT_EQ(colorAt(*table, 1.5f).red, 3.0f);
}

TEST(LyrColorLookupTableEvaluation, many_values_are_coloured_from_the_last_to_the_first_until_one_fails) {
    const Errors errors;
    const auto table = newTable();
    ASSERT_TRUE(setType(sectionAt(*table, 0), Lyr::Custom));
    const float values[] = {0.0f, -2.0f, 1.0f, -3.0f, -1.0f, 2.0f};
    Color out[6] = {untouched, untouched, untouched, untouched, untouched, untouched};
    EXPECT_FALSE(table->getColors(6, values, out));
    EXPECT_TRUE(sameBits(out[0], untouched));
    EXPECT_TRUE(sameBits(out[1], untouched));
    EXPECT_TRUE(sameBits(out[2], untouched));
    EXPECT_TRUE(sameBits(out[3], transparent));
    EXPECT_EQ(out[4], Color(0, 0, 1, 1));
    EXPECT_EQ(out[5], Color(1, 0, 0.6f, 1));
}

TEST(LyrColorLookupTableEvaluation, an_entry_that_fails_untouched_stays_so_among_many) {
    const Errors errors;
    const auto table = countingTable({-LARGEST, 0});
    const float values[] = {1.0f, NOT_A_NUMBER, 1.0f};
    Color out[3] = {untouched, untouched, untouched};
    EXPECT_FALSE(table->getColors(3, values, out));
    EXPECT_TRUE(sameBits(out[0], untouched));
    EXPECT_TRUE(sameBits(out[1], untouched));
    EXPECT_EQ(out[2].red, 2.0f);
}

TEST(LyrColorLookupTableEvaluation, nothing_is_kept_between_calls) {
    const auto table = newTable();
    EXPECT_EQ(colorAt(*table, 0.0f), Color(0, 1, 0, 1));
    ASSERT_TRUE(setType(sectionAt(*table, 1), Lyr::HueCycle));
    EXPECT_EQ(colorAt(*table, 0.0f), Color(0, 1, 1, 1));
    ASSERT_TRUE(setList<float>(*table, Lyr::PositionList, {0, 1}));
    EXPECT_EQ(colorAt(*table, 0.0f), Color(1, 0, 0, 1));
    ASSERT_TRUE(setFiniteMode(*table, 0, 1));
    EXPECT_EQ(colorAt(*table, 3.0f), black);
    ASSERT_TRUE(setRed(sectionAt(*table, 0), {{0, 0.125f}}));
    EXPECT_EQ(colorAt(*table, -3.0f), Color(0.125f, 0, 1, 1));
}

TEST(LyrColorLookupTableEvaluation, the_properties_that_it_does_not_read_change_no_colour) {
    const auto table = newTable();
    ASSERT_TRUE(setList<Color>(*table, Lyr::ExtensionColorList, {Color(1, 1, 1, 1), Color(1, 1, 1, 1)}));
    ASSERT_TRUE(setList<Lyrenum>(*table, Lyr::ExtensionEnumList, {Lyr::Continue, Lyr::Continue}));
    ASSERT_TRUE(lyrSetValue<Lyrenum>(table.get(), Lyr::AutoLabel, 0));
    ASSERT_TRUE(lyrSetValue<Lyrenum>(table.get(), Lyr::AutoScale, 0));
    ASSERT_TRUE(lyrSetValue<Lyrenum>(table.get(), Lyr::Quantity, Lyr::Volume));
    ASSERT_TRUE(lyrSetValue(table.get(), Lyr::MaximumRange, LyrValuePair<float>{0, 0.25f}));
    ASSERT_TRUE(lyrSetValue(table.get(), Lyr::CreationType, Lyr::HueCycle));
    EXPECT_EQ(colorAt(*table, -2.0f), Color(0.6f, 0, 1, 1));
    EXPECT_EQ(colorAt(*table, 0.0f), Color(0, 1, 0, 1));
    EXPECT_EQ(colorAt(*table, 2.0f), Color(1, 0, 0.6f, 1));
}

TEST(LyrColorLookupTableEvaluation, colouring_changes_nothing_in_the_table) {
    const auto table = newTable();
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, table.get());
    const LyrTimestamp before = table->getModificationTimestamp();
    const auto references = sectionAt(*table, 1).getRefCount();
    colorAt(*table, 0.0f);
    EXPECT_EQ(table->getModificationTimestamp(), before);
    EXPECT_EQ(sectionAt(*table, 1).getRefCount(), references);
    EXPECT_THAT(ear.heard, IsEmpty());
}
