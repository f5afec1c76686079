#pragma once

#include <lyr_opengl/LyrCameraTransform.h>
#include <lyr_opengl/LyrSceneGraphObjectNode.h>

namespace LyrSceneGraph {

/** The node of a view's camera. */
class LYR_OPENGL_EXPORT CameraNode : public SceneGraphObjectNode {
public:
    using SceneGraphObjectNode::SceneGraphObjectNode;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** While a view is suppressed its drivers skip their updates; changes made meanwhile are found by the next update.
     */
    bool isSuppressed() const noexcept { return mSuppressed; }
    void setSuppressed(bool on) noexcept { mSuppressed = on; }

    CameraTransform& transform() noexcept { return mTransform; }
    const CameraTransform& transform() const noexcept { return mTransform; }

private:
    CameraTransform mTransform;
    bool mSuppressed = false;
};

}  // namespace LyrSceneGraph
