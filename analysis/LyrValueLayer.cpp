#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrValueLayer.h>
#include <analysis/RainbowTable.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyrColorLookupTableRenderSettings.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_volume/LyrVolumeObject.h>

#include <QCoreApplication>

LyrValueLayer* LyrValueLayer::create(LyrVolumeObject* document) {
    const LyrObjectPtr table = lysRainbowTable(document->volume()->valueRange(), Lyr::Number);
    const LyrObjectPtr settings(new LyrColorLookupTableRenderSettings);
    if (!table || !settings) {
        return nullptr;
    }
    lyrSetValue<Lyrenum>(settings.get(), Lyr::Position, Lyr::Left);
    lyrSetValue<const char*>(settings.get(), Lyrenum("DescriptionTemplate", false),
                             QCoreApplication::translate("LyrValueLayer", "Value").toUtf8().constData());
    auto* layer =
        new LyrValueLayer(document, document->volume(), static_cast<LyrColorLookupTable*>(table.get()), settings.get());
    layer->prepareSurface();
    return layer;
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
