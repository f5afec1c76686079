#include "ProgramRun.h"
#include "TableText.h"
#include "VolumeFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>

namespace {

using nlohmann::json;
using testing::HasSubstr;

json infoJson(const std::string& source) {
    const ProgramRun run = ProgramRun::of({"info", source, "--json"});
    EXPECT_EQ(run.status, 0) << run.error;
    return json::parse(run.out, nullptr, false);
}

TEST(Info, the_rainbow_is_told_in_words) {
    const ProgramRun run = ProgramRun::of({"info", "Rainbow"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out,
              "table Rainbow\nvalid\npositions (2): -1 1\nsections (3):\n"
              "  0  -inf to -1  Constant  red 0.6  green 0  blue 1  alpha 1\n  1  -1 to 1  Rainbow\n"
              "  2  1 to inf  Constant  red 1  green 0  blue 0.6  alpha 1\n"
              "black below: no, black above: no\nquantity Length\n");
}

TEST(Info, a_table_file_is_told_as_json) {
    TestFolder folder;
    const std::string table = folder.write(
        "t.json", table_text::table({0.1f, 3.4028235e38f},
                                    {table_text::section("Gradient", {{0.25f, 7, 0.5f}, {}, {std::nanf("")}}),
                                     table_text::section("HueCycle", {}), table_text::section("Continue", {})},
                                    R"(, "FiniteMode": [1, 0], "Quantity": "Angle", "AutoLabel": false)"));
    const json told = infoJson(table);
    EXPECT_EQ(told["kind"], "table");
    EXPECT_EQ(told["source"], table);
    EXPECT_EQ(told["valid"], true);
    EXPECT_EQ(told["ascending"], true);
    EXPECT_EQ(told["positions"], json::parse("[0.1, 3.4028235e+38]"));
    ASSERT_EQ(told["sections"].size(), 3u);
    EXPECT_EQ(told["sections"][0],
              json::parse(
                  R"({"type": "Gradient", "from": "-inf", "to": 0.1, "red": [[0, 0.25], [1, 7], [2, 0.5]], "green": [],
                              "blue": [[0, "nan"]], "alpha": []})"));
    EXPECT_EQ(told["sections"][1]["type"], "HueCycle");
    EXPECT_EQ(told["sections"][2]["to"], "inf");
    EXPECT_EQ(told["finiteMode"], json::parse("[1, 0]"));
    EXPECT_EQ(told["quantity"], "Angle");
    EXPECT_EQ(told["autoLabel"], false);
    EXPECT_EQ(told["autoScale"], true);
}

TEST(Info, every_example_table_is_valid_and_ascends) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(EXAMPLE_TABLES)) {
        const json told = infoJson(entry.path().string());
        EXPECT_EQ(told["valid"], true) << entry.path();
        EXPECT_EQ(told["ascending"], true) << entry.path();
        ++count;
    }
    EXPECT_GT(count, 0);
}

TEST(Info, an_invalid_table_is_no_failure) {
    TestFolder folder;
    const std::string one = folder.write("one.json", table_text::table({0}, {table_text::constant(1, 0, 0, 1)}));
    const ProgramRun run = ProgramRun::of({"info", one});
    EXPECT_EQ(run.status, 0) << run.error;
    EXPECT_THAT(run.out, HasSubstr("invalid"));
    EXPECT_EQ(infoJson(one)["valid"], false);
    const std::string none = folder.write("none.json", table_text::table({}, {}));
    EXPECT_EQ(infoJson(none)["valid"], false);
    const std::string falling = folder.write(
        "falling.json", table_text::table({1, 0}, {table_text::constant(1, 0, 0, 1), table_text::constant(1, 0, 0, 1),
                                                   table_text::constant(1, 0, 0, 1)}));
    EXPECT_EQ(infoJson(falling)["ascending"], false);
}

TEST(Info, a_volume_is_told_with_size_spacing_and_values) {
    TestFolder folder;
    const std::string volume = folder.write("v.nrrd", volume_file::counting());
    const json told = infoJson(volume);
    EXPECT_EQ(told["kind"], "volume");
    EXPECT_EQ(told["size"], json::parse("[4, 3, 2]"));
    EXPECT_EQ(told["spacing"], json::parse("[0.5, 1, 2]"));
    EXPECT_EQ(told["valueRange"], json::parse("[0, 123]"));
    EXPECT_TRUE(told["unit"].is_string());
    EXPECT_FALSE(told.contains("truth"));
    const ProgramRun text = ProgramRun::of({"info", volume});
    EXPECT_EQ(text.status, 0);
    EXPECT_THAT(text.out, HasSubstr("size 4 3 2\n"));
    EXPECT_THAT(text.out, HasSubstr("spacing 0.5 1 2"));
    EXPECT_THAT(text.out, HasSubstr("values 0 to 123\n"));
}

TEST(Info, a_volume_without_finite_values_has_no_range) {
    TestFolder folder;
    EXPECT_TRUE(
        infoJson(folder.write("n.nrrd", volume_file::header("1 1 1") + bytesOf({NAN})))["valueRange"].is_null());
}

TEST(Info, the_truth_about_the_casting_adds_up) {
    const json told = infoJson("builtin:casting@32");
    EXPECT_EQ(told["size"], json::parse("[32, 32, 32]"));
    EXPECT_EQ(told["spacing"], json::parse("[2, 2, 2]"));
    EXPECT_EQ(told["unit"], "mm");
    const json& truth = told["truth"];
    ASSERT_GE(truth["pores"].size(), 10u);
    double sum = 0;
    for (const json& pore : truth["pores"]) {
        const double a = pore["radii"][0], b = pore["radii"][1], c = pore["radii"][2];
        EXPECT_NEAR(double(pore["volume"]), 4.0 / 3.0 * std::acos(-1.0) * a * b * c, 1e-9);
        sum += double(pore["volume"]);
    }
    EXPECT_NEAR(double(truth["poreVolume"]), sum, 1e-9);
    for (const json& wall : truth["walls"])
        EXPECT_NEAR(double(wall["thickness"]), double(wall["high"][0]) - double(wall["low"][0]), 1e-12);
    EXPECT_FALSE(truth["bores"].empty());
    EXPECT_EQ(infoJson("builtin:casting")["size"], json::parse("[128, 128, 128]"));
}

TEST(Info, what_is_neither_table_nor_volume_is_unusable) {
    TestFolder folder;
    std::filesystem::create_directory(folder / "folder");
    folder.write("text.txt", "hello");
    folder.write("cut.json", "{ \"format\": \"lyr-object\"");
    folder.write("cut", "{ \"format\": \"lyr-object\"");
    folder.write("no.json", "hello");
    for (const std::string& source : {folder / "missing", folder / "folder", folder / "text.txt", folder / "cut.json",
                                      folder / "cut", folder / "no.json", std::string("No Such Preset"),
                                      std::string("builtin:x"), std::string("builtin:casting@1"), std::string()}) {
        for (const bool asJson : {false, true}) {
            const ProgramRun run =
                asJson ? ProgramRun::of({"info", source, "--json"}) : ProgramRun::of({"info", source});
            EXPECT_EQ(run.status, 2) << source;
            EXPECT_EQ(run.out, "") << source;
            EXPECT_THAT(run.error, HasSubstr(source)) << source;
        }
    }
}

TEST(Info, a_real_scan_is_told_as_its_header_says) {
    const char* samples = std::getenv("LYR_SAMPLE_VOLUMES");
    if (!samples)
        GTEST_SKIP() << "LYR_SAMPLE_VOLUMES names no folder with sample volumes";
    const json told = infoJson(std::string(samples) + "/head-mri.nii.gz");
    EXPECT_EQ(told["size"], json::parse("[57, 67, 56]"));
    EXPECT_EQ(told["spacing"], json::parse("[2.75, 2.75, 2.75]"));
    EXPECT_EQ(told["unit"], "mm");
}

}  // namespace
