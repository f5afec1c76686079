#pragma once

#include <analysis/LysAnalysisExport.h>
#include <colortable/legend/LyrColorLookupTableRenderSettings.h>

/** The look of the legend of defect volumes: at first at the bottom, with type and unit of the value as its caption. */
class LYS_ANALYSIS_EXPORT LyrDefectDetectionColorLookupTableRenderSettings : public LyrColorLookupTableRenderSettings {
public:
    LyrDefectDetectionColorLookupTableRenderSettings();
    LyrDefectDetectionColorLookupTableRenderSettings(const LyrDefectDetectionColorLookupTableRenderSettings& other);
    LyrDefectDetectionColorLookupTableRenderSettings& operator=(
        const LyrDefectDetectionColorLookupTableRenderSettings&) = default;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
};
