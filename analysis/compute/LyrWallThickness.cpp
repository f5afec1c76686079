#include <analysis/compute/LyrWallThickness.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include <analysis/compute/InscribedBalls_p.h>
#include <analysis/compute/OtsuStage_p.h>
#include <analysis/compute/SurfaceDistance_p.h>

namespace {

using lyranalysis::AnalysisTask;
using lyranalysis::Grid;

constexpr double kCountWeight = 0.5;
constexpr double kStatisticsWeight = 1.0;
constexpr double kWeight = lyranalysis::kOtsuWeight + kCountWeight + lyranalysis::kDistanceWeight +
                           lyranalysis::kFindBallsWeight + lyranalysis::kPaintBallsWeight +
                           lyranalysis::kFillGapsWeight + kStatisticsWeight;

/** Sums over the samples of slices, added up in their order: the same for any number of threads. */
struct Moments {
    double count = 0.0;
    double sum = 0.0;
    double squares = 0.0;
    double least = std::numeric_limits<double>::max();
    double greatest = 0.0;

    void add(double value) {
        count += 1.0;
        sum += value;
        squares += value * value;
        least = std::min(least, value);
        greatest = std::max(greatest, value);
    }
    void add(const Moments& other) {
        count += other.count;
        sum += other.sum;
        squares += other.squares;
        least = std::min(least, other.least);
        greatest = std::max(greatest, other.greatest);
    }
};

class Analysis {
public:
    Analysis(const std::shared_ptr<const LyrVolume>& volume, float threshold, AnalysisTask& task,
             LyrThicknessResult& out)
        : grid_(*volume, threshold), task_(task), out_(out) {
        out_.volume = volume;
        out_.threshold = threshold;
        out_.voxelVolume = grid_.voxelVolume();
    }

    bool run() {
        std::vector<float> values;
        std::vector<lyranalysis::Ball> balls;
        if (!task_.claim(grid_.voxels() * lyranalysis::kDistanceBytes) || !countMaterial() ||
            !lyranalysis::findSurfaceDistances(grid_, task_, values) ||
            !lyranalysis::findInscribedBalls(grid_, values, task_, balls) ||
            !lyranalysis::paintDiameters(grid_, balls, task_, values) || !measure(values)) {
            return false;
        }
        LyrVolume::Description description = out_.volume->description();
        description.format = "wall thickness in mm";
        out_.values = LyrVolume::create(std::move(description), std::move(values));
        return out_.values != nullptr;
    }

private:
    /** Calls visit(index) for each voxel of a slice. */
    template <typename Visit>
    void forSlice(std::size_t slice, const Visit& visit) const {
        const std::size_t end = (slice + 1) * grid_.sliceLength();
        for (std::size_t i = slice * grid_.sliceLength(); i < end; ++i) {
            visit(i);
        }
    }

    bool countMaterial() {
        std::vector<std::uint64_t> counts(grid_.depth());
        if (!task_.stage(kCountWeight, grid_.depth(), [&](std::size_t slice, std::size_t) {
                std::uint64_t count = 0;
                forSlice(slice, [&](std::size_t i) { count += grid_.isMaterial(i) ? 1 : 0; });
                counts[slice] = count;
            })) {
            return false;
        }
        for (const std::uint64_t count : counts) {
            out_.materialVoxels += count;
        }
        if (out_.materialVoxels == 0) {
            return task_.fail(LYR_MARK_TEXT(
                "LyrAnalysis",
                "there is no material, because no sample reaches the threshold; choose a lower threshold"));
        }
        if (out_.materialVoxels == grid_.voxels()) {
            return task_.fail(LYR_MARK_TEXT("LyrAnalysis",
                                            "there is no air, because all samples reach the threshold, and so no "
                                            "surface to measure from; choose a higher threshold"));
        }
        out_.countedMaterialVolume = static_cast<double>(out_.materialVoxels) * out_.voxelVolume;
        return true;
    }

    bool measure(const std::vector<float>& values) {
        std::vector<Moments> slices(grid_.depth());
        if (!task_.stage(kStatisticsWeight / 2.0, grid_.depth(), [&](std::size_t slice, std::size_t) {
                Moments sums;
                forSlice(slice, [&](std::size_t i) {
                    if (grid_.isMaterial(i)) {
                        sums.add(static_cast<double>(values[i]));
                    }
                });
                slices[slice] = sums;
            })) {
            return false;
        }
        Moments all;
        for (const Moments& slice : slices) {
            all.add(slice);
        }
        out_.least = all.least;
        out_.greatest = all.greatest;
        out_.mean = all.sum / all.count;
        out_.deviation = std::sqrt(std::max(all.squares / all.count - out_.mean * out_.mean, 0.0));
        return findMedian(values);
    }

    /** The middle of all values in order; the lower of two middle ones. They are above zero, so that their bits are in
     *  the same order: the upper half of the bits is found first, then the lower one. */
    bool findMedian(const std::vector<float>& values) {
        std::uint64_t before = (out_.materialVoxels - 1) / 2;
        std::uint32_t upper = 0;
        std::uint32_t lower = 0;
        const auto upperHalf = [](std::uint32_t bits) { return bits >> 16U; };
        if (!findHalf(
                values, [](std::uint32_t) { return true; }, upperHalf, before, upper) ||
            !findHalf(
                values, [&](std::uint32_t bits) { return upperHalf(bits) == upper; },
                [](std::uint32_t bits) { return bits & 0xFFFFU; }, before, lower)) {
            return false;
        }
        out_.median = static_cast<double>(std::bit_cast<float>(upper << 16U | lower));
        return true;
    }

    /** The half of the bits of the value that has `before` others before it, of the material's that count; `before`
     *  becomes the number before it among those of this half. */
    template <typename Counts, typename Half>
    bool findHalf(const std::vector<float>& values, const Counts& countsIn, const Half& half, std::uint64_t& before,
                  std::uint32_t& found) {
        constexpr std::size_t kHalves = 65536;
        std::vector<std::vector<std::uint64_t>> counts(task_.threads(), std::vector<std::uint64_t>(kHalves));
        if (!task_.stage(kStatisticsWeight / 4.0, grid_.depth(), [&](std::size_t slice, std::size_t worker) {
                forSlice(slice, [&](std::size_t i) {
                    const auto bits = std::bit_cast<std::uint32_t>(values[i]);
                    if (!std::isnan(values[i]) && countsIn(bits)) {
                        ++counts[worker][half(bits)];
                    }
                });
            })) {
            return false;
        }
        const auto countOf = [&](std::uint32_t value) {
            std::uint64_t sum = 0;
            for (const std::vector<std::uint64_t>& mine : counts) {
                sum += mine[value];
            }
            return sum;
        };
        found = 0;
        for (std::uint64_t here = countOf(0); before >= here && found + 1 < kHalves; here = countOf(found)) {
            before -= here;
            ++found;
        }
        return true;
    }

    Grid grid_;
    AnalysisTask& task_;
    LyrThicknessResult& out_;
};

}  // namespace

bool LyrWallThickness::run(const std::shared_ptr<const LyrVolume>& volume, const Options& options,
                           LyrThicknessResult& out, LyrAnalysisOutcome& outcome, const LyrAnalysisControl& control) {
    AnalysisTask task("wall thickness", kWeight, control, outcome);
    LyrThicknessResult found;
    const auto body = [&] {
        if (!volume) {
            return task.fail(LYR_MARK_TEXT("LyrAnalysis", "there is no volume; open one first"));
        }
        float threshold = 0.0F;
        if (!lyranalysis::chooseThreshold(*volume, options.threshold, task, threshold)) {
            return false;
        }
        found.thresholdWasGiven = options.threshold.has_value();
        return Analysis(volume, threshold, task, found).run();
    };
    if (!task.run(body)) {
        return false;
    }
    out = std::move(found);
    return true;
}
