#include <colortable/model/eval/ScalarTable.h>

#include <gtest/gtest.h>

#include "TestTables.h"

using namespace lys::eval;

namespace {

const float inf = std::numeric_limits<float>::infinity();

int64_t find(const std::vector<float>& positions, float v) {
    return findSection(v, positions.data(), int64_t(positions.size()));
}

plain::Color colorAt(const plain::Table& t, float v) {
    plain::Color c = {{7, 7, 7, 7}};
    EXPECT_TRUE(scalarColor(t.view(), v, c.c));
    return c;
}

}  // namespace

TEST(ScalarTable, an_inner_boundary_belongs_below_the_first_one_above) {
    const std::vector<float> p = {-1, 0, 1};
    EXPECT_EQ(find(p, -2), 0);
    EXPECT_EQ(find(p, -1), 1);
    EXPECT_EQ(find(p, -0.5f), 1);
    EXPECT_EQ(find(p, 0), 1);
    EXPECT_EQ(find(p, -0.0f), 1);
    EXPECT_EQ(find(p, 1), 2);
    EXPECT_EQ(find(p, 2), 3);
}

TEST(ScalarTable, a_boundary_that_is_alone_is_the_first_one) {
    EXPECT_EQ(find({2}, 1), 0);
    EXPECT_EQ(find({2}, 2), 1);
    EXPECT_EQ(find({2}, 3), 1);
    EXPECT_EQ(find({}, 3), 0);
}

TEST(ScalarTable, a_view_has_no_finite_ends_until_it_is_told_and_a_failure_names_nothing) {
    const TableView view;
    EXPECT_EQ(view.positions, nullptr);
    EXPECT_EQ(view.positionCount, 0);
    EXPECT_EQ(view.sections, nullptr);
    EXPECT_FALSE(view.finiteBelow || view.finiteAbove || view.clampedColors);
    const Failure none;
    EXPECT_EQ(none.entry, -1);
    EXPECT_EQ(none.section, -1);
    EXPECT_FALSE(none.badLink);
}

TEST(ScalarTable, a_failure_tells_entry_section_and_whether_the_link_is_bad) {
    plain::Table t = plain::rainbowTable();
    t.sections[0].isSection = false;
    t.sections[2].rule = Rule::None;
    const float values[] = {0.0f, -2.0f, 0.0f};
    float out[12];
    Failure failure;
    EXPECT_FALSE(scalarColor(t.view(), -2.0f, out, &failure));
    EXPECT_EQ(failure.entry, 0);
    EXPECT_EQ(failure.section, 0);
    EXPECT_TRUE(failure.badLink);
    EXPECT_FALSE(scalarColor(t.view(), 2.0f, out, &failure));
    EXPECT_EQ(failure.entry, 0);
    EXPECT_EQ(failure.section, 2);
    EXPECT_FALSE(failure.badLink);
    EXPECT_FALSE(scalarColors(t.view(), 3, values, out, &failure));
    EXPECT_EQ(failure.entry, 1);
    EXPECT_EQ(failure.section, 0);
    EXPECT_TRUE(failure.badLink);
    EXPECT_FALSE(scalarColors(t.view(), 2, values, out));
}

TEST(ScalarTable, a_list_without_boundaries_is_one_section) {
    EXPECT_EQ(find({}, 5.0f), 0);
}

TEST(ScalarTable, one_step_below_the_first_boundary_stays_below) {
    const std::vector<float> p = {1.5f, 2};
    EXPECT_EQ(find(p, std::nextafter(1.5f, 0.0f)), 0);
    EXPECT_EQ(find(p, 1.5f), 1);
}

TEST(ScalarTable, twins_of_the_first_boundary_are_passed_together) {
    const std::vector<float> p = {3, 3, 3, 4};
    EXPECT_EQ(find(p, 3), 3);
    EXPECT_EQ(find(p, 2), 0);
    EXPECT_EQ(find({0.0f, -0.0f, 1.0f}, 0.0f), 2);
}

TEST(ScalarTable, infinite_values_and_boundaries_are_never_near_the_first_one) {
    EXPECT_EQ(find({-inf, 0.0f, inf}, -inf), 0);
    EXPECT_EQ(find({-inf, 0.0f, inf}, inf), 2);
    EXPECT_EQ(find({-FLT_MAX, 0.0f}, -inf), 0);
    EXPECT_EQ(find({0.0f, FLT_MAX}, inf), 2);
    EXPECT_EQ(find({inf, inf}, inf), 0);
}

TEST(ScalarTable, not_a_number_falls_into_the_first_section) {
    EXPECT_EQ(find({-1, 1}, std::nanf("")), 0);
}

TEST(ScalarTable, the_default_table_has_the_stated_edge_colours) {
    const plain::Table t = plain::rainbowTable();
    EXPECT_TRUE(plain::sameColor(colorAt(t, -1).c, {{0, 0, 1, 1}}));
    EXPECT_TRUE(plain::sameColor(colorAt(t, 1).c, {{1, 0, 0, 1}}));
    EXPECT_TRUE(plain::sameColor(colorAt(t, -2).c, {{0.6f, 0, 1, 1}}));
    EXPECT_TRUE(plain::sameColor(colorAt(t, 2).c, {{1, 0, 0.6f, 1}}));
}

TEST(ScalarTable, a_finite_end_is_opaque_black_but_its_boundary_is_not) {
    plain::Table t = plain::rainbowTable();
    t.below = true;
    EXPECT_TRUE(plain::sameColor(colorAt(t, -2).c, {{0, 0, 0, 1}}));
    EXPECT_TRUE(plain::sameColor(colorAt(t, std::nanf("")).c, {{0, 0, 0, 1}}));
    EXPECT_TRUE(plain::sameColor(colorAt(t, -1).c, {{0, 0, 1, 1}}));
    EXPECT_TRUE(plain::sameColor(colorAt(t, 2).c, {{1, 0, 0.6f, 1}}));
}

TEST(ScalarTable, a_bad_link_in_a_finite_end_fails_only_when_many_are_coloured) {
    plain::Table t = plain::rainbowTable();
    t.below = true;
    t.sections[0].isSection = false;
    EXPECT_TRUE(plain::sameColor(colorAt(t, -2).c, {{0, 0, 0, 1}}));

    const float value = -2;
    float out[4] = {7, 7, 7, 7};
    Failure failure;
    EXPECT_FALSE(scalarColors(t.view(), 1, &value, out, &failure));
    EXPECT_EQ(out[0], 7.0f);
    EXPECT_EQ(failure.entry, 0);
    EXPECT_EQ(failure.section, 0);
    EXPECT_TRUE(failure.badLink);
}

TEST(ScalarTable, a_section_without_a_rule_in_a_finite_end_does_not_fail) {
    plain::Table t = plain::rainbowTable();
    t.above = true;
    t.sections[2].rule = Rule::None;
    const float value = 2;
    float out[4];
    EXPECT_TRUE(scalarColors(t.view(), 1, &value, out));
    EXPECT_EQ(out[3], 1.0f);
}

TEST(ScalarTable, the_last_failing_entry_ends_the_work_from_behind) {
    plain::Table t = plain::rainbowTable();
    t.sections[0].rule = Rule::None;
    const std::vector<float> values = {0, -2, 0, -2, 0.5f, 2};
    std::vector<plain::Color> out(values.size(), {{7, 7, 7, 7}});
    Failure failure;
    EXPECT_FALSE(scalarColors(t.view(), 6, values.data(), out[0].c, &failure));
    EXPECT_EQ(failure.entry, 3);
    EXPECT_FALSE(failure.badLink);
    EXPECT_EQ(out[2].c[0], 7.0f);
    EXPECT_EQ(out[3].c[0], 0.0f);
    EXPECT_EQ(out[3].c[3], 0.0f);
    EXPECT_EQ(out[4].c[3], 1.0f);
    EXPECT_TRUE(plain::sameColor(out[5].c, {{1, 0, 0.6f, 1}}));
}

TEST(ScalarTable, an_outer_section_without_width_fails_untouched) {
    plain::Table t = plain::rainbowTable();
    t.positions = {-FLT_MAX, FLT_MAX};
    for (const float v : {std::nanf(""), -inf, inf}) {
        float out[4] = {7, 7, 7, 7};
        EXPECT_FALSE(scalarColor(t.view(), v, out));
        EXPECT_EQ(out[0], 7.0f);
    }
    EXPECT_TRUE(plain::sameColor(colorAt(t, -FLT_MAX).c, {{0, 0, 1, 1}}));
}

TEST(ScalarTable, random_tables_equal_the_plain_model) {
    plain::Random random(3);
    for (int round = 0; round < 400; ++round) {
        const plain::Table t = random.table(2 + random.below(round % 10 == 0 ? 300 : 20), round % 3 != 0);
        const std::vector<float> values = plain::interestingValues(t, &random, 500);
        for (const float v : values) {
            plain::Color want = {{7, 7, 7, 7}};
            plain::Color got = want;
            const bool ok = plain::one(t, v, &want) == plain::Outcome::Colored;
            ASSERT_EQ(scalarColor(t.view(), v, got.c), ok);
            ASSERT_TRUE(plain::sameColor(got.c, want)) << v;
        }
        std::vector<plain::Color> want(values.size(), {{7, 7, 7, 7}});
        std::vector<plain::Color> got = want;
        const int64_t failing = plain::many(t, values, &want);
        Failure failure;
        ASSERT_EQ(scalarColors(t.view(), int64_t(values.size()), values.data(), got[0].c, &failure), failing < 0);
        ASSERT_EQ(failure.entry, failing);
        for (size_t i = 0; i < values.size(); ++i)
            ASSERT_TRUE(plain::sameColor(got[i].c, want[i])) << i;
    }
}
