#include <lyr_volume/LyrCasting.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <numbers>
#include <utility>

#include <lyr_volume/LyrMemory_p.h>

namespace {

constexpr const char* kMemoryError = "built-in casting: not enough memory for this edge length; take a smaller one";

constexpr double kEdge = 64.0;
constexpr float kAir = 1000.0F;
constexpr float kMaterial = 30000.0F;
constexpr std::array<double, 3> kBlockLow{4.0, 4.0, 4.0};
constexpr std::array<double, 3> kBlockHigh{60.0, 60.0, 28.0};

using Place = std::array<double, 3>;

struct PoreShape {
    Place center;
    Place radii;
};

// Diameters from 2 to 8 mm. The centres avoid round numbers, so that each meets the grid in its own way.
constexpr std::array<PoreShape, 16> kPores{{
    {{11.3, 11.2, 15.7}, {1.00, 1.00, 1.00}},
    {{22.1, 10.6, 17.3}, {1.25, 1.25, 1.25}},
    {{42.4, 11.8, 14.9}, {1.50, 1.50, 1.50}},
    {{52.7, 10.9, 16.4}, {1.75, 1.75, 1.75}},
    {{11.6, 24.3, 16.8}, {2.00, 2.00, 2.00}},
    {{21.7, 23.8, 15.2}, {2.25, 2.25, 2.25}},
    {{42.9, 24.6, 17.1}, {2.50, 2.50, 2.50}},
    {{52.2, 23.5, 15.6}, {2.75, 2.75, 2.75}},
    {{12.2, 37.4, 16.1}, {3.00, 3.00, 3.00}},
    {{22.6, 36.9, 15.3}, {3.50, 3.50, 3.50}},
    {{42.1, 37.2, 16.6}, {4.00, 4.00, 4.00}},
    {{52.4, 36.6, 15.1}, {2.00, 3.00, 2.50}},
    {{32.3, 12.1, 19.2}, {3.00, 2.00, 1.50}},
    {{31.8, 24.7, 19.6}, {2.00, 4.00, 2.00}},
    {{32.1, 37.8, 18.7}, {1.50, 1.50, 3.00}},
    {{25.4, 17.3, 7.2}, {1.50, 1.50, 1.50}},
}};

// Thickness and height of the walls, each standing on the block; 3 mm of air between neighbours.
constexpr std::array<std::array<double, 2>, 6> kWalls{
    {{2.0, 16.0}, {3.0, 18.0}, {4.0, 20.0}, {6.0, 24.0}, {8.0, 28.0}, {10.0, 30.0}}};
constexpr double kWallStart = 8.0;
constexpr double kWallGap = 3.0;
constexpr double kWallLowY = 6.0;
constexpr double kWallHighY = 47.0;

double boxVolume(const Place& low, const Place& high) {
    return (high[0] - low[0]) * (high[1] - low[1]) * (high[2] - low[2]);
}

std::vector<LyrCasting::Wall> makeWalls() {
    std::vector<LyrCasting::Wall> walls;
    double x = kWallStart;
    for (const auto& [thickness, height] : kWalls) {
        walls.push_back(
            {{x, kWallLowY, kBlockHigh[2]}, {x + thickness, kWallHighY, kBlockHigh[2] + height}, thickness});
        x += thickness + kWallGap;
    }
    return walls;
}

std::vector<LyrCasting::Bore> makeBores() {
    using Axis = LyrVolume::Axis;
    return {{Axis::Z, {12.0, 53.7, kBlockLow[2]}, {12.0, 53.7, kBlockHigh[2]}, 3.0},
            {Axis::Z, {52.0, 53.7, kBlockLow[2]}, {52.0, 53.7, kBlockHigh[2]}, 2.0},
            {Axis::Y, {32.2, kBlockLow[1], 8.1}, {32.2, kBlockHigh[1], 8.1}, 1.5}};
}

/** Share of voxel `index` that lies in [low, high]. */
double overlap(std::int64_t index, double spacing, double low, double high) {
    const double first = static_cast<double>(index) * spacing;
    const double shared = std::min(first + spacing, high) - std::max(first, low);
    return std::clamp(shared / spacing, 0.0, 1.0);
}

std::vector<double> overlaps(std::int64_t edge, double spacing, double low, double high) {
    std::vector<double> shares(static_cast<std::size_t>(edge));
    for (std::int64_t i = 0; i < edge; ++i) {
        shares[static_cast<std::size_t>(i)] = overlap(i, spacing, low, high);
    }
    return shares;
}

/** Signed distance to an ellipsoid around the origin, below zero inside: its level function over the length of its
 *  gradient, which is exact for a ball and right to first order near any surface. */
double ellipsoidDistance(const Place& p, const Place& radii) {
    double level = 0.0;
    double gradient = 0.0;
    for (std::size_t k = 0; k < 3; ++k) {
        const double scaled = p[k] / radii[k];
        level += scaled * scaled;
        gradient += scaled * scaled / (radii[k] * radii[k]);
    }
    level = std::sqrt(level);
    gradient = std::sqrt(gradient);
    return gradient > 0.0 ? level * (level - 1.0) / gradient : -*std::min_element(radii.begin(), radii.end());
}

/** Fills the grid with shares of material and turns them into grey values. */
class Builder {
public:
    explicit Builder(std::int64_t edge)
        : edge_(edge),
          spacing_(kEdge / static_cast<double>(edge)),
          // Round surfaces are sampled with about 1024 places across the cube, at least 2 and at most 16 in a voxel.
          subdivision_(static_cast<int>(std::clamp<std::int64_t>(1024 / edge, 2, 16))) {}

    std::vector<float> build() {
        values_.assign(static_cast<std::size_t>(edge_ * edge_ * edge_), kAir);
        addBox(kBlockLow, kBlockHigh);
        for (const LyrCasting::Wall& wall : makeWalls()) {
            addBox(wall.low, wall.high);
        }
        for (const LyrCasting::Bore& bore : makeBores()) {
            removeBore(bore);
        }
        for (const PoreShape& pore : kPores) {
            removePore(pore);
        }
        return std::move(values_);
    }

private:
    /** First and last voxel that a stretch touches, kept inside the grid. */
    std::pair<std::int64_t, std::int64_t> voxels(double low, double high) const {
        const auto first = static_cast<std::int64_t>(std::floor(low / spacing_));
        const auto last = static_cast<std::int64_t>(std::floor(high / spacing_));
        return {std::clamp<std::int64_t>(first, 0, edge_ - 1), std::clamp<std::int64_t>(last, 0, edge_ - 1)};
    }

    /** Adds a share of material (below zero: removes it). Solids never overlap, so plain sums are exact; the limits
     *  only take rounding off. */
    void add(std::int64_t x, std::int64_t y, std::int64_t z, double share) {
        float& value = values_[static_cast<std::size_t>(x + edge_ * (y + edge_ * z))];
        const double sum = static_cast<double>(value) + share * static_cast<double>(kMaterial - kAir);
        value = std::clamp(static_cast<float>(sum), kAir, kMaterial);
    }

    void addBox(const Place& low, const Place& high) {
        const std::vector<double> shareX = overlaps(edge_, spacing_, low[0], high[0]);
        const auto [x0, x1] = voxels(low[0], high[0]);
        const auto [y0, y1] = voxels(low[1], high[1]);
        const auto [z0, z1] = voxels(low[2], high[2]);
        for (std::int64_t z = z0; z <= z1; ++z) {
            const double shareZ = overlap(z, spacing_, low[2], high[2]);
            for (std::int64_t y = y0; y <= y1; ++y) {
                const double shareYZ = shareZ * overlap(y, spacing_, low[1], high[1]);
                for (std::int64_t x = x0; x <= x1; ++x) {
                    add(x, y, z, shareX[static_cast<std::size_t>(x)] * shareYZ);
                }
            }
        }
    }

    /** Share of a square voxel inside a circle: a ramp over one sub-square around the rim, averaged. */
    double circleShare(double u, double v, double radius) const {
        const double reach = spacing_ * std::numbers::sqrt2 / 2.0;
        const double middle = std::hypot(u, v) - radius;
        if (std::abs(middle) > reach) {
            return middle < 0.0 ? 1.0 : 0.0;
        }
        const double step = spacing_ / subdivision_;
        double sum = 0.0;
        for (int j = 0; j < subdivision_; ++j) {
            for (int i = 0; i < subdivision_; ++i) {
                const double du = u - spacing_ / 2.0 + (i + 0.5) * step;
                const double dv = v - spacing_ / 2.0 + (j + 0.5) * step;
                sum += std::clamp(0.5 - (std::hypot(du, dv) - radius) / step, 0.0, 1.0);
            }
        }
        return sum / (subdivision_ * subdivision_);
    }

    void removeBore(const LyrCasting::Bore& bore) {
        const auto w = static_cast<std::size_t>(bore.axis);
        const std::size_t u = bore.axis == LyrVolume::Axis::X ? 1 : 0;
        const std::size_t v = bore.axis == LyrVolume::Axis::Z ? 1 : 2;
        const auto [u0, u1] = voxels(bore.from[u] - bore.radius, bore.from[u] + bore.radius);
        const auto [v0, v1] = voxels(bore.from[v] - bore.radius, bore.from[v] + bore.radius);
        const auto [w0, w1] = voxels(bore.from[w], bore.to[w]);
        std::array<std::int64_t, 3> at{};
        for (at[v] = v0; at[v] <= v1; ++at[v]) {
            for (at[u] = u0; at[u] <= u1; ++at[u]) {
                const double share =
                    circleShare(center(at[u]) - bore.from[u], center(at[v]) - bore.from[v], bore.radius);
                for (at[w] = w0; at[w] <= w1; ++at[w]) {
                    add(at[0], at[1], at[2], -share * overlap(at[w], spacing_, bore.from[w], bore.to[w]));
                }
            }
        }
    }

    double center(std::int64_t index) const { return (static_cast<double>(index) + 0.5) * spacing_; }

    /** Share of a voxel inside an ellipsoid; `p` is the voxel's centre seen from the ellipsoid's. */
    double ellipsoidShare(const Place& p, const Place& radii) const {
        // A voxel wholly inside or outside is settled by bounds that hold for every ellipsoid.
        double nearest = 0.0;
        double farthest = 0.0;
        for (std::size_t k = 0; k < 3; ++k) {
            const double inner = std::max(0.0, std::abs(p[k]) - spacing_ / 2.0) / radii[k];
            const double outer = (std::abs(p[k]) + spacing_ / 2.0) / radii[k];
            nearest += inner * inner;
            farthest += outer * outer;
        }
        if (nearest >= 1.0 || farthest <= 1.0) {
            return nearest >= 1.0 ? 0.0 : 1.0;
        }
        const double step = spacing_ / subdivision_;
        double sum = 0.0;
        for (int c = 0; c < subdivision_; ++c) {
            for (int b = 0; b < subdivision_; ++b) {
                for (int a = 0; a < subdivision_; ++a) {
                    const Place q{p[0] - spacing_ / 2.0 + (a + 0.5) * step, p[1] - spacing_ / 2.0 + (b + 0.5) * step,
                                  p[2] - spacing_ / 2.0 + (c + 0.5) * step};
                    sum += std::clamp(0.5 - ellipsoidDistance(q, radii) / step, 0.0, 1.0);
                }
            }
        }
        return sum / (subdivision_ * subdivision_ * subdivision_);
    }

    void removePore(const PoreShape& pore) {
        std::array<std::pair<std::int64_t, std::int64_t>, 3> reach;
        for (std::size_t k = 0; k < 3; ++k) {
            reach[k] = voxels(pore.center[k] - pore.radii[k], pore.center[k] + pore.radii[k]);
        }
        for (std::int64_t z = reach[2].first; z <= reach[2].second; ++z) {
            for (std::int64_t y = reach[1].first; y <= reach[1].second; ++y) {
                for (std::int64_t x = reach[0].first; x <= reach[0].second; ++x) {
                    const Place p{center(x) - pore.center[0], center(y) - pore.center[1], center(z) - pore.center[2]};
                    add(x, y, z, -ellipsoidShare(p, pore.radii));
                }
            }
        }
    }

    std::int64_t edge_;
    double spacing_;
    int subdivision_;
    std::vector<float> values_;
};

/** One step of the SplitMix64 generator (Steele, Lea, Flood 2014), used as a hash of the voxel's number. */
std::uint64_t mix(std::uint64_t value) {
    value += 0x9E3779B97F4A7C15U;
    value = (value ^ (value >> 30U)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27U)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31U);
}

/** Adds bell-shaped noise: four uniform 16-bit numbers summed, scaled to the standard deviation, at most 3.5 of them.
 */
void addNoise(std::vector<float>& values, double percent, std::uint64_t seed) {
    const double deviation = percent / 100.0 * static_cast<double>(kMaterial - kAir);
    const double scale = deviation / (65536.0 / std::numbers::sqrt3);  // four uniforms: variance 4 · 65536² / 12
    const std::uint64_t start = mix(seed);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::uint64_t bits = mix(start + i);
        const auto sum = static_cast<double>((bits & 0xFFFFU) + ((bits >> 16U) & 0xFFFFU) + ((bits >> 32U) & 0xFFFFU) +
                                             (bits >> 48U));
        values[i] = static_cast<float>(static_cast<double>(values[i]) + (sum - 2.0 * 65535.0) * scale);
    }
}

}  // namespace

LyrCasting::Truth LyrCasting::truth(std::int64_t edge) {
    Truth truth{};
    truth.edge = kEdge;
    truth.spacing = kEdge / static_cast<double>(edge);
    truth.air = kAir;
    truth.material = kMaterial;
    truth.blockLow = kBlockLow;
    truth.blockHigh = kBlockHigh;
    truth.walls = makeWalls();
    truth.bores = makeBores();
    truth.materialVolume = boxVolume(kBlockLow, kBlockHigh);
    for (const Wall& wall : truth.walls) {
        truth.materialVolume += boxVolume(wall.low, wall.high);
    }
    for (const Bore& bore : truth.bores) {
        const auto along = static_cast<std::size_t>(bore.axis);
        truth.materialVolume -= std::numbers::pi * bore.radius * bore.radius * (bore.to[along] - bore.from[along]);
    }
    for (const PoreShape& shape : kPores) {
        const double product = shape.radii[0] * shape.radii[1] * shape.radii[2];
        truth.pores.push_back({shape.center, shape.radii, 4.0 / 3.0 * std::numbers::pi * product});
        truth.poreVolume += truth.pores.back().volume;
    }
    truth.materialVolume -= truth.poreVolume;
    truth.porosity = truth.poreVolume / (truth.poreVolume + truth.materialVolume);
    return truth;
}

bool LyrCasting::create(const Options& options, std::shared_ptr<const LyrVolume>& out, std::string& error) {
    if (options.edge < kSmallestEdge || options.edge > kLargestEdge) {
        error = "built-in casting: an edge of " + std::to_string(options.edge) + " voxels is not possible; take " +
                std::to_string(kSmallestEdge) + " to " + std::to_string(kLargestEdge);
        return false;
    }
    if (!(options.noisePercent >= 0.0 && options.noisePercent <= 100.0)) {
        error = "built-in casting: noise must be 0 to 100 percent";
        return false;
    }
    const auto voxels = static_cast<std::uint64_t>(options.edge * options.edge * options.edge);
    if (voxels * sizeof(float) > lyrvolume::availableMemory()) {
        error = kMemoryError;
        return false;
    }
    try {
        std::vector<float> values = Builder(options.edge).build();
        if (options.noisePercent > 0.0) {
            addNoise(values, options.noisePercent, options.seed);
        }
        const double spacing = kEdge / static_cast<double>(options.edge);
        LyrVolume::Description description;
        description.size = {options.edge, options.edge, options.edge};
        description.spacing = {spacing, spacing, spacing};
        description.origin = {spacing / 2.0, spacing / 2.0, spacing / 2.0};
        description.source = "builtin:casting@" + std::to_string(options.edge);
        description.format = "built-in part, made by formula";
        out = LyrVolume::create(std::move(description), std::move(values));
        return true;
    } catch (const std::bad_alloc&) {
        error = kMemoryError;
        return false;
    }
}
