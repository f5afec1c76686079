#include <analysis/compute/InscribedBalls_p.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <tuple>

namespace lyranalysis {

namespace {

// The distance rises to a middle by 1 from two sides. The difference of the two directions has the length 2 between
// parallel walls, 1.73 in a wedge of 60° and 1.41 in an edge of 90°: balls in edges and corners do not count.
constexpr double kSmallestTurn = 1.6;
// The distance grows by this towards the open side of the widest wedge whose balls count; in edges, corners and bumps
// of the surface it grows faster.
constexpr double kSteepestGrowth = 0.6;

struct Peak {
    double place;  ///< mm from the voxel
    double height;
};

class BallFinder {
public:
    BallFinder(const Grid& grid, const std::vector<float>& distances) : grid_(grid), distances_(distances) {}

    /** Finds the balls whose places along their axis begin in a slice. */
    void inSlice(std::int64_t z, std::vector<Ball>& out) const {
        for (std::int64_t y = 0; y < grid_.size[1]; ++y) {
            for (std::int64_t x = 0; x < grid_.size[0]; ++x) {
                const std::array<std::int64_t, 3> place{x, y, z};
                const std::size_t index = grid_.index(x, y, z);
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    if (grid_.size[axis] > 1) {
                        findAlong(place, index, axis, out);
                    }
                }
            }
        }
    }

private:
    double at(std::size_t index) const { return static_cast<double>(distances_[index]); }

    void findAlong(const std::array<std::int64_t, 3>& place, std::size_t index, std::size_t axis,
                   std::vector<Ball>& out) const {
        const std::size_t stride = axis == 0 ? 1 : axis == 1 ? grid_.width() : grid_.sliceLength();
        const std::int64_t i = place[axis];
        const std::int64_t last = grid_.size[axis] - 1;
        const double here = at(index);
        if (here > 0.0 && ((i == 0 && here >= at(index + stride)) || (i == last && here >= at(index - stride)))) {
            // The middle of what the edge of the volume cuts off may lie beyond it.
            add(place, axis, {0.0, here}, out);
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
        if (turnAround(place, axis, riseBelow + riseAbove) >= kSmallestTurn && !growsOn(place, axis, peak)) {
            add(place, axis, peak, out);
        }
    }

    /** Whether the distance grows on steeply from a middle to a voxel around it. */
    bool growsOn(const std::array<std::int64_t, 3>& place, std::size_t axis, const Peak& peak) const {
        const auto inside = [&](std::size_t k, std::int64_t step) {
            const std::int64_t at = place[k] + step;
            return at >= 0 && at < grid_.size[k];
        };
        const double rounding = 0.01 * grid_.spacing[axis];
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
                        way[k] *= grid_.spacing[k];
                    }
                    way[axis] -= peak.place;
                    const double growth = at(grid_.index(place[0] + a, place[1] + b, place[2] + c)) - peak.height;
                    if (growth > kSteepestGrowth * std::hypot(way[0], way[1], way[2]) + rounding) {
                        return true;
                    }
                }
            }
        }
        return false;
    }

    /** How far the direction of the rise turns around a middle, from what it does along one axis and the others. */
    double turnAround(const std::array<std::int64_t, 3>& place, std::size_t axis, double alongAxis) const {
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
    double turnAlong(const std::array<std::int64_t, 3>& place, std::size_t axis) const {
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

    void add(const std::array<std::int64_t, 3>& place, std::size_t axis, const Peak& peak,
             std::vector<Ball>& out) const {
        if (!(peak.height > 0.0) || !std::isfinite(peak.height)) {
            return;
        }
        std::array<double, 3> center{};
        for (std::size_t k = 0; k < 3; ++k) {
            center[k] = static_cast<double>(place[k]) * grid_.spacing[k];
        }
        center[axis] += peak.place;
        out.push_back({static_cast<float>(center[0]), static_cast<float>(center[1]), static_cast<float>(center[2]),
                       static_cast<float>(peak.height)});
    }

    const Grid& grid_;
    const std::vector<float>& distances_;
};

/** Colours the rows of some slices. Balls come largest first, so the first to reach a voxel stays; voxels that are done
 *  are skipped by links to the next that is not. */
class SlabPainter {
public:
    SlabPainter(const Grid& grid, std::size_t firstSlice, std::size_t lastSlice, std::vector<float>& values)
        : grid_(grid), values_(values), first_(firstSlice), last_(lastSlice), reach_(grid.meanSpacing() / 2.0) {
        links_.resize((last_ - first_ + 1) * grid.height() * (grid.width() + 1));
        std::size_t at = 0;
        for (std::size_t row = first_ * grid.height(); row < (last_ + 1) * grid.height(); ++row) {
            for (std::size_t x = 0; x < grid.width(); ++x, ++at) {
                const bool open = grid.isMaterial(row * grid.width() + x);
                links_[at] = static_cast<std::uint32_t>(open ? x : x + 1);
            }
            links_[at++] = static_cast<std::uint32_t>(grid.width());
        }
    }

    void paint(const Ball& ball) {
        const double radius = static_cast<double>(ball.radius) + reach_;
        const Stretch slices = stretch(ball.z, radius, 2);
        for (std::int64_t z = std::max(slices.first, static_cast<std::int64_t>(first_));
             z <= std::min(slices.last, static_cast<std::int64_t>(last_)); ++z) {
            const double dz = static_cast<double>(z) * grid_.spacing[2] - static_cast<double>(ball.z);
            const double left = radius * radius - dz * dz;
            if (left < 0.0) {
                continue;
            }
            const Stretch rows = stretch(ball.y, std::sqrt(left), 1);
            for (std::int64_t y = rows.first; y <= rows.last; ++y) {
                const double dy = static_cast<double>(y) * grid_.spacing[1] - static_cast<double>(ball.y);
                if (left >= dy * dy) {
                    paintRow(y, z, stretch(ball.x, std::sqrt(left - dy * dy), 0), 2.0F * ball.radius);
                }
            }
        }
    }

    /** What no ball has reached gets twice its own distance below zero, what is no material becomes NaN. */
    void finish() {
        std::size_t at = 0;
        for (std::size_t row = first_ * grid_.height(); row < (last_ + 1) * grid_.height(); ++row, ++at) {
            for (std::size_t x = 0; x < grid_.width(); ++x, ++at) {
                float& value = values_[row * grid_.width() + x];
                if (!grid_.isMaterial(row * grid_.width() + x)) {
                    value = std::numeric_limits<float>::quiet_NaN();
                } else if (links_[at] == x) {
                    value = -2.0F * std::max(value, std::numeric_limits<float>::min());
                }
            }
        }
    }

private:
    struct Stretch {
        std::int64_t first;
        std::int64_t last;
    };

    /** The indices along an axis within a distance of a place, inside the grid. */
    Stretch stretch(float center, double distance, std::size_t axis) const {
        const double spacing = grid_.spacing[axis];
        const double low = std::ceil((static_cast<double>(center) - distance) / spacing);
        const double high = std::floor((static_cast<double>(center) + distance) / spacing);
        return {static_cast<std::int64_t>(std::max(low, 0.0)),
                static_cast<std::int64_t>(std::min(high, static_cast<double>(grid_.size[axis] - 1)))};
    }

    void paintRow(std::int64_t y, std::int64_t z, const Stretch& part, float diameter) {
        const std::size_t row = static_cast<std::size_t>(y) + static_cast<std::size_t>(z) * grid_.height();
        std::uint32_t* links = links_.data() + (row - first_ * grid_.height()) * (grid_.width() + 1);
        float* values = values_.data() + row * grid_.width();
        const auto end = static_cast<std::uint32_t>(part.last + 1);
        for (std::uint32_t x = follow(links, static_cast<std::uint32_t>(part.first)); x < end; x = follow(links, x)) {
            values[x] = diameter;
            links[x] = x + 1;
        }
    }

    static std::uint32_t follow(std::uint32_t* links, std::uint32_t x) {
        while (links[x] != x) {
            links[x] = links[links[x]];
            x = links[x];
        }
        return x;
    }

    const Grid& grid_;
    std::vector<float>& values_;
    std::size_t first_;
    std::size_t last_;
    double reach_;
    std::vector<std::uint32_t> links_;
};

/** Carries the values on into what no ball has reached, step by step from its neighbours. */
class GapFiller {
public:
    GapFiller(const Grid& grid, AnalysisTask& task, std::vector<float>& values)
        : grid_(grid), task_(task), values_(values) {}

    bool run() {
        if (!findGaps()) {
            return false;
        }
        while (!ring_.empty()) {
            if (!settleRing()) {
                return false;
            }
        }
        // What hangs together with no ball at all keeps twice its distance.
        return task_.stage(kFillGapsWeight * 0.5, grid_.depth(), [&](std::size_t z, std::size_t) {
            float* slice = values_.data() + z * grid_.sliceLength();
            std::transform(slice, slice + grid_.sliceLength(), slice, [](float value) { return std::abs(value); });
        });
    }

private:
    struct Gap {
        std::size_t index;
        float value;
    };

    template <typename Visit>
    void forNeighbours(std::size_t index, const Visit& visit) const {
        const std::size_t width = grid_.width();
        const auto x = static_cast<std::int64_t>(index % width);
        const auto y = static_cast<std::int64_t>(index / width % grid_.height());
        const auto z = static_cast<std::int64_t>(index / grid_.sliceLength());
        for (std::int64_t c = std::max<std::int64_t>(z - 1, 0); c <= std::min(z + 1, grid_.size[2] - 1); ++c) {
            for (std::int64_t b = std::max<std::int64_t>(y - 1, 0); b <= std::min(y + 1, grid_.size[1] - 1); ++b) {
                for (std::int64_t a = std::max<std::int64_t>(x - 1, 0); a <= std::min(x + 1, grid_.size[0] - 1); ++a) {
                    visit(grid_.index(a, b, c));
                }
            }
        }
    }

    /** The largest value around a voxel; 0 where there is none yet. */
    float largestAround(std::size_t index) const {
        float largest = 0.0F;
        forNeighbours(index, [&](std::size_t near) {
            // NaN compares false and so is left out.
            if (values_[near] > largest) {
                largest = values_[near];
            }
        });
        return largest;
    }

    bool findGaps() {
        std::vector<std::vector<Gap>> found(grid_.depth());
        if (!task_.stage(kFillGapsWeight * 0.5, grid_.depth(), [&](std::size_t z, std::size_t) {
                const std::size_t end = (z + 1) * grid_.sliceLength();
                for (std::size_t i = z * grid_.sliceLength(); i < end; ++i) {
                    const float value = values_[i] < 0.0F ? largestAround(i) : 0.0F;
                    if (value > 0.0F) {
                        found[z].push_back({i, value});
                    }
                }
            })) {
            return false;
        }
        for (const std::vector<Gap>& slice : found) {
            ring_.insert(ring_.end(), slice.begin(), slice.end());
        }
        return true;
    }

    /** Writes the values of a ring of gaps, then finds the gaps beside it. */
    bool settleRing() {
        constexpr std::size_t kPatience = 65536;
        for (const Gap& gap : ring_) {
            values_[gap.index] = gap.value;
        }
        std::vector<std::size_t> next;
        for (std::size_t i = 0; i < ring_.size(); ++i) {
            if (i % kPatience == 0 && task_.isStopped()) {
                return false;
            }
            forNeighbours(ring_[i].index, [&](std::size_t near) {
                if (values_[near] < 0.0F) {
                    next.push_back(near);
                }
            });
        }
        std::sort(next.begin(), next.end());
        next.erase(std::unique(next.begin(), next.end()), next.end());
        ring_.clear();
        for (const std::size_t index : next) {
            ring_.push_back({index, largestAround(index)});
        }
        return true;
    }

    const Grid& grid_;
    AnalysisTask& task_;
    std::vector<float>& values_;
    std::vector<Gap> ring_;
};

}  // namespace

bool findInscribedBalls(const Grid& grid, const std::vector<float>& distances, AnalysisTask& task,
                        std::vector<Ball>& out) {
    std::vector<std::vector<Ball>> found(grid.depth());
    const BallFinder finder(grid, distances);
    if (!task.stage(kFindBallsWeight * 0.7, grid.depth(),
                    [&](std::size_t z, std::size_t) { finder.inSlice(static_cast<std::int64_t>(z), found[z]); })) {
        return false;
    }
    std::size_t total = 0;
    for (const std::vector<Ball>& slice : found) {
        total += slice.size();
    }
    if (!task.hasMemory(total * sizeof(Ball))) {
        return false;
    }
    out.clear();
    out.reserve(total);
    for (std::vector<Ball>& slice : found) {
        out.insert(out.end(), slice.begin(), slice.end());
        std::vector<Ball>().swap(slice);
    }
    return task.stage(kFindBallsWeight * 0.3, 1, [&](std::size_t, std::size_t) {
        std::sort(out.begin(), out.end(), [](const Ball& a, const Ball& b) {
            return std::tie(b.radius, a.z, a.y, a.x) < std::tie(a.radius, b.z, b.y, b.x);
        });
    });
}

bool paintDiameters(const Grid& grid, const std::vector<Ball>& balls, AnalysisTask& task,
                    std::vector<float>& distances) {
    constexpr std::size_t kSlices = 8;
    constexpr std::size_t kPatience = 1024;
    const std::size_t slabs = (grid.depth() + kSlices - 1) / kSlices;
    const bool painted = task.stage(kPaintBallsWeight, slabs, [&](std::size_t slab, std::size_t) {
        const std::size_t first = slab * kSlices;
        SlabPainter painter(grid, first, std::min(first + kSlices, grid.depth()) - 1, distances);
        for (std::size_t i = 0; i < balls.size(); ++i) {
            if (i % kPatience == 0 && task.isStopped()) {
                return;
            }
            painter.paint(balls[i]);
        }
        painter.finish();
    });
    return painted && GapFiller(grid, task, distances).run();
}

}  // namespace lyranalysis
