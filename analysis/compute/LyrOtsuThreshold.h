#pragma once

#include <lyr_volume/LyrVolume.h>

#include <analysis/compute/LyrAnalysisControl.h>

/** The grey value that divides a volume into two classes, air and material, after N. Otsu, "A threshold selection
 * method from gray-level histograms", 1979: the variance between the classes is largest.
 *
 *  The histogram has 4096 bins over the range of the finite samples. Where several cuts are equally good, as in the gap
 *  between two separate classes, the one nearest to the middle between the means of the classes is taken. */
class LyrOtsuThreshold {
public:
    /** Samples from `threshold` on are material; both classes hold samples. False, with a message and `threshold`
     *  untouched, for a volume of one value only or without finite samples, and when cancelled. */
    static bool find(const LyrVolume& volume, float& threshold, LyrAnalysisOutcome& outcome,
                     const LyrAnalysisControl& control = {});
};
