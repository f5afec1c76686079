#pragma once

#include <analysis/LyrResultLayer.h>

struct LyrThicknessResult;

/** The wall thickness of a part in colour: in slices through its material, and on its surface. */
class LYS_ANALYSIS_EXPORT LyrThicknessLayer : public LyrResultLayer {
public:
    /** With a rainbow over the thicknesses that there are and a legend on the right. Null when memory ran out.
     *  @param document  what was analysed, not null
     *  @param result    not null */
    static LyrThicknessLayer* create(LyrVolumeObject* document, std::shared_ptr<const LyrThicknessResult> result);

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    QString title() const override;
    const LyrThicknessResult& result() const { return *mResult; }

private:
    using LyrResultLayer::LyrResultLayer;

    std::shared_ptr<const LyrThicknessResult> mResult;
};
