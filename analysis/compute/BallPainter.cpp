#include <analysis/compute/InscribedBalls_p.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lyranalysis {

namespace {

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

// A ball of the diameter 1 leaves 0.37 of it uncovered towards the corner of a cube, and 0.21 towards an edge. A value
// is carried on no farther than this part of itself and a few voxels: not from a block into all of a wall on top of it.
constexpr double kReach = 0.5;
constexpr double kFreeRings = 3.0;

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

    /** The largest value around a voxel that reaches as far as the present ring; 0 where there is none yet. */
    float largestAround(std::size_t index) const {
        float largest = 0.0F;
        forNeighbours(index, [&](std::size_t near) {
            // NaN compares false and so is left out.
            if (values_[near] > largest) {
                largest = values_[near];
            }
        });
        return largest >= least_ ? largest : 0.0F;
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
        constexpr std::size_t kPatience = 16384;
        ++rings_;
        least_ = static_cast<float>((static_cast<double>(rings_) - kFreeRings) * grid_.meanSpacing() / kReach);
        for (const Gap& gap : ring_) {
            values_[gap.index] = gap.value;
        }
        std::vector<Gap> next;
        for (std::size_t i = 0; i < ring_.size(); ++i) {
            if (i % kPatience == 0 && task_.isStopped()) {
                return false;
            }
            forNeighbours(ring_[i].index, [&](std::size_t near) {
                const float value = values_[near] < 0.0F ? largestAround(near) : 0.0F;
                if (value > 0.0F) {
                    next.push_back({near, value});
                    // Neither a gap any more nor a value yet: the ring does not fill itself.
                    values_[near] = 0.0F;
                }
            });
        }
        ring_.swap(next);
        return true;
    }

    const Grid& grid_;
    AnalysisTask& task_;
    std::vector<float>& values_;
    std::vector<Gap> ring_;
    int rings_ = 0;
    float least_ = 0.0F;  ///< a value that is smaller is not carried on as far as the present ring
};

}  // namespace

bool paintDiameters(const Grid& grid, const std::vector<Ball>& balls, AnalysisTask& task,
                    std::vector<float>& distances) {
    constexpr std::size_t kSlices = 8;
    constexpr std::size_t kPatience = 32;
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
