#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include <lyr_volume/LyrVolume.h>

/** How the values of an analysis are spread: over bins of equal width, or over the sections of a colour table. Each
 * value stands for a voxel, so that shares of values are shares of volume. NaN and infinite values stand for no voxel.
 */
struct LyrValueHistogram {
    double low = 0.0;   ///< lower end of the first bin
    double high = 0.0;  ///< upper end of the last bin, whose values belong to it
    std::vector<std::uint64_t> counts;
    std::uint64_t below = 0;  ///< finite values below `low`
    std::uint64_t above = 0;  ///< finite values above `high`
    std::uint64_t total = 0;  ///< all finite values

    /** Lower end of a bin; that of the bin behind the last is `high`. */
    double edge(std::size_t bin) const;

    /** Counts values in `bins` bins of equal width from low to high. A bin holds its lower end but not its upper one,
     * the last holds both. False, with `out` untouched, for no bins or more than a million, or when low and high are
     * not finite numbers with low < high. */
    static bool make(std::span<const float> values, std::size_t bins, double low, double high, LyrValueHistogram& out);

    /** Over the whole range of a volume's values. Where all are equal the range is that value and what lies 0.5 to both
     *  sides. False for a volume without finite values. */
    static bool make(const LyrVolume& values, std::size_t bins, LyrValueHistogram& out);
};

/** The part of the values that lies in each section of a colour table. */
struct LyrSectionShares {
    /** One for each section, one more than there are boundaries. */
    std::vector<std::uint64_t> counts;
    std::uint64_t total = 0;  ///< all finite values

    /** Percent of all values that lie in a section; 0 where there are no values. */
    double percent(std::size_t section) const;

    /** Counts values between ascending boundaries. A value on a boundary belongs to the section below it, on the first
     *  boundary (and those equal to it) to the section above, as in a colour table. False, with `out` untouched, when
     *  the boundaries are not finite or not ascending. Without boundaries there is one section that holds everything.
     */
    static bool make(std::span<const float> values, std::span<const float> boundaries, LyrSectionShares& out);

    /** The section of a value, by the same rule; the value must not be NaN. */
    static std::size_t sectionOf(float value, std::span<const float> boundaries);
};
