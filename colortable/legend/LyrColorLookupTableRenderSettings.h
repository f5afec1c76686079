#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrObject.h>

#include <memory>

/** The appearance of a colour bar legend: side and place in the view, thickness, stretch, font, colours and caption,
 * one property each. The caption is kept as a template (`DescriptionTemplate`) and shown expanded by the read-only
 * property `Description`. Text position and alignment keep `Lyr::Left`/`Lyr::Right`, the bar's alignment
 * `Lyr::Bottom`/`Lyr::Top`, whatever the orientation: only their reading turns with the bar. */
class LYS_COLORTABLE_EXPORT LyrColorLookupTableRenderSettings : public LyrObject {
public:
    LyrColorLookupTableRenderSettings();
    LyrColorLookupTableRenderSettings(const LyrColorLookupTableRenderSettings& other);
    LyrColorLookupTableRenderSettings& operator=(const LyrColorLookupTableRenderSettings& other);
    ~LyrColorLookupTableRenderSettings() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    bool copyFrom(const LyrObject& other) override;

private:
    struct Private;
    void build();

    std::unique_ptr<Private> d;
};
