#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrWallThicknessColorLookupTableRenderSettings.h>
#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>

namespace {

/** Where the legend stands and what it is called, unless somebody changes it. */
void setDefaults(LyrObject& settings) {
    lyrSetResetValue<Lyrenum>(&settings, Lyr::Position, Lyr::Right);
    lyrSetResetValue<const char*>(&settings, Lyrenum("DescriptionTemplate", false), "%{value.type} %{value.unit}");
}

}  // namespace

LyrWallThicknessColorLookupTableRenderSettings::LyrWallThicknessColorLookupTableRenderSettings() {
    setDefaults(*this);
    resetToDefaults();
}

LyrWallThicknessColorLookupTableRenderSettings::LyrWallThicknessColorLookupTableRenderSettings(
    const LyrWallThicknessColorLookupTableRenderSettings& other)
    : LyrColorLookupTableRenderSettings(other) {
    setDefaults(*this);
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
