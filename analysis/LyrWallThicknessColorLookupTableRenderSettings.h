#pragma once

#include <analysis/LysAnalysisExport.h>
#include <colortable/legend/LyrColorLookupTableRenderSettings.h>

/** The look of the legend of wall thicknesses: at first on the right, with type and unit of the value as its caption.
 */
class LYS_ANALYSIS_EXPORT LyrWallThicknessColorLookupTableRenderSettings : public LyrColorLookupTableRenderSettings {
public:
    LyrWallThicknessColorLookupTableRenderSettings();
    LyrWallThicknessColorLookupTableRenderSettings(const LyrWallThicknessColorLookupTableRenderSettings& other);
    LyrWallThicknessColorLookupTableRenderSettings& operator=(const LyrWallThicknessColorLookupTableRenderSettings&) =
        default;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
};
