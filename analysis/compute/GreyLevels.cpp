#include <analysis/compute/GreyLevels_p.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include <analysis/compute/PiecewiseSort_p.h>

namespace lyranalysis {

namespace {

constexpr std::size_t kBins = 4096;

using Bytes = std::vector<std::uint8_t>;

/** Sums of 2 · radius + 1 neighbours along a line of `count` rows of `length` bytes each, row after row. */
void addNeighbourRows(const Bytes& rows, std::size_t count, std::size_t length, int radius, std::uint8_t* out,
                      std::size_t outStride) {
    const auto last = static_cast<std::ptrdiff_t>(count) - 1;
    for (std::ptrdiff_t i = 0; i <= last; ++i) {
        std::uint8_t* sum = out + static_cast<std::size_t>(i) * outStride;
        std::fill_n(sum, length, std::uint8_t{0});
        for (std::ptrdiff_t k = i - radius; k <= i + radius; ++k) {
            const auto from = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(k, 0, last));
            const std::uint8_t* row = rows.data() + from * length;
            for (std::size_t x = 0; x < length; ++x) {
                sum[x] = static_cast<std::uint8_t>(sum[x] + row[x]);
            }
        }
    }
}

void addAlongRow(const Bytes& bits, std::size_t length, int radius, std::uint8_t* out) {
    const auto last = static_cast<std::ptrdiff_t>(length) - 1;
    for (std::ptrdiff_t x = 0; x <= last; ++x) {
        int sum = 0;
        for (std::ptrdiff_t k = x - radius; k <= x + radius; ++k) {
            sum += bits[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(k, 0, last))];
        }
        out[x] = static_cast<std::uint8_t>(sum);
    }
}

/** The voxels that a level is taken from: those of a class whose surroundings are all of that class. */
class ClassOfVoxels {
public:
    /** Without surroundings all voxels of the class. */
    ClassOfVoxels(const Grid& grid, const MaterialNeighbours* surroundings, bool material)
        : grid_(grid), surroundings_(surroundings), material_(material) {}

    bool holds(std::size_t index) const {
        if (!std::isfinite(grid_.samples[index])) {
            return false;
        }
        if (surroundings_) {
            return material_ ? surroundings_->isAllMaterial(index) : surroundings_->isAllAir(index);
        }
        return grid_.isMaterial(index) == material_;
    }

    /** Calls visit(value, slice, worker) for each voxel of the class. */
    template <typename Visit>
    bool forEach(AnalysisTask& task, double weight, const Visit& visit) const {
        return task.stage(weight, grid_.depth(), [&](std::size_t slice, std::size_t worker) {
            const std::size_t end = (slice + 1) * grid_.sliceLength();
            for (std::size_t i = slice * grid_.sliceLength(); i < end; ++i) {
                if (holds(i)) {
                    visit(static_cast<double>(grid_.samples[i]), slice, worker);
                }
            }
        });
    }

private:
    const Grid& grid_;
    const MaterialNeighbours* surroundings_;
    bool material_;
};

struct Window {
    double low;
    double high;
};

/** The values of a class in bins. */
struct Spread {
    double low;
    double width;
    std::vector<std::uint64_t> counts;

    std::uint64_t total() const { return std::accumulate(counts.begin(), counts.end(), std::uint64_t{0}); }

    double quantile(double part) const {
        const double wanted = part * static_cast<double>(total());
        double below = 0.0;
        std::size_t bin = 0;
        while (bin + 1 < kBins && below + static_cast<double>(counts[bin]) < wanted) {
            below += static_cast<double>(counts[bin++]);
        }
        return low + (static_cast<double>(bin) + 0.5) * width;
    }

    /** Three times the distance of the quartiles to both sides of the median. */
    Window usual() const {
        const double median = quantile(0.5);
        const double reach = 3.0 * (quantile(0.75) - quantile(0.25)) + 2.0 * width;
        return {median - reach, median + reach};
    }
};

bool countClass(const ClassOfVoxels& voxels, Window range, AnalysisTask& task, Spread& out) {
    out.low = range.low;
    out.width = std::max((range.high - range.low) / static_cast<double>(kBins), 1e-300);
    std::vector<std::vector<std::uint64_t>> counts(task.threads(), std::vector<std::uint64_t>(kBins));
    const bool done = voxels.forEach(task, kLevelsWeight / 8.0, [&](double value, std::size_t, std::size_t worker) {
        const double bin = std::clamp((value - out.low) / out.width, 0.0, static_cast<double>(kBins - 1));
        ++counts[worker][static_cast<std::size_t>(bin)];
    });
    out.counts.assign(kBins, 0);
    for (const std::vector<std::uint64_t>& mine : counts) {
        std::transform(out.counts.begin(), out.counts.end(), mine.begin(), out.counts.begin(), std::plus<>());
    }
    return done;
}

/** Mean of the usual values of a class. Sums of slices are added up in their order: the same for any number of threads.
 */
bool meanOfClass(const ClassOfVoxels& voxels, const Grid& grid, Window usual, AnalysisTask& task, double& mean) {
    std::vector<double> sums(grid.depth());
    std::vector<double> numbers(grid.depth());
    if (!voxels.forEach(task, kLevelsWeight / 8.0, [&](double value, std::size_t slice, std::size_t) {
            if (value >= usual.low && value <= usual.high) {
                sums[slice] += value;
                numbers[slice] += 1.0;
            }
        })) {
        return false;
    }
    const double number = std::accumulate(numbers.begin(), numbers.end(), 0.0);
    mean = number > 0.0 ? std::accumulate(sums.begin(), sums.end(), 0.0) / number : mean;
    return true;
}

bool levelOfClass(const Grid& grid, const MaterialNeighbours& nearest, const MaterialNeighbours& farther, bool material,
                  Window range, AnalysisTask& task, double& level) {
    Spread spread{};
    for (const MaterialNeighbours* surroundings : {&farther, &nearest}) {
        const ClassOfVoxels voxels(grid, surroundings, material);
        if (!countClass(voxels, range, task, spread)) {
            return false;
        }
        if (spread.total() > 0) {
            return meanOfClass(voxels, grid, spread.usual(), task, level);
        }
    }
    if (!countClass(ClassOfVoxels(grid, nullptr, material), range, task, spread)) {
        return false;
    }
    constexpr double kTenth = 0.1;
    const double limit = spread.quantile(material ? 1.0 - kTenth : kTenth);
    const Window outermost =
        material ? Window{limit - spread.width, range.high} : Window{range.low, limit + spread.width};
    return meanOfClass(ClassOfVoxels(grid, nullptr, material), grid, outermost, task, level);
}

}  // namespace

bool MaterialNeighbours::count(const Grid& grid, int radius, AnalysisTask& task) {
    const std::size_t edge = 2 * static_cast<std::size_t>(radius) + 1;
    full_ = static_cast<std::uint8_t>(edge * edge * edge);
    const std::size_t nx = grid.width();
    const std::size_t ny = grid.height();
    const std::size_t nz = grid.depth();
    if (!resizeInSteps(counts_, grid.voxels(), std::uint8_t{0}, task) ||
        !task.stage(kWeight / 2.0, nz, [&](std::size_t z, std::size_t) {
            Bytes bits(nx);
            Bytes rows(nx * ny);
            for (std::size_t y = 0; y < ny; ++y) {
                const std::size_t begin = (y + ny * z) * nx;
                for (std::size_t x = 0; x < nx; ++x) {
                    bits[x] = grid.isMaterial(begin + x) ? 1 : 0;
                }
                addAlongRow(bits, nx, radius, rows.data() + y * nx);
            }
            addNeighbourRows(rows, ny, nx, radius, counts_.data() + z * nx * ny, nx);
        })) {
        return false;
    }
    return task.stage(kWeight / 2.0, ny, [&](std::size_t y, std::size_t) {
        Bytes rows(nx * nz);
        for (std::size_t z = 0; z < nz; ++z) {
            std::copy_n(counts_.data() + (y + ny * z) * nx, nx, rows.data() + z * nx);
        }
        addNeighbourRows(rows, nz, nx, radius, counts_.data() + y * nx, nx * ny);
    });
}

bool findGreyLevels(const Grid& grid, const MaterialNeighbours& nearest, const MaterialNeighbours& farther,
                    AnalysisTask& task, GreyLevels& out) {
    const double threshold = grid.threshold;
    const double low = std::min(threshold, static_cast<double>(grid.range.low));
    const double high = std::max(threshold, static_cast<double>(grid.range.high));
    out.air = threshold;
    out.material = threshold;
    if (!levelOfClass(grid, nearest, farther, false, {low, threshold}, task, out.air) ||
        !levelOfClass(grid, nearest, farther, true, {threshold, high}, task, out.material)) {
        return false;
    }
    if (!(out.material > out.air)) {
        // All samples lie on the threshold: any distance does, as long as material counts as material.
        out.air = out.material - 1.0;
    }
    return true;
}

bool measureMaterial(const Grid& grid, const MaterialNeighbours& nearest, const GreyLevels& levels, AnalysisTask& task,
                     double& out) {
    std::vector<double> sums(grid.depth());
    if (!task.stage(kMaterialWeight, grid.depth(), [&](std::size_t slice, std::size_t) {
            double sum = 0.0;
            const std::size_t end = (slice + 1) * grid.sliceLength();
            for (std::size_t i = slice * grid.sliceLength(); i < end; ++i) {
                if (nearest.isAllMaterial(i)) {
                    sum += 1.0;
                } else if (!nearest.isAllAir(i)) {
                    sum += 1.0 - levels.airShare(grid.samples[i]);
                }
            }
            sums[slice] = sum;
        })) {
        return false;
    }
    out = std::max(std::accumulate(sums.begin(), sums.end(), 0.0), 0.0);
    return true;
}

}  // namespace lyranalysis
