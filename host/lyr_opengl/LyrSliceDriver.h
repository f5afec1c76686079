#pragma once

#include <lyr_opengl/LyrRenderingDriver.h>
#include <lyr_opengl/LyrSliceImage.h>

#include <memory>

namespace LyrSceneGraph {
class ViewportObjectNode;
}

namespace LyrRendering {

/** Draws the slice of a layer in slice views; in other views it draws nothing.
 *
 *  A derived class hands over pixels. They are asked for in init(), and only when the view shows another slice or
 * getSliceTimestamp() is later than the last picture; the texture is kept in between. A picture larger than the
 * textures of the context is drawn in tiles. */
class LYR_OPENGL_EXPORT SliceDriver : public Driver {
public:
    /** @param node  the node that the driver is given to; not owned, outlives the driver */
    explicit SliceDriver(LyrSceneGraph::ViewportObjectNode* node);
    ~SliceDriver() override;

    bool init() override;
    void cleanup() override;
    DeviceRect getDeviceCoverageRect(long long pass) override;
    DeviceRect getDeviceUpdateRect(long long pass) override;
    bool renderObject(long long pass, void* context) override;

protected:
    /** When what the slices show changed last. */
    virtual LyrTimestamp getSliceTimestamp() const = 0;
    /** Fills in the picture of slice `index`, counted from 0, across `axis` (0 x, 1 y, 2 z). `out` is the last picture:
     * its memory may be used again. False: there is nothing to show. */
    virtual bool fetchSlice(int axis, int index, SliceImage& out) = 0;

    LyrSceneGraph::ViewportObjectNode* viewportNode() const noexcept { return mNode; }

private:
    class Picture;
    LyrSceneGraph::ViewportObjectNode* mNode;
    std::unique_ptr<Picture> mPicture;
};

}  // namespace LyrRendering
