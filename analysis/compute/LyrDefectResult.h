#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include <lyr_volume/LyrVolume.h>

/** One hollow that material encloses on all sides. Lengths are mm in the volume's own axes, where the first sample's
 *  centre is at the volume's origin. */
struct LyrDefect {
    std::uint32_t number = 0;    ///< from 1, the largest volume first
    std::uint64_t voxels = 0;    ///< voxels below the threshold
    double countedVolume = 0.0;  ///< mm³, `voxels` times the volume of a voxel
    /** mm³, the volume to judge by: voxels wholly inside count whole, those at the surface by the share of air that
     * their grey value tells. */
    double volume = 0.0;
    std::array<double, 3> center{};       ///< mm, mean place of its voxels
    std::array<double, 3> low{};          ///< mm, lower corner of the box around its voxels
    std::array<double, 3> high{};         ///< mm, upper corner
    std::array<std::int64_t, 3> first{};  ///< lowest voxel indices
    std::array<std::int64_t, 3> last{};   ///< highest voxel indices
    double size = 0.0;                    ///< mm, largest extent in any direction
    double sphericity = 0.0;              ///< surface of a ball of its counted volume over its surface; 1 for a ball
};

/** What LyrDefectAnalysis found. */
struct LyrDefectResult {
    std::shared_ptr<const LyrVolume> volume;  ///< what was analysed
    float threshold = 0.0F;                   ///< samples from it on are material
    bool thresholdWasGiven = false;           ///< otherwise it is Otsu's
    std::int64_t minimumVoxels = 0;           ///< smaller hollows are left out
    double voxelVolume = 0.0;                 ///< mm³

    std::vector<LyrDefect> defects;  ///< defects[i] has the number i + 1

    std::uint64_t defectVoxels = 0;      ///< of all defects
    double countedDefectVolume = 0.0;    ///< mm³, defectVoxels · voxelVolume
    double defectVolume = 0.0;           ///< mm³, sum of the defects' `volume`
    std::uint64_t materialVoxels = 0;    ///< voxels from the threshold on
    double countedMaterialVolume = 0.0;  ///< mm³, materialVoxels · voxelVolume
    double materialVolume = 0.0;         ///< mm³, by grey values at surfaces as the defects' `volume`
    double porosity = 0.0;               ///< percent, defectVolume of defectVolume + materialVolume
    double countedPorosity = 0.0;        ///< percent, the same of the counted volumes
    std::uint64_t smallHollows = 0;      ///< hollows left out because they were too small
    std::uint64_t smallHollowVoxels = 0;

    double airLevel = 0.0;       ///< grey value of air that the shares of surface voxels go by
    double materialLevel = 0.0;  ///< grey value of material

    /** Number of the defect that each voxel belongs to, 0 for none, in the order of the volume's samples. */
    std::vector<std::uint32_t> labels;
    /** For colouring: each defect's voxels hold its `volume`, all others NaN. On the grid of the volume. */
    std::shared_ptr<const LyrVolume> values;

    /** The defect of a voxel; null where there is none, and for indices outside the volume. */
    const LyrDefect* defectAt(std::int64_t x, std::int64_t y, std::int64_t z) const;
};
