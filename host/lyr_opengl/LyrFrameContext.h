#pragma once

namespace LyrSceneGraph {
class CameraNode;
}

namespace LyrRendering {

/** What the host hands to LyrRendering::Driver::renderObject(). */
struct FrameContext {
    const LyrSceneGraph::CameraNode* camera = nullptr;
};

}  // namespace LyrRendering
