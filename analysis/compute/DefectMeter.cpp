#include <analysis/compute/DefectMeter_p.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace lyranalysis {

namespace {

using Place = std::array<std::int64_t, 3>;
using Vector = std::array<double, 3>;

/** The steps to the 26 neighbours of a voxel. */
constexpr std::array<Place, 26> makeNeighbours() {
    std::array<Place, 26> steps{};
    std::size_t at = 0;
    for (std::int64_t z = -1; z <= 1; ++z) {
        for (std::int64_t y = -1; y <= 1; ++y) {
            for (std::int64_t x = -1; x <= 1; ++x) {
                if (x != 0 || y != 0 || z != 0) {
                    steps[at++] = {x, y, z};
                }
            }
        }
    }
    return steps;
}
constexpr std::array<Place, 26> kNeighbours = makeNeighbours();
// Neighbour i lies opposite to neighbour 25 − i, and they come in the order of the samples.
constexpr std::size_t kDirections = kNeighbours.size() / 2;
constexpr std::size_t opposite(std::size_t direction) {
    return kNeighbours.size() - 1 - direction;
}
// The face neighbours below and above along each axis.
constexpr std::array<std::size_t, 3> kBelow{12, 10, 4};

/** Weight of a neighbour in the 3 × 3 × 3 average with the weights 1, 2, 1 along each axis; all 27 sum up to 64. */
constexpr int weightOfStep(const Place& step) {
    int weight = 1;
    for (const std::int64_t k : step) {
        weight *= k == 0 ? 2 : 1;
    }
    return weight;
}
constexpr int kFullWeight = 64;
// A voxel that meets a region with less than this, by edges and corners only, holds little of its surface layer, but as
// much noise as any other: of the cut-offs 0, 2, 4 and 6 the last one leaves the least spread over many noises.
constexpr int kSmallestWeight = 7;

Place operator+(const Place& a, const Place& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

double dot(const Vector& a, const Vector& b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

/** A step between voxels as a direction, and its length in mm. */
Vector unitVector(const Place& step, const Vector& spacing, double& length) {
    Vector way{};
    for (std::size_t k = 0; k < 3; ++k) {
        way[k] = static_cast<double>(step[k]) * spacing[k];
    }
    length = std::sqrt(dot(way, way));
    return {way[0] / length, way[1] / length, way[2] / length};
}

/** Evenly spread directions on a half sphere, on a spiral with the golden angle. */
std::vector<Vector> spreadDirections(int count) {
    const double turn = std::numbers::pi * (3.0 - std::sqrt(5.0));
    std::vector<Vector> directions;
    for (int i = 0; i < count; ++i) {
        const double z = (i + 0.5) / count;
        const double radius = std::sqrt(1.0 - z * z);
        directions.push_back({radius * std::cos(turn * i), radius * std::sin(turn * i), z});
    }
    return directions;
}

/** Takes the mean of some values if it differs from a level that is known well by more than chance. */
class LocalLevel {
public:
    void add(double value) {
        const double change = value - mean_;
        count_ += 1.0;
        mean_ += change / count_;
        squares_ += change * (value - mean_);
    }
    double orElse(double level) const {
        constexpr double kFewest = 30.0;
        constexpr double kDeviations = 3.5;
        if (count_ < kFewest) {
            return level;
        }
        const double error = std::sqrt(squares_ / (count_ * (count_ - 1.0)));
        return std::abs(mean_ - level) > kDeviations * error ? mean_ : level;
    }

private:
    double count_ = 0.0;
    double mean_ = 0.0;
    double squares_ = 0.0;
};

}  // namespace

/** What one walk over the voxels of a region gathers. */
struct DefectMeter::Shape {
    std::uint64_t voxels = 0;
    std::uint64_t surfaceVoxels = 0;
    std::array<std::uint64_t, kDirections> crossings{};
    Vector sum{};
    Place first{std::numeric_limits<std::int64_t>::max(), std::numeric_limits<std::int64_t>::max(),
                std::numeric_limits<std::int64_t>::max()};
    Place last{-1, -1, -1};
    std::vector<double> lowest;
    std::vector<double> highest;
};

DefectMeter::DefectMeter(const Grid& grid, const Components& components, const std::vector<std::uint32_t>& labels,
                         const MaterialNeighbours& nearby, const GreyLevels& levels, const LyrVolume::Vector& origin)
    : grid_(grid), components_(components), labels_(labels), nearby_(nearby), levels_(levels), origin_(origin) {
    for (std::size_t i = 0; i < kNeighbours.size(); ++i) {
        const Place& step = kNeighbours[i];
        offsets_[i] = static_cast<std::ptrdiff_t>(step[0] + grid.size[0] * (step[1] + grid.size[1] * step[2]));
    }
    makeSurfaceDirections();
    makeExtentDirections();
}

/** The surface follows from Crofton's formula: twice the mean, over all directions, of the crossings of the lines of a
 *  direction times the area that each line stands for. The 13 directions to neighbours count by the part of the sphere
 *  that is nearest to them. */
void DefectMeter::makeSurfaceDirections() {
    constexpr int kSamples = 20000;
    std::array<Vector, kDirections> units{};
    std::array<double, kDirections> lengths{};
    for (std::size_t i = 0; i < kDirections; ++i) {
        units[i] = unitVector(kNeighbours[i], grid_.spacing, lengths[i]);
    }
    std::array<int, kDirections> nearest{};
    for (const Vector& sample : spreadDirections(kSamples)) {
        const auto worse = [&](const Vector& a, const Vector& b) {
            return std::abs(dot(a, sample)) < std::abs(dot(b, sample));
        };
        ++nearest[static_cast<std::size_t>(std::max_element(units.begin(), units.end(), worse) - units.begin())];
    }
    for (std::size_t i = 0; i < kDirections; ++i) {
        surfaceOfCrossing_[i] = 2.0 * grid_.voxelVolume() / lengths[i] * nearest[i] / kSamples;
    }
}

void DefectMeter::makeExtentDirections() {
    constexpr int kSpread = 36;
    extentDirections_ = spreadDirections(kSpread);
    for (std::size_t i = 0; i < kDirections; ++i) {
        double length = 0.0;
        extentDirections_.push_back(unitVector(kNeighbours[i], grid_.spacing, length));
    }
    for (const Vector& way : extentDirections_) {
        extentOfVoxel_.push_back(
            std::hypot(way[0] * grid_.spacing[0], way[1] * grid_.spacing[1], way[2] * grid_.spacing[2]));
    }
}

template <typename Visit>
void DefectMeter::forEachVoxel(std::size_t region, const AnalysisTask& task, const Visit& visit) const {
    constexpr std::int64_t kPatience = 4096;
    const auto height = static_cast<std::int64_t>(grid_.height());
    std::int64_t unasked = kPatience;
    for (std::size_t i = components_.starts[region]; i < components_.starts[region + 1]; ++i) {
        if (unasked >= kPatience) {
            if (task.isStopped()) {
                return;
            }
            unasked = 0;
        }
        const Run& run = components_.runs[i];
        const auto row = static_cast<std::int64_t>(run.row);
        unasked += run.length;
        for (std::int64_t x = run.first; x < run.first + run.length; ++x) {
            visit(spotAt({x, row % height, row / height}));
        }
    }
}

bool DefectMeter::isInGrid(const Place& place) const {
    for (std::size_t k = 0; k < 3; ++k) {
        if (place[k] < 0 || place[k] >= grid_.size[k]) {
            return false;
        }
    }
    return true;
}

DefectMeter::Spot DefectMeter::spotAt(const Place& place) const {
    bool free = true;
    for (std::size_t k = 0; k < 3; ++k) {
        free = free && place[k] > 0 && place[k] + 1 < grid_.size[k];
    }
    return {place, grid_.index(place[0], place[1], place[2]), free};
}

/** The neighbour in a direction; false where the grid ends. */
bool DefectMeter::neighbour(const Spot& spot, std::size_t direction, Spot& out) const {
    const Place place = spot.place + kNeighbours[direction];
    if (!spot.free && !isInGrid(place)) {
        return false;
    }
    out = spotAt(place);
    return true;
}

/** The label of a neighbour; where the grid ends, that of the nearest voxel inside. */
std::uint32_t DefectMeter::labelNear(const Spot& spot, std::size_t direction) const {
    if (spot.free) {
        return labels_[static_cast<std::size_t>(static_cast<std::ptrdiff_t>(spot.index) + offsets_[direction])];
    }
    const Place near = spot.place + kNeighbours[direction];
    return labels_[grid_.index(grid_.inside(0, near[0]), grid_.inside(1, near[1]), grid_.inside(2, near[2]))];
}

/** Part of the surroundings of a voxel that belongs to a region, kFullWeight for all. */
int DefectMeter::weightOf(const Spot& spot, std::uint32_t label) const {
    int weight = labels_[spot.index] == label ? weightOfStep({}) : 0;
    for (std::size_t i = 0; i < kNeighbours.size(); ++i) {
        weight += labelNear(spot, i) == label ? weightOfStep(kNeighbours[i]) : 0;
    }
    return weight;
}

void DefectMeter::addToShape(const Spot& spot, std::uint32_t label, Shape& shape) const {
    ++shape.voxels;
    Vector at{};
    for (std::size_t k = 0; k < 3; ++k) {
        shape.sum[k] += static_cast<double>(spot.place[k]);
        shape.first[k] = std::min(shape.first[k], spot.place[k]);
        shape.last[k] = std::max(shape.last[k], spot.place[k]);
        at[k] = static_cast<double>(spot.place[k]) * grid_.spacing[k];
    }
    if (nearby_.isAllAir(spot.index)) {
        return;
    }
    bool atSurface = false;
    for (std::size_t i = 0; i < kDirections; ++i) {
        const std::uint64_t crossings =
            (labelNear(spot, i) != label ? 1U : 0U) + (labelNear(spot, opposite(i)) != label ? 1U : 0U);
        shape.crossings[i] += crossings;
        atSurface = atSurface || crossings > 0;
    }
    if (!atSurface) {
        return;
    }
    ++shape.surfaceVoxels;
    for (std::size_t i = 0; i < extentDirections_.size(); ++i) {
        const double along = dot(extentDirections_[i], at);
        shape.lowest[i] = std::min(shape.lowest[i], along);
        shape.highest[i] = std::max(shape.highest[i], along);
    }
}

/** Voxels deep in the material, three to five steps away from the surface. */
void DefectMeter::addMaterialNear(const Spot& spot, std::size_t axis, std::int64_t side,
                                  std::vector<std::size_t>& found) const {
    for (std::int64_t distance = 3; distance <= 5; ++distance) {
        Place away = spot.place;
        away[axis] += side * distance;
        if (isInGrid(away)) {
            const std::size_t index = grid_.index(away[0], away[1], away[2]);
            if (nearby_.isAllMaterial(index) && std::isfinite(grid_.samples[index])) {
                found.push_back(index);
            }
        }
    }
}

/** The levels of material near the region, and of air in its depth. */
GreyLevels DefectMeter::levelsAround(std::size_t region, std::uint64_t surfaceVoxels, const AnalysisTask& task) const {
    constexpr std::uint64_t kEnoughPlaces = 2048;
    const std::uint64_t every = surfaceVoxels / kEnoughPlaces + 1;
    const auto label = static_cast<std::uint32_t>(region + 1);
    LocalLevel air;
    std::vector<std::size_t> found;
    std::uint64_t seen = 0;
    forEachVoxel(region, task, [&](const Spot& spot) {
        if (nearby_.isAllAir(spot.index)) {
            if (std::isfinite(grid_.samples[spot.index])) {
                air.add(static_cast<double>(grid_.samples[spot.index]));
            }
            return;
        }
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (labelNear(spot, kBelow[axis]) != label && seen++ % every == 0) {
                addMaterialNear(spot, axis, -1, found);
            }
            if (labelNear(spot, opposite(kBelow[axis])) != label && seen++ % every == 0) {
                addMaterialNear(spot, axis, 1, found);
            }
        }
    });
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    LocalLevel material;
    for (const std::size_t index : found) {
        material.add(static_cast<double>(grid_.samples[index]));
    }
    const GreyLevels local{air.orElse(levels_.air), material.orElse(levels_.material)};
    return local.material > local.air ? local : levels_;
}

/** Whether a material voxel at the surface counts for a region, found from the region's voxel `finder`: once, from the
 *  first that has it as a neighbour; if the region meets it with enough weight, and no other region with more. Of two
 * that meet it equally the first one counts. */
bool DefectMeter::belongsTo(const Spot& spot, std::uint32_t label, std::size_t finder) const {
    std::array<std::uint32_t, kNeighbours.size()> around{};
    int mine = 0;
    bool met = false;
    bool contested = false;
    for (std::size_t i = 0; i < kNeighbours.size(); ++i) {
        around[i] = labelNear(spot, i);
        if (around[i] != label) {
            contested = contested || around[i] != 0;
            continue;
        }
        if (!met && (spot.free || isInGrid(spot.place + kNeighbours[i]))) {
            met = true;
            if (static_cast<std::size_t>(static_cast<std::ptrdiff_t>(spot.index) + offsets_[i]) != finder) {
                return false;
            }
        }
        mine += weightOfStep(kNeighbours[i]);
    }
    if (mine < kSmallestWeight || !contested) {
        return mine >= kSmallestWeight;
    }
    for (std::size_t i = 0; i < kNeighbours.size(); ++i) {
        if (around[i] == 0 || around[i] == label) {
            continue;
        }
        int theirs = 0;
        for (std::size_t k = i; k < kNeighbours.size(); ++k) {
            theirs += around[k] == around[i] ? weightOfStep(kNeighbours[k]) : 0;
        }
        if (theirs > mine || (theirs == mine && around[i] < label)) {
            return false;
        }
    }
    return true;
}

/** Air of a region in voxels: by grey value in a layer of one voxel to both sides of its surface. */
double DefectMeter::airVoxels(std::size_t region, const GreyLevels& levels, const AnalysisTask& task) const {
    const auto label = static_cast<std::uint32_t>(region + 1);
    double sum = 0.0;
    Spot near{};
    forEachVoxel(region, task, [&](const Spot& spot) {
        if (nearby_.isAllAir(spot.index)) {
            sum += 1.0;
            return;
        }
        const bool whole = weightOf(spot, label) > kFullWeight - kSmallestWeight;
        sum += whole ? 1.0 : levels.airShare(grid_.samples[spot.index]);
        for (std::size_t i = 0; i < kNeighbours.size(); ++i) {
            if (neighbour(spot, i, near) && grid_.isMaterial(near.index) && belongsTo(near, label, spot.index)) {
                sum += levels.airShare(grid_.samples[near.index]);
            }
        }
    });
    return std::max(sum, 0.0);
}

LyrDefect DefectMeter::measure(std::size_t region, const AnalysisTask& task) const {
    Shape shape;
    shape.lowest.assign(extentDirections_.size(), std::numeric_limits<double>::max());
    shape.highest.assign(extentDirections_.size(), std::numeric_limits<double>::lowest());
    const auto label = static_cast<std::uint32_t>(region + 1);
    forEachVoxel(region, task, [&](const Spot& spot) { addToShape(spot, label, shape); });

    LyrDefect defect;
    if (task.isStopped()) {
        return defect;
    }
    defect.voxels = shape.voxels;
    defect.countedVolume = static_cast<double>(shape.voxels) * grid_.voxelVolume();
    defect.first = shape.first;
    defect.last = shape.last;
    for (std::size_t k = 0; k < 3; ++k) {
        defect.center[k] = origin_[k] + shape.sum[k] / static_cast<double>(shape.voxels) * grid_.spacing[k];
        defect.low[k] = origin_[k] + (static_cast<double>(shape.first[k]) - 0.5) * grid_.spacing[k];
        defect.high[k] = origin_[k] + (static_cast<double>(shape.last[k]) + 0.5) * grid_.spacing[k];
    }
    for (std::size_t i = 0; i < extentDirections_.size(); ++i) {
        defect.size = std::max(defect.size, shape.highest[i] - shape.lowest[i] + extentOfVoxel_[i]);
    }
    double surface = 0.0;
    for (std::size_t i = 0; i < kDirections; ++i) {
        surface += surfaceOfCrossing_[i] * static_cast<double>(shape.crossings[i]);
    }
    const double ball = std::cbrt(36.0 * std::numbers::pi * defect.countedVolume * defect.countedVolume);
    defect.sphericity = surface > ball ? ball / surface : 1.0;
    const GreyLevels levels = levelsAround(region, shape.surfaceVoxels, task);
    defect.volume = airVoxels(region, levels, task) * grid_.voxelVolume();
    return defect;
}

}  // namespace lyranalysis
