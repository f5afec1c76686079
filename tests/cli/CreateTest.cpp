#include "ProgramRun.h"
#include "TableText.h"

#include <colortable/model/GeneratorModel.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>

namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string numberText(float value) {
    char buffer[64];
    return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

/// All numbers of the list that follows each occurrence of a name in a table's file.
std::vector<float> numbersAfter(const std::string& text, const std::string& name) {
    std::vector<float> numbers;
    const std::string key = '"' + name + "\": [";
    for (std::size_t at = text.find(key); at != std::string::npos; at = text.find(key, at)) {
        at += key.size();
        const std::size_t end = text.find(']', at);
        while (at < end) {
            at = text.find_first_not_of("[, ", at);
            float number = 0;
            const auto read = std::from_chars(text.data() + at, text.data() + end, number);
            if (read.ec != std::errc()) {
                break;
            }
            numbers.push_back(number);
            at = std::size_t(read.ptr - text.data());
        }
    }
    return numbers;
}

std::vector<uint32_t> bitsOf(const std::vector<float>& values) {
    std::vector<uint32_t> bits;
    for (const float value : values)
        bits.push_back(plain::bitsOf(value));
    return bits;
}

/// The values of a channel over all sections: each holds one point (0, value).
std::vector<float> channelOf(const plain::Generated& table, int channel) {
    static const float outer[2][4] = {{0.6f, 0, 1, 1}, {1, 0, 0.6f, 1}};
    std::vector<float> values{0.0f, outer[0][channel]};
    for (const plain::Color& color : table.colors)
        values.insert(values.end(), {0.0f, color.c[channel]});
    values.insert(values.end(), {0.0f, outer[1][channel]});
    return values;
}

void expectTable(const std::string& text, const plain::Generated& expected) {
    EXPECT_EQ(bitsOf(numbersAfter(text, "PositionList")), bitsOf(expected.positions));
    static const char* names[] = {"PointListRed", "PointListGreen", "PointListBlue", "PointListAlpha"};
    for (int channel = 0; channel < 4; ++channel)
        EXPECT_EQ(bitsOf(numbersAfter(text, names[channel])), bitsOf(channelOf(expected, channel))) << names[channel];
    EXPECT_THAT(text, HasSubstr("\"AutoLabel\": false"));
}

TEST(Create, a_smooth_table_is_written_as_a_file_that_colours) {
    TestFolder folder;
    const std::string file = folder / "t.json";
    const ProgramRun run =
        ProgramRun::of({"create", "smooth", "--from", "-2", "--to", "6", "--type", "InvertedRainbow", "-o", file});
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.error, "");
    const std::string text = readBytes(file);
    EXPECT_EQ(numbersAfter(text, "PositionList"), (std::vector<float>{-2, 6}));
    EXPECT_EQ(numbersAfter(text, "CreationParameters"), (std::vector<float>{-2, 6, 0}));
    EXPECT_THAT(text, HasSubstr("\"CreationType\": \"InvertedRainbow\""));
    EXPECT_THAT(text, HasSubstr("\"NameTemplate\": \"ColorLookupTable_SectionNeg\""));
    EXPECT_THAT(text, HasSubstr("\"AutoLabel\": true"));
    EXPECT_THAT(text, HasSubstr("\"Quantity\": \"Length\""));
    EXPECT_EQ(ProgramRun::of({"map", "--table", file, "--at", "-3,-2,2,6,7"}).out,
              "0.6 0 1 1\n1 0 0 1\n0 1 0 1\n0 0 1 1\n1 0 0.6 1\n");
}

TEST(Create, stepped_tables_have_the_positions_and_colours_of_the_model_to_the_last_bit) {
    TestFolder folder;
    const float sets[][3] = {{0, 10, 3},      {0, 1, 0.1f}, {0, 1, 10}, {-1.5f, 2.25f, 0.3f}, {1e-20f, 3e-20f, 1e-21f},
                             {-0.0f, 1, 0.7f}};
    const std::pair<const char*, plain::Rule> types[] = {{"Rainbow", plain::Rule::Rainbow},
                                                         {"HueCycle", plain::Rule::HueCycle},
                                                         {"BlackGreenBlueRed", plain::Rule::BlackGreenBlueRed}};
    std::size_t next = 0;
    for (const auto& [from, to, width] : sets) {
        const auto& [name, rule] = types[next++ % 3];
        const std::string file = folder / (std::to_string(next) + ".json");
        const ProgramRun run = ProgramRun::of({"create", "stepped", "--from", numberText(from), "--to", numberText(to),
                                               "--step", numberText(width), "--type", name, "-o", file});
        ASSERT_EQ(run.status, 0) << run.error;
        expectTable(readBytes(file), *plain::stepped(from, to, width, rule));
    }
}

TEST(Create, sphere_segments_have_the_positions_and_colours_of_the_model_to_the_last_bit) {
    TestFolder folder;
    const float sets[][3] = {{0, 1.5707964f, 0.2617994f}, {-1, 2, 0.5f}, {0.2f, 1.1f, 0.05f}, {0, 1, 3}};
    for (const auto& [from, to, width] : sets) {
        const std::string file = folder / "t.json";
        const ProgramRun run =
            ProgramRun::of({"create", "sphere-segment", "--from", numberText(from), "--to", numberText(to), "--step",
                            numberText(width), "--quantity", "Angle", "-o", file});
        ASSERT_EQ(run.status, 0) << run.error;
        expectTable(readBytes(file), *plain::sphereSegments(from, to, width, plain::Rule::Rainbow));
        EXPECT_THAT(readBytes(file), HasSubstr("\"Quantity\": \"Angle\""));
    }
}

TEST(Create, a_dash_writes_the_table_to_standard_output) {
    TestFolder folder;
    const std::string file = folder / "t.json";
    ASSERT_EQ(ProgramRun::of({"create", "stepped", "--from=0", "--to=2", "--step=1", "-o", file}).status, 0);
    const ProgramRun run = ProgramRun::of({"create", "stepped", "--from=0", "--to=2", "--step=1", "-o", "-"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, readBytes(file));
    EXPECT_THAT(run.out, StartsWith("{\n  \"format\": \"lyr-object\""));
}

TEST(Create, a_type_without_a_rule_gives_transparent_steps_and_a_warning) {
    const ProgramRun run =
        ProgramRun::of({"create", "stepped", "--from=0", "--to=2", "--step=1", "--type=Custom", "-o", "-"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.error, HasSubstr("Custom"));
    EXPECT_EQ(numbersAfter(run.out, "PointListAlpha"), (std::vector<float>{0, 1, 0, 0, 0, 0, 0, 1}));
}

TEST(Create, a_step_does_not_matter_to_a_smooth_table) {
    const ProgramRun run = ProgramRun::of({"create", "smooth", "--from=0", "--to=2", "--step=-1", "-o", "-"});
    EXPECT_EQ(run.status, 0);
    EXPECT_THAT(run.error, HasSubstr("--step is not used"));
    EXPECT_EQ(numbersAfter(run.out, "CreationParameters"), (std::vector<float>{0, 2, 0}));
}

/// Runs `create` with a file in the way of the output; nothing may happen to it.
void expectRefused(std::vector<std::string> arguments, int status, const std::string& reason) {
    TestFolder folder;
    const std::string file = folder.write("t.json", "as it was");
    arguments.insert(arguments.begin(), "create");
    arguments.insert(arguments.end(), {"-o", file});
    const ProgramRun run = ProgramRun::of(arguments);
    EXPECT_EQ(run.status, status) << testing::PrintToString(arguments);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.error, StartsWith("colortable: "));
    EXPECT_THAT(run.error, HasSubstr(reason));
    EXPECT_EQ(std::count(run.error.begin(), run.error.end(), '\n'), 1) << run.error;
    EXPECT_EQ(readBytes(file), "as it was");
    EXPECT_EQ(folder.names(), std::vector<std::string>{"t.json"});
}

TEST(Create, numbers_that_make_no_table_fail_with_words_and_write_nothing) {
    expectRefused({"smooth", "--from=1", "--to=1"}, 1, "--from must be less than --to");
    expectRefused({"smooth", "--from=2", "--to=1"}, 1, "--from must be less than --to");
    expectRefused({"smooth", "--from=nan", "--to=1"}, 1, "finite");
    expectRefused({"smooth", "--from=0", "--to=inf"}, 1, "finite");
    expectRefused({"stepped", "--from=0", "--to=1", "--step=0"}, 1, "--step must be greater than 0");
    expectRefused({"stepped", "--from=0", "--to=1", "--step=-0.5"}, 1, "--step must be greater than 0");
    expectRefused({"stepped", "--from=0", "--to=1", "--step=nan"}, 1, "finite");
    expectRefused({"stepped", "--from=0", "--to=1", "--step=1e-30"}, 1, "more than 1000000 boundaries");
    expectRefused({"stepped", "--from=-3e38", "--to=3e38", "--step=1e38"}, 1, "wider than the largest float");
    expectRefused({"sphere-segment", "--from=1.6", "--to=3", "--step=0.1"}, 1, "a quarter turn");
    expectRefused({"sphere-segment", "--from=-2", "--to=-1", "--step=0.1"}, 1, "a quarter turn");
    expectRefused({"sphere-segment", "--from=0", "--to=1", "--step=0"}, 1, "--step must be greater than 0");
    expectRefused({"sphere-segment", "--from=0.5", "--to=1", "--step=1e-7"}, 1, "more than 1000000 boundaries");
}

TEST(Create, words_that_mean_nothing_are_wrong_usage) {
    expectRefused({"wavy", "--from=0", "--to=1"}, 2, "smooth, stepped, sphere-segment");
    expectRefused({"smooth", "--from=0", "--to=1", "--type=Sunset"}, 2,
                  "Constant, Gradient, Rainbow, InvertedRainbow, HueCycle, BlackGreenBlueRed, Continue");
    expectRefused({"smooth", "--from=0", "--to=1", "--type=rainbow"}, 2, "no such type");
    expectRefused({"smooth", "--from=0", "--to=1", "--type", ""}, 2, "no such type");
    expectRefused({"smooth", "--from=0", "--to=1", "--quantity=Mass"}, 2,
                  "Length, Area, Volume, Angle, Percent, Number");
    expectRefused({"smooth", "--from=zero", "--to=1"}, 2, "--from zero");
    expectRefused({"smooth", "--from=0", "--to=1,5"}, 2, "--to 1,5");
    expectRefused({"smooth", "--from=0", "--to=1e39"}, 2, "--to 1e39");
    expectRefused({"stepped", "--from=0", "--to=1", "--step", ""}, 2, "--step");
    expectRefused({"stepped", "--from=0", "--to=1"}, 2, "give --step");
    expectRefused({"sphere-segment", "--from=0", "--to=1"}, 2, "give --step");
    expectRefused({"smooth", "--to=1"}, 2, "--from");
    expectRefused({"smooth", "--from=0"}, 2, "--to");
    expectRefused({"--from=0", "--to=1"}, 2, "generator");
    const ProgramRun run = ProgramRun::of({"create", "smooth", "--from=0", "--to=1"});
    EXPECT_EQ(run.status, 2);
    EXPECT_THAT(run.error, HasSubstr("--output"));
}

TEST(Create, an_output_that_cannot_be_written_fails) {
    TestFolder folder;
    const ProgramRun run = ProgramRun::of({"create", "smooth", "--from=0", "--to=1", "-o", folder / "none/t.json"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.error, HasSubstr("none/t.json"));
    const ProgramRun onFolder = ProgramRun::of({"create", "smooth", "--from=0", "--to=1", "-o", folder.path()});
    EXPECT_EQ(onFolder.status, 1);
    EXPECT_TRUE(folder.names().empty());
}

}  // namespace
