#pragma once

#include <lyr_opengl/LyrCameraNode.h>
#include <lyr_opengl/LyrSceneGraphObjectNode.h>

namespace LyrSceneGraph {

/** The node of a rendered object in one view, made once for each object and view. Its drivers draw the object there. */
class LYR_OPENGL_EXPORT ViewportObjectNode : public SceneGraphObjectNode {
public:
    /** Neither node is null; both are kept alive.
     *  @param object     the rendered object
     *  @param sceneNode  the root of all that the view shows
     *  @param camera     what the view looks through */
    ViewportObjectNode(LyrObject* object, SceneGraphObjectNode* sceneNode, CameraNode* camera);

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    SceneGraphObjectNode* getSceneNode() const noexcept;
    CameraNode* getCameraNode() const noexcept;
    const CameraTransform& getCameraTransform() const noexcept;

    /** Bits of the update flags: something changed, what lies in the scene did, what stands over the view did. */
    static constexpr unsigned int CHANGED = 1;
    static constexpr unsigned int SCENE_CHANGED = CHANGED | 2;
    static constexpr unsigned int OVERLAY_CHANGED = CHANGED | 4;

    /** What has to be drawn anew: bits, 0 for nothing. The host clears them after the frame. */
    unsigned int getUpdateFlags() const noexcept { return mUpdateFlags; }
    void addUpdateFlags(unsigned int flags) noexcept { mUpdateFlags |= flags; }
    void clearUpdateFlags() noexcept { mUpdateFlags = 0; }

    /** The pass in which a driver of this node draws what stands over the view; -1 for a driver of another node. */
    long long getOverlayPass(const LyrRendering::Driver* driver) const noexcept;

private:
    LyrObjectPtr mSceneNode;
    LyrObjectPtr mCamera;
    unsigned int mUpdateFlags = 0;
};

}  // namespace LyrSceneGraph
