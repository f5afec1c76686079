#pragma once

#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_opengl/LyrOpenglExport.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace LyrRendering {
class Driver;
}

namespace LyrSceneGraph {

/** A node of a scene graph: children and the drivers that draw it. Nodes are made by the host, one graph a view. */
class LYR_OPENGL_EXPORT Node : public LyrObject {
public:
    Node();
    ~Node() override;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** Puts a driver before those that are there, so that it is drawn first. The node owns it. Null does nothing. */
    void prependRenderingDriver(LyrRendering::Driver* driver);
    /** Puts a driver after those that are there. The node owns it. Null does nothing. */
    void appendRenderingDriver(LyrRendering::Driver* driver);
    std::int64_t getRenderingDriverCount() const noexcept { return static_cast<std::int64_t>(mDrivers.size()); }
    LyrRendering::Driver* getRenderingDriver(std::int64_t index) const noexcept;
    /** Destroys the node's drivers. */
    void removeRenderingDrivers() noexcept;

private:
    std::vector<std::unique_ptr<LyrRendering::Driver>> mDrivers;
};

}  // namespace LyrSceneGraph
