#pragma once

#include <cstdint>
#include <memory>

#include <lyr_volume/LyrVolume.h>

/** What LyrWallThickness found. Lengths are mm; the numbers are over all material voxels. */
struct LyrThicknessResult {
    std::shared_ptr<const LyrVolume> volume;  ///< what was analysed
    float threshold = 0.0F;                   ///< samples from it on are material
    bool thresholdWasGiven = false;           ///< otherwise it is Otsu's
    double voxelVolume = 0.0;                 ///< mm³

    std::uint64_t materialVoxels = 0;    ///< voxels from the threshold on
    double countedMaterialVolume = 0.0;  ///< mm³, materialVoxels · voxelVolume
    double least = 0.0;
    double greatest = 0.0;
    double mean = 0.0;
    double deviation = 0.0;  ///< standard deviation
    double median = 0.0;     ///< half of the material is at most as thick

    /** For colouring: the thickness at each material voxel, NaN at all others. On the grid of the volume. */
    std::shared_ptr<const LyrVolume> values;
};
