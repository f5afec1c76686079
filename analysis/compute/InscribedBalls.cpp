#include <analysis/compute/InscribedBalls_p.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <tuple>

#include <analysis/compute/Balls_p.h>
#include <analysis/compute/PiecewiseSort_p.h>
#include <analysis/compute/ThinWalls_p.h>

namespace lyranalysis {

namespace {

// The distance grows by this towards the open side of the widest wedge whose balls count; in edges, corners and bumps
// of the surface it grows faster.
constexpr double kSteepestGrowth = 0.6;
// Where it rises less steeply than this towards the edge of the volume it grows faster than that along the edge.
constexpr double kLeastRiseOutward = 0.8;

}  // namespace

bool growsOn(const Grid& grid, const std::vector<float>& distances, const Place& place, std::size_t axis,
             const Peak& peak) {
    const auto inside = [&](std::size_t k, std::int64_t step) {
        const std::int64_t at = place[k] + step;
        return at >= 0 && at < grid.size[k];
    };
    const double rounding = 0.01 * grid.spacing[axis];
    std::array<std::int64_t, 3> from{-1, -1, -1};
    std::array<std::int64_t, 3> to{1, 1, 1};
    to[axis] = 2;
    for (std::int64_t c = from[2]; c <= to[2]; ++c) {
        for (std::int64_t b = from[1]; b <= to[1]; ++b) {
            for (std::int64_t a = from[0]; a <= to[0]; ++a) {
                if (!inside(0, a) || !inside(1, b) || !inside(2, c)) {
                    continue;
                }
                std::array<double, 3> way{static_cast<double>(a), static_cast<double>(b), static_cast<double>(c)};
                for (std::size_t k = 0; k < 3; ++k) {
                    way[k] *= grid.spacing[k];
                }
                way[axis] -= peak.place;
                const std::size_t index = grid.index(place[0] + a, place[1] + b, place[2] + c);
                const double growth = static_cast<double>(distances[index]) - peak.height;
                if (growth > kSteepestGrowth * std::hypot(way[0], way[1], way[2]) + rounding) {
                    return true;
                }
            }
        }
    }
    return false;
}

void addBall(const Grid& grid, const Place& place, std::size_t axis, const Peak& peak, std::vector<Ball>& out) {
    if (!(peak.height > 0.0) || !std::isfinite(peak.height)) {
        return;
    }
    std::array<double, 3> center{};
    for (std::size_t k = 0; k < 3; ++k) {
        center[k] = static_cast<double>(place[k]) * grid.spacing[k];
    }
    center[axis] += peak.place;
    out.push_back({static_cast<float>(center[0]), static_cast<float>(center[1]), static_cast<float>(center[2]),
                   static_cast<float>(peak.height)});
}

namespace {

/** Finds the balls around the middles to which the distances rise. */
class BallFinder {
public:
    BallFinder(const Grid& grid, const std::vector<float>& distances) : grid_(grid), distances_(distances) {}

    /** Finds the balls whose places along their axis begin in a row along x. */
    void inRow(std::int64_t y, std::int64_t z, std::vector<Ball>& out) const {
        for (std::int64_t x = 0; x < grid_.size[0]; ++x) {
            const Place place{x, y, z};
            const std::size_t index = grid_.index(x, y, z);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                if (grid_.size[axis] > 1) {
                    findAlong(place, index, axis, out);
                }
            }
        }
    }

private:
    double at(std::size_t index) const { return static_cast<double>(distances_[index]); }

    void findAlong(const Place& place, std::size_t index, std::size_t axis, std::vector<Ball>& out) const {
        const std::size_t stride = axis == 0 ? 1 : axis == 1 ? grid_.width() : grid_.sliceLength();
        const std::int64_t i = place[axis];
        const std::int64_t last = grid_.size[axis] - 1;
        const double here = at(index);
        if ((i == 0 || i == last) && here > 0.0 && riseOutward(place) >= kLeastRiseOutward) {
            // The middle of what the edge of the volume cuts off lies beyond it.
            addBall(grid_, place, axis, {0.0, here}, out);
        }
        if (i == 0 || i + 2 > last || (here <= 0.0 && at(index + stride) <= 0.0)) {
            return;
        }
        const double spacing = grid_.spacing[axis];
        const double next = at(index + stride);
        const double riseBelow = (here - at(index - stride)) / spacing;
        const double riseAbove = (next - at(index + 2 * stride)) / spacing;
        // Along the best of three axes at least the share 1 / √3 of the turn is seen.
        if (riseBelow <= 0.0 || riseAbove <= 0.0 || riseBelow + riseAbove < kSmallestTurn / std::numbers::sqrt3) {
            return;
        }
        const double meeting = (next - here + riseAbove * spacing) / (riseBelow + riseAbove);
        // A middle right on a voxel belongs to both sides of it, whatever rounding says.
        constexpr double kSlack = 0.01;
        if (meeting < -kSlack * spacing || meeting > (1.0 + kSlack) * spacing) {
            return;
        }
        const double middle = std::clamp(meeting, 0.0, spacing);
        // No distance can rise faster than the way to it.
        const Peak peak{middle, std::min(here + riseBelow * middle, (here + next + spacing) / 2.0)};
        if (turnAround(place, axis, riseBelow + riseAbove) >= kSmallestTurn &&
            growthAlongMiddle(place, axis, riseBelow - riseAbove) <= kSteepestGrowth &&
            !growsOn(grid_, distances_, place, axis, peak)) {
            addBall(grid_, place, axis, peak, out);
        }
    }

    /** How steeply the distance rises towards the edges of the volume that a voxel lies at. */
    double riseOutward(const Place& place) const {
        double squares = 0.0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const bool atStart = place[axis] == 0;
            if (grid_.size[axis] > 1 && (atStart || place[axis] == grid_.size[axis] - 1)) {
                Place inner = place;
                inner[axis] += atStart ? 1 : -1;
                const double rise =
                    at(grid_.index(place[0], place[1], place[2])) - at(grid_.index(inner[0], inner[1], inner[2]));
                squares += std::pow(std::max(rise / grid_.spacing[axis], 0.0), 2.0);
            }
        }
        return std::sqrt(squares);
    }

    /** How steeply the middle itself rises: the mean of the rises on its two sides, of which `alongAxis` is twice the
     *  part along the axis between the two voxels that it lies between. */
    double growthAlongMiddle(const Place& place, std::size_t axis, double alongAxis) const {
        double squares = alongAxis * alongAxis / 4.0;
        for (std::size_t other = 0; other < 3; ++other) {
            if (other != axis) {
                const double growth = std::max(riseOfBoth(place, axis, other, -1), riseOfBoth(place, axis, other, 1));
                squares += std::pow(std::max(growth, 0.0), 2.0);
            }
        }
        return std::sqrt(squares);
    }

    /** The mean rise of a voxel and the next one along an axis to those beside them. */
    double riseOfBoth(const Place& place, std::size_t axis, std::size_t across, std::int64_t step) const {
        double rise = 0.0;
        for (const std::int64_t along : {0, 1}) {
            Place from = place;
            from[axis] += along;
            Place to = from;
            to[across] = grid_.inside(across, to[across] + step);
            rise += at(grid_.index(to[0], to[1], to[2])) - at(grid_.index(from[0], from[1], from[2]));
        }
        return rise / (2.0 * grid_.spacing[across]);
    }

    /** How far the direction of the rise turns around a middle, from what it does along one axis and the others. */
    double turnAround(const Place& place, std::size_t axis, double alongAxis) const {
        double squares = alongAxis * alongAxis;
        for (std::size_t other = 0; other < 3; ++other) {
            if (other != axis) {
                const double turn = turnAlong(place, other);
                squares += turn * turn;
            }
        }
        return std::sqrt(squares);
    }

    /** The rises to a voxel, or to between it and a neighbour, from both sides along an axis, summed. */
    double turnAlong(const Place& place, std::size_t axis) const {
        const auto distance = [&](std::int64_t step) {
            std::array<std::int64_t, 3> at = place;
            at[axis] = grid_.inside(axis, place[axis] + step);
            return static_cast<double>(distances_[grid_.index(at[0], at[1], at[2])]);
        };
        const double below = distance(-1);
        const double here = distance(0);
        const double above = distance(1);
        const double rise = std::max(
            {2.0 * here - below - above, below + here - distance(-2) - above, here + above - below - distance(2)});
        return std::max(rise / grid_.spacing[axis], 0.0);
    }

    const Grid& grid_;
    const std::vector<float>& distances_;
};

}  // namespace

bool findInscribedBalls(const Grid& grid, const std::vector<float>& distances, AnalysisTask& task,
                        std::vector<Ball>& out) {
    std::vector<std::vector<Ball>> found(grid.depth());
    const BallFinder finder(grid, distances);
    const ThinWalls thinWalls(grid, distances);
    if (!task.stage(kFindBallsWeight * 0.7, grid.depth(), [&](std::size_t slice, std::size_t) {
            const auto z = static_cast<std::int64_t>(slice);
            for (std::int64_t y = 0; y < grid.size[1] && !task.isStopped(); ++y) {
                finder.inRow(y, z, found[slice]);
                thinWalls.inRow(y, z, found[slice]);
            }
        })) {
        return false;
    }
    std::size_t total = 0;
    for (const std::vector<Ball>& slice : found) {
        total += slice.size();
    }
    // Those of the slices, all together, and what sorts them.
    if (!task.claim(total * sizeof(Ball) + 2 * sortBytes<Ball>(total))) {
        return false;
    }
    out.clear();
    out.reserve(total);
    for (std::vector<Ball>& slice : found) {
        if (task.isStopped()) {
            return false;
        }
        out.insert(out.end(), slice.begin(), slice.end());
        std::vector<Ball>().swap(slice);
    }
    const bool sorted = sortInPieces(out, task, kFindBallsWeight * 0.3, [](const Ball& a, const Ball& b) {
        return std::tie(b.radius, a.z, a.y, a.x) < std::tie(a.radius, b.z, b.y, b.x);
    });
    task.release(total * sizeof(Ball) + sortBytes<Ball>(total));
    return sorted;
}

}  // namespace lyranalysis
