#pragma once

#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_core/LyrValuePair.h>
#include <lys_core/LyqLayer.h>

class LyrVolumeObject;

/** The opened volume in grey, beneath all other layers: black below a window of values, white above it. */
class LyrGreyLayer : public LyqLayer {
public:
    /** With a window over the volume's value range. */
    explicit LyrGreyLayer(LyrVolumeObject* document);
    ~LyrGreyLayer() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    QString title() const override;
    bool readout(const LyrVector3<float>& position, Readout& out) const override;

    const LyrVolumeObject& document() const;
    float low() const { return mWindow.stored().first; }
    float high() const { return mWindow.stored().second; }
    /** False unless both are finite and low < high. */
    bool setWindow(float low, float high);
    /** The grey of a value, 0 to 255; NaN is black. */
    unsigned char grey(float value) const;

private:
    LyrSingleValueOP<LyrSingleValuePropertyIF<LyrValuePair<float>>> mWindow;
};
