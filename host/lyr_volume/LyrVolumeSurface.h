#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <lyr_core/LyrVector3.h>
#include <lyr_volume/LyrVolume.h>
#include <lyr_volume/LyrVolumeExport.h>

/** The surface between what lies above and what lies below a value of a volume, as triangles. Places are in mm from
 *  the corner of the first voxel, like those of LyrVolumeObject. */
struct LYR_VOLUME_EXPORT LyrVolumeSurface {
    std::vector<LyrVector3<float>> positions;
    std::vector<LyrVector3<float>> normals;  ///< one for each position, unit length, out of the higher values
    std::vector<std::array<std::uint32_t, 3>> triangles;  ///< counter-clockwise seen from outside

    /** Told now and then which part is done, 0 to 1, on the calling thread. False cancels. */
    using Progress = std::function<bool(double)>;

    /** Extracts the surface at a value; beyond its borders the volume counts as low, so the surface is closed. A sample
     * that is not finite counts as low too. Nothing at the value gives an empty surface.
     *
     *  False, with `out` untouched, and a message unless it was cancelled: for a value that is not finite, and when
     * there is not enough memory, which is looked for before any is taken. May be called from any thread. */
    static bool extract(const LyrVolume& volume, float value, std::shared_ptr<const LyrVolumeSurface>& out,
                        std::string& error, const Progress& progress = {});

    /** A value between the two sides of the volume's histogram, by Otsu: the largest variance between them. The middle
     *  of the value range where all samples are alike or none is finite. */
    static float suggestValue(const LyrVolume& volume);
};
