#pragma once

#include <analysis/LyrColoredLayer.h>

/** The values of the opened volume themselves, in colour. */
class LYS_ANALYSIS_EXPORT LyrValueLayer : public LyrColoredLayer {
public:
    /** With a rainbow over the volume's value range and a legend on the left. Null when memory ran out. */
    static LyrValueLayer* create(LyrVolumeObject* document);

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    QString title() const override;

private:
    using LyrColoredLayer::LyrColoredLayer;
};
