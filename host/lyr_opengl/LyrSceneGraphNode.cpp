#include <lyr_core/LyrMetaClass.h>
#include <lyr_opengl/LyrRenderingDriver.h>
#include <lyr_opengl/LyrSceneGraphNode.h>

namespace LyrSceneGraph {

Node::Node() = default;

Node::~Node() {
    removeRenderingDrivers();
}

const LyrMetaClass& Node::metaClass() {
    static const LyrMetaClass meta("LyrSceneGraph::Node", sizeof(Node), &LyrObject::metaClass(), nullptr, "lyr_opengl",
                                   0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& Node::getMetaClass() const {
    return metaClass();
}

void Node::prependRenderingDriver(LyrRendering::Driver* driver) {
    if (driver) {
        mDrivers.emplace(mDrivers.begin(), driver);
    }
}

void Node::appendRenderingDriver(LyrRendering::Driver* driver) {
    if (driver) {
        mDrivers.emplace_back(driver);
    }
}

LyrRendering::Driver* Node::getRenderingDriver(std::int64_t index) const noexcept {
    return index >= 0 && index < getRenderingDriverCount() ? mDrivers[static_cast<std::size_t>(index)].get() : nullptr;
}

void Node::removeRenderingDrivers() noexcept {
    // A driver's destructor may look at the node: it finds the driver gone.
    const std::vector<std::unique_ptr<LyrRendering::Driver>> gone = std::move(mDrivers);
    mDrivers.clear();
}

}  // namespace LyrSceneGraph
