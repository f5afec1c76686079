#pragma once

#include <gtest/gtest.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <lyr_volume/LyrCasting.h>
#include <lyr_volume/LyrVolume.h>

namespace testvolumes {

using VolumePtr = std::shared_ptr<const LyrVolume>;
using Place = std::array<double, 3>;

inline constexpr float kAir = 0.0F;
inline constexpr float kSolid = 100.0F;

/** A volume whose samples follow from their indices. */
inline VolumePtr make(LyrVolume::Size size, const std::function<float(std::int64_t, std::int64_t, std::int64_t)>& value,
                      LyrVolume::Vector spacing = {1.0, 1.0, 1.0}, LyrVolume::Vector origin = {0.0, 0.0, 0.0}) {
    LyrVolume::Description description;
    description.size = size;
    description.spacing = spacing;
    description.origin = origin;
    description.source = "made for a test";
    std::vector<float> samples;
    for (std::int64_t z = 0; z < size[2]; ++z) {
        for (std::int64_t y = 0; y < size[1]; ++y) {
            for (std::int64_t x = 0; x < size[0]; ++x) {
                samples.push_back(value(x, y, z));
            }
        }
    }
    return LyrVolume::create(description, std::move(samples));
}

/** Two grey values by a condition on the indices. */
inline VolumePtr makeSolid(LyrVolume::Size size,
                           const std::function<bool(std::int64_t, std::int64_t, std::int64_t)>& isSolid,
                           LyrVolume::Vector spacing = {1.0, 1.0, 1.0}) {
    return make(
        size, [&](std::int64_t x, std::int64_t y, std::int64_t z) { return isSolid(x, y, z) ? kSolid : kAir; },
        spacing);
}

/** A shape in grey values: 8 × 8 × 8 places of each voxel are asked whether they are solid. Places are in voxels, with
 *  the centre of the first voxel at 0. */
inline VolumePtr makeShape(LyrVolume::Size size, const std::function<bool(const Place&)>& isSolid,
                           LyrVolume::Vector spacing = {1.0, 1.0, 1.0}) {
    constexpr int kParts = 8;
    return make(
        size,
        [&](std::int64_t x, std::int64_t y, std::int64_t z) {
            int solid = 0;
            for (int i = 0; i < kParts * kParts * kParts; ++i) {
                const auto part = [&](std::int64_t at, int step) {
                    return static_cast<double>(at) - 0.5 + ((i / step) % kParts + 0.5) / kParts;
                };
                solid += isSolid({part(x, 1), part(y, kParts), part(z, kParts * kParts)}) ? 1 : 0;
            }
            return kAir + (kSolid - kAir) * static_cast<float>(solid) / static_cast<float>(kParts * kParts * kParts);
        },
        spacing);
}

inline double distance(const Place& a, const Place& b) {
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

inline VolumePtr casting(std::int64_t edge, double noisePercent = 0.0, std::uint64_t seed = 1) {
    VolumePtr volume;
    std::string error;
    EXPECT_TRUE(LyrCasting::create({edge, noisePercent, seed}, volume, error)) << error;
    return volume;
}

/** Samples between 0 and 1 without any order, the same everywhere. */
inline VolumePtr noise(LyrVolume::Size size, std::uint32_t seed = 1) {
    std::uint32_t state = seed;
    return make(size, [&state](std::int64_t, std::int64_t, std::int64_t) {
        // Numerical Recipes' linear congruence; its upper bits are good enough here.
        state = state * 1664525U + 1013904223U;
        return static_cast<float>(state >> 8U) / 16777216.0F;
    });
}

inline VolumePtr noise(std::int64_t edge, std::uint32_t seed = 1) {
    return noise({edge, edge, edge}, seed);
}

/** Edge lengths that tests run with: numbers in a variable of the environment take the place of the usual ones. */
inline std::vector<std::int64_t> edgesOf(const char* variable, std::vector<std::int64_t> usual) {
    const char* wanted = std::getenv(variable);
    if (!wanted) {
        return usual;
    }
    std::vector<std::int64_t> edges;
    const std::string_view text(wanted);
    for (std::size_t at = 0; at < text.size();) {
        std::int64_t edge = 0;
        const auto [end, problem] = std::from_chars(text.data() + at, text.data() + text.size(), edge);
        if (problem == std::errc{}) {
            edges.push_back(edge);
        }
        at = static_cast<std::size_t>(end - text.data()) + 1;
    }
    return edges;
}

/** LYS_CASTING_EDGES="256 320" for the long check. */
inline std::vector<std::int64_t> castingEdges(std::vector<std::int64_t> usual) {
    return edgesOf("LYS_CASTING_EDGES", std::move(usual));
}

}  // namespace testvolumes
