#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrDefectDetectionColorLookupTableRenderSettings.h>
#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>

namespace {

/** Where the legend stands and what it is called, unless somebody changes it. */
void setDefaults(LyrObject& settings) {
    lyrSetResetValue<Lyrenum>(&settings, Lyr::Position, Lyr::Bottom);
    lyrSetResetValue<const char*>(&settings, Lyrenum("DescriptionTemplate", false), "%{value.type} %{value.unit}");
}

}  // namespace

LyrDefectDetectionColorLookupTableRenderSettings::LyrDefectDetectionColorLookupTableRenderSettings() {
    setDefaults(*this);
    resetToDefaults();
}

LyrDefectDetectionColorLookupTableRenderSettings::LyrDefectDetectionColorLookupTableRenderSettings(
    const LyrDefectDetectionColorLookupTableRenderSettings& other)
    : LyrColorLookupTableRenderSettings(other) {
    setDefaults(*this);
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
