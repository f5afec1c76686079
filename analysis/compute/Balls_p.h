#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include <analysis/compute/Grid_p.h>
#include <analysis/compute/InscribedBalls_p.h>

namespace lyranalysis {

using Place = std::array<std::int64_t, 3>;

// The distance rises to a middle by 1 from two sides. The difference of the two directions has the length 2 between
// parallel walls, 1.73 in a wedge of 60° and 1.41 in an edge of 90°: balls in edges and corners do not count.
inline constexpr double kSmallestTurn = 1.6;

/** A middle along an axis. */
struct Peak {
    double place;  ///< mm from the voxel
    double height;
};

/** Whether the distance grows on steeply from a middle, between a voxel and the next one along an axis, to a voxel
 *  around it. */
bool growsOn(const Grid& grid, const std::vector<float>& distances, const Place& place, std::size_t axis,
             const Peak& peak);

/** Adds the ball around a middle between a voxel and the next one along an axis. */
void addBall(const Grid& grid, const Place& place, std::size_t axis, const Peak& peak, std::vector<Ball>& out);

}  // namespace lyranalysis
