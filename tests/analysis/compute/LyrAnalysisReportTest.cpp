#include <analysis/compute/LyrAnalysisReport.h>

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <sstream>

#include <nlohmann/json.hpp>

#include <analysis/compute/LyrDefectAnalysis.h>
#include <analysis/compute/LyrWallThickness.h>

#include "TestVolumes.h"

using nlohmann::json;
using testvolumes::VolumePtr;

namespace {

namespace fs = std::filesystem;

class Folder {
public:
    Folder() : path_(fs::temp_directory_path() / fs::path("lys_report_" + std::to_string(::getpid()))) {
        fs::create_directories(path_);
    }
    ~Folder() { fs::remove_all(path_); }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }

private:
    fs::path path_;
};

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

LyrDefectResult defects() {
    LyrDefectResult result;
    LyrAnalysisOutcome outcome;
    EXPECT_TRUE(LyrDefectAnalysis::run(testvolumes::casting(64), {}, result, outcome)) << outcome.error;
    return result;
}

LyrThicknessResult thickness() {
    LyrThicknessResult result;
    LyrAnalysisOutcome outcome;
    EXPECT_TRUE(LyrWallThickness::run(testvolumes::casting(48), {}, result, outcome)) << outcome.error;
    return result;
}

std::vector<std::string> split(const std::string& text, char at) {
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, at);) {
        parts.push_back(part);
    }
    return parts;
}

double number(const std::string& text) {
    double value = 0.0;
    const auto end = std::from_chars(text.data(), text.data() + text.size(), value).ptr;
    EXPECT_EQ(end, text.data() + text.size()) << text;
    return value;
}

}  // namespace

TEST(LyrAnalysisReport, csv_of_defects_reads_back_to_the_same_numbers) {
    const LyrDefectResult result = defects();
    std::vector<std::string> rows;
    std::vector<std::string> head;
    for (const std::string& line : split(LyrAnalysisReport::csv(result), '\n')) {
        (line.starts_with("# ") ? head : rows).push_back(line);
    }
    EXPECT_EQ(head.front(), "# analysis,defect-volume");
    EXPECT_NE(std::find(head.begin(), head.end(), "# source,builtin:casting@64"), head.end());
    EXPECT_NE(std::find(head.begin(), head.end(), "# threshold_by,otsu"), head.end());
    EXPECT_NE(std::find(head.begin(), head.end(), "# defect_count,16"), head.end());
    ASSERT_EQ(rows.size(), result.defects.size() + 1);
    const std::vector<std::string> columns = split(rows[0], ',');
    ASSERT_EQ(columns.size(), 15U);
    EXPECT_EQ(rows[0].substr(0, 44), "number,volume_mm3,voxels,counted_volume_mm3,");
    for (std::size_t i = 0; i < result.defects.size(); ++i) {
        const std::vector<std::string> fields = split(rows[i + 1], ',');
        ASSERT_EQ(fields.size(), columns.size());
        const LyrDefect& defect = result.defects[i];
        EXPECT_EQ(fields[0], std::to_string(i + 1));
        EXPECT_EQ(number(fields[1]), defect.volume);
        EXPECT_EQ(fields[2], std::to_string(defect.voxels));
        EXPECT_EQ(number(fields[3]), defect.countedVolume);
        EXPECT_EQ(number(fields[4]), defect.center[0]);
        EXPECT_EQ(number(fields[7]), defect.size);
        EXPECT_EQ(number(fields[8]), defect.sphericity);
        EXPECT_EQ(number(fields[14]), defect.high[2]);
    }
}

TEST(LyrAnalysisReport, json_of_defects_reads_back_to_the_same_numbers) {
    const LyrDefectResult result = defects();
    const json report = json::parse(LyrAnalysisReport::json(result));
    EXPECT_EQ(report["analysis"], "defect-volume");
    EXPECT_EQ(report["threshold"].get<float>(), result.threshold);
    EXPECT_EQ(report["voxels_x"], 64);
    EXPECT_EQ(report["defect_voxels"], result.defectVoxels);
    EXPECT_EQ(report["material_voxels"], result.materialVoxels);
    EXPECT_EQ(report["porosity_percent"].get<double>(), result.porosity);
    EXPECT_EQ(report["counted_porosity_percent"].get<double>(), result.countedPorosity);
    EXPECT_EQ(report["minimum_voxels"], 2);
    ASSERT_EQ(report["defects"].size(), result.defects.size());
    for (std::size_t i = 0; i < result.defects.size(); ++i) {
        EXPECT_EQ(report["defects"][i]["number"], i + 1);
        EXPECT_EQ(report["defects"][i]["volume_mm3"].get<double>(), result.defects[i].volume);
        EXPECT_EQ(report["defects"][i]["center_z_mm"].get<double>(), result.defects[i].center[2]);
    }
}

TEST(LyrAnalysisReport, thickness_is_reported_in_bins_or_in_sections) {
    const LyrThicknessResult result = thickness();
    const json bins = json::parse(LyrAnalysisReport::json(result));
    EXPECT_EQ(bins["median_mm"].get<double>(), result.median);
    ASSERT_EQ(bins["bins"].size(), 50U);
    std::uint64_t voxels = 0;
    double percent = 0.0;
    for (const json& bin : bins["bins"]) {
        voxels += bin["voxels"].get<std::uint64_t>();
        percent += bin["percent"].get<double>();
    }
    EXPECT_EQ(voxels, result.materialVoxels);
    EXPECT_NEAR(percent, 100.0, 1e-9);

    const std::vector<float> boundaries{3.0F, 5.0F};
    const json sections = json::parse(LyrAnalysisReport::json(result, boundaries));
    ASSERT_EQ(sections["sections"].size(), 3U);
    EXPECT_TRUE(sections["sections"][0]["from_mm"].is_null());
    EXPECT_EQ(sections["sections"][1]["from_mm"], 3.0);
    EXPECT_TRUE(sections["sections"][2]["to_mm"].is_null());
    std::uint64_t thin = 0;
    for (const float value : result.values->samples()) {
        thin += value < 3.0F ? 1 : 0;
    }
    EXPECT_EQ(sections["sections"][0]["voxels"], thin);
    const std::vector<std::string> lines = split(LyrAnalysisReport::csv(result, boundaries), '\n');
    EXPECT_TRUE(lines.back().starts_with("5,,")) << lines.back();
}

TEST(LyrAnalysisReport, names_that_would_break_the_format_are_made_safe) {
    LyrVolume::Description description;
    description.size = {1, 1, 1};
    description.source = "a,\"b\"\n\xff.nrrd \xc3\xa4";
    LyrDefectResult result;
    result.volume = LyrVolume::create(description, {1.0F});
    EXPECT_NE(LyrAnalysisReport::csv(result).find("# source,\"a,\"\"b\"\" ?.nrrd \xc3\xa4\"\n"), std::string::npos);
    EXPECT_EQ(json::parse(LyrAnalysisReport::json(result))["source"], "a,\"b\"\n?.nrrd \xc3\xa4");
}

TEST(LyrAnalysisReport, is_saved_as_its_name_ends) {
    const Folder folder;
    const LyrDefectResult result = defects();
    std::string error;
    ASSERT_TRUE(LyrAnalysisReport::save(folder / "r.csv", result, error)) << error;
    EXPECT_EQ(contentOf(folder / "r.csv"), LyrAnalysisReport::csv(result));
    ASSERT_TRUE(LyrAnalysisReport::save(folder / "r.JSON", result, error)) << error;
    EXPECT_EQ(contentOf(folder / "r.JSON"), LyrAnalysisReport::json(result));
    ASSERT_TRUE(LyrAnalysisReport::save(folder / "t.csv", thickness(), error)) << error;
}

TEST(LyrAnalysisReport, takes_away_what_a_program_that_was_killed_as_it_saved_has_left) {
    const Folder folder;
    std::ofstream(folder / ".lyr-save-1-2.tmp") << "debris";
    std::string error;
    ASSERT_TRUE(LyrAnalysisReport::save(folder / "r.csv", defects(), error)) << error;
    EXPECT_FALSE(fs::exists(folder / ".lyr-save-1-2.tmp"));
}

TEST(LyrAnalysisReport, that_cannot_be_written_is_a_message) {
    const Folder folder;
    std::string error;
    EXPECT_FALSE(LyrAnalysisReport::save(folder / "r.txt", defects(), error));
    EXPECT_NE(error.find(".csv or .json"), std::string::npos) << error;
    EXPECT_FALSE(LyrAnalysisReport::save(folder / "missing/r.csv", defects(), error));
    EXPECT_NE(error.find("missing/r.csv"), std::string::npos) << error;
    EXPECT_FALSE(fs::exists(folder / "missing"));
}

TEST(LyrAnalysisReport, of_nothing_is_a_report_without_rows) {
    EXPECT_TRUE(json::parse(LyrAnalysisReport::json(LyrDefectResult{}))["defects"].empty());
    EXPECT_TRUE(json::parse(LyrAnalysisReport::json(LyrThicknessResult{}))["bins"].empty());
}
