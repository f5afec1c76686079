#pragma once

#include <lys_core/views/ViewTools.h>

/** A layer of slices: each pixel's colour is given by a function of axis, slice, column and row. */
struct SliceLayer {
    std::function<QRgb(int axis, int index, int x, int y)> color;
    int sizes[3] = {8, 6, 4};
    bool smooth = false;
    LyrTimestamp changed;
    int fetches = 0;
};

class TestSliceDriver : public LyrRendering::SliceDriver {
public:
    TestSliceDriver(LyrSceneGraph::ViewportObjectNode* node, SliceLayer& layer) : SliceDriver(node), mLayer(layer) {}

protected:
    LyrTimestamp getSliceTimestamp() const override { return mLayer.changed; }
    bool fetchSlice(int axis, int index, LyrRendering::SliceImage& out) override {
        ++mLayer.fetches;
        out.width = mLayer.sizes[axis == 0 ? 1 : 0];
        out.height = mLayer.sizes[axis == 2 ? 1 : 2];
        out.max = {static_cast<float>(out.width), static_cast<float>(out.height)};
        out.smooth = mLayer.smooth;
        out.pixels.clear();
        for (int y = 0; y < out.height; ++y) {
            for (int x = 0; x < out.width; ++x) {
                const QRgb color = mLayer.color(axis, index, x, y);
                for (const int channel : {qRed(color), qGreen(color), qBlue(color), qAlpha(color)}) {
                    out.pixels.push_back(static_cast<std::uint8_t>(channel));
                }
            }
        }
        return true;
    }

private:
    SliceLayer& mLayer;
};

class TestSurfaceDriver : public LyrRendering::SurfaceDriver {
public:
    TestSurfaceDriver(LyrSceneGraph::ViewportObjectNode* node, LyrRendering::Surface& surface)
        : SurfaceDriver(node), mSurface(surface) {}

protected:
    bool fetchSurface(LyrRendering::Surface& out) override {
        out = mSurface;
        return out.mesh != nullptr;
    }

private:
    LyrRendering::Surface& mSurface;
};

/** Gives nodes the driver that a function makes. */
class DrawingPlugin : public LyrRenderPlugin {
public:
    using Make = std::function<LyrRendering::Driver*(LyrSceneGraph::ViewportObjectNode*)>;
    explicit DrawingPlugin(Make make) : mAction(std::move(make)) { addAction(Lyr::DriverInit, &mAction); }

private:
    class Action : public LyrActionAttr {
    public:
        explicit Action(Make make) : LyrActionAttr(0, 0), mMake(std::move(make)) {}
        void execute() override {
            auto* node = dynamic_cast<LyrSceneGraph::ViewportObjectNode*>(getParameter());
            node->appendRenderingDriver(mMake(node));
            ok(Lyr::Success);
        }

    private:
        Make mMake;
    };
    Action mAction;
};
