#pragma once

#include <lyr_core/LyrVector2.h>

namespace LyrSceneGraph {

/** How a camera maps its scene onto its viewport. Widget pixels are pixels of the framebuffer, from the top left corner
 * of the view to the right and down. */
class CameraTransform {
public:
    /** The outer edges of the viewport's pixels: max = min + size. */
    LyrVector2<float> getViewportMin() const noexcept { return mMin; }
    LyrVector2<float> getViewportMax() const noexcept { return mMax; }
    LyrVector2<float> getViewportSize() const noexcept { return mMax - mMin; }
    void setViewport(const LyrVector2<float>& min, const LyrVector2<float>& size) noexcept {
        mMin = min;
        mMax = min + size;
    }

private:
    LyrVector2<float> mMin;
    LyrVector2<float> mMax;
};

}  // namespace LyrSceneGraph
