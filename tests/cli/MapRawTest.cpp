#include "ProgramRun.h"
#include "TableText.h"

#include <Sanitizers.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <limits>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// The colours of the default rainbow for -2, -1, 1, 2.
const std::vector<float> FOUR_VALUES = {-2, -1, 1, 2};
const std::vector<float> FOUR_COLORS = {0.6f, 0, 1, 1, 0, 0, 1, 1, 1, 0, 0, 1, 1, 0, 0.6f, 1};

ProgramRun mapRaw(const std::string& table, const std::string& input, const std::string& output) {
    return ProgramRun::of({"map", "--table", table, "-i", input, "-o", output});
}

/// A table whose middle section has no rule.
std::string tableWithHole(const TestFolder& folder) {
    return folder.write("hole.json",
                        table_text::table({0, 1}, {table_text::constant(1, 0, 0, 1), table_text::section("Custom", {}),
                                                   table_text::constant(0, 0, 1, 1)}));
}

TEST(MapRaw, a_file_becomes_a_file) {
    TestFolder folder;
    const std::string input = folder.write("values.f32", bytesOf(FOUR_VALUES));
    const ProgramRun run = mapRaw("Rainbow", input, folder / "colors.f32");
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out + run.error, "");
    EXPECT_EQ(floatsOf(readBytes(folder / "colors.f32")), FOUR_COLORS);
    EXPECT_THAT(folder.names(), ElementsAre("colors.f32", "values.f32"));
}

TEST(MapRaw, standard_input_becomes_standard_output) {
    ProgramRun::Setup setup;
    setup.input = bytesOf(FOUR_VALUES);
    const ProgramRun run = ProgramRun::of({"map", "--table", "Rainbow", "-i", "-", "-o", "-"}, setup);
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(floatsOf(run.out), FOUR_COLORS);
}

TEST(MapRaw, no_values_make_no_colours) {
    TestFolder folder;
    const std::string input = folder.write("none.f32", "");
    EXPECT_EQ(mapRaw("Rainbow", input, folder / "none.rgba").status, 0);
    EXPECT_TRUE(std::filesystem::exists(folder / "none.rgba"));
    EXPECT_EQ(readBytes(folder / "none.rgba"), "");
}

TEST(MapRaw, random_tables_equal_the_plain_model_bit_for_bit) {
    TestFolder folder;
    plain::Random random(20240611);
    int failing = 0;
    for (const std::size_t boundaries :
         {2, 2, 2, 3, 3, 4, 5, 5, 8, 8, 13, 16, 17, 30, 31, 32, 33, 64, 100, 300, 1000, 3000}) {
        plain::Table model = random.table(boundaries, true);
        for (float& position : model.positions)
            position = std::clamp(position, -FLT_MAX, FLT_MAX);
        for (plain::SectionData& section : model.sections)
            section.isSection = true;
        const std::string table = folder.write("table.json", table_text::table(model, random));
        const std::vector<float> all = plain::interestingValues(model, &random, 400);
        std::vector<float> good;
        for (const float value : all) {
            plain::Color color;
            if (plain::one(model, value, &color) == plain::Outcome::Colored)
                good.push_back(value);
        }
        const std::string input = folder.write("values.f32", bytesOf(good));
        const ProgramRun run = mapRaw(table, input, folder / "colors");
        ASSERT_EQ(run.status, 0) << run.error << readBytes(table).substr(0, 2000);
        const std::vector<float> colors = floatsOf(readBytes(folder / "colors"));
        ASSERT_EQ(colors.size(), good.size() * 4);
        for (std::size_t i = 0; i < good.size(); ++i) {
            plain::Color expected;
            plain::one(model, good[i], &expected);
            ASSERT_TRUE(plain::sameColor(&colors[i * 4], expected)) << boundaries << " boundaries, value " << good[i];
        }
        if (good.size() < all.size()) {
            ++failing;
            ASSERT_EQ(mapRaw(table, folder.write("all.f32", bytesOf(all)), folder / "colors").status, 1);
            ASSERT_EQ(floatsOf(readBytes(folder / "colors")).size(), good.size() * 4) << "the old file has to stay";
        }
    }
    EXPECT_GT(failing, 3) << "the tables should not all be able to colour everything";
}

TEST(MapRaw, values_beyond_a_block_are_coloured_in_order) {
    TestFolder folder;
    std::vector<float> values(200001);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = float(i % 3) * 2 - 2;  // -2, 0, 2
    const std::string input = folder.write("many.f32", bytesOf(values));
    ASSERT_EQ(mapRaw("Rainbow", input, folder / "many.rgba").status, 0);
    const std::vector<float> colors = floatsOf(readBytes(folder / "many.rgba"));
    ASSERT_EQ(colors.size(), values.size() * 4);
    const float expected[3][4] = {{0.6f, 0, 1, 1}, {0, 1, 0, 1}, {1, 0, 0.6f, 1}};
    for (std::size_t i = 0; i < colors.size(); ++i)
        ASSERT_EQ(colors[i], expected[i / 4 % 3][i % 4]) << i;
}

TEST(MapRaw, the_range_applies_to_raw_values) {
    TestFolder folder;
    const std::string input = folder.write("v.f32", bytesOf({10, 15, 20}));
    ASSERT_EQ(ProgramRun::of({"map", "--table", "Rainbow", "--range", "10,20", "-i", input, "-o", folder / "c"}).status,
              0);
    EXPECT_EQ(floatsOf(readBytes(folder / "c")), (std::vector<float>{0, 0, 1, 1, 0, 1, 0, 1, 1, 0, 0, 1}));
}

TEST(MapRaw, a_cut_off_number_makes_the_input_unusable) {
    TestFolder folder;
    const std::string input = folder.write("cut.f32", bytesOf(FOUR_VALUES) + "abc");
    const ProgramRun file = mapRaw("Rainbow", input, folder / "out");
    EXPECT_EQ(file.status, 2);
    EXPECT_THAT(file.error, HasSubstr("cut.f32"));
    ProgramRun::Setup setup;
    setup.input = bytesOf(FOUR_VALUES) + "a";
    const ProgramRun pipe = ProgramRun::of({"map", "--table", "Rainbow", "-i", "-", "-o", "-"}, setup);
    EXPECT_EQ(pipe.status, 2);
    EXPECT_EQ(pipe.out, "");
    EXPECT_THAT(folder.names(), ElementsAre("cut.f32"));
}

TEST(MapRaw, input_that_cannot_be_read_is_unusable) {
    TestFolder folder;
    std::filesystem::create_directory(folder / "folder.f32");
    EXPECT_EQ(mapRaw("Rainbow", folder / "missing.f32", folder / "out").status, 2);
    EXPECT_EQ(mapRaw("Rainbow", folder / "folder.f32", folder / "out").status, 2);
    EXPECT_THAT(folder.names(), ElementsAre("folder.f32"));
}

TEST(MapRaw, a_failing_value_leaves_the_old_output_and_nothing_else) {
    TestFolder folder;
    const std::string table = tableWithHole(folder);
    std::vector<float> values(100000, 2.0f);
    values[70000] = 0.5f;
    const std::string input = folder.write("v.f32", bytesOf(values));
    folder.write("old", "old content");
    const ProgramRun run = mapRaw(table, input, folder / "old");
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.error, HasSubstr("0.5 (value number 70000"));
    EXPECT_EQ(readBytes(folder / "old"), "old content");
    EXPECT_EQ(mapRaw(table, input, folder / "new").status, 1);
    EXPECT_THAT(folder.names(), ElementsAre("hole.json", "old", "v.f32"));
}

TEST(MapRaw, a_failing_value_at_the_very_end_prints_nothing) {
    TestFolder folder;
    ProgramRun::Setup setup;
    std::vector<float> values(300000, 2.0f);
    values.back() = 0.5f;
    setup.input = bytesOf(values);
    const ProgramRun run = ProgramRun::of({"map", "--table", tableWithHole(folder), "-i", "-", "-o", "-"}, setup);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out.size(), 0u);
}

TEST(MapRaw, an_output_that_cannot_be_written_fails) {
    TestFolder folder;
    const std::string input = folder.write("v.f32", bytesOf(std::vector<float>(100000, 0.0f)));
    std::filesystem::create_directory(folder / "folder");
    for (const std::string& output : {folder / "no-folder/out", folder / "folder", folder / "v.f32/out",
                                      std::string("/dev/full"), folder / "", std::string("/proc/out")}) {
        const ProgramRun run = mapRaw("Rainbow", input, output);
        EXPECT_EQ(run.status, 1) << output;
        EXPECT_THAT(run.error, HasSubstr(output)) << output;
    }
    EXPECT_THAT(folder.names(), ElementsAre("folder", "v.f32"));
}

TEST(MapRaw, a_disk_that_is_full_leaves_nothing_behind) {
    TestFolder folder;
    const std::string input = folder.write("v.f32", bytesOf(std::vector<float>(100000, 0.0f)));
    // A limit on the size of files stands for the full disk.
    ProgramRun::Setup setup;
    setup.fileLimit = 100000;
    const ProgramRun run = ProgramRun::of({"map", "--table", "Rainbow", "-i", input, "-o", folder / "out"}, setup);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.error, HasSubstr(folder / "out"));
    EXPECT_THAT(folder.names(), ElementsAre("v.f32"));
}

TEST(MapRaw, a_link_is_followed_and_permissions_stay) {
    TestFolder folder;
    const std::string input = folder.write("v.f32", bytesOf(FOUR_VALUES));
    const std::string target = folder.write("target", "old");
    ASSERT_EQ(chmod(target.c_str(), 0640), 0);
    ASSERT_EQ(symlink("target", (folder / "link").c_str()), 0);
    ASSERT_EQ(mapRaw("Rainbow", input, folder / "link").status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
    EXPECT_EQ(floatsOf(readBytes(target)), FOUR_COLORS);
    struct stat status = {};
    ASSERT_EQ(stat(target.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, mode_t(0640));
}

TEST(MapRaw, the_input_itself_may_be_the_output) {
    TestFolder folder;
    const std::string input = folder.write("v.f32", bytesOf(FOUR_VALUES));
    ASSERT_EQ(mapRaw("Rainbow", input, input).status, 0);
    EXPECT_EQ(floatsOf(readBytes(input)), FOUR_COLORS);
}

TEST(MapRaw, a_device_is_written_to_and_not_replaced) {
    TestFolder folder;
    const std::string input = folder.write("v.f32", bytesOf(FOUR_VALUES));
    EXPECT_EQ(mapRaw("Rainbow", input, "/dev/null").status, 0);
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(MapRaw, a_reader_that_goes_away_is_an_error_and_no_crash) {
    TestFolder folder;
    const std::string input = folder.write("v.f32", bytesOf(std::vector<float>(100000, 0.0f)));
    ProgramRun::Setup deaf;
    deaf.deafReader = true;
    EXPECT_EQ(ProgramRun::of({"map", "--table", "Rainbow", "-i", input, "-o", "-"}, deaf).status, 1);
    EXPECT_EQ(ProgramRun::of({"map", "--table", "Rainbow", "--at", "1"}, deaf).status, 1);
    ProgramRun::Setup closed;
    closed.closedOutput = true;
    EXPECT_EQ(ProgramRun::of({"map", "--table", "Rainbow", "-i", input, "-o", "-"}, closed).status, 1);
    EXPECT_EQ(ProgramRun::of({"map", "--table", "Rainbow", "--at", "1"}, closed).status, 1);
}

TEST(MapRaw, a_full_device_at_standard_output_is_an_error) {
    TestFolder folder;
    const std::string input = folder.write("v.f32", bytesOf(FOUR_VALUES));
    ProgramRun::Setup full;
    full.outputFile = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(full.outputFile, 0);
    EXPECT_EQ(ProgramRun::of({"map", "--table", "Rainbow", "-i", input, "-o", "-"}, full).status, 1);
    EXPECT_EQ(ProgramRun::of({"map", "--table", "Rainbow", "--at", "1"}, full).status, 1);
    EXPECT_EQ(ProgramRun::of({"info", "Rainbow"}, full).status, 1);
    EXPECT_EQ(ProgramRun::of({"--help"}, full).status, 1);
    close(full.outputFile);
}

TEST(MapRaw, memory_does_not_grow_with_the_input) {
    TestFolder folder;
    const std::string few = folder.write("few.f32", bytesOf(std::vector<float>(1000, 0.0f)));
    const std::string many = folder.write("many.f32", bytesOf(std::vector<float>(4000000, 0.0f)));
    const ProgramRun small = mapRaw("Rainbow", few, folder / "out");
    const ProgramRun large = mapRaw("Rainbow", many, folder / "out");
    ASSERT_EQ(large.status, 0) << large.error;
    // 16 MB come in and 64 MB go out.
    const long bound = SANITIZED ? std::numeric_limits<long>::max() : 8000000;
    EXPECT_LT(large.peakMemory - small.peakMemory, bound);
    const ProgramRun toStandardOutput = mapRaw("Rainbow", many, "-");
    EXPECT_EQ(toStandardOutput.out.size(), 64000000u);
    EXPECT_LT(toStandardOutput.peakMemory - small.peakMemory, bound);
}

TEST(MapRaw, a_request_to_end_removes_what_is_unfinished) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        TestFolder folder;
        ProgramRun::Setup setup;
        setup.signal = number;
        setup.signalFolder = folder.path();
        const ProgramRun run = ProgramRun::of({"map", "--table", "Rainbow", "-i", "-", "-o", folder / "out"}, setup);
        EXPECT_EQ(run.status, 1000 + number) << run.error;
        EXPECT_THAT(folder.names(), ElementsAre());
    }
}

TEST(MapRaw, options_that_do_not_fit_raw_values_are_refused) {
    TestFolder folder;
    const std::string input = folder.write("v.f32", bytesOf(FOUR_VALUES));
    const std::vector<std::vector<std::string>> wrong = {{"-i", input},
                                                         {"-o", folder / "out"},
                                                         {"-i", input, "-o", folder / "out.png"},
                                                         {"-i", input, "-o", folder / "out.nrrd"},
                                                         {"-i", input, "-o", folder / "out", "--slice", "z:0"},
                                                         {"-i", input, "-o", folder / "out", "--all"},
                                                         {"-i", input, "-o", folder / "out", "--range", "auto"},
                                                         {"-i", input, "-o", folder / "out", "--at", "1"},
                                                         {"--at", "1", "--all"},
                                                         {}};
    for (std::vector<std::string> arguments : wrong) {
        arguments.insert(arguments.begin(), {"map", "--table", "Rainbow"});
        const ProgramRun run = ProgramRun::of(arguments);
        EXPECT_EQ(run.status, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.error, "");
    }
    EXPECT_THAT(folder.names(), ElementsAre("v.f32"));
}

}  // namespace
