#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace LyrRendering {

/** A surface of triangles. */
struct SurfaceMesh {
    /** x, y, z of each vertex, in millimetres. */
    std::vector<float> positions;
    /** x, y, z of each vertex's normal, of length 1; empty: the surface is drawn unlit. */
    std::vector<float> normals;
    /** Three vertices, counted from 0, for each triangle. */
    std::vector<std::uint32_t> triangles;
};

/** RGBA of each vertex, 8 bits each. */
using SurfaceColors = std::vector<std::uint8_t>;

/** A surface and its colours. The parts are shared and do not change: another mesh, or other colours, are another
 * object, and what is the same object is not handed to OpenGL again. */
struct Surface {
    std::shared_ptr<const SurfaceMesh> mesh;
    std::shared_ptr<const SurfaceColors> colors;  ///< null: grey
};

}  // namespace LyrRendering
