#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrDefectDetectionColorLookupTableRenderSettings.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/RainbowTable.h>
#include <analysis/ToleranceTable.h>
#include <analysis/compute/LyrDefectResult.h>
#include <analysis/compute/LyrVerdict.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_volume/LyrVolumeObject.h>

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace {

/** The line around the marked defect in slices: told apart from every grey. */
constexpr std::array<std::uint8_t, 4> MARK = {255, 140, 0, 255};

}  // namespace

LyrDefectLayer::LyrDefectLayer(LyrVolumeObject* document, std::shared_ptr<const LyrDefectResult> result,
                               DefectSurface surface, LyrColorLookupTable* table, LyrObject* settings)
    : LyrResultLayer(document, result->values, table, settings),
      mResult(std::move(result)),
      mSurface(std::move(surface)) {
    mMarked.setComputed(true);
    addProperty(Lyr::MarkedDefect, &mMarked);
    mTolerance.setComputed(true);
    addProperty(Lyr::ToleranceTable, &mTolerance);
}

LyrDefectLayer* LyrDefectLayer::create(LyrVolumeObject* document, std::shared_ptr<const LyrDefectResult> result,
                                       DefectSurface surface) {
    const LyrObjectPtr table = lysRainbowTable(result->values->valueRange(), Lyr::Volume);
    const LyrObjectPtr settings(new LyrDefectDetectionColorLookupTableRenderSettings);
    if (!table || !settings) {
        return nullptr;
    }
    auto* layer = new LyrDefectLayer(document, std::move(result), std::move(surface),
                                     static_cast<LyrColorLookupTable*>(table.get()), settings.get());
    layer->prepareSurface();
    return layer;
}

const LyrMetaClass& LyrDefectLayer::metaClass() {
    static const LyrMetaClass meta("LyrDefectLayer", sizeof(LyrDefectLayer), &LyrResultLayer::metaClass(), nullptr,
                                   LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrDefectLayer::getMetaClass() const {
    return metaClass();
}

QString LyrDefectLayer::title() const {
    return QCoreApplication::translate("LyrDefectLayer", "Defect volume");
}

const LyrDefect* LyrDefectLayer::defectAt(const LyrVector3<float>& position) const {
    LyrVolume::Size voxel{};
    return document().voxelAt(position, voxel) ? mResult->defectAt(voxel[0], voxel[1], voxel[2]) : nullptr;
}

LyrVector3<float> LyrDefectLayer::centerOf(const LyrDefect& defect) const {
    return document().worldPosition(defect.center);
}

std::vector<LyrVerdict> LyrDefectLayer::verdicts() const {
    return lysVerdicts(judgingTable(), mResult->defects);
}

void LyrDefectLayer::setToleranceTable(const LyrColorLookupTable* table) {
    LyrObjectPtr copy;
    if (table) {
        copy = LyrObjectPtr(dynamic_cast<LyrObject*>(table->getMetaClass().clone(table)));
    }
    mTolerance.setValue(LyrObjectLink(copy.get(), nullptr, -1));
}

const LyrColorLookupTable* LyrDefectLayer::judgingTable() const {
    const auto* chosen = dynamic_cast<const LyrColorLookupTable*>(mTolerance.getTarget());
    return chosen ? chosen : table();
}

std::uint32_t LyrDefectLayer::markedDefect() const {
    return static_cast<std::uint32_t>(mMarked.stored());
}

bool LyrDefectLayer::setMarkedDefect(std::uint32_t number) {
    if (number > mResult->defects.size()) {
        return false;
    }
    if (number != markedDefect()) {
        mMarkedAt = LyrTimestamp::getCurrentTimestamp();
        mMarked.setValue(number);
    }
    return true;
}

std::shared_ptr<const LyrRendering::SurfaceMesh> LyrDefectLayer::mesh() const {
    return mSurface.mesh;
}

LyrColoredLayer::VertexValues LyrDefectLayer::vertexValues() const {
    return [result = mResult, owners = mSurface.defects](const LyrRendering::SurfaceMesh&, std::size_t first,
                                                         std::span<float> out) {
        for (std::size_t i = 0; i < out.size(); ++i) {
            const std::uint32_t number = first + i < owners->size() ? (*owners)[first + i] : 0;
            out[i] = number > 0 ? static_cast<float>(result->defects[number - 1].volume)
                                : std::numeric_limits<float>::quiet_NaN();
        }
    };
}

void LyrDefectLayer::finishSlice(int axis, int index, std::span<const float> values,
                                 std::span<std::uint8_t> pixels) const {
    LyrResultLayer::finishSlice(axis, index, values, pixels);
    const std::uint32_t marked = markedDefect();
    if (marked == 0) {
        return;
    }
    const LyrDefect& defect = mResult->defects[marked - 1];
    const LyrVolume& volume = *mResult->volume;
    const auto across = static_cast<std::size_t>(axis);
    if (index < defect.first[across] || index > defect.last[across]) {
        return;
    }
    const std::size_t column = axis == 0 ? 1 : 0;
    const std::size_t row = axis == 2 ? 1 : 2;
    std::array<std::int64_t, 3> voxel{};
    voxel[across] = index;
    const auto isMarked = [&](std::int64_t x, std::int64_t y) {
        voxel[column] = x;
        voxel[row] = y;
        const LyrDefect* there = mResult->defectAt(voxel[0], voxel[1], voxel[2]);
        return there && there->number == marked;
    };
    const std::int64_t width = volume.sliceWidth(static_cast<LyrVolume::Axis>(axis));
    for (std::int64_t y = defect.first[row] - 1; y <= defect.last[row] + 1; ++y) {
        for (std::int64_t x = defect.first[column] - 1; x <= defect.last[column] + 1; ++x) {
            const bool inside = x >= 0 && y >= 0 && x < volume.size()[column] && y < volume.size()[row];
            if (inside && !isMarked(x, y) &&
                (isMarked(x - 1, y) || isMarked(x + 1, y) || isMarked(x, y - 1) || isMarked(x, y + 1))) {
                std::copy(MARK.begin(), MARK.end(), pixels.data() + 4 * (x + width * y));
            }
        }
    }
}

void LyrDefectLayer::finishMesh(std::span<std::uint8_t> colors) const {
    const std::uint32_t marked = markedDefect();
    const std::vector<std::uint32_t>& owners = *mSurface.defects;
    for (std::size_t i = 0; marked > 0 && i < owners.size(); ++i) {
        if (owners[i] == marked) {
            std::fill_n(colors.data() + 4 * i, 4, std::uint8_t{255});
        }
    }
}

LyrTimestamp LyrDefectLayer::getFinishTimestamp() const {
    return mMarkedAt;
}
