#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrWallThicknessColorLookupTableRenderSettings.h>
#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>

LyrWallThicknessColorLookupTableRenderSettings::LyrWallThicknessColorLookupTableRenderSettings() {
    lyrSetValue<Lyrenum>(this, Lyr::Position, Lyr::Right);
    lyrSetValue<const char*>(this, Lyrenum("DescriptionTemplate", false), "%{value.type} %{value.unit}");
}

const LyrMetaClass& LyrWallThicknessColorLookupTableRenderSettings::metaClass() {
    static const LyrMetaClass meta("LyrWallThicknessColorLookupTableRenderSettings",
                                   sizeof(LyrWallThicknessColorLookupTableRenderSettings),
                                   &LyrColorLookupTableRenderSettings::metaClass(),
                                   new LyrClassFactory<LyrWallThicknessColorLookupTableRenderSettings>,
                                   LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrWallThicknessColorLookupTableRenderSettings::getMetaClass() const {
    return metaClass();
}
