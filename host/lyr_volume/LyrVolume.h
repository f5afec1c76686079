#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include <lyr_volume/LyrVolumeExport.h>

/** A scalar volume in memory: samples on a regular grid, with spacing, unit and value range.
 *
 *  Samples are 32-bit floats, x fastest, then y, then z, in the order of the file: nothing is turned, mirrored or
 *  resampled. Slope and intercept of a file are applied, in double, and narrowed to float once. Whole numbers beyond
 *  2^24 (32- and 64-bit files) and doubles are rounded to the nearest float.
 *
 *  A volume never changes after it is made and is shared by `std::shared_ptr<const LyrVolume>`; many threads may read
 * it.
 */
class LYR_VOLUME_EXPORT LyrVolume {
public:
    using Size = std::array<std::int64_t, 3>;  ///< voxels along x, y, z
    using Vector = std::array<double, 3>;      ///< x, y, z, in `unit`

    enum class Axis { X = 0, Y = 1, Z = 2 };

    /** Smallest and largest finite sample; empty (low > high, the largest float and its negative) where there is none.
     */
    struct ValueRange {
        float low = 3.4028235e+38F;
        float high = -3.4028235e+38F;
        bool isEmpty() const { return low > high; }
    };

    /** Everything about a volume but its samples. */
    struct Description {
        Size size{0, 0, 0};
        Vector spacing{1.0, 1.0, 1.0};  ///< distance of neighbouring samples, above zero
        Vector origin{0.0, 0.0, 0.0};   ///< place of the first sample's centre in the file's own axes
        std::string unit = "mm";        ///< unit of spacing and origin; empty where the source gives no distances
        std::string source;             ///< where it comes from: a path, or a built-in name
        std::string format;             ///< what it was stored as, for people: "NRRD, int16, gzip"
    };

    /** A volume of the given samples, which are taken over without a copy. Null when a size is below 1, the number of
     *  samples is not the product of the sizes, or a spacing is not a finite number above zero. */
    static std::shared_ptr<const LyrVolume> create(Description description, std::vector<float>&& samples);

    const Description& description() const { return description_; }
    const Size& size() const { return description_.size; }
    const Vector& spacing() const { return description_.spacing; }
    const Vector& origin() const { return description_.origin; }
    const std::string& unit() const { return description_.unit; }
    const ValueRange& valueRange() const { return range_; }

    /** All samples; sample (x, y, z) is at x + nx · (y + ny · z). */
    std::span<const float> samples() const { return samples_; }

    /** One sample. The indices must lie in the volume. */
    float at(std::int64_t x, std::int64_t y, std::int64_t z) const {
        return samples_[static_cast<std::size_t>(x + size()[0] * (y + size()[1] * z))];
    }

    /** Number of slices across an axis. */
    std::int64_t sliceCount(Axis axis) const { return size()[static_cast<std::size_t>(axis)]; }
    /** Columns of a slice across an axis: ny for X, nx for Y and Z. */
    std::int64_t sliceWidth(Axis axis) const { return size()[axis == Axis::X ? 1 : 0]; }
    /** Rows of a slice across an axis: nz for X and Y, ny for Z. */
    std::int64_t sliceHeight(Axis axis) const { return size()[axis == Axis::Z ? 1 : 2]; }

    /** Copies slice `index` (from 0) across an axis into `out`, row by row, row 0 first, in the order of the samples.
     *  False, with `out` untouched, when there is no such slice or `out` has not exactly width · height places. */
    bool slice(Axis axis, std::int64_t index, std::span<float> out) const;

private:
    LyrVolume(Description&& description, std::vector<float>&& samples);

    Description description_;
    std::vector<float> samples_;
    ValueRange range_;
};
