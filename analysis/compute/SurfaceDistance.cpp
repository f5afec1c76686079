#include <analysis/compute/SurfaceDistance_p.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include <analysis/compute/PiecewiseSort_p.h>

namespace lyranalysis {

namespace {

constexpr float kFar = std::numeric_limits<float>::infinity();
// Lines across the memory are worked on in blocks of this many neighbours, a cache line of floats.
constexpr std::size_t kBlock = 16;

/** Squared distances along one line to the surface points on the line itself. `values` holds the line's samples. */
void scanLine(const float* values, std::size_t count, double spacing, float threshold, float* out) {
    const auto surfaceAfter = [&](std::size_t i) {
        const bool material = values[i] >= threshold;
        const double part = material ? surfacePart(values[i], values[i + 1], threshold)
                                     : 1.0 - surfacePart(values[i + 1], values[i], threshold);
        return (static_cast<double>(i) + part) * spacing;
    };
    const auto squared = [](double distance) { return static_cast<float>(distance * distance); };
    std::fill_n(out, count, kFar);
    double last = -std::numeric_limits<double>::infinity();
    for (std::size_t i = 1; i < count; ++i) {
        if ((values[i - 1] >= threshold) != (values[i] >= threshold)) {
            last = surfaceAfter(i - 1);
        }
        out[i] = squared(static_cast<double>(i) * spacing - last);
    }
    double next = std::numeric_limits<double>::infinity();
    for (std::size_t i = count - 1; i-- > 0;) {
        if ((values[i] >= threshold) != (values[i + 1] >= threshold)) {
            next = surfaceAfter(i);
        }
        out[i] = std::min(out[i], squared(next - static_cast<double>(i) * spacing));
    }
}

/** Squared distances carried over to the neighbours along a line: out[i] = min over k of in[k] + (i − k)² · spacing²,
 *  by the lower envelope of parabolas (P. Felzenszwalb and D. Huttenlocher, "Distance transforms of sampled functions",
 *  2012). */
class Envelope {
public:
    explicit Envelope(std::size_t longest) : tops_(longest), starts_(longest + 1) {}

    void run(float* line, std::size_t count, double spacing) {
        const double unit = spacing * spacing;
        const auto height = [&](std::size_t i) {
            const auto at = static_cast<double>(i);
            return static_cast<double>(line[i]) / unit + at * at;
        };
        std::size_t parabolas = 0;
        for (std::size_t i = 0; i < count; ++i) {
            if (line[i] == kFar) {
                continue;
            }
            const double mine = height(i);
            double start = -std::numeric_limits<double>::infinity();
            while (parabolas > 0) {
                const Top& top = tops_[parabolas - 1];
                start = (mine - top.height) / (2.0 * (static_cast<double>(i) - static_cast<double>(top.place)));
                if (start > starts_[parabolas - 1]) {
                    break;
                }
                --parabolas;
            }
            starts_[parabolas] = parabolas == 0 ? -std::numeric_limits<double>::infinity() : start;
            tops_[parabolas++] = {i, mine, line[i]};
        }
        if (parabolas == 0) {
            return;
        }
        std::size_t at = 0;
        for (std::size_t i = 0; i < count; ++i) {
            while (at + 1 < parabolas && starts_[at + 1] < static_cast<double>(i)) {
                ++at;
            }
            const double away = static_cast<double>(i) - static_cast<double>(tops_[at].place);
            line[i] = static_cast<float>(static_cast<double>(tops_[at].value) + away * away * unit);
        }
    }

private:
    struct Top {
        std::size_t place;
        double height;
        float value;
    };
    std::vector<Top> tops_;
    std::vector<double> starts_;
};

/** Copies a block of neighbouring lines that run across the memory into lines of their own, and back. */
struct Lines {
    std::size_t count;   ///< samples of a line
    std::size_t stride;  ///< from sample to sample

    void gather(const float* from, std::size_t lines, float* out) const {
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t k = 0; k < lines; ++k) {
                out[k * count + i] = from[i * stride + k];
            }
        }
    }
    void scatter(const float* lined, std::size_t lines, float* to) const {
        for (std::size_t i = 0; i < count; ++i) {
            for (std::size_t k = 0; k < lines; ++k) {
                to[i * stride + k] = lined[k * count + i];
            }
        }
    }
};

class Distances {
public:
    Distances(const Grid& grid, AnalysisTask& task) : grid_(grid), task_(task) {}

    bool run(std::vector<float>& out) {
        // Surface points between neighbours along z, then those along x and y.
        return resizeInSteps(alongZ_, grid_.voxels(), 0.0F, task_) && resizeInSteps(out, grid_.voxels(), 0.0F, task_) &&
               scanAlongZ() && spreadInSlices(out) && spreadAlongZ(out) && correctNearest(out);
    }

private:
    std::size_t nx() const { return grid_.width(); }
    std::size_t ny() const { return grid_.height(); }
    std::size_t nz() const { return grid_.depth(); }

    bool scanAlongZ() {
        return task_.stage(kDistanceWeight * 0.2, ny(), [this](std::size_t y, std::size_t) {
            const Lines lines{nz(), grid_.sliceLength()};
            std::vector<float> values(kBlock * nz());
            std::vector<float> distances(kBlock * nz());
            for (std::size_t x = 0; x < nx(); x += kBlock) {
                const std::size_t block = std::min(kBlock, nx() - x);
                lines.gather(grid_.samples.data() + y * nx() + x, block, values.data());
                for (std::size_t k = 0; k < block; ++k) {
                    scanLine(values.data() + k * nz(), nz(), grid_.spacing[2], grid_.threshold,
                             distances.data() + k * nz());
                }
                lines.scatter(distances.data(), block, alongZ_.data() + y * nx() + x);
            }
        });
    }

    void spreadAlongX(float* slice, Envelope& envelope) const {
        for (std::size_t y = 0; y < ny(); ++y) {
            envelope.run(slice + y * nx(), nx(), grid_.spacing[0]);
        }
    }

    void spreadAlongY(float* slice, Envelope& envelope, std::vector<float>& scratch) const {
        const Lines lines{ny(), nx()};
        for (std::size_t x = 0; x < nx(); x += kBlock) {
            const std::size_t block = std::min(kBlock, nx() - x);
            lines.gather(slice + x, block, scratch.data());
            for (std::size_t k = 0; k < block; ++k) {
                envelope.run(scratch.data() + k * ny(), ny(), grid_.spacing[1]);
            }
            lines.scatter(scratch.data(), block, slice + x);
        }
    }

    void scanAlongY(const float* samples, float* slice, std::vector<float>& scratch) const {
        const Lines lines{ny(), nx()};
        std::vector<float> values(kBlock * ny());
        for (std::size_t x = 0; x < nx(); x += kBlock) {
            const std::size_t block = std::min(kBlock, nx() - x);
            lines.gather(samples + x, block, values.data());
            for (std::size_t k = 0; k < block; ++k) {
                scanLine(values.data() + k * ny(), ny(), grid_.spacing[1], grid_.threshold, scratch.data() + k * ny());
            }
            lines.scatter(scratch.data(), block, slice + x);
        }
    }

    bool spreadInSlices(std::vector<float>& out) {
        return task_.stage(kDistanceWeight * 0.5, nz(), [&](std::size_t z, std::size_t) {
            Envelope envelope(std::max(nx(), ny()));
            std::vector<float> scratch(kBlock * ny());
            std::vector<float> other(grid_.sliceLength());
            float* slice = out.data() + z * grid_.sliceLength();
            const float* samples = grid_.samples.data() + z * grid_.sliceLength();
            for (std::size_t y = 0; y < ny(); ++y) {
                scanLine(samples + y * nx(), nx(), grid_.spacing[0], grid_.threshold, slice + y * nx());
            }
            spreadAlongY(slice, envelope, scratch);
            scanAlongY(samples, other.data(), scratch);
            spreadAlongX(other.data(), envelope);
            for (std::size_t i = 0; i < other.size(); ++i) {
                slice[i] = std::min(slice[i], other[i]);
            }
            float* acrossSlices = alongZ_.data() + z * grid_.sliceLength();
            spreadAlongX(acrossSlices, envelope);
            spreadAlongY(acrossSlices, envelope, scratch);
        });
    }

    bool spreadAlongZ(std::vector<float>& out) {
        return task_.stage(kDistanceWeight * 0.25, ny(), [&](std::size_t y, std::size_t) {
            const Lines lines{nz(), grid_.sliceLength()};
            Envelope envelope(nz());
            std::vector<float> scratch(kBlock * nz());
            for (std::size_t x = 0; x < nx(); x += kBlock) {
                const std::size_t block = std::min(kBlock, nx() - x);
                lines.gather(out.data() + y * nx() + x, block, scratch.data());
                for (std::size_t k = 0; k < block; ++k) {
                    envelope.run(scratch.data() + k * nz(), nz(), grid_.spacing[2]);
                }
                lines.scatter(scratch.data(), block, out.data() + y * nx() + x);
            }
            for (std::size_t z = 0; z < nz(); ++z) {
                finishRow(y * nx() + z * grid_.sliceLength(), out);
            }
        });
    }

    void finishRow(std::size_t begin, std::vector<float>& out) const {
        for (std::size_t i = begin; i < begin + nx(); ++i) {
            const float distance = std::sqrt(std::min(out[i], alongZ_[i]));
            out[i] = grid_.isMaterial(i) ? distance : -distance;
        }
    }

    /** Next to the surface its points are too far apart: there the surface is the plane through the nearest points on
     *  the axes of the voxel, at t₁, t₂ and t₃, and its distance is (t₁⁻² + t₂⁻² + t₃⁻²)^−½. */
    bool correctNearest(std::vector<float>& out) {
        return task_.stage(kDistanceWeight * 0.05, nz(), [&](std::size_t z, std::size_t) {
            for (std::size_t y = 0; y < ny(); ++y) {
                for (std::size_t x = 0; x < nx(); ++x) {
                    const std::size_t index = x + nx() * (y + ny() * z);
                    const double slopes = squaredSlope(index, 1, x, nx(), grid_.spacing[0]) +
                                          squaredSlope(index, nx(), y, ny(), grid_.spacing[1]) +
                                          squaredSlope(index, grid_.sliceLength(), z, nz(), grid_.spacing[2]);
                    if (slopes > 0.0) {
                        const auto distance = static_cast<float>(1.0 / std::sqrt(slopes));
                        out[index] = std::copysign(distance, out[index]);
                    }
                }
            }
        });
    }

    /** t⁻² for the nearest surface point towards a neighbour along an axis; 0 where there is none. */
    double squaredSlope(std::size_t index, std::size_t stride, std::size_t at, std::size_t count,
                        double spacing) const {
        const float here = grid_.samples[index];
        const bool material = here >= grid_.threshold;
        double nearest = std::numeric_limits<double>::infinity();
        const auto look = [&](float there) {
            if ((there >= grid_.threshold) != material) {
                const double part = material ? surfacePart(here, there, grid_.threshold)
                                             : 1.0 - surfacePart(there, here, grid_.threshold);
                nearest = std::min(nearest, part * spacing);
            }
        };
        if (at > 0) {
            look(grid_.samples[index - stride]);
        }
        if (at + 1 < count) {
            look(grid_.samples[index + stride]);
        }
        // A voxel on the surface has a slope without end; this one is long enough for a distance of nothing.
        constexpr double kSteepest = 1e30;
        return std::isinf(nearest) ? 0.0 : std::min(1.0 / (nearest * nearest), kSteepest);
    }

    const Grid& grid_;
    AnalysisTask& task_;
    std::vector<float> alongZ_;
};

}  // namespace

bool findSurfaceDistances(const Grid& grid, AnalysisTask& task, std::vector<float>& out) {
    return Distances(grid, task).run(out);
}

}  // namespace lyranalysis
