#include <analysis/compute/Components_p.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include <analysis/compute/PiecewiseSort_p.h>

namespace lyranalysis {

namespace {

using RunIndex = std::uint32_t;
constexpr RunIndex kNone = std::numeric_limits<RunIndex>::max();
// Sequential loops look for a cancelled task once in this many steps.
constexpr std::size_t kPatience = std::size_t{1} << 16U;
// A run, its parent, its size with a bit for outside, and its gathered copy.
constexpr std::uint64_t kBytesOfRun = 2 * sizeof(Run) + sizeof(RunIndex) + sizeof(std::uint64_t) + 1;

class Labeller {
public:
    Labeller(const Grid& grid, AnalysisTask& task) : grid_(grid), task_(task) {}

    bool run(std::int64_t minimumVoxels, Components& out) {
        return countRuns() && collectRuns() && joinInsideSlices() && joinSlices() && settle() &&
               gather(minimumVoxels, out);
    }

private:
    bool countRuns() {
        const std::size_t rows = grid_.height() * grid_.depth();
        if (!task_.claim((rows + 1) * sizeof(std::size_t))) {
            return false;
        }
        rowStarts_.assign(rows + 1, 0);
        std::vector<std::uint64_t> material(grid_.depth());
        if (!task_.stage(1.0, grid_.depth(), [&](std::size_t slice, std::size_t) {
                std::uint64_t found = 0;
                for (std::size_t y = 0; y < grid_.height(); ++y) {
                    const std::size_t row = y + grid_.height() * slice;
                    std::size_t runs = 0;
                    bool before = true;
                    for (std::size_t x = 0; x < grid_.width(); ++x) {
                        const bool solid = grid_.isMaterial(row * grid_.width() + x);
                        runs += before && !solid ? 1 : 0;
                        found += solid ? 1 : 0;
                        before = solid;
                    }
                    rowStarts_[row + 1] = runs;
                }
                material[slice] = found;
            })) {
            return false;
        }
        materialVoxels_ = std::accumulate(material.begin(), material.end(), std::uint64_t{0});
        std::partial_sum(rowStarts_.begin(), rowStarts_.end(), rowStarts_.begin());
        const std::size_t total = rowStarts_.back();
        if (total >= kNone) {
            return task_.fail(LYR_MARK_TEXT("LyrAnalysis",
                                            "the volume falls into too many pieces at this threshold; choose another "
                                            "threshold or analyse a smaller part of the volume"));
        }
        return task_.claim(total * kBytesOfRun);
    }

    bool collectRuns() {
        if (!resizeInSteps(runs_, rowStarts_.back(), Run{}, task_) ||
            !resizeInSteps(parents_, rowStarts_.back(), RunIndex{0}, task_)) {
            return false;
        }
        return task_.stage(1.0, grid_.depth(), [&](std::size_t slice, std::size_t) {
            for (std::size_t y = 0; y < grid_.height(); ++y) {
                collectRow(y + grid_.height() * slice);
            }
        });
    }

    void collectRow(std::size_t row) {
        std::size_t at = rowStarts_[row];
        const std::size_t begin = row * grid_.width();
        std::size_t x = 0;
        while (x < grid_.width()) {
            if (grid_.isMaterial(begin + x)) {
                ++x;
                continue;
            }
            const std::size_t first = x;
            while (x < grid_.width() && !grid_.isMaterial(begin + x)) {
                ++x;
            }
            parents_[at] = static_cast<RunIndex>(at);
            runs_[at++] = {static_cast<std::uint32_t>(row), static_cast<std::int32_t>(first),
                           static_cast<std::int32_t>(x - first)};
        }
    }

    RunIndex rootOf(RunIndex run) {
        while (parents_[run] != run) {
            parents_[run] = parents_[parents_[run]];
            run = parents_[run];
        }
        return run;
    }

    /** The earlier root wins, so that the result does not depend on the order. */
    void join(RunIndex a, RunIndex b) {
        a = rootOf(a);
        b = rootOf(b);
        if (a != b) {
            parents_[std::max(a, b)] = std::min(a, b);
        }
    }

    void joinRows(std::size_t rowA, std::size_t rowB) {
        std::size_t a = rowStarts_[rowA];
        std::size_t b = rowStarts_[rowB];
        while (a < rowStarts_[rowA + 1] && b < rowStarts_[rowB + 1]) {
            const std::int32_t endA = runs_[a].first + runs_[a].length;
            const std::int32_t endB = runs_[b].first + runs_[b].length;
            if (runs_[a].first < endB && runs_[b].first < endA) {
                join(static_cast<RunIndex>(a), static_cast<RunIndex>(b));
            }
            (endA < endB ? a : b) += 1;
        }
    }

    bool joinInsideSlices() {
        return task_.stage(1.0, grid_.depth(), [&](std::size_t slice, std::size_t) {
            for (std::size_t y = 1; y < grid_.height(); ++y) {
                const std::size_t row = y + grid_.height() * slice;
                joinRows(row - 1, row);
            }
        });
    }

    bool joinSlices() {
        for (std::size_t slice = 1; slice < grid_.depth(); ++slice) {
            if (task_.isStopped()) {
                return false;
            }
            for (std::size_t y = 0; y < grid_.height(); ++y) {
                const std::size_t row = y + grid_.height() * slice;
                joinRows(row - grid_.height(), row);
            }
        }
        return true;
    }

    bool touchesEdge(const Run& run) const {
        const std::size_t y = run.row % grid_.height();
        const std::size_t z = run.row / grid_.height();
        const std::size_t end = static_cast<std::size_t>(run.first) + static_cast<std::size_t>(run.length);
        return (grid_.width() > 1 && (run.first == 0 || end == grid_.width())) ||
               (grid_.height() > 1 && (y == 0 || y + 1 == grid_.height())) ||
               (grid_.depth() > 1 && (z == 0 || z + 1 == grid_.depth()));
    }

    /** Calls visit(run) for all runs in their order. False when stopped. */
    template <typename Visit>
    bool forRuns(const Visit& visit) const {
        for (std::size_t i = 0; i < runs_.size(); ++i) {
            if (i % kPatience == 0 && task_.isStopped()) {
                return false;
            }
            visit(i);
        }
        return true;
    }

    /** Points every run at its root and counts the voxels of each; those of regions outside are set to 0. A parent is
     *  never behind its child, so one walk forward is enough. */
    bool settle() {
        std::vector<bool> outside;
        if (!resizeInSteps(sizes_, runs_.size(), std::uint64_t{0}, task_)) {
            return false;
        }
        outside.resize(runs_.size());
        const bool counted = forRuns([&](std::size_t i) {
            parents_[i] = parents_[parents_[i]];
            sizes_[parents_[i]] += static_cast<std::uint64_t>(runs_[i].length);
            if (touchesEdge(runs_[i])) {
                outside[parents_[i]] = true;
            }
        });
        return counted && forRuns([&](std::size_t i) { sizes_[i] = outside[i] ? 0 : sizes_[i]; });
    }

    /** Sorts the runs of the regions that count by region. */
    bool gather(std::int64_t minimumVoxels, Components& out) {
        const auto smallest = static_cast<std::uint64_t>(std::max<std::int64_t>(minimumVoxels, 1));
        out.materialVoxels = materialVoxels_;
        std::size_t regions = 0;
        if (!forRuns([&](std::size_t i) {
                const bool counts = parents_[i] == i && sizes_[i] >= smallest;
                if (parents_[i] == i && sizes_[i] > 0 && !counts) {
                    ++out.suppressed;
                    out.suppressedVoxels += sizes_[i];
                }
                // From here on the size of a root is the number of its region, counted from 1.
                sizes_[i] = counts ? ++regions : 0;
            })) {
            return false;
        }
        if (!task_.claim(2 * (regions + 1) * sizeof(std::size_t))) {
            return false;
        }
        out.starts.assign(regions + 1, 0);
        if (!forRuns([&](std::size_t i) { out.starts[sizes_[parents_[i]]] += sizes_[parents_[i]] > 0 ? 1 : 0; })) {
            return false;
        }
        std::partial_sum(out.starts.begin(), out.starts.end(), out.starts.begin());
        if (!resizeInSteps(out.runs, out.starts.back(), Run{}, task_)) {
            return false;
        }
        std::vector<std::size_t> next(out.starts.begin(), out.starts.end() - 1);
        if (!forRuns([&](std::size_t i) {
                const std::uint64_t region = sizes_[parents_[i]];
                if (region > 0) {
                    out.runs[next[region - 1]++] = runs_[i];
                }
            })) {
            return false;
        }
        // All but the gathered runs and their starts is given back with the labeller.
        task_.release(rowStarts_.size() * sizeof(std::size_t) + runs_.size() * kBytesOfRun -
                      out.runs.size() * sizeof(Run) + out.starts.size() * sizeof(std::size_t));
        return task_.stage(1.0, 0, {});
    }

    const Grid& grid_;
    AnalysisTask& task_;
    std::uint64_t materialVoxels_ = 0;
    std::vector<std::size_t> rowStarts_;
    std::vector<Run> runs_;
    std::vector<RunIndex> parents_;
    std::vector<std::uint64_t> sizes_;
};

}  // namespace

bool findComponents(const Grid& grid, std::int64_t minimumVoxels, AnalysisTask& task, Components& out) {
    constexpr std::int64_t kLongest = std::numeric_limits<std::int32_t>::max();
    if (grid.size[0] > kLongest || grid.size[1] * grid.size[2] > kLongest) {
        return task.fail(LYR_MARK_TEXT("LyrAnalysis", "the volume has too many rows; analyse a smaller part of it"));
    }
    return Labeller(grid, task).run(minimumVoxels, out);
}

}  // namespace lyranalysis
