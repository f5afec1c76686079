#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrDefectDetectionColorLookupTableRenderSettings.h>
#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>

LyrDefectDetectionColorLookupTableRenderSettings::LyrDefectDetectionColorLookupTableRenderSettings() {
    lyrSetValue<Lyrenum>(this, Lyr::Position, Lyr::Bottom);
    lyrSetValue<const char*>(this, Lyrenum("DescriptionTemplate", false), "%{value.type} %{value.unit}");
}

const LyrMetaClass& LyrDefectDetectionColorLookupTableRenderSettings::metaClass() {
    static const LyrMetaClass meta("LyrDefectDetectionColorLookupTableRenderSettings",
                                   sizeof(LyrDefectDetectionColorLookupTableRenderSettings),
                                   &LyrColorLookupTableRenderSettings::metaClass(),
                                   new LyrClassFactory<LyrDefectDetectionColorLookupTableRenderSettings>,
                                   LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrDefectDetectionColorLookupTableRenderSettings::getMetaClass() const {
    return metaClass();
}
