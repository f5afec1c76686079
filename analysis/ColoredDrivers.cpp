#include <analysis/AnalysisIdentifiers.h>
#include <analysis/ColoredDrivers_p.h>
#include <analysis/LyrColoredLayer.h>
#include <analysis/TableColors.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_volume/LyrVolumeObject.h>

#include <algorithm>

ColoredSliceDriver::ColoredSliceDriver(LyrSceneGraph::ViewportObjectNode* node, const LyrColoredLayer& layer)
    : SliceDriver(node), mLayer(layer) {}

ColoredSliceDriver::~ColoredSliceDriver() = default;

const LyrMetaClass& ColoredSliceDriver::metaClass() {
    static const LyrMetaClass meta("ColoredSliceDriver", sizeof(ColoredSliceDriver), &Driver::metaClass(), nullptr,
                                   LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& ColoredSliceDriver::getMetaClass() const {
    return metaClass();
}

LyrTimestamp ColoredSliceDriver::getSliceTimestamp() const {
    return std::max(mLayer.getTableTimestamp(), mLayer.getModificationTimestamp());
}

bool ColoredSliceDriver::fetchSlice(int axis, int index, LyrRendering::SliceImage& out) {
    const LyrVolume& volume = *mLayer.values();
    const LyrColorLookupTable* table = mLayer.table();
    const auto across = static_cast<LyrVolume::Axis>(axis);
    if (!table || index < 0 || index >= volume.sliceCount(across)) {
        return false;
    }
    const std::int64_t width = volume.sliceWidth(across);
    const std::int64_t height = volume.sliceHeight(across);
    if (axis != mAxis || index != mIndex) {
        mValues.resize(static_cast<std::size_t>(width * height));
        volume.slice(across, index, mValues);
        mAxis = axis;
        mIndex = index;
    }
    const LyrVector3<float> extent = mLayer.document().extent();
    out.width = static_cast<int>(width);
    out.height = static_cast<int>(height);
    out.min = {0.0f, 0.0f};
    out.max = {axis == 0 ? extent.y : extent.x, axis == 2 ? extent.y : extent.z};
    out.pixels.resize(mValues.size() * 4);
    lysColorBytes(*table, mValues, out.pixels, mLayer.getOpacity());
    mLayer.dimSlice(mValues, out.pixels);
    mLayer.finishSlice(axis, index, mValues, out.pixels);
    return true;
}

ColoredSurfaceDriver::ColoredSurfaceDriver(LyrSceneGraph::ViewportObjectNode* node, const LyrColoredLayer& layer)
    : SurfaceDriver(node), mLayer(layer) {}

ColoredSurfaceDriver::~ColoredSurfaceDriver() = default;

const LyrMetaClass& ColoredSurfaceDriver::metaClass() {
    static const LyrMetaClass meta("ColoredSurfaceDriver", sizeof(ColoredSurfaceDriver), &Driver::metaClass(), nullptr,
                                   LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& ColoredSurfaceDriver::getMetaClass() const {
    return metaClass();
}

bool ColoredSurfaceDriver::fetchSurface(LyrRendering::Surface& out) {
    const std::shared_ptr<const LyrRendering::SurfaceMesh> mesh = mLayer.mesh();
    const LyrColorLookupTable* table = mLayer.table();
    const std::shared_ptr<const std::vector<float>> values = mLayer.surfaceValues();
    if (!mesh || mesh->triangles.empty() || !table || !values) {
        return false;
    }
    if (mSurface.mesh != mesh || mValues != values) {
        mSurface = {mesh, nullptr};
        mValues = values;
    }
    const LyrTimestamp changed =
        std::max({mLayer.getTableTimestamp(), mLayer.getFinishTimestamp(), mLayer.getHighlightTimestamp()});
    if (!mSurface.colors || changed > mColored) {
        mColored = LyrTimestamp::getCurrentTimestamp();
        auto colors = std::make_shared<LyrRendering::SurfaceColors>(values->size() * 4);
        // A surface is seen whole, whatever the opacity of the slices.
        lysColorBytes(*table, *values, *colors, 1.0f);
        mLayer.dimMesh(*values, *colors);
        mLayer.finishMesh(*colors);
        mSurface.colors = std::move(colors);
    }
    out = mSurface;
    return true;
}
