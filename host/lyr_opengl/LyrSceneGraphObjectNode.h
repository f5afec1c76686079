#pragma once

#include <lyr_opengl/LyrSceneGraphNode.h>

namespace LyrSceneGraph {

/** A node that stands for an object. Its children stand for the objects that belong to it. */
class LYR_OPENGL_EXPORT SceneGraphObjectNode : public Node {
public:
    /** @param object  what the node stands for; kept alive by the node, may be null */
    explicit SceneGraphObjectNode(LyrObject* object);
    ~SceneGraphObjectNode() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    LyrObject* getObject() const noexcept { return mObject.get(); }

    /** What is known of how the object is rendered; 0: it is not rendered. */
    std::int64_t getRenderingStateIdentifier() const noexcept { return mRenderingState; }
    void setRenderingStateIdentifier(std::int64_t state) noexcept { mRenderingState = state; }

    std::int64_t getChildCount() const noexcept { return static_cast<std::int64_t>(mChildren.size()); }
    SceneGraphObjectNode* getChild(std::int64_t index) const noexcept;
    /** Puts a node after the children that are there; the parent holds a reference. Null does nothing. */
    void appendChild(SceneGraphObjectNode* child);
    void removeChildren() noexcept;

private:
    LyrObjectPtr mObject;
    std::int64_t mRenderingState = 1;
    std::vector<LyrObjectPtr> mChildren;
};

}  // namespace LyrSceneGraph
