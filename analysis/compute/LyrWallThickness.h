#pragma once

#include <memory>
#include <optional>

#include <lyr_volume/LyrVolume.h>

#include <analysis/compute/LyrAnalysisControl.h>
#include <analysis/compute/LyrThicknessResult.h>

/** Measures at every place of the material how thick it is there: the diameter of the largest ball that fits into the
 *  material and covers the place (T. Hildebrand and P. Rüegsegger, "A new method for the model-independent assessment
 *  of thickness in three-dimensional images", 1997).
 *
 *  Material are the samples from the threshold on. Its surface is placed between the samples by their grey values.
 * Where the volume ends the material does not: a part that is cut off is measured by the surfaces that are there, and a
 *  single slice as a flat figure. Balls in convex edges and corners, between faces that meet at more than about 75°, do
 *  not count, since they would tell of thin walls where there are none: what no other ball covers is as thick as what
 *  lies next to it. */
class LyrWallThickness {
public:
    struct Options {
        std::optional<float> threshold;  ///< none: LyrOtsuThreshold
    };

    /** Analyses a volume. False, with a message and `out` untouched, when it cannot be done, as for a volume without
     *  material or without air, and when it was cancelled. May run in any thread and several times at once. */
    static bool run(const std::shared_ptr<const LyrVolume>& volume, const Options& options, LyrThicknessResult& out,
                    LyrAnalysisOutcome& outcome, const LyrAnalysisControl& control = {});
};
