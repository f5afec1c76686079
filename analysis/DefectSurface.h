#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_core/LyrVector3.h>
#include <lyr_opengl/LyrSurface.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct LyrDefectResult;

/** The surfaces of defects, at the threshold by which they were found. */
struct LYS_ANALYSIS_EXPORT DefectSurface {
    /** Voxel faces that all surfaces together go around, at most; two triangles each. Of more defects only the largest
     *  have surfaces: a cloud of noise would fill the memory of a view, and take long to draw. */
    static constexpr double MOST_FACES = 100000.0;
    /** How many of the defects, the largest first, have surfaces. */
    static std::size_t shownCount(const LyrDefectResult& result);

    std::shared_ptr<const LyrRendering::SurfaceMesh> mesh;
    /** Number of the defect that each vertex belongs to; not null. */
    std::shared_ptr<const std::vector<std::uint32_t>> defects = std::make_shared<std::vector<std::uint32_t>>();

    /** Extracts them; may run in any thread. False, with a message unless it was cancelled, and `out` untouched, when
     *  memory is short.
     *  @param progress  told the part that is done, 0 to 1; false cancels */
    static bool extract(const LyrDefectResult& result, DefectSurface& out, std::string& error,
                        const std::function<bool(double)>& progress);

    /** Number of the defect with the voxel nearest to a place of the world (mm), no further away than the next voxel in
     * each direction; 0 if there is none. */
    static std::uint32_t defectNear(const LyrDefectResult& result, const LyrVector3<float>& place);
};
