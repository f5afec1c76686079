#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include <lyr_volume/LyrVolume.h>

namespace lyranalysis {

/** Where the surface lies between two neighbours, from the material one on: 0 at its centre, 1 at the other's. */
inline double surfacePart(float material, float air, float threshold) {
    const double step = static_cast<double>(material) - static_cast<double>(air);
    const double part = (static_cast<double>(material) - static_cast<double>(threshold)) / step;
    return std::isfinite(part) ? std::clamp(part, 0.0, 1.0) : 0.5;
}

/** The shape of a volume with its samples, and which of them are material: those that are not below the threshold.
 *  A sample that is no number is none. */
struct Grid {
    Grid(const LyrVolume& volume, float materialFrom)
        : samples(volume.samples()),
          size(volume.size()),
          spacing(volume.spacing()),
          range(volume.valueRange()),
          threshold(materialFrom) {}

    std::span<const float> samples;
    LyrVolume::Size size;
    LyrVolume::Vector spacing;  ///< mm
    LyrVolume::ValueRange range;
    float threshold;

    bool isMaterial(std::size_t index) const { return samples[index] >= threshold; }
    std::size_t index(std::int64_t x, std::int64_t y, std::int64_t z) const {
        return static_cast<std::size_t>(x + size[0] * (y + size[1] * z));
    }
    std::size_t width() const { return static_cast<std::size_t>(size[0]); }
    std::size_t height() const { return static_cast<std::size_t>(size[1]); }
    std::size_t depth() const { return static_cast<std::size_t>(size[2]); }
    std::size_t sliceLength() const { return width() * height(); }
    std::size_t voxels() const { return samples.size(); }
    double voxelVolume() const { return spacing[0] * spacing[1] * spacing[2]; }
    /** Edge of a cube with the volume of a voxel. */
    double meanSpacing() const { return std::cbrt(voxelVolume()); }
    /** The index inside the grid that is nearest to i along an axis. */
    std::int64_t inside(std::size_t axis, std::int64_t i) const {
        return i < 0 ? 0 : i >= size[axis] ? size[axis] - 1 : i;
    }
};

}  // namespace lyranalysis
