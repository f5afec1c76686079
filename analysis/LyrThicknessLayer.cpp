#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrThicknessLayer.h>
#include <analysis/LyrWallThicknessColorLookupTableRenderSettings.h>
#include <analysis/RainbowTable.h>
#include <analysis/compute/LyrThicknessResult.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>

#include <QCoreApplication>

LyrThicknessLayer* LyrThicknessLayer::create(LyrVolumeObject* document,
                                             std::shared_ptr<const LyrThicknessResult> result) {
    const LyrObjectPtr table = lysRainbowTable(result->values->valueRange(), Lyr::Length);
    const LyrObjectPtr settings(new LyrWallThicknessColorLookupTableRenderSettings);
    if (!table || !settings) {
        return nullptr;
    }
    auto* layer =
        new LyrThicknessLayer(document, result->values, static_cast<LyrColorLookupTable*>(table.get()), settings.get());
    layer->mResult = std::move(result);
    layer->prepareSurface();
    return layer;
}

const LyrMetaClass& LyrThicknessLayer::metaClass() {
    static const LyrMetaClass meta("LyrThicknessLayer", sizeof(LyrThicknessLayer), &LyrResultLayer::metaClass(),
                                   nullptr, LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrThicknessLayer::getMetaClass() const {
    return metaClass();
}

QString LyrThicknessLayer::title() const {
    return QCoreApplication::translate("LyrThicknessLayer", "Wall thickness");
}
