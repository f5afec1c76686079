#pragma once

#include <colortable/viewport/LegendPlacement.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_opengl/LyrViewportObjectNode.h>

#include <cmath>

/** What the two halves of the render driver share. */
namespace lys::viewport {

inline void reportWrongType(const LyrClass* object) {
    LyrError::emitError(LyrError::Message(object, Lyr::WrongType));
}

/** The widget pixels of a node's view. */
inline Viewport viewportOf(const LyrSceneGraph::ViewportObjectNode& node) {
    const LyrSceneGraph::CameraTransform& transform = node.getCameraTransform();
    const LyrVector2<float> min = transform.getViewportMin();
    const LyrVector2<float> size = transform.getViewportSize();
    return {min.x, min.y, size.x, size.y};
}

/** Whether a view is one that can exist; OpenGL's viewports are at most 32768 pixels long. Nothing is placed in others:
 * no memory is taken for images of such a length. */
inline bool isPlausible(const Viewport& viewport) {
    constexpr float LONGEST = 65536.0f;
    return std::isfinite(viewport.x) && std::isfinite(viewport.y) && std::isfinite(viewport.width) &&
           std::isfinite(viewport.height) && viewport.width <= LONGEST && viewport.height <= LONGEST;
}

}  // namespace lys::viewport
