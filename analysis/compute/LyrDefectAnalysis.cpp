#include <analysis/compute/LyrDefectAnalysis.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include <analysis/compute/Components_p.h>
#include <analysis/compute/DefectMeter_p.h>
#include <analysis/compute/GreyLevels_p.h>
#include <analysis/compute/OtsuStage_p.h>
#include <analysis/compute/PiecewiseSort_p.h>

namespace {

using lyranalysis::AnalysisTask;
using lyranalysis::Components;
using lyranalysis::GreyLevels;
using lyranalysis::Grid;
using lyranalysis::MaterialNeighbours;

// Labels and values of four bytes, and a byte for the neighbours near and far each.
constexpr std::uint64_t kBytesOfVoxel = 2 * sizeof(float) + 2;
// The defect, its place in the order by volume, what sorts it and the block that it is measured with.
constexpr std::uint64_t kBytesOfRegion = sizeof(LyrDefect) + 3 * sizeof(std::uint32_t) + sizeof(std::size_t);
// Regions that are looked through between two looks for a cancelled task.
constexpr std::size_t kPatience = 65536;

constexpr double kFillWeight = 1.0;
constexpr double kMeasureWeight = 2.0;
constexpr double kOrderWeight = 0.2;
constexpr double kWeight = lyranalysis::kOtsuWeight + lyranalysis::kComponentsWeight + lyranalysis::kLevelsWeight +
                           lyranalysis::kMaterialWeight + 2.0 * MaterialNeighbours::kWeight + 2.0 * kFillWeight +
                           kMeasureWeight + kOrderWeight;

double percent(double part, double rest) {
    return part + rest > 0.0 ? 100.0 * part / (part + rest) : 0.0;
}

class Analysis {
public:
    Analysis(const std::shared_ptr<const LyrVolume>& volume, float threshold, AnalysisTask& task, LyrDefectResult& out)
        : grid_(*volume, threshold), task_(task), out_(out) {
        out_.volume = volume;
        out_.threshold = threshold;
        out_.voxelVolume = grid_.voxelVolume();
    }

    bool run() {
        if (!task_.claim(grid_.voxels() * kBytesOfVoxel) ||
            !lyranalysis::findComponents(grid_, out_.minimumVoxels, task_, regions_)) {
            return false;
        }
        if (regions_.materialVoxels == 0) {
            return task_.fail(LYR_MARK_TEXT(
                "LyrAnalysis",
                "there is no material, because no sample reaches the threshold; choose a lower threshold"));
        }
        return task_.claim(regions_.count() * kBytesOfRegion) && measure() && sumUp() && fillField();
    }

private:
    bool measure() {
        MaterialNeighbours neighbours;
        GreyLevels levels;
        double material = 0.0;
        if (!neighbours.count(grid_, 1, task_) || !fillLabels()) {
            return false;
        }
        // The layer of surface voxels follows from the nearest neighbours, the levels from those farther away.
        MaterialNeighbours farther;
        if (!farther.count(grid_, 2, task_) ||
            !lyranalysis::findGreyLevels(grid_, neighbours, farther, task_, levels) ||
            !lyranalysis::measureMaterial(grid_, neighbours, levels, task_, material)) {
            return false;
        }
        neighbours = {};
        out_.airLevel = levels.air;
        out_.materialLevel = levels.material;
        out_.materialVoxels = regions_.materialVoxels;
        out_.materialVolume = material * grid_.voxelVolume();
        return measureRegions(
                   lyranalysis::DefectMeter(grid_, regions_, out_.labels, farther, levels, out_.volume->origin())) &&
               number();
    }

    /** Writes the numbers that the regions have by now into their voxels. */
    template <typename Write>
    bool writeRegions(const Write& write) {
        constexpr std::size_t kBlock = 4096;
        const std::size_t blocks = (regions_.count() + kBlock - 1) / kBlock;
        return task_.stage(kFillWeight, blocks, [&](std::size_t block, std::size_t) {
            const std::size_t end = std::min(regions_.count(), (block + 1) * kBlock);
            for (std::size_t region = block * kBlock; region < end; ++region) {
                for (std::size_t i = regions_.starts[region]; i < regions_.starts[region + 1]; ++i) {
                    const lyranalysis::Run& run = regions_.runs[i];
                    const std::size_t begin = run.row * grid_.width() + static_cast<std::size_t>(run.first);
                    write(region, begin, static_cast<std::size_t>(run.length));
                }
            }
        });
    }

    bool fillLabels() {
        return lyranalysis::resizeInSteps(out_.labels, grid_.voxels(), std::uint32_t{0}, task_) &&
               writeRegions([&](std::size_t region, std::size_t begin, std::size_t length) {
                   std::fill_n(out_.labels.data() + begin, length, static_cast<std::uint32_t>(region + 1));
               });
    }

    bool measureRegions(const lyranalysis::DefectMeter& meter) {
        // Blocks of about equal work.
        constexpr std::size_t kRuns = 128;
        std::vector<std::size_t> blocks{0};
        for (std::size_t region = 0; region < regions_.count(); ++region) {
            if (regions_.starts[region + 1] - regions_.starts[blocks.back()] >= kRuns ||
                region + 1 == regions_.count()) {
                blocks.push_back(region + 1);
            }
        }
        if (!lyranalysis::resizeInSteps(out_.defects, regions_.count(), LyrDefect{}, task_)) {
            return false;
        }
        return task_.stage(kMeasureWeight, blocks.size() - 1, [&](std::size_t block, std::size_t) {
            for (std::size_t region = blocks[block]; region < blocks[block + 1]; ++region) {
                out_.defects[region] = meter.measure(region, task_);
            }
        });
    }

    /** Numbers the defects by volume, the largest first; of equal ones the first in the volume. */
    bool number() {
        std::vector<std::uint32_t> order(regions_.count());
        std::iota(order.begin(), order.end(), 0U);
        if (!lyranalysis::sortInPieces(order, task_, kOrderWeight, [&](std::uint32_t a, std::uint32_t b) {
                const double left = out_.defects[a].volume;
                const double right = out_.defects[b].volume;
                return left != right ? left > right : a < b;
            })) {
            return false;
        }
        for (std::size_t i = 0; i < order.size(); ++i) {
            out_.defects[order[i]].number = static_cast<std::uint32_t>(i + 1);
        }
        return !task_.isStopped();
    }

    bool sumUp() {
        for (const LyrDefect& defect : out_.defects) {
            out_.defectVoxels += defect.voxels;
        }
        out_.smallHollows = regions_.suppressed;
        out_.smallHollowVoxels = regions_.suppressedVoxels;
        out_.countedDefectVolume = static_cast<double>(out_.defectVoxels) * out_.voxelVolume;
        out_.countedMaterialVolume = static_cast<double>(out_.materialVoxels) * out_.voxelVolume;
        out_.countedPorosity = percent(out_.countedDefectVolume, out_.countedMaterialVolume);
        return !task_.isStopped();
    }

    bool fillField() {
        std::vector<float> values;
        if (!lyranalysis::resizeInSteps(values, grid_.voxels(), std::numeric_limits<float>::quiet_NaN(), task_) ||
            !writeRegions([&](std::size_t region, std::size_t begin, std::size_t length) {
                const LyrDefect& defect = out_.defects[region];
                std::fill_n(out_.labels.data() + begin, length, defect.number);
                std::fill_n(values.data() + begin, length, static_cast<float>(defect.volume));
            }) ||
            !putInOrder()) {
            return false;
        }
        for (const LyrDefect& defect : out_.defects) {
            out_.defectVolume += defect.volume;
        }
        out_.porosity = percent(out_.defectVolume, out_.materialVolume);
        LyrVolume::Description description = out_.volume->description();
        description.format = "defect volume in mm3";
        out_.values = LyrVolume::create(std::move(description), std::move(values));
        return out_.values != nullptr;
    }

    /** Puts each defect at the place that its number says, by swaps along the cycles of the order. */
    bool putInOrder() {
        for (std::size_t i = 0; i < out_.defects.size(); ++i) {
            if (i % kPatience == 0 && task_.isStopped()) {
                return false;
            }
            while (out_.defects[i].number != i + 1) {
                std::swap(out_.defects[i], out_.defects[out_.defects[i].number - 1]);
            }
        }
        return true;
    }

    Grid grid_;
    AnalysisTask& task_;
    LyrDefectResult& out_;
    Components regions_;
};

}  // namespace

const LyrDefect* LyrDefectResult::defectAt(std::int64_t x, std::int64_t y, std::int64_t z) const {
    if (!volume || x < 0 || y < 0 || z < 0 || x >= volume->size()[0] || y >= volume->size()[1] ||
        z >= volume->size()[2]) {
        return nullptr;
    }
    const std::int64_t index = x + volume->size()[0] * (y + volume->size()[1] * z);
    const std::uint32_t number = labels[static_cast<std::size_t>(index)];
    return number > 0 ? &defects[number - 1] : nullptr;
}

bool LyrDefectAnalysis::run(const std::shared_ptr<const LyrVolume>& volume, const Options& options,
                            LyrDefectResult& out, LyrAnalysisOutcome& outcome, const LyrAnalysisControl& control) {
    AnalysisTask task("defects", kWeight, control, outcome);
    LyrDefectResult found;
    const auto body = [&] {
        if (!volume) {
            return task.fail(LYR_MARK_TEXT("LyrAnalysis", "there is no volume; open one first"));
        }
        float threshold = 0.0F;
        if (!lyranalysis::chooseThreshold(*volume, options.threshold, task, threshold)) {
            return false;
        }
        found.thresholdWasGiven = options.threshold.has_value();
        found.minimumVoxels = std::max<std::int64_t>(options.minimumVoxels, 1);
        return Analysis(volume, threshold, task, found).run();
    };
    if (!task.run(body)) {
        return false;
    }
    out = std::move(found);
    return true;
}
