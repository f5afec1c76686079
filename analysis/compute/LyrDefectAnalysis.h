#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include <lyr_volume/LyrVolume.h>

#include <analysis/compute/LyrAnalysisControl.h>
#include <analysis/compute/LyrDefectResult.h>

/** Finds and measures the hollows that lie inside the material of a volume: pores, shrink holes, inclusions of air.
 *
 *  Material are the samples from the threshold on. What is no material falls into regions of voxels that share faces; a
 *  region that reaches the edge of the volume is outside, and so is what opens to it, as a bore. All others are
 * defects.
 *
 *  The volume of a defect is finer than its voxels: where a voxel's surroundings of 3 × 3 × 3 voxels are not all of one
 *  class, its grey value between the levels of air and material tells how much of it is air. The levels are those of
 *  the whole volume, unless those around and in the defect differ from them by more than chance. */
class LyrDefectAnalysis {
public:
    /** Hollows of a single voxel are more often noise than not. */
    static constexpr std::int64_t kMinimumVoxels = 2;

    struct Options {
        std::optional<float> threshold;  ///< none: LyrOtsuThreshold
        std::int64_t minimumVoxels = kMinimumVoxels;
    };

    /** Analyses a volume. False, with a message and `out` untouched, when it cannot be done or was cancelled; a volume
     *  without a defect is a success. May run in any thread and several times at once. */
    static bool run(const std::shared_ptr<const LyrVolume>& volume, const Options& options, LyrDefectResult& out,
                    LyrAnalysisOutcome& outcome, const LyrAnalysisControl& control = {});
};
