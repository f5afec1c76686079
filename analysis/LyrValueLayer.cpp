#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrValueLayer.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyrColorLookupTableRenderSettings.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_volume/LyrVolumeObject.h>

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace {

/** The range that a new table spans: the volume's, widened where it has no extent. */
LyrVolume::ValueRange tableRange(const LyrVolume& volume) {
    LyrVolume::ValueRange range = volume.valueRange();
    if (range.isEmpty()) {
        range.low = 0.0f;
        range.high = 1.0f;
    } else if (range.low == range.high) {
        const float width = std::max(std::fabs(range.low) * 1e-3f, 1e-3f);
        range.low -= width;
        range.high += width;
    }
    return range;
}

}  // namespace

LyrValueLayer* LyrValueLayer::create(LyrVolumeObject* document) {
    // A new table is a rainbow between two positions. Nobody holds it yet, so that undo hears nothing of its making.
    auto* made = new LyrColorLookupTable;
    const LyrVolume::ValueRange range = tableRange(*document->volume());
    const float positions[] = {range.low, range.high};
    if (const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> list(made, Lyr::PositionList); list) {
        list->initArray(0, 1, positions);
    }
    lyrSetValue<Lyrenum>(made, Lyr::Quantity, Lyr::Number);
    const LyrObjectPtr table(made);
    const LyrObjectPtr settings(new LyrColorLookupTableRenderSettings);
    if (!table || !settings) {
        return nullptr;
    }
    lyrSetValue<Lyrenum>(settings.get(), Lyr::Position, Lyr::Left);
    lyrSetValue<const char*>(settings.get(), Lyrenum("DescriptionTemplate", false),
                             QCoreApplication::translate("LyrValueLayer", "Value").toUtf8().constData());
    return new LyrValueLayer(document, document->volume(), static_cast<LyrColorLookupTable*>(table.get()),
                             settings.get());
}

const LyrMetaClass& LyrValueLayer::metaClass() {
    static const LyrMetaClass meta("LyrValueLayer", sizeof(LyrValueLayer), &LyrColoredLayer::metaClass(), nullptr,
                                   LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrValueLayer::getMetaClass() const {
    return metaClass();
}

QString LyrValueLayer::title() const {
    return QCoreApplication::translate("LyrValueLayer", "Values");
}
