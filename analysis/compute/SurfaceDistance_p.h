#pragma once

#include <vector>

#include <analysis/compute/AnalysisTask_p.h>
#include <analysis/compute/Grid_p.h>

namespace lyranalysis {

inline constexpr double kDistanceWeight = 5.0;

/** Bytes for each voxel that findSurfaceDistances takes, its result among them. */
inline constexpr std::uint64_t kDistanceBytes = 8;

/** Distance of each voxel's centre to the surface in mm, above zero in material, below zero elsewhere.
 *
 *  The surface is made of points: one between each pair of face neighbours of which one is material, where the straight
 *  line through their two grey values meets the threshold. The distance to the nearest of these points is exact; voxels
 *  next to the surface take that to the plane through the points on their axes. It is infinite everywhere when there
 * are no points. The edge of the volume is no surface. */
bool findSurfaceDistances(const Grid& grid, AnalysisTask& task, std::vector<float>& out);

}  // namespace lyranalysis
