#include <colortable/model/eval/SectionRule.h>

#include <gtest/gtest.h>

#include "TestTables.h"

using namespace lys::eval;

namespace {

struct Result {
    bool ok;
    float c[4] = {7, 7, 7, 7};
};

Result colorOf(const SectionData& s, float low, float high, float value, const SectionData* previous = nullptr,
               const SectionData* next = nullptr) {
    Result r;
    r.ok = sectionColor(s, low, high, value, r.c, previous, next);
    return r;
}

void expectColor(const Result& r, float red, float green, float blue, float alpha) {
    EXPECT_TRUE(r.ok);
    EXPECT_TRUE(plain::sameColor(r.c, {{red, green, blue, alpha}}))
        << r.c[0] << ' ' << r.c[1] << ' ' << r.c[2] << ' ' << r.c[3];
}

void expectCleared(const Result& r) {
    EXPECT_FALSE(r.ok);
    for (const float c : r.c)
        EXPECT_EQ(plain::bitsOf(c), 0u);
}

void expectUntouched(const Result& r) {
    EXPECT_FALSE(r.ok);
    for (const float c : r.c)
        EXPECT_EQ(c, 7.0f);
}

SectionData redOnly(Rule rule, float first, float last) {
    SectionData s;
    s.rule = rule;
    s.has[0] = true;
    s.first[0] = first;
    s.last[0] = last;
    return s;
}

}  // namespace

TEST(SectionRule, section_data_starts_without_rule_and_points) {
    const SectionData s;
    EXPECT_EQ(s.rule, Rule::None);
    EXPECT_TRUE(s.isSection);
    for (int c = 0; c < channelCount; ++c) {
        EXPECT_FALSE(s.has[c]);
        EXPECT_EQ(plain::bitsOf(s.first[c]), 0u);
        EXPECT_EQ(plain::bitsOf(s.last[c]), 0u);
    }
}

TEST(SectionRule, the_place_in_an_interval_stays_from_0_to_1_and_is_never_minus_0) {
    EXPECT_EQ(intervalFraction(1.0f, 3.0f, 2.5f), 0.75f);
    EXPECT_EQ(intervalFraction(1.0f, 3.0f, 3.0f), 1.0f);
    EXPECT_EQ(intervalFraction(1.0f, 3.0f, 3.5f), 1.0f);
    EXPECT_EQ(intervalFraction(1.0f, 3.0f, 0.5f), 0.0f);
    // The quotient is minus the smallest float by the largest, which rounds to -0.
    EXPECT_EQ(plain::bitsOf(intervalFraction(0.0f, FLT_MAX, -FLT_TRUE_MIN)), 0u);
}

TEST(SectionRule, an_interval_without_width_leaves_the_colour_untouched) {
    const SectionData s = redOnly(Rule::Constant, 0.5f, 0.5f);
    expectUntouched(colorOf(s, 1, 1, 1));
    expectUntouched(colorOf(s, 2, 1, 1));
    expectUntouched(colorOf(plain::analyticSection(Rule::None), 1, 1, 1));
}

TEST(SectionRule, a_link_to_no_section_leaves_the_colour_untouched) {
    SectionData s = redOnly(Rule::Constant, 0.5f, 0.5f);
    s.isSection = false;
    expectUntouched(colorOf(s, 0, 1, 0.5f));
}

TEST(SectionRule, a_constant_reads_empty_lists_as_zero_alpha_included) {
    expectColor(colorOf(redOnly(Rule::Constant, 0.5f, 0.9f), 0, 1, 0.7f), 0.5f, 0, 0, 0);
}

TEST(SectionRule, a_constant_is_not_clamped) {
    expectColor(colorOf(plain::constantSection(-1, 2, -0.0f, 9), 0, 1, 0.5f), -1, 2, -0.0f, 9);
}

TEST(SectionRule, a_gradient_blends_from_first_to_last) {
    expectColor(colorOf(redOnly(Rule::Gradient, 0, 1), 0, 1, 0.25f), 0.25f, 0, 0, 0);
    expectColor(colorOf(redOnly(Rule::Gradient, -2, 6), 0, 1, 0.5f), 2, 0, 0, 0);
}

TEST(SectionRule, a_gradient_between_equal_ends_keeps_the_rounding_of_its_two_products) {
    // (1 - 0.1) * 0.1 + 0.1 * 0.1 in single steps: 0.089999996 + 0.010000001 = 0.099999994
    const Result r = colorOf(redOnly(Rule::Gradient, 0.1f, 0.1f), 0, 1, 0.1f);
    EXPECT_EQ(plain::bitsOf(r.c[0]), plain::bitsOf(0.099999994f));
}

TEST(SectionRule, a_gradient_with_an_infinite_end_is_not_a_number_at_its_start) {
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(std::isnan(colorOf(redOnly(Rule::Gradient, 0, inf), 0, 1, 0).c[0]));
    EXPECT_EQ(colorOf(redOnly(Rule::Gradient, 0, inf), 0, 1, 0.5f).c[0], inf);
}

TEST(SectionRule, a_rainbow_runs_from_blue_over_green_to_red) {
    const SectionData s = plain::analyticSection(Rule::Rainbow);
    expectColor(colorOf(s, 0, 1, 0), 0, 0, 1, 1);
    expectColor(colorOf(s, 0, 1, 0.5f), 0, 1, 0, 1);
    expectColor(colorOf(s, 0, 1, 1), 1, 0, 0, 1);
    expectColor(colorOf(s, 0, 1, 0.25f), 0, 0.70710678f, 0.70710678f, 1);
}

TEST(SectionRule, an_inverted_rainbow_forms_one_minus_t_first) {
    // t = 0.1: u = 0.9, red = sin(0.4 pi) = 0.95105657, blue = sin(1.4 pi) < 0, green = sin(0.9 pi)
    const Result r = colorOf(plain::analyticSection(Rule::InvertedRainbow), 0, 1, 0.1f);
    EXPECT_TRUE(r.ok);
    EXPECT_EQ(plain::bitsOf(r.c[0]),
              plain::bitsOf(static_cast<float>(std::sin(double((1.0f - 0.1f - 0.5f) * 3.1415927f)))));
    EXPECT_EQ(r.c[1], 0.309017032f);
    EXPECT_EQ(r.c[2], 0.0f);
    expectColor(colorOf(plain::analyticSection(Rule::InvertedRainbow), 0, 1, 0), 1, 0, 0, 1);
}

TEST(SectionRule, a_hue_cycle_turns_yellow_at_one_sixth) {
    const SectionData s = plain::analyticSection(Rule::HueCycle);
    expectColor(colorOf(s, 0, 1, 0.16666667f), 1, 1, 0, 1);
    expectColor(colorOf(s, 0, 1, 0), 1, 0, 0, 1);
    expectColor(colorOf(s, 0, 1, 0.5f), 0, 1, 1, 1);
    expectColor(colorOf(s, 0, 1, 0.25f), 0.5f, 1, 0, 1);
}

TEST(SectionRule, the_thirds_end_one_rounding_before_red) {
    const SectionData s = plain::analyticSection(Rule::BlackGreenBlueRed);
    expectColor(colorOf(s, 0, 1, 0), 0, 0, 0, 1);
    expectColor(colorOf(s, 0, 1, 0.33333334f), 0, 1, 0, 1);
    expectColor(colorOf(s, 0, 1, 0.6666667f), 0, 0, 1, 1);
    const Result end = colorOf(s, 0, 1, 1);
    EXPECT_EQ(end.c[0], 0.99999994f);
}

TEST(SectionRule, analytic_alpha_is_one_without_points_else_the_first_point_clamped) {
    for (const Rule rule : {Rule::Rainbow, Rule::InvertedRainbow, Rule::HueCycle, Rule::BlackGreenBlueRed}) {
        SectionData s = plain::analyticSection(rule);
        EXPECT_EQ(colorOf(s, 0, 1, 0.3f).c[3], 1.0f);
        s.has[3] = true;
        s.first[3] = 0.25f;
        EXPECT_EQ(colorOf(s, 0, 1, 0.3f).c[3], 0.25f);
        s.first[3] = 3.0f;
        EXPECT_EQ(colorOf(s, 0, 1, 0.3f).c[3], 1.0f);
        s.first[3] = -0.0f;
        EXPECT_EQ(plain::bitsOf(colorOf(s, 0, 1, 0.3f).c[3]), 0x80000000u);
        s.first[3] = std::nanf("");
        EXPECT_TRUE(std::isnan(colorOf(s, 0, 1, 0.3f).c[3]));
    }
}

TEST(SectionRule, values_outside_and_not_a_number_take_the_ends_of_the_interval) {
    const SectionData s = redOnly(Rule::Gradient, 0, 1);
    EXPECT_EQ(colorOf(s, 2, 3, 1).c[0], 0.0f);
    EXPECT_EQ(colorOf(s, 2, 3, 4).c[0], 1.0f);
    EXPECT_EQ(colorOf(s, 2, 3, std::nanf("")).c[0], 0.0f);
}

TEST(SectionRule, an_interval_whose_width_overflows_stays_at_its_start) {
    const SectionData s = redOnly(Rule::Gradient, 3, 5);
    EXPECT_EQ(colorOf(s, -FLT_MAX, FLT_MAX, 1).c[0], 3.0f);
    EXPECT_EQ(colorOf(s, -FLT_MAX, FLT_MAX, FLT_MAX).c[0], 3.0f);
}

TEST(SectionRule, continue_takes_the_end_of_the_previous_section_first) {
    const SectionData here = plain::analyticSection(Rule::Continue);
    const SectionData a = redOnly(Rule::Gradient, 1, 2);
    const SectionData b = redOnly(Rule::Gradient, 3, 4);
    expectColor(colorOf(here, 0, 1, 0.5f, &a, &b), 2, 0, 0, 0);
    expectColor(colorOf(here, 0, 1, 0.5f, nullptr, &b), 3, 0, 0, 0);
    expectCleared(colorOf(here, 0, 1, 0.5f));
}

TEST(SectionRule, continue_does_not_try_the_next_section_when_the_previous_fails) {
    const SectionData here = plain::analyticSection(Rule::Continue);
    const SectionData b = redOnly(Rule::Gradient, 3, 4);
    expectCleared(colorOf(here, 0, 1, 0.5f, &here, &b));
    const SectionData none = plain::analyticSection(Rule::None);
    expectCleared(colorOf(here, 0, 1, 0.5f, &none, &b));
}

TEST(SectionRule, a_neighbour_that_is_no_section_counts_as_absent) {
    const SectionData here = plain::analyticSection(Rule::Continue);
    SectionData bad = redOnly(Rule::Gradient, 1, 2);
    bad.isSection = false;
    const SectionData b = redOnly(Rule::Gradient, 3, 4);
    expectColor(colorOf(here, 0, 1, 0.5f, &bad, &b), 3, 0, 0, 0);
    expectCleared(colorOf(here, 0, 1, 0.5f, &bad, &bad));
}

TEST(SectionRule, a_type_without_a_rule_fails_with_transparent_black) {
    expectCleared(colorOf(plain::analyticSection(Rule::None), 0, 1, 0.5f));
}

TEST(SectionRule, clamped_mode_changes_no_rule) {
    plain::Random random(5);
    for (int i = 0; i < 20000; ++i) {
        const SectionData s = random.section(true);
        const float value = random.in(-0.1f, 1.1f);
        float a[4] = {7, 7, 7, 7};
        float b[4] = {7, 7, 7, 7};
        EXPECT_EQ(sectionColor(s, 0, 1, value, a, nullptr, nullptr, false),
                  sectionColor(s, 0, 1, value, b, nullptr, nullptr, true));
        EXPECT_EQ(std::memcmp(a, b, sizeof a), 0);
    }
}

TEST(SectionRule, every_rule_equals_the_plain_model_on_random_sections) {
    plain::Random random(11);
    for (int i = 0; i < 400000; ++i) {
        const SectionData s = random.section(true);
        const SectionData a = random.section(true);
        const SectionData b = random.section(true);
        const SectionData* previous = random.oneIn(3) ? nullptr : &a;
        const SectionData* next = random.oneIn(3) ? nullptr : &b;
        const float low = random.oneIn(8) ? random.anyNumber() : random.in(-1, 1);
        const float high = random.oneIn(8) ? random.anyNumber() : low + random.in(0, 1);
        const float value = random.oneIn(8) ? random.anyNumber() : random.in(low, high);
        if (!s.isSection)
            continue;
        plain::Color want = {{7, 7, 7, 7}};
        const plain::Outcome outcome = plain::section(s, low, high, value, &want, previous, next);
        const Result got = colorOf(s, low, high, value, previous, next);
        ASSERT_EQ(got.ok, outcome == plain::Outcome::Colored);
        ASSERT_TRUE(plain::sameColor(got.c, want)) << int(s.rule) << ' ' << low << ' ' << high << ' ' << value;
    }
}
