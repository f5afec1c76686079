#pragma once

#include <array>

/** Takes the OpenGL state of the current context over for the drawing of legends, and gives it back as it was.
 *
 *  A legend is a textured rectangle by the fixed functions, in device coordinates; whatever the host left behind that
 * could change its pixels or the upload of its texture is reset. Framebuffer, viewport and scissor stay the host's. */
class LegendGlScope {
public:
    /** Touches nothing where a stack of the context is full, where there is none (a core profile, no context), or where
     *  a program in use could not be taken back. */
    LegendGlScope();
    ~LegendGlScope();
    LegendGlScope(const LegendGlScope&) = delete;
    LegendGlScope& operator=(const LegendGlScope&) = delete;

    /** False: nothing may be drawn. */
    bool isReady() const noexcept { return mReady; }
    /** Gives back the matrices before the rest. */
    void popMatrices();

private:
    /** How one draw buffer blends. */
    struct Blending {
        int sourceColor, targetColor, sourceAlpha, targetAlpha, colorEquation, alphaEquation;
        bool operator==(const Blending&) const = default;
    };
    /** A switch that no attribute stack saves, or not on every driver. */
    struct LooseSwitch {
        unsigned int capability = 0;
        bool on = false;
    };

    bool haveRoom();
    void saveLoose();
    void restoreLoose();
    void saveSwitches();
    void saveBlending();
    void restoreBlending() const;
    void pushMatrices();

    bool mReady = false;
    bool mMatricesPushed = false;
    int mVersion = 0;  ///< 10 * major + minor
    unsigned int mProgram = 0;
    unsigned int mPipeline = 0;
    unsigned int mSampler = 0;
    unsigned int mUnpackBuffer = 0;
    unsigned int mActiveTexture = 0;
    unsigned int mClipOrigin = 0;
    unsigned int mClipDepth = 0;
    std::array<LooseSwitch, 4> mSwitches;
    std::array<Blending, 8> mBlending{};
    unsigned int mBlendingCount = 0;  ///< 0 where all draw buffers blend alike
};
