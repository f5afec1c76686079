#pragma once

#include <cstdint>
#include <vector>

#include <analysis/compute/AnalysisTask_p.h>
#include <analysis/compute/Grid_p.h>

namespace lyranalysis {

/** A ball inside the material; lengths in mm from the first sample's centre. */
struct Ball {
    float x;
    float y;
    float z;
    float radius;
};

inline constexpr double kFindBallsWeight = 1.0;
inline constexpr double kPaintBallsWeight = 6.0;
inline constexpr double kFillGapsWeight = 1.0;

/** The balls around the middle of the material, the largest first. Along each axis the distances rise to the middle
 * from both sides; straight lines through the last two on each side meet there, finer than the voxels. Balls that touch
 * the surface from two sides that meet at more than about 75°, as in an edge or a corner, are left out. `distances` are
 * those of findSurfaceDistances. */
bool findInscribedBalls(const Grid& grid, const std::vector<float>& distances, AnalysisTask& task,
                        std::vector<Ball>& out);

/** Writes into each material voxel the diameter of the largest ball that covers its centre, half a voxel around the
 * ball included, and NaN into all other voxels. What no ball covers takes the value of the nearest voxels that one
 * does; twice its own distance where there is no ball at all. `distances` become the result. */
bool paintDiameters(const Grid& grid, const std::vector<Ball>& balls, AnalysisTask& task,
                    std::vector<float>& distances);

}  // namespace lyranalysis
