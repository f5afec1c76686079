#include <lyr_core/LyrMetaClass.h>
#include <lyr_opengl/LyrCameraNode.h>

namespace LyrSceneGraph {

const LyrMetaClass& CameraNode::metaClass() {
    static const LyrMetaClass meta("LyrSceneGraph::CameraNode", sizeof(CameraNode), &SceneGraphObjectNode::metaClass(),
                                   nullptr, "lyr_opengl", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& CameraNode::getMetaClass() const {
    return metaClass();
}

}  // namespace LyrSceneGraph
