#include <gmock/gmock.h>

#include <array>
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

// A function: the constants have their numbers only when the library is loaded.
std::array<Lyrenum, 4> channels() {
    return {Lyr::PointListRed, Lyr::PointListGreen, Lyr::PointListBlue, Lyr::PointListAlpha};
}

Held<Section> sectionOf(Lyrenum type) {
    auto section = newSection();
    EXPECT_TRUE(setType(*section, type));
    return section;
}

Color colorIn(const Section& section, float low, float high, float value, const Section* previous = nullptr,
              const Section* next = nullptr) {
    Color out = untouched;
    EXPECT_TRUE(section.getColor({low, high}, value, out, previous, next));
    return out;
}

/** The colour at t of the interval from 0 to 1. */
Color colorAt(const Section& section, float t) {
    return colorIn(section, 0, 1, t);
}

void expectRefused(const Section& section, float low, float high, float value, const Color& left,
                   const Section* previous = nullptr, const Section* next = nullptr) {
    Color out = untouched;
    EXPECT_FALSE(section.getColor({low, high}, value, out, previous, next));
    EXPECT_TRUE(sameBits(out, left));
}

}  // namespace

TEST(LyrColorLookupTableSection, has_its_properties_in_their_order_with_their_types_and_flags) {
    const Errors errors;
    const auto section = newSection();
    ASSERT_TRUE(section);
    ASSERT_EQ(section->getPropertyCount(), 5);
    const char* names[] = {"Type", "PointListRed", "PointListGreen", "PointListBlue", "PointListAlpha"};
    for (std::int64_t i = 0; i < 5; ++i) {
        const LyrProperty& property = *section->getPropertyAt(i);
        EXPECT_EQ(property.getPropertyID().getName(), names[i]);
        EXPECT_EQ(property.getValueType(), i == 0 ? LyrValueType::Enum : LyrValueType::Vector2);
        EXPECT_EQ(property.isArray(), i > 0);
        EXPECT_EQ(property.getFlags(), 0x30000000u);
        EXPECT_TRUE(property.isStored());
    }
    EXPECT_EQ(int(section->getPropertyAt(0)->getPropertyID()), 204800427);
    EXPECT_EQ(section->getFlags(), 0x30000000u);
    EXPECT_EQ(section->getProtectedFlags(), 0x110100u);
}

TEST(LyrColorLookupTableSection, describes_its_class) {
    const LyrMetaClass& meta = Section::metaClass();
    EXPECT_STREQ(meta.getClassName(), "LyrColorLookupTable::Section");
    EXPECT_STREQ(meta.getModule(), "lys_colortable");
    EXPECT_EQ(meta.getParent(), &LyrObject::metaClass());
    EXPECT_EQ(meta.getInstanceSize(), sizeof(Section));
    EXPECT_FALSE(meta.isSingleton());
    EXPECT_EQ(LyrMetaClass::find("LyrColorLookupTable::Section"), &meta);
    EXPECT_EQ(&newSection()->getMetaClass(), &meta);
}

TEST(LyrColorLookupTableSection, starts_constant_without_points_and_goes_back_to_that) {
    const Errors errors;
    const auto section = newSection();
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(int(lyrGetValue<Lyrenum>(section.get(), Lyr::Type, -1)), 204800085);
        for (const Lyrenum channel : channels()) {
            EXPECT_THAT(listOf<Point>(*section, channel), IsEmpty());
        }
        EXPECT_TRUE(sameBits(colorAt(*section, 0.5f), transparent));
        EXPECT_TRUE(setType(*section, Lyr::Gradient));
        for (const Lyrenum channel : channels()) {
            EXPECT_TRUE(setList<Point>(*section, channel, {{0, 1}, {1, 0}}));
        }
        for (std::int64_t i = 0; i < 5; ++i) {
            EXPECT_TRUE(section->getPropertyAt(i)->resetData());
        }
    }
}

TEST(LyrColorLookupTableSection, leaves_the_colour_untouched_where_the_interval_has_no_width) {
    const Errors errors;
    for (const Lyrenum type : {Lyr::Constant, Lyr::Rainbow, Lyr::Continue, Lyr::Custom}) {
        const auto section = sectionOf(type);
        expectRefused(*section, 1, 1, 1, untouched);
        expectRefused(*section, 2, 1, 1, untouched);
        expectRefused(*section, INF, INF, 1, untouched);
        expectRefused(*section, 0.0f, -0.0f, 0, untouched);
    }
}

TEST(LyrColorLookupTableSection, evaluates_at_the_start_where_the_interval_is_not_a_number) {
    const auto section = sectionOf(Lyr::Rainbow);
    EXPECT_EQ(colorIn(*section, NOT_A_NUMBER, 1, 0.5f), Color(0, 0, 1, 1));
    EXPECT_EQ(colorIn(*section, 0, NOT_A_NUMBER, 0.5f), Color(0, 0, 1, 1));
    EXPECT_EQ(colorIn(*section, -INF, INF, 0.5f), Color(0, 0, 1, 1));
}

TEST(LyrColorLookupTableSection, holds_values_outside_to_the_ends_of_the_interval) {
    const auto section = sectionOf(Lyr::Rainbow);
    EXPECT_EQ(colorIn(*section, 2, 4, 1), Color(0, 0, 1, 1));
    EXPECT_EQ(colorIn(*section, 2, 4, -INF), Color(0, 0, 1, 1));
    EXPECT_EQ(colorIn(*section, 2, 4, 5), Color(1, 0, 0, 1));
    EXPECT_EQ(colorIn(*section, 2, 4, INF), Color(1, 0, 0, 1));
    EXPECT_EQ(colorIn(*section, 2, 4, NOT_A_NUMBER), Color(0, 0, 1, 1));
    EXPECT_EQ(colorIn(*section, 2, 4, 3), Color(0, 1, 0, 1));
}

TEST(LyrColorLookupTableSection, stays_at_the_start_of_an_interval_whose_width_overflows) {
    const auto section = sectionOf(Lyr::Gradient);
    ASSERT_TRUE(setRed(*section, {{0, 3}, {1, 5}}));
    EXPECT_EQ(colorIn(*section, -LARGEST, LARGEST, 0).red, 3.0f);
    EXPECT_EQ(colorIn(*section, -LARGEST, LARGEST, LARGEST).red, 3.0f);
}

TEST(LyrColorLookupTableSection, a_constant_takes_the_first_points_and_reads_empty_lists_as_0) {
    const auto section = newSection();
    ASSERT_TRUE(setRed(*section, {{0, 0.5f}}));
    EXPECT_EQ(colorAt(*section, 0.7f), Color(0.5f, 0, 0, 0));
    ASSERT_TRUE(setRed(*section, {{0.75f, -3}, {0.25f, 1}, {0, 2}}));
    ASSERT_TRUE(setList<Point>(*section, Lyr::PointListGreen, {{0, 7}}));
    ASSERT_TRUE(setList<Point>(*section, Lyr::PointListBlue, {{0, -0.0f}}));
    ASSERT_TRUE(setList<Point>(*section, Lyr::PointListAlpha, {{0, INF}, {1, 0}}));
    EXPECT_TRUE(sameBits(colorAt(*section, 1.0f), Color(-3, 7, -0.0f, INF)));
}

TEST(LyrColorLookupTableSection, a_gradient_blends_the_first_and_the_last_value_of_each_channel) {
    const auto section = sectionOf(Lyr::Gradient);
    ASSERT_TRUE(setRed(*section, {{0, 0}, {1, 1}}));
    EXPECT_EQ(colorAt(*section, 0.25f), Color(0.25f, 0, 0, 0));
    // The positions, and the points between, do not matter.
    ASSERT_TRUE(setRed(*section, {{0.9f, -2}, {0.95f, 100}, {0.1f, 6}}));
    ASSERT_TRUE(setList<Point>(*section, Lyr::PointListAlpha, {{0.5f, 0.5f}}));
    EXPECT_EQ(colorAt(*section, 0.5f), Color(2, 0, 0, 0.5f));
    EXPECT_EQ(colorAt(*section, 0.0f), Color(-2, 0, 0, 0.5f));
    EXPECT_EQ(colorAt(*section, 1.0f), Color(6, 0, 0, 0.5f));
    // 0.9 * 0.1 = 0.089999996 and 0.1 * 0.1 = 0.010000001 in single steps.
    ASSERT_TRUE(setRed(*section, {{0, 0.1f}}));
    EXPECT_EQ(colorAt(*section, 0.1f).red, 0.099999994f);
}

TEST(LyrColorLookupTableSection, a_rainbow_runs_from_blue_over_green_to_red) {
    const auto section = sectionOf(Lyr::Rainbow);
    EXPECT_TRUE(sameBits(colorAt(*section, 0), Color(0, 0, 1, 1)));
    EXPECT_TRUE(sameBits(colorAt(*section, 0.5f), Color(0, 1, 0, 1)));
    EXPECT_TRUE(sameBits(colorAt(*section, 1), Color(1, 0, 0, 1)));
    const Color quarter = colorAt(*section, 0.25f);
    EXPECT_EQ(quarter.red, 0.0f);
    EXPECT_FLOAT_EQ(quarter.green, std::sqrt(0.5f));
    EXPECT_FLOAT_EQ(quarter.blue, std::sqrt(0.5f));
}

TEST(LyrColorLookupTableSection, a_reverse_rainbow_is_the_rainbow_at_1_minus_t) {
    const auto section = sectionOf(Lyr::InvertedRainbow);
    const auto rainbow = sectionOf(Lyr::Rainbow);
    EXPECT_TRUE(sameBits(colorAt(*section, 0), Color(1, 0, 0, 1)));
    EXPECT_TRUE(sameBits(colorAt(*section, 1), Color(0, 0, 1, 1)));
    EXPECT_EQ(colorAt(*section, 0.1f).green, 0.309017032f);  // and not the 0.309017003 of the rainbow at 0.1
    EXPECT_EQ(colorAt(*rainbow, 0.1f).green, 0.309017003f);
}

TEST(LyrColorLookupTableSection, a_hue_cycle_passes_its_six_corners) {
    const auto section = sectionOf(Lyr::HueCycle);
    EXPECT_EQ(colorAt(*section, 0), Color(1, 0, 0, 1));
    EXPECT_EQ(colorAt(*section, 0.16666667f), Color(1, 1, 0, 1));
    EXPECT_EQ(colorAt(*section, 0.33333334f), Color(0, 1, 0, 1));
    EXPECT_EQ(colorAt(*section, 0.5f), Color(0, 1, 1, 1));
    EXPECT_EQ(colorAt(*section, 0.6666667f), Color(0, 0, 1, 1));
    EXPECT_EQ(colorAt(*section, 0.8333333f), Color(1, 0, 1, 1));
    EXPECT_EQ(colorAt(*section, 0.25f), Color(0.5f, 1, 0, 1));
    // (1 - 0.8333333) * 6 = 1.0000001: the way back to red ends below 0 and is clamped.
    EXPECT_TRUE(sameBits(colorAt(*section, 1), Color(1, 0, 0, 1)));
}

TEST(LyrColorLookupTableSection, the_third_rule_runs_from_black_over_green_and_blue_to_almost_red) {
    const auto section = sectionOf(Lyr::BlackGreenBlueRed);
    EXPECT_EQ(colorAt(*section, 0), black);
    EXPECT_EQ(colorAt(*section, 0.25f), Color(0, 0.75f, 0, 1));
    EXPECT_EQ(colorAt(*section, 0.33333334f), Color(0, 1, 0, 1));
    EXPECT_EQ(colorAt(*section, 0.6666667f), Color(0, 0, 1, 1));
    EXPECT_EQ(colorAt(*section, 1).red, 0.99999994f);
}

TEST(LyrColorLookupTableSection, the_analytic_rules_are_opaque_or_take_the_first_alpha_point_clamped) {
    for (const Lyrenum type : {Lyr::Rainbow, Lyr::InvertedRainbow, Lyr::HueCycle, Lyr::BlackGreenBlueRed}) {
        const auto section = sectionOf(type);
        const auto alphaOf = [&](float value) {
            EXPECT_TRUE(setList<Point>(*section, Lyr::PointListAlpha, {{0, value}, {1, 0.75f}}));
            return colorAt(*section, 0.3f).alpha;
        };
        EXPECT_EQ(colorAt(*section, 0.3f).alpha, 1.0f);
        EXPECT_EQ(alphaOf(0.25f), 0.25f);
        EXPECT_EQ(alphaOf(1.5f), 1.0f);
        EXPECT_EQ(alphaOf(-0.5f), 0.0f);
        EXPECT_TRUE(std::signbit(alphaOf(-0.0f)));
        EXPECT_TRUE(std::isnan(alphaOf(NOT_A_NUMBER)));
        // Their colours read no points.
        const Color plain = colorAt(*section, 0.3f);
        ASSERT_TRUE(setRed(*section, {{0, 0.5f}}));
        EXPECT_EQ(colorAt(*section, 0.3f).red, plain.red);
    }
}

TEST(LyrColorLookupTableSection, the_clamped_mode_of_colours_changes_nothing_that_is_clamped_already) {
    struct ClampedMode {
        ClampedMode() { Color::setClamped(true); }
        ~ClampedMode() { Color::setClamped(false); }
    };
    const auto constant = newSection();
    ASSERT_TRUE(setRed(*constant, {{0, 3}}));
    const auto rainbow = sectionOf(Lyr::Rainbow);
    const Color before = colorAt(*rainbow, 0.3f);
    const ClampedMode clamped;
    EXPECT_TRUE(sameBits(colorAt(*rainbow, 0.3f), before));
    EXPECT_EQ(colorAt(*constant, 0.5f).red, 3.0f);
}

TEST(LyrColorLookupTableSection, continues_the_end_of_the_previous_section_else_the_start_of_the_next) {
    const Errors errors;
    const auto section = sectionOf(Lyr::Continue);
    const auto previous = sectionOf(Lyr::Gradient);
    const auto next = sectionOf(Lyr::Gradient);
    ASSERT_TRUE(setRed(*previous, {{0, 1}, {1, 2}}));
    ASSERT_TRUE(setRed(*next, {{0, 3}, {1, 4}}));
    EXPECT_EQ(colorIn(*section, 0, 1, 0.5f, previous.get(), next.get()), Color(2, 0, 0, 0));
    EXPECT_EQ(colorIn(*section, 0, 1, 0.5f, nullptr, next.get()), Color(3, 0, 0, 0));
    expectRefused(*section, 0, 1, 0.5f, transparent);
}

TEST(LyrColorLookupTableSection, does_not_try_the_next_section_where_the_previous_one_fails) {
    const Errors errors;
    const auto section = sectionOf(Lyr::Continue);
    const auto next = newSection();
    for (const Lyrenum type : {Lyr::Continue, Lyr::Custom}) {
        const auto failing = sectionOf(type);
        expectRefused(*section, 0, 1, 0.5f, transparent, failing.get(), next.get());
        expectRefused(*section, 0, 1, 0.5f, transparent, nullptr, failing.get());
    }
    expectRefused(*section, 0, 1, 0.5f, transparent, section.get(), section.get());
}

TEST(LyrColorLookupTableSection, fails_with_transparent_black_for_types_without_a_rule) {
    const Errors errors;
    for (const Lyrenum type : {Lyr::Custom, Lyr::InvertedHueCycle, Lyr::Full, Lyrenum(-1), Lyrenum(12345)}) {
        const auto section = sectionOf(type);
        EXPECT_EQ(lyrGetValue<Lyrenum>(section.get(), Lyr::Type, 0), type);
        expectRefused(*section, 0, 1, 0.5f, transparent);
    }
}

TEST(LyrColorLookupTableSection, keeps_its_points_as_they_are_written) {
    const auto section = newSection();
    const std::vector<Point> points = {{5, -0.0f}, {-1, INF}, {0.25f, 2}, {5, 1e-42f}};
    ASSERT_TRUE(setRed(*section, points));
    const std::vector<Point> kept = listOf<Point>(*section, Lyr::PointListRed);
    ASSERT_EQ(kept.size(), points.size());
    EXPECT_EQ(std::memcmp(kept.data(), points.data(), points.size() * sizeof(Point)), 0);
}

TEST(LyrColorLookupTableSection, a_copy_has_its_values_its_name_and_scope_and_is_independent) {
    const Errors errors;
    const auto section = sectionOf(Lyr::Gradient);
    ASSERT_TRUE(section->setNameTemplate("warm"));
    section->setScope(77);
    ASSERT_TRUE(setRed(*section, {{0, 1}, {1, 2}}));
    const LyrObjectPtr copy(static_cast<LyrObject*>(Section::metaClass().clone(section.get())));
    ASSERT_TRUE(copy);
    EXPECT_STREQ(copy->getNameTemplate(), "warm");
    EXPECT_EQ(int(copy->getScope()), 77);
    EXPECT_EQ(copy->getFlags(), 0x30000000u);
    EXPECT_EQ(copy->getProperty(Lyr::PointListRed)->getFlags(), 0x30000000u);
    EXPECT_EQ(lyrGetValue<Lyrenum>(copy.get(), Lyr::Type, -1), Lyr::Gradient);
    EXPECT_THAT(listOf<Point>(*copy, Lyr::PointListRed), ElementsAre(Point{0, 1}, Point{1, 2}));
    ASSERT_TRUE(setRed(*copy, {}));
    EXPECT_EQ(listOf<Point>(*section, Lyr::PointListRed).size(), 2u);
}

TEST(LyrColorLookupTableSection, lists_the_properties_of_a_named_copy_in_the_order_of_the_original) {
    const auto section = newSection();
    ASSERT_TRUE(section->setNameTemplate("warm"));
    const LyrObjectPtr copy(static_cast<LyrObject*>(Section::metaClass().clone(section.get())));
    ASSERT_EQ(copy->getPropertyCount(), section->getPropertyCount());
    for (std::int64_t i = 0; i < copy->getPropertyCount(); ++i) {
        EXPECT_EQ(copy->getPropertyAt(i)->getPropertyID().getName(),
                  section->getPropertyAt(i)->getPropertyID().getName());
    }
}

TEST(LyrColorLookupTableSection, assignment_takes_the_values_and_leaves_itself_alone) {
    const Errors errors;
    Section section;
    Section other;
    ASSERT_TRUE(setType(other, Lyr::Gradient));
    ASSERT_TRUE(setRed(other, {{0, 1}}));
    section = other;
    EXPECT_EQ(lyrGetValue<Lyrenum>(&section, Lyr::Type, -1), Lyr::Gradient);
    EXPECT_THAT(listOf<Point>(section, Lyr::PointListRed), ElementsAre(Point{0, 1}));
    const LyrTimestamp before = section.getModificationTimestamp();
    const Section& itself = section;
    section = itself;
    EXPECT_EQ(section.getModificationTimestamp(), before);
    EXPECT_THAT(listOf<Point>(section, Lyr::PointListRed), ElementsAre(Point{0, 1}));
    const Section copied(other);
    EXPECT_THAT(listOf<Point>(copied, Lyr::PointListRed), ElementsAre(Point{0, 1}));
}
