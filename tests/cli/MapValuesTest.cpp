#include "ProgramRun.h"
#include "TableText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

ProgramRun mapAt(const std::string& table, const std::string& values) {
    return ProgramRun::of({"map", "--table", table, "--at", values});
}

TEST(MapAt, the_default_rainbow_prints_a_line_for_each_value) {
    const ProgramRun run = mapAt("Rainbow", "-2,-1,-0.5,0,1,2");
    EXPECT_EQ(run.status, 0) << run.error;
    // sin(pi/4) and the constants of the table, as their shortest floats
    EXPECT_EQ(run.out, "0.6 0 1 1\n0 0 1 1\n0 0.70710677 0.70710677 1\n0 1 0 1\n1 0 0 1\n1 0 0.6 1\n");
    EXPECT_EQ(run.error, "");
}

TEST(MapAt, the_reverse_rainbow_runs_from_red_to_blue) {
    EXPECT_EQ(mapAt("Reverse Rainbow", "-1,1").out, "1 0 0 1\n0 0 1 1\n");
}

TEST(MapAt, numbers_that_are_not_finite_are_values_too) {
    EXPECT_EQ(mapAt("Rainbow", "nan,-nan,inf,-inf").out, "0.6 0 1 1\n0.6 0 1 1\n1 0 0.6 1\n0.6 0 1 1\n");
}

TEST(MapAt, a_value_that_begins_with_a_minus_sign_is_no_option) {
    EXPECT_EQ(mapAt("Rainbow", "-inf").out, "0.6 0 1 1\n");
    EXPECT_EQ(ProgramRun::of({"map", "--at=-.5e1", "--table=Rainbow"}).out, "0.6 0 1 1\n");
}

TEST(MapAt, values_are_the_nearest_floats) {
    TestFolder folder;
    // A gradient over one step of the floats next to 1: its ends are told apart by the last bit.
    const std::string table = folder.write(
        "ulp.json", table_text::table({1.0f, std::nextafter(1.0f, 2.0f)},
                                      {table_text::constant(0.25f, 0, 0, 1), table_text::section("Gradient", {{0, 1}}),
                                       table_text::constant(0.75f, 0, 0, 1)}));
    // 1 + 2^-24 lies half-way between two floats and goes to the even one, 1.
    EXPECT_EQ(mapAt(table, "1,1.000000059604644775390625,1.0000000596046448,1.0000001").out,
              "0 0 0 0\n0 0 0 0\n1 0 0 0\n1 0 0 0\n");
    EXPECT_EQ(mapAt(table, "0.99999994,1.0000002").out, "0.25 0 0 1\n0.75 0 0 1\n");
}

TEST(MapAt, denormals_are_exact_and_smaller_numbers_are_a_zero) {
    TestFolder folder;
    const float tiny = plain::floatOf(1);
    const std::string table = folder.write(
        "tiny.json",
        table_text::table({-tiny, tiny}, {table_text::constant(1, 0, 0, 1), table_text::constant(0, 1, 0, 1),
                                          table_text::constant(0, 0, 1, 1)}));
    EXPECT_EQ(mapAt(table, "1e-45,2.8e-45,-1e-45,-2.8e-45").out, "0 1 0 1\n0 0 1 1\n0 1 0 1\n1 0 0 1\n");
    EXPECT_EQ(mapAt(table, "1e-46,-1e-46,1e-400,0.0001e-99999999999999999999,-0").out,
              "0 1 0 1\n0 1 0 1\n0 1 0 1\n0 1 0 1\n0 1 0 1\n");
}

TEST(MapAt, colours_are_the_shortest_exact_floats) {
    TestFolder folder;
    const std::string table = folder.write(
        "odd.json", table_text::table({0, 1}, {table_text::constant(-0.0f, 0.1f, 1e-45f, 3.4028235e38f),
                                               table_text::section("Constant", {}),
                                               table_text::constant(INFINITY, -INFINITY, std::nanf(""), 16777216.0f)}));
    EXPECT_EQ(mapAt(table, "-1,0.5,2").out, "-0 0.1 1e-45 3.4028235e+38\n0 0 0 0\ninf -inf nan 16777216\n");
}

TEST(MapAt, what_is_no_float_is_refused) {
    for (const char* values : {"", "1,", ",1", "1,,2", "x", "1;2", "0x10", "1e", "1e39", "-1e39", "3.4028236e38",
                               "1e400", "1_000", "--1", "+-1", "1 2", "1e99999999999999999999"}) {
        const ProgramRun run = mapAt("Rainbow", values);
        EXPECT_EQ(run.status, 2) << values;
        EXPECT_EQ(run.out, "") << values;
        EXPECT_THAT(run.error, HasSubstr("--at")) << values;
    }
}

TEST(MapAt, blanks_and_plus_signs_around_numbers_do_no_harm) {
    EXPECT_EQ(mapAt("Rainbow", " +2 , -1 ").out, "1 0 0.6 1\n0 0 1 1\n");
}

TEST(MapAt, one_value_without_a_colour_fails_the_call_and_prints_nothing) {
    TestFolder folder;
    const std::string table = folder.write(
        "custom.json", table_text::table({0, 1}, {table_text::constant(1, 0, 0, 1), table_text::section("Custom", {}),
                                                  table_text::constant(0, 0, 1, 1)}));
    EXPECT_EQ(mapAt(table, "-1,2").status, 0);
    const ProgramRun run = mapAt(table, "-1,0.5,2");
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.error, HasSubstr("0.5"));
    EXPECT_THAT(run.error, HasSubstr("custom.json"));
}

TEST(MapAt, an_invalid_table_fails_whatever_is_asked) {
    TestFolder folder;
    const std::string two = folder.write(
        "two.json", table_text::table({0, 1}, {table_text::constant(1, 0, 0, 1), table_text::constant(1, 0, 0, 1)}));
    const std::string one = folder.write(
        "one.json", table_text::table({0}, {table_text::constant(1, 0, 0, 1), table_text::constant(1, 0, 0, 1)}));
    for (const std::string& table : {two, one}) {
        const ProgramRun run = mapAt(table, "0.5");
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.out, "");
        EXPECT_THAT(run.error, HasSubstr("not valid"));
    }
}

TEST(MapAt, the_locale_of_the_user_changes_nothing) {
    ProgramRun::Setup setup;
    setup.environment = {{"LC_ALL", "de_DE.UTF-8"}, {"LANG", "de_DE.UTF-8"}};
    EXPECT_EQ(ProgramRun::of({"map", "--table", "Rainbow", "--at", "-0.5"}, setup).out, "0 0.70710677 0.70710677 1\n");
}

TEST(MapRange, positions_move_onto_the_range) {
    // -1 and 1 move to 10 and 20; the middle, green, to 15.
    const ProgramRun run = ProgramRun::of({"map", "--table", "Rainbow", "--range", "10,20", "--at", "9,10,15,20,21"});
    EXPECT_EQ(run.out, "0.6 0 1 1\n0 0 1 1\n0 1 0 1\n1 0 0 1\n1 0 0.6 1\n") << run.error;
}

TEST(MapRange, positions_are_formed_in_double_and_narrowed_once) {
    TestFolder folder;
    const std::vector<float> positions = {-3.0f, 0.1f, 0.7f, 5.0f};
    std::vector<std::string> sections;
    for (int i = 0; i < 5; ++i)
        sections.push_back(table_text::constant(float(i), 0, 0, 1));
    const std::string table = folder.write("steps.json", table_text::table(positions, sections));
    // Worked out in double: 1/3 + (p + 3) · (1000 - 1/3) / 8 for the two inner positions.
    for (const std::size_t i : {1u, 2u}) {
        const double low = 0.3333333333333333;
        const double moved = low + (double(positions[i]) + 3.0) * (1000.0 - low) / 8.0;
        const float boundary = float(moved);
        const std::string values =
            table_text::number(boundary) + "," + table_text::number(std::nextafter(boundary, 2000.0f));
        const ProgramRun run =
            ProgramRun::of({"map", "--table", table, "--range", "0.3333333333333333,1000", "--at", values});
        EXPECT_EQ(run.out, std::to_string(i) + " 0 0 1\n" + std::to_string(i + 1) + " 0 0 1\n") << run.error;
    }
}

TEST(MapRange, the_ends_are_met_exactly_even_where_they_are_of_very_different_size) {
    // The difference of the ends swallows the smaller one in double.
    const ProgramRun run =
        ProgramRun::of({"map", "--table", "Rainbow", "--range", "-1e30,1e-30", "--at", "1e-30,1.0000001e-30,-1e30"});
    EXPECT_EQ(run.out, "1 0 0 1\n1 0 0.6 1\n0 0 1 1\n") << run.error;
}

TEST(MapRange, ranges_that_are_none_are_refused) {
    for (const char* range :
         {"1,1", "2,1", "nan,1", "0,nan", "0,inf", "-inf,0", "0", "0,1,2", "", ",", "a,b", "0,1e39", "auto"}) {
        const ProgramRun run = ProgramRun::of({"map", "--table", "Rainbow", "--range", range, "--at", "0"});
        EXPECT_EQ(run.status, 2) << range;
        EXPECT_EQ(run.out, "") << range;
        EXPECT_THAT(run.error, HasSubstr("--range")) << range;
    }
}

TEST(MapRange, a_table_without_an_extent_cannot_be_stretched) {
    TestFolder folder;
    const std::string section = table_text::constant(1, 0, 0, 1);
    const std::string flat = folder.write("flat.json", table_text::table({2, 2}, {section, section, section}));
    const ProgramRun run = ProgramRun::of({"map", "--table", flat, "--range", "0,1", "--at", "0"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.error, HasSubstr("position"));
}

}  // namespace
