#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include <analysis/compute/Balls_p.h>

namespace lyranalysis {

/** Finds the balls in walls of few voxels, where distances at voxels do not tell: beside a gap of a voxel the distance
 *  in the gap is that to the next wall. The two faces are taken from where lines along an axis enter and leave the
 *  material, and their directions from the lines beside them. */
class ThinWalls {
public:
    ThinWalls(const Grid& grid, const std::vector<float>& distances) : grid_(grid), distances_(distances) {}

    /** Adds the balls of all walls that lines along the axes enter in a row along x. */
    void inRow(std::int64_t y, std::int64_t z, std::vector<Ball>& out) const;

private:
    /** A face: where a line meets it, in voxels along the line, and how it goes on beside the line. */
    struct Face {
        double place = 0.0;
        double squaredSlope = 0.0;
        std::array<double, 3> slopes{};      ///< of the place along the other axes, mm per mm
        std::array<bool, 3> isSeenAround{};  ///< the lines beside this one meet it too, to both sides along an axis
    };

    void alongAxis(const Place& place, std::size_t axis, std::vector<Ball>& out) const;
    double largestRadius(const Place& below, std::size_t axis, double middle) const;
    bool isWall(const Face& in, const Face& out, std::size_t axis) const;
    float sampleAt(Place place, std::size_t axis, std::int64_t at) const;
    std::optional<double> crossing(const Place& line, std::size_t axis, std::int64_t below, bool enters) const;
    std::optional<double> nearestCrossing(Place line, std::size_t axis, std::size_t across, std::int64_t step,
                                          double place, bool enters) const;
    Face faceAt(const Place& line, std::size_t axis, double place, bool enters) const;

    const Grid& grid_;
    const std::vector<float>& distances_;
};

}  // namespace lyranalysis
