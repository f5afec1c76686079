#include <lyr_volume/LyrVolumeSurface.h>

#include <openvdb/Grid.h>
#include <openvdb/openvdb.h>
#include <openvdb/tools/VolumeToMesh.h>

#include <lyr_volume/LyrMemory_p.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <new>
#include <utility>

namespace {

/** Edge of the blocks in which the volume is looked at: that of the mesher's leaves. */
constexpr std::int64_t BLOCK = 8;
/** What a block that the surface goes through takes, at most and together with its part of the mesh, in bytes. */
constexpr std::uint64_t BLOCK_BYTES = 16 * 1024;
constexpr int HISTOGRAM_BINS = 1024;

struct Range {
    float low = std::numeric_limits<float>::max();
    float high = -std::numeric_limits<float>::max();
};

/** A volume cut into blocks of 8³, with a rim of empty blocks around it. */
class Blocks {
public:
    Blocks(const LyrVolume& volume, float value, float low)
        : mSamples(volume.samples()), mSize(volume.size()), mValue(value), mLow(low) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            mCount[axis] = (mSize[axis] + BLOCK - 1) / BLOCK + 2;
        }
    }

    std::int64_t layers() const { return mCount[2]; }
    std::uint64_t total() const { return static_cast<std::uint64_t>(mCount[0] * mCount[1] * mCount[2]); }

    void measure() {
        mRanges.assign(total(), Range{mLow, mLow});
        for (std::int64_t z = 0; z < mSize[2]; ++z) {
            for (std::int64_t y = 0; y < mSize[1]; ++y) {
                measureRow(y, z);
            }
        }
    }

    bool isHigh(std::int64_t x, std::int64_t y, std::int64_t z) const { return range(x, y, z).low >= mValue; }

    /** Whether the surface may lie in the block or between it and a neighbour. */
    bool isCrossed(std::int64_t x, std::int64_t y, std::int64_t z) const {
        Range all;
        for (std::int64_t k = std::max<std::int64_t>(z - 1, 0); k <= std::min(z + 1, mCount[2] - 1); ++k) {
            for (std::int64_t j = std::max<std::int64_t>(y - 1, 0); j <= std::min(y + 1, mCount[1] - 1); ++j) {
                for (std::int64_t i = std::max<std::int64_t>(x - 1, 0); i <= std::min(x + 1, mCount[0] - 1); ++i) {
                    all.low = std::min(all.low, range(i, j, k).low);
                    all.high = std::max(all.high, range(i, j, k).high);
                }
            }
        }
        return all.low < mValue && all.high >= mValue;
    }

    std::uint64_t crossedCount() const {
        std::uint64_t count = 0;
        for (std::int64_t z = 0; z < mCount[2]; ++z) {
            for (std::int64_t y = 0; y < mCount[1]; ++y) {
                for (std::int64_t x = 0; x < mCount[0]; ++x) {
                    count += isCrossed(x, y, z) ? 1 : 0;
                }
            }
        }
        return count;
    }

    /** Enters one layer of blocks into a grid. */
    void fill(openvdb::FloatTree& tree, std::int64_t z) const {
        for (std::int64_t y = 0; y < mCount[1]; ++y) {
            for (std::int64_t x = 0; x < mCount[0]; ++x) {
                const openvdb::Coord origin(first(x), first(y), first(z));
                if (isCrossed(x, y, z)) {
                    fillLeaf(*tree.touchLeaf(origin), origin);
                } else if (isHigh(x, y, z)) {
                    tree.addTile(1, origin, range(x, y, z).high, false);
                }
            }
        }
    }

private:
    static openvdb::Int32 first(std::int64_t block) { return static_cast<openvdb::Int32>((block - 1) * BLOCK); }

    const Range& range(std::int64_t x, std::int64_t y, std::int64_t z) const {
        return mRanges[static_cast<std::size_t>(x + mCount[0] * (y + mCount[1] * z))];
    }

    float sample(std::int64_t x, std::int64_t y, std::int64_t z) const {
        const float v = mSamples[static_cast<std::size_t>(x + mSize[0] * (y + mSize[1] * z))];
        return std::isfinite(v) ? v : mLow;
    }

    void measureRow(std::int64_t y, std::int64_t z) {
        const std::int64_t row = mCount[0] * (y / BLOCK + 1 + mCount[1] * (z / BLOCK + 1)) + 1;
        for (std::int64_t begin = 0; begin < mSize[0]; begin += BLOCK) {
            Range& block = mRanges[static_cast<std::size_t>(row + begin / BLOCK)];
            // Its first row replaces what the block was set to. One that the volume only fills in part stays low.
            const bool whole = begin + BLOCK <= mSize[0] && z / BLOCK * BLOCK + BLOCK <= mSize[2] &&
                               y / BLOCK * BLOCK + BLOCK <= mSize[1];
            if (whole && y % BLOCK == 0 && z % BLOCK == 0) {
                block = Range();
            }
            for (std::int64_t x = begin; x < std::min(begin + BLOCK, mSize[0]); ++x) {
                const float v = sample(x, y, z);
                block.low = std::min(block.low, v);
                block.high = std::max(block.high, v);
            }
        }
    }

    void fillLeaf(openvdb::FloatTree::LeafNodeType& leaf, const openvdb::Coord& origin) const {
        for (openvdb::Index offset = 0; offset < openvdb::FloatTree::LeafNodeType::SIZE; ++offset) {
            const openvdb::Coord place = origin + openvdb::FloatTree::LeafNodeType::offsetToLocalCoord(offset);
            const bool inside = place.x() >= 0 && place.y() >= 0 && place.z() >= 0 && place.x() < mSize[0] &&
                                place.y() < mSize[1] && place.z() < mSize[2];
            leaf.setValueOn(offset, inside ? sample(place.x(), place.y(), place.z()) : mirrored(place));
        }
    }

    /** Beyond the border: as far below the value as the nearest sample lies above it, so that the surface runs along
     * the outer faces of the voxels. */
    float mirrored(const openvdb::Coord& place) const {
        const auto nearest = [this](std::int64_t index, std::size_t axis) {
            return std::clamp<std::int64_t>(index, 0, mSize[axis] - 1);
        };
        const double above =
            static_cast<double>(sample(nearest(place.x(), 0), nearest(place.y(), 1), nearest(place.z(), 2)) - mValue);
        const double below = static_cast<double>(mValue) - std::max(above, 0.0);
        const double lowest = static_cast<double>(-std::numeric_limits<float>::max());
        return std::min(static_cast<float>(std::max(below, lowest)), std::nextafter(mValue, -HUGE_VALF));
    }

    std::span<const float> mSamples;
    LyrVolume::Size mSize;
    LyrVolume::Size mCount{};
    float mValue;
    float mLow;
    std::vector<Range> mRanges;
};

LyrVector3<float> cross(const LyrVector3<float>& a, const LyrVector3<float>& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/** Normals as the mean of the faces around, each weighted by its area. */
void addNormals(LyrVolumeSurface& surface) {
    surface.normals.assign(surface.positions.size(), {});
    for (const auto& triangle : surface.triangles) {
        const LyrVector3<float>& a = surface.positions[triangle[0]];
        const LyrVector3<float> face = cross(surface.positions[triangle[1]] - a, surface.positions[triangle[2]] - a);
        for (const std::uint32_t corner : triangle) {
            surface.normals[corner] = surface.normals[corner] + face;
        }
    }
    for (LyrVector3<float>& normal : surface.normals) {
        const float length = std::sqrt(normal.x * normal.x + normal.y * normal.y + normal.z * normal.z);
        normal = length > 0.0f ? normal * (1.0f / length) : LyrVector3<float>{0.0f, 0.0f, 1.0f};
    }
}

/** The mesher's points are in voxels, whole numbers at their centres; it takes what lies below the value as inside, so
 * its faces look the other way. */
std::shared_ptr<LyrVolumeSurface> toSurface(const std::vector<openvdb::Vec3s>& points,
                                            const std::vector<openvdb::Vec3I>& triangles,
                                            const std::vector<openvdb::Vec4I>& quads,
                                            const LyrVolume::Vector& spacing) {
    auto surface = std::make_shared<LyrVolumeSurface>();
    surface->positions.reserve(points.size());
    for (const openvdb::Vec3s& point : points) {
        surface->positions.push_back({static_cast<float>((static_cast<double>(point[0]) + 0.5) * spacing[0]),
                                      static_cast<float>((static_cast<double>(point[1]) + 0.5) * spacing[1]),
                                      static_cast<float>((static_cast<double>(point[2]) + 0.5) * spacing[2])});
    }
    surface->triangles.reserve(triangles.size() + 2 * quads.size());
    for (const openvdb::Vec3I& t : triangles) {
        surface->triangles.push_back({t[2], t[1], t[0]});
    }
    for (const openvdb::Vec4I& q : quads) {
        surface->triangles.push_back({q[2], q[1], q[0]});
        surface->triangles.push_back({q[3], q[2], q[0]});
    }
    addNormals(*surface);
    return surface;
}

const char* const NO_MEMORY =
    "There is not enough memory for the surface of this volume. Close other programs, or open a part of the volume.";

bool extractSurface(const LyrVolume& volume, float value, std::shared_ptr<const LyrVolumeSurface>& out,
                    std::string& error, const LyrVolumeSurface::Progress& progress) {
    const auto goesOn = [&](double part) { return !progress || progress(part); };
    const float least = volume.valueRange().isEmpty() ? value : std::min(volume.valueRange().low, value);
    const float low = least < value ? least : std::nextafter(value, -HUGE_VALF);
    if (!std::isfinite(low)) {
        error = "A surface needs a value above the smallest number.";
        return false;
    }
    Blocks blocks(volume, value, low);
    if (!goesOn(0.0)) {
        return false;
    }
    blocks.measure();
    if (blocks.crossedCount() * BLOCK_BYTES > lyrvolume::availableMemory()) {
        error = NO_MEMORY;
        return false;
    }
    const openvdb::FloatGrid::Ptr grid = openvdb::FloatGrid::create(low);
    for (std::int64_t z = 0; z < blocks.layers(); ++z) {
        if (!goesOn(0.1 + 0.3 * static_cast<double>(z) / static_cast<double>(blocks.layers()))) {
            return false;
        }
        blocks.fill(grid->tree(), z);
    }
    std::vector<openvdb::Vec3s> points;
    std::vector<openvdb::Vec3I> triangles;
    std::vector<openvdb::Vec4I> quads;
    openvdb::tools::volumeToMesh(*grid, points, triangles, quads, static_cast<double>(value));
    if (!goesOn(0.8)) {
        return false;
    }
    out = toSurface(points, triangles, quads, volume.spacing());
    return true;
}

}  // namespace

bool LyrVolumeSurface::extract(const LyrVolume& volume, float value, std::shared_ptr<const LyrVolumeSurface>& out,
                               std::string& error, const Progress& progress) {
    error.clear();
    if (!std::isfinite(value)) {
        error = "A surface needs a finite value to lie at.";
        return false;
    }
    try {
        return extractSurface(volume, value, out, error, progress);
    } catch (const std::bad_alloc&) {
        error = NO_MEMORY;
    } catch (const std::exception& problem) {
        error = std::string("The surface could not be made: ") + problem.what();
    }
    return false;
}

float LyrVolumeSurface::suggestValue(const LyrVolume& volume) {
    const LyrVolume::ValueRange& range = volume.valueRange();
    if (range.isEmpty() || range.low == range.high) {
        return range.isEmpty() ? 0.0f : range.low;
    }
    // In double: the width of a range may exceed the largest float.
    const double low = range.low;
    const double width = static_cast<double>(range.high) - low;
    std::vector<double> counts(HISTOGRAM_BINS, 0.0);
    double total = 0.0;
    for (const float v : volume.samples()) {
        if (std::isfinite(v)) {
            const int bin = static_cast<int>((static_cast<double>(v) - low) / width * HISTOGRAM_BINS);
            counts[static_cast<std::size_t>(std::clamp(bin, 0, HISTOGRAM_BINS - 1))] += 1.0;
            total += 1.0;
        }
    }
    double sum = 0.0;
    for (int bin = 0; bin < HISTOGRAM_BINS; ++bin) {
        sum += bin * counts[static_cast<std::size_t>(bin)];
    }
    // Empty bins between two peaks leave the variance as it is: the middle of such a run is taken.
    double below = 0.0, belowSum = 0.0, best = -1.0;
    int firstBest = 0, lastBest = 0;
    for (int bin = 0; bin + 1 < HISTOGRAM_BINS; ++bin) {
        below += counts[static_cast<std::size_t>(bin)];
        belowSum += bin * counts[static_cast<std::size_t>(bin)];
        const double above = total - below;
        if (below == 0.0 || above == 0.0) {
            continue;
        }
        const double distance = belowSum / below - (sum - belowSum) / above;
        const double variance = below * above * distance * distance;
        if (variance > best) {
            best = variance;
            firstBest = lastBest = bin;
        } else if (variance == best) {
            lastBest = bin;
        }
    }
    const double cut = 0.5 * (firstBest + lastBest) + 1.0;
    return static_cast<float>(low + width * cut / HISTOGRAM_BINS);
}
