#pragma once

#include <lys_core/LysCoreExport.h>

#include <QFont>

/** Lengths given for a screen of 96 dots per inch, scaled to another resolution. A resolution that is not a positive
 * finite number stands for the application's default, 96. */
class LYS_CORE_EXPORT LyqScaling {
public:
    static constexpr float DEFAULT_DOTS_PER_INCH = 96.0f;

    /** The resolution that is meant. */
    static float effectiveDotsPerInch(float dotsPerInch);
    /** pixels * dpi / 96, formed in double precision. */
    static float getScaledPixelf(float dotsPerInch, float pixels);
    /** The same as a whole number, halves rounded up; at least 1 for 1 pixel and more. */
    static int getScaledPixeli(float dotsPerInch, int pixels);
    static int getScaledPixelip(float dotsPerInch, int pixels);
    /** The font in pixels: p points become round(p * dpi / 72), at least 1. A size in pixels scales like a length. */
    static QFont getScaledFont(const QFont& font, float dotsPerInch);
};
