#pragma once

#include <cstdint>
#include <vector>

#include <analysis/compute/AnalysisTask_p.h>
#include <analysis/compute/Grid_p.h>

namespace lyranalysis {

/** A stretch of neighbouring voxels along x that are no material. */
struct Run {
    std::uint32_t row;    ///< y + ny · z
    std::int32_t first;   ///< x of the first voxel
    std::int32_t length;  ///< voxels
};

/** The regions of a grid that are no material and that material encloses on all sides. */
struct Components {
    /** The runs of region i, in the order of the samples, are runs[starts[i]] to before runs[starts[i + 1]]; regions
     *  come in the order of their first samples. */
    std::vector<Run> runs;
    std::vector<std::size_t> starts{0};
    std::uint64_t suppressed = 0;  ///< enclosed regions that were too small
    std::uint64_t suppressedVoxels = 0;
    std::uint64_t materialVoxels = 0;

    std::size_t count() const { return starts.size() - 1; }
};

inline constexpr double kComponentsWeight = 4.0;

/** Finds the enclosed regions of at least `minimumVoxels`. Voxels belong together where they share a face. A region
 * that reaches the edge of the volume along an axis of more than one voxel is outside. False when stopped, or with a
 *  message. */
bool findComponents(const Grid& grid, std::int64_t minimumVoxels, AnalysisTask& task, Components& out);

}  // namespace lyranalysis
