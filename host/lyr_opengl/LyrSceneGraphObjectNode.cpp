#include <lyr_core/LyrMetaClass.h>
#include <lyr_opengl/LyrSceneGraphObjectNode.h>

#include <utility>

namespace LyrSceneGraph {

SceneGraphObjectNode::SceneGraphObjectNode(LyrObject* object) : mObject(object) {}

SceneGraphObjectNode::~SceneGraphObjectNode() = default;

const LyrMetaClass& SceneGraphObjectNode::metaClass() {
    static const LyrMetaClass meta("LyrSceneGraph::SceneGraphObjectNode", sizeof(SceneGraphObjectNode),
                                   &Node::metaClass(), nullptr, "lyr_opengl", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& SceneGraphObjectNode::getMetaClass() const {
    return metaClass();
}

SceneGraphObjectNode* SceneGraphObjectNode::getChild(std::int64_t index) const noexcept {
    return index >= 0 && index < getChildCount()
               ? static_cast<SceneGraphObjectNode*>(mChildren[static_cast<std::size_t>(index)].get())
               : nullptr;
}

void SceneGraphObjectNode::appendChild(SceneGraphObjectNode* child) {
    if (child) {
        mChildren.emplace_back(child);
    }
}

void SceneGraphObjectNode::removeChildren() noexcept {
    const std::vector<LyrObjectPtr> gone = std::exchange(mChildren, {});
}

}  // namespace LyrSceneGraph
