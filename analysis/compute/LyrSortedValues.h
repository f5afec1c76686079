#pragma once

#include <span>
#include <vector>

#include <lyr_volume/LyrVolume.h>

#include <analysis/compute/LyrAnalysisControl.h>
#include <analysis/compute/LyrValueHistogram.h>

/** The finite values of an analysis in ascending order, so that shares and histograms follow at once, however many
 * values there are, while somebody drags a boundary of a table. Made once for a result, in the background. */
class LyrSortedValues {
public:
    /** Sorts the values of a volume. False, with a message and `out` untouched, when there is not enough memory (4
     * bytes for each finite value) or when cancelled. No finite values are no error. */
    static bool make(const LyrVolume& values, LyrSortedValues& out, LyrAnalysisOutcome& outcome,
                     const LyrAnalysisControl& control = {});

    std::span<const float> values() const { return values_; }

    /** As LyrSectionShares::make and LyrValueHistogram::make over all the values. */
    bool shares(std::span<const float> boundaries, LyrSectionShares& out) const;
    bool histogram(std::size_t bins, double low, double high, LyrValueHistogram& out) const;

private:
    std::vector<float> values_;
};
