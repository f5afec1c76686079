#pragma once

#include <lyr_opengl/LyrRenderingDriver.h>
#include <lyr_opengl/LyrSurface.h>

#include <memory>

namespace LyrSceneGraph {
class ViewportObjectNode;
}

namespace LyrRendering {

/** Draws the surface of a layer in scene views, lit from the eye; in other views it draws nothing.
 *
 *  A derived class hands over mesh and colours. A mesh whose numbers do not fit together (a triangle of a vertex that
 * is not there, too few normals) is reported once and not drawn; colours that are too few are left out. */
class LYR_OPENGL_EXPORT SurfaceDriver : public Driver {
public:
    /** @param node  the node that the driver is given to; not owned, outlives the driver */
    explicit SurfaceDriver(LyrSceneGraph::ViewportObjectNode* node);
    ~SurfaceDriver() override;

    bool init() override;
    void cleanup() override;
    DeviceRect getDeviceCoverageRect(long long pass) override;
    DeviceRect getDeviceUpdateRect(long long pass) override;
    bool renderObject(long long pass, void* context) override;

protected:
    /** Gives the surface as it is now: called before every frame of a scene view, so it hands over what is there.
     * False: there is nothing to show. */
    virtual bool fetchSurface(Surface& out) = 0;

    LyrSceneGraph::ViewportObjectNode* viewportNode() const noexcept { return mNode; }

private:
    class Buffers;
    LyrSceneGraph::ViewportObjectNode* mNode;
    std::unique_ptr<Buffers> mBuffers;
};

}  // namespace LyrRendering
