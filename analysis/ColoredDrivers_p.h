#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_opengl/LyrSliceDriver.h>
#include <lyr_opengl/LyrSurfaceDriver.h>

#include <memory>
#include <vector>

class LyrColoredLayer;

/** Draws slices through the values of a layer. The layer is the object of the driver's node and outlives it. */
class LYS_ANALYSIS_EXPORT ColoredSliceDriver : public LyrRendering::SliceDriver {
public:
    ColoredSliceDriver(LyrSceneGraph::ViewportObjectNode* node, const LyrColoredLayer& layer);
    ~ColoredSliceDriver() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

protected:
    LyrTimestamp getSliceTimestamp() const override;
    bool fetchSlice(int axis, int index, LyrRendering::SliceImage& out) override;

private:
    const LyrColoredLayer& mLayer;
    std::vector<float> mValues;  ///< of the slice that was shown last: kept for a table that is being edited
    int mAxis = -1;
    int mIndex = -1;
};

/** Draws the part's surface in the colours of the values on it. */
class LYS_ANALYSIS_EXPORT ColoredSurfaceDriver : public LyrRendering::SurfaceDriver {
public:
    ColoredSurfaceDriver(LyrSceneGraph::ViewportObjectNode* node, const LyrColoredLayer& layer);
    ~ColoredSurfaceDriver() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

protected:
    bool fetchSurface(LyrRendering::Surface& out) override;

private:
    const LyrColoredLayer& mLayer;
    LyrRendering::Surface mSurface;
    std::shared_ptr<const std::vector<float>> mValues;  ///< at each vertex
    LyrTimestamp mColored;
};
