#include <analysis/AnalysisIdentifiers.h>
#include <analysis/ColoredDrivers_p.h>
#include <analysis/LyrColoredLayer.h>
#include <analysis/PartSurface.h>
#include <analysis/TableColors.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_volume/LyrVolumeObject.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/** The sample at a place between the centres of voxels, weighted linearly; beyond the border the nearest counts. */
float sampleBetween(const LyrVolume& volume, const float* position) {
    std::array<std::int64_t, 3> base{};
    std::array<float, 3> part{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double last = static_cast<double>(volume.size()[axis] - 1);
        const double index = std::clamp(static_cast<double>(position[axis]) / volume.spacing()[axis] - 0.5, 0.0, last);
        base[axis] = std::min(static_cast<std::int64_t>(index), std::max<std::int64_t>(volume.size()[axis] - 2, 0));
        part[axis] = static_cast<float>(index - static_cast<double>(base[axis]));
    }
    const auto at = [&](std::int64_t x, std::int64_t y, std::int64_t z) {
        return volume.at(std::min(base[0] + x, volume.size()[0] - 1), std::min(base[1] + y, volume.size()[1] - 1),
                         std::min(base[2] + z, volume.size()[2] - 1));
    };
    const auto mix = [](float a, float b, float t) { return a + (b - a) * t; };
    const auto plane = [&](std::int64_t z) {
        return mix(mix(at(0, 0, z), at(1, 0, z), part[0]), mix(at(0, 1, z), at(1, 1, z), part[0]), part[1]);
    };
    return mix(plane(0), plane(1), part[2]);
}

}  // namespace

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
    const auto& mesh = mLayer.surface().mesh();
    const LyrColorLookupTable* table = mLayer.table();
    if (!mesh || !table) {
        return false;
    }
    if (mSurface.mesh != mesh) {
        mSurface = {mesh, nullptr};
        mValues.resize(mesh->positions.size() / 3);
        for (std::size_t i = 0; i < mValues.size(); ++i) {
            mValues[i] = sampleBetween(*mLayer.values(), mesh->positions.data() + 3 * i);
        }
    }
    if (const LyrTimestamp changed = mLayer.getTableTimestamp(); !mSurface.colors || changed > mColored) {
        mColored = LyrTimestamp::getCurrentTimestamp();
        auto colors = std::make_shared<LyrRendering::SurfaceColors>(mValues.size() * 4);
        // A surface is seen whole, whatever the opacity of the slices.
        lysColorBytes(*table, mValues, *colors, 1.0f);
        mSurface.colors = std::move(colors);
    }
    out = mSurface;
    return true;
}
