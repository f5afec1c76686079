#include <lyr_core/LyrMetaClass.h>
#include <lyr_opengl/LyrRenderingDriver.h>
#include <lyr_opengl/LyrViewportObjectNode.h>

namespace LyrSceneGraph {

ViewportObjectNode::ViewportObjectNode(LyrObject* object, SceneGraphObjectNode* sceneNode, CameraNode* camera)
    : SceneGraphObjectNode(object), mSceneNode(sceneNode), mCamera(camera) {}

const LyrMetaClass& ViewportObjectNode::metaClass() {
    static const LyrMetaClass meta("LyrSceneGraph::ViewportObjectNode", sizeof(ViewportObjectNode),
                                   &SceneGraphObjectNode::metaClass(), nullptr, "lyr_opengl", 0, nullptr, 0, 0, 0,
                                   false);
    return meta;
}

const LyrMetaClass& ViewportObjectNode::getMetaClass() const {
    return metaClass();
}

SceneGraphObjectNode* ViewportObjectNode::getSceneNode() const noexcept {
    return static_cast<SceneGraphObjectNode*>(mSceneNode.get());
}

CameraNode* ViewportObjectNode::getCameraNode() const noexcept {
    return static_cast<CameraNode*>(mCamera.get());
}

const CameraTransform& ViewportObjectNode::getCameraTransform() const noexcept {
    return getCameraNode()->transform();
}

long long ViewportObjectNode::getOverlayPass(const LyrRendering::Driver* driver) const noexcept {
    for (std::int64_t i = 0; i < getRenderingDriverCount(); ++i) {
        if (getRenderingDriver(i) == driver) {
            return LyrRendering::OVERLAY_PASS;
        }
    }
    return -1;
}

}  // namespace LyrSceneGraph
