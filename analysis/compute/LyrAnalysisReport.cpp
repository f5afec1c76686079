#include <analysis/compute/LyrAnalysisReport.h>

#include <algorithm>
#include <array>
#include <exception>
#include <limits>
#include <utility>
#include <vector>

#include <lyr_core/LyrFileSaver.h>

#include <analysis/compute/LyrValueHistogram.h>
#include <analysis/compute/ReportText_p.h>

namespace {

using lyranalysis::ReportText;
using lyranalysis::ReportValue;

/** The lines that every report begins with. Lengths of a volume without a unit are taken for mm. */
template <typename Result>
ReportText beginReport(const char* analysis, const Result& result) {
    ReportText report;
    const LyrVolume::Description description = result.volume ? result.volume->description() : LyrVolume::Description{};
    report.head = {{"analysis", ReportValue(std::string(analysis))},
                   {"source", ReportValue(description.source)},
                   {"voxels_x", ReportValue(description.size[0])},
                   {"voxels_y", ReportValue(description.size[1])},
                   {"voxels_z", ReportValue(description.size[2])},
                   {"voxel_volume_mm3", ReportValue(result.voxelVolume)},
                   {"threshold", ReportValue(static_cast<double>(result.threshold))},
                   {"threshold_by", ReportValue(std::string(result.thresholdWasGiven ? "user" : "otsu"))}};
    return report;
}

ReportText reportOf(const LyrDefectResult& result) {
    ReportText report = beginReport("defect-volume", result);
    const std::vector<std::pair<std::string, ReportValue>> totals = {
        {"minimum_voxels", ReportValue(result.minimumVoxels)},
        {"air_level", ReportValue(result.airLevel)},
        {"material_level", ReportValue(result.materialLevel)},
        {"defect_count", ReportValue(static_cast<std::uint64_t>(result.defects.size()))},
        {"defect_voxels", ReportValue(result.defectVoxels)},
        {"counted_defect_volume_mm3", ReportValue(result.countedDefectVolume)},
        {"defect_volume_mm3", ReportValue(result.defectVolume)},
        {"material_voxels", ReportValue(result.materialVoxels)},
        {"counted_material_volume_mm3", ReportValue(result.countedMaterialVolume)},
        {"material_volume_mm3", ReportValue(result.materialVolume)},
        {"counted_porosity_percent", ReportValue(result.countedPorosity)},
        {"porosity_percent", ReportValue(result.porosity)},
        {"small_hollow_count", ReportValue(result.smallHollows)},
        {"small_hollow_voxels", ReportValue(result.smallHollowVoxels)}};
    report.head.insert(report.head.end(), totals.begin(), totals.end());
    report.rowsName = "defects";
    report.columns = {"number",      "volume_mm3",  "voxels",    "counted_volume_mm3", "center_x_mm",
                      "center_y_mm", "center_z_mm", "size_mm",   "sphericity",         "low_x_mm",
                      "low_y_mm",    "low_z_mm",    "high_x_mm", "high_y_mm",          "high_z_mm"};
    report.rowCount = result.defects.size();
    report.makeRow = [&result](std::size_t index, ReportText::Row& row) {
        const LyrDefect& defect = result.defects[index];
        const auto append = [&row](const std::array<double, 3>& place) {
            row.insert(row.end(), {ReportValue(place[0]), ReportValue(place[1]), ReportValue(place[2])});
        };
        row.insert(row.end(), {ReportValue(std::uint64_t{defect.number}), ReportValue(defect.volume),
                               ReportValue(defect.voxels), ReportValue(defect.countedVolume)});
        append(defect.center);
        row.insert(row.end(), {ReportValue(defect.size), ReportValue(defect.sphericity)});
        append(defect.low);
        append(defect.high);
    };
    return report;
}

/** A stretch of thicknesses and the voxels in it. */
struct Stretch {
    double low;
    double high;
    std::uint64_t voxels;
};

std::vector<Stretch> binsOf(const LyrThicknessResult& result) {
    constexpr std::size_t kBins = 50;
    std::vector<Stretch> bins;
    LyrValueHistogram histogram;
    if (result.values && LyrValueHistogram::make(*result.values, kBins, histogram)) {
        for (std::size_t bin = 0; bin < kBins; ++bin) {
            bins.push_back({histogram.edge(bin), histogram.edge(bin + 1), histogram.counts[bin]});
        }
    }
    return bins;
}

std::vector<Stretch> sectionsOf(const LyrThicknessResult& result, std::span<const float> boundaries) {
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    std::vector<Stretch> sections;
    LyrSectionShares shares;
    if (result.values && LyrSectionShares::make(result.values->samples(), boundaries, shares)) {
        for (std::size_t i = 0; i < shares.counts.size(); ++i) {
            const double low = i > 0 ? static_cast<double>(boundaries[i - 1]) : -kEndless;
            const double high = i < boundaries.size() ? static_cast<double>(boundaries[i]) : kEndless;
            sections.push_back({low, high, shares.counts[i]});
        }
    }
    return sections;
}

ReportText reportOf(const LyrThicknessResult& result, std::span<const float> boundaries) {
    ReportText report = beginReport("wall-thickness", result);
    const std::vector<std::pair<std::string, ReportValue>> totals = {
        {"material_voxels", ReportValue(result.materialVoxels)},
        {"counted_material_volume_mm3", ReportValue(result.countedMaterialVolume)},
        {"least_mm", ReportValue(result.least)},
        {"greatest_mm", ReportValue(result.greatest)},
        {"mean_mm", ReportValue(result.mean)},
        {"standard_deviation_mm", ReportValue(result.deviation)},
        {"median_mm", ReportValue(result.median)}};
    report.head.insert(report.head.end(), totals.begin(), totals.end());
    report.rowsName = boundaries.empty() ? "bins" : "sections";
    report.columns = {"from_mm", "to_mm", "voxels", "counted_volume_mm3", "percent"};
    std::vector<Stretch> stretches = boundaries.empty() ? binsOf(result) : sectionsOf(result, boundaries);
    report.rowCount = stretches.size();
    report.makeRow = [&result, stretches = std::move(stretches)](std::size_t index, ReportText::Row& row) {
        const auto& [low, high, voxels] = stretches[index];
        const double all = static_cast<double>(std::max<std::uint64_t>(result.materialVoxels, 1));
        const double share = static_cast<double>(voxels) / all;
        row.insert(row.end(),
                   {ReportValue(low), ReportValue(high), ReportValue(voxels),
                    ReportValue(static_cast<double>(voxels) * result.voxelVolume), ReportValue(100.0 * share)});
    };
    return report;
}

/** Nothing, unless there is one for each defect. */
void addVerdicts(ReportText& report, std::span<const LyrVerdict> verdicts) {
    if (verdicts.empty() || verdicts.size() != report.rowCount) {
        return;
    }
    static const std::array<const char*, 4> kNames = {"", "pass", "warn", "fail"};
    for (const LyrVerdict counted : {LyrVerdict::Pass, LyrVerdict::Warn, LyrVerdict::Fail}) {
        const auto count = std::count(verdicts.begin(), verdicts.end(), counted);
        report.head.emplace_back(kNames[static_cast<std::size_t>(counted)] + std::string("_count"),
                                 ReportValue(static_cast<std::uint64_t>(count)));
    }
    report.columns.push_back("verdict");
    report.makeRow = [verdicts, makeRow = std::move(report.makeRow)](std::size_t index, ReportText::Row& row) {
        makeRow(index, row);
        row.emplace_back(std::string(kNames[static_cast<std::size_t>(verdicts[index])]));
    };
}

ReportText reportOf(const LyrDefectResult& result, std::span<const LyrVerdict> verdicts) {
    ReportText report = reportOf(result);
    addVerdicts(report, verdicts);
    return report;
}

bool endsWith(const std::string& path, std::string_view ending) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return path.size() > ending.size() &&
           std::equal(ending.rbegin(), ending.rend(), path.rbegin(), [&](char a, char b) { return a == lower(b); });
}

/** `make` returns the report. Nothing is made for a path of another kind. */
template <typename Make>
bool saveReport(const std::string& path, std::string& error, const Make& make) {
    const bool asJson = endsWith(path, ".json");
    if (!asJson && !endsWith(path, ".csv")) {
        error = "report '" + path + "': the kind of the report follows from the name; let it end in .csv or .json";
        return false;
    }
    try {
        const std::string content = asJson ? make().json() : make().csv();
        LyrString message;
        LyrFileSaver::sweepBeside(path);
        if (!LyrFileSaver::replace(path, content, &message)) {
            error = message.utf8();
            return false;
        }
    } catch (const std::exception&) {
        error = "report '" + path + "': not enough memory; close other programs and try again";
        return false;
    }
    return true;
}

}  // namespace

std::string LyrAnalysisReport::csv(const LyrDefectResult& result, std::span<const LyrVerdict> verdicts) {
    return reportOf(result, verdicts).csv();
}

std::string LyrAnalysisReport::json(const LyrDefectResult& result, std::span<const LyrVerdict> verdicts) {
    return reportOf(result, verdicts).json();
}

std::string LyrAnalysisReport::csv(const LyrThicknessResult& result, std::span<const float> boundaries) {
    return reportOf(result, boundaries).csv();
}

std::string LyrAnalysisReport::json(const LyrThicknessResult& result, std::span<const float> boundaries) {
    return reportOf(result, boundaries).json();
}

bool LyrAnalysisReport::save(const std::string& path, const LyrDefectResult& result, std::string& error,
                             std::span<const LyrVerdict> verdicts) {
    return saveReport(path, error, [&] { return reportOf(result, verdicts); });
}

bool LyrAnalysisReport::save(const std::string& path, const LyrThicknessResult& result, std::string& error,
                             std::span<const float> boundaries) {
    return saveReport(path, error, [&] { return reportOf(result, boundaries); });
}
