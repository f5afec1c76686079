#pragma once

#include <cstdint>
#include <vector>

#include <analysis/compute/AnalysisTask_p.h>
#include <analysis/compute/Grid_p.h>

namespace lyranalysis {

/** Grey values of voxels that are wholly air and wholly material. */
struct GreyLevels {
    double air = 0.0;
    double material = 1.0;

    /** The part of a voxel that is air; noise may carry it a little beyond 0 and 1. What is not finite is one or the
     *  other as by the threshold: +∞ material, −∞ and what is no number air. */
    double airShare(float value) const {
        return std::isfinite(value) ? (material - static_cast<double>(value)) / (material - air)
               : value > 0.0F       ? 0.0
                                    : 1.0;
    }
};

/** For each voxel the number of material voxels in the cube of (2 · radius + 1)³ around it; beyond the edges the
 * outermost voxels are repeated. The radius is 1 or 2, so that a byte holds the number. */
class MaterialNeighbours {
public:
    static constexpr double kWeight = 2.0;

    bool count(const Grid& grid, int radius, AnalysisTask& task);

    bool isAllMaterial(std::size_t index) const { return counts_[index] == full_; }
    bool isAllAir(std::size_t index) const { return counts_[index] == 0; }

private:
    std::vector<std::uint8_t> counts_;
    std::uint8_t full_ = 27;
};

inline constexpr double kLevelsWeight = 2.0;

/** The levels, as means over the voxels whose surroundings of 5 × 5 × 5 voxels (`farther`, radius 2) are all of their
 *  class, else 3 × 3 × 3 (`nearest`, radius 1), without values far from the median such as a padding of the corners. A
 *  class that has no such voxels takes the mean of its outermost tenth, one without voxels the threshold. */
bool findGreyLevels(const Grid& grid, const MaterialNeighbours& nearest, const MaterialNeighbours& farther,
                    AnalysisTask& task, GreyLevels& out);

inline constexpr double kMaterialWeight = 1.0;

/** Material in voxels: whole voxels away from surfaces, and their share by grey value at surfaces. */
bool measureMaterial(const Grid& grid, const MaterialNeighbours& nearest, const GreyLevels& levels, AnalysisTask& task,
                     double& out);

}  // namespace lyranalysis
