#include <analysis/compute/ThinWalls_p.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lyranalysis {

namespace {

// In thicker walls the distances inside of them tell all.
constexpr std::int64_t kMostVoxels = 5;
// A face is looked for on the lines beside so many voxels further on.
constexpr std::int64_t kSteepest = 2;

}  // namespace

float ThinWalls::sampleAt(Place place, std::size_t axis, std::int64_t at) const {
    place[axis] = at;
    return grid_.samples[grid_.index(place[0], place[1], place[2])];
}

/** Where a line meets the surface between voxel `below` and the next one, if it enters the material there or leaves it.
 */
std::optional<double> ThinWalls::crossing(const Place& line, std::size_t axis, std::int64_t below, bool enters) const {
    if (below < 0 || below + 1 >= grid_.size[axis]) {
        return std::nullopt;
    }
    const float first = sampleAt(line, axis, below);
    const float second = sampleAt(line, axis, below + 1);
    const bool isMaterial = first >= grid_.threshold;
    if (isMaterial == (second >= grid_.threshold) || isMaterial == enters) {
        return std::nullopt;
    }
    const double part =
        isMaterial ? surfacePart(first, second, grid_.threshold) : 1.0 - surfacePart(second, first, grid_.threshold);
    return static_cast<double>(below) + part;
}

std::optional<double> ThinWalls::nearestCrossing(Place line, std::size_t axis, std::size_t across, std::int64_t step,
                                                 double place, bool enters) const {
    line[across] += step;
    if (line[across] < 0 || line[across] >= grid_.size[across]) {
        return std::nullopt;
    }
    const auto middle = static_cast<std::int64_t>(std::floor(place));
    std::optional<double> nearest;
    for (std::int64_t below = middle - kSteepest; below <= middle + kSteepest; ++below) {
        const std::optional<double> found = crossing(line, axis, below, enters);
        if (found && (!nearest || std::abs(*found - place) < std::abs(*nearest - place))) {
            nearest = found;
        }
    }
    return nearest;
}

ThinWalls::Face ThinWalls::faceAt(const Place& line, std::size_t axis, double place, bool enters) const {
    Face face;
    face.place = place;
    for (std::size_t across = 0; across < 3; ++across) {
        if (across == axis) {
            continue;
        }
        const std::optional<double> below = nearestCrossing(line, axis, across, -1, place, enters);
        const std::optional<double> above = nearestCrossing(line, axis, across, 1, place, enters);
        face.isSeenAround[across] = below && above;
        const double rise = below && above ? (*above - *below) / 2.0
                            : above        ? *above - place
                            : below        ? place - *below
                                           : 0.0;
        const double slope = rise * grid_.spacing[axis] / grid_.spacing[across];
        face.slopes[across] = slope;
        face.squaredSlope += slope * slope;
    }
    return face;
}

/** Two faces that go on beside the line, at least along one axis, and look into opposite directions. */
bool ThinWalls::isWall(const Face& in, const Face& out, std::size_t axis) const {
    const double cosineIn = 1.0 / std::sqrt(1.0 + in.squaredSlope);
    const double cosineOut = 1.0 / std::sqrt(1.0 + out.squaredSlope);
    // The outward directions are (−1, slopes) and (1, −slopes), each times its cosine.
    double squaredTurn = (cosineIn + cosineOut) * (cosineIn + cosineOut);
    bool goesOn = false;
    for (std::size_t across = 0; across < 3; ++across) {
        if (across != axis) {
            const double turn = in.slopes[across] * cosineIn + out.slopes[across] * cosineOut;
            squaredTurn += turn * turn;
            goesOn = goesOn || (in.isSeenAround[across] && out.isSeenAround[across]);
        }
    }
    return goesOn && squaredTurn >= kSmallestTurn * kSmallestTurn;
}

/** The distance at a middle is not above that at any voxel by more than the way to it. Only the voxels on the line and
 *  next to it are looked at. */
double ThinWalls::largestRadius(const Place& below, std::size_t axis, double middle) const {
    double largest = std::numeric_limits<double>::infinity();
    for (std::int64_t step = 0; step <= 1; ++step) {
        Place on = below;
        on[axis] += step;
        if (on[axis] < 0 || on[axis] >= grid_.size[axis]) {
            continue;
        }
        const double along = static_cast<double>(step) * grid_.spacing[axis] - middle;
        const auto look = [&](const Place& at, double away) {
            const double distance = static_cast<double>(distances_[grid_.index(at[0], at[1], at[2])]);
            largest = std::min(largest, distance + std::hypot(along, away));
        };
        look(on, 0.0);
        for (std::size_t across = 0; across < 3; ++across) {
            for (const std::int64_t side : {-1, 1}) {
                Place beside = on;
                beside[across] += side;
                if (across != axis && beside[across] >= 0 && beside[across] < grid_.size[across]) {
                    look(beside, grid_.spacing[across]);
                }
            }
        }
    }
    return largest;
}

void ThinWalls::alongAxis(const Place& place, std::size_t axis, std::vector<Ball>& out) const {
    const std::optional<double> enters = crossing(place, axis, place[axis] - 1, true);
    if (!enters) {
        return;
    }
    std::optional<double> leaves;
    for (std::int64_t last = place[axis]; !leaves && last < place[axis] + kMostVoxels; ++last) {
        leaves = crossing(place, axis, last, false);
    }
    if (!leaves) {
        return;
    }
    const Face in = faceAt(place, axis, *enters, true);
    const Face through = faceAt(place, axis, *leaves, false);
    if (!isWall(in, through, axis)) {
        return;
    }
    // The middle is as far from the one plane as from the other.
    const double length = (*leaves - *enters) * grid_.spacing[axis];
    const double cosineIn = 1.0 / std::sqrt(1.0 + in.squaredSlope);
    const double cosineOut = 1.0 / std::sqrt(1.0 + through.squaredSlope);
    const double inward = length * cosineOut / (cosineIn + cosineOut);
    const double middle = *enters + inward / grid_.spacing[axis];
    Place below = place;
    below[axis] = static_cast<std::int64_t>(std::floor(middle));
    Peak peak{(middle - std::floor(middle)) * grid_.spacing[axis], inward * cosineIn};
    peak.height = std::min(peak.height, largestRadius(below, axis, peak.place));
    if (!growsOn(grid_, distances_, below, axis, peak)) {
        addBall(grid_, below, axis, peak, out);
    }
}

void ThinWalls::inRow(std::int64_t y, std::int64_t z, std::vector<Ball>& out) const {
    for (std::int64_t x = 0; x < grid_.size[0]; ++x) {
        if (!grid_.isMaterial(grid_.index(x, y, z))) {
            continue;
        }
        for (std::size_t axis = 0; axis < 3; ++axis) {
            alongAxis({x, y, z}, axis, out);
        }
    }
}

}  // namespace lyranalysis
