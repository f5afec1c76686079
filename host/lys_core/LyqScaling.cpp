#include <lys_core/LyqScaling.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/** Beyond this no picture goes; sums of a few lengths stay within int. */
constexpr double LARGEST_LENGTH = 16777216.0;
/** Letters of a hand's height and more are a mistake, and glyphs of that size take memory by the gigabyte. */
constexpr int LARGEST_FONT = 2000;

double scaled(float dotsPerInch, double pixels) {
    return pixels * static_cast<double>(LyqScaling::effectiveDotsPerInch(dotsPerInch)) /
           static_cast<double>(LyqScaling::DEFAULT_DOTS_PER_INCH);
}

int roundedHalfUp(double value) {
    return static_cast<int>(std::floor(std::clamp(value, -LARGEST_LENGTH, LARGEST_LENGTH) + 0.5));
}

}  // namespace

float LyqScaling::effectiveDotsPerInch(float dotsPerInch) {
    return std::isfinite(dotsPerInch) && dotsPerInch > 0.0f ? dotsPerInch : DEFAULT_DOTS_PER_INCH;
}

float LyqScaling::getScaledPixelf(float dotsPerInch, float pixels) {
    return static_cast<float>(scaled(dotsPerInch, static_cast<double>(pixels)));
}

int LyqScaling::getScaledPixeli(float dotsPerInch, int pixels) {
    const int length = roundedHalfUp(scaled(dotsPerInch, pixels));
    return pixels >= 1 ? std::max(length, 1) : length;
}

int LyqScaling::getScaledPixelip(float dotsPerInch, int pixels) {
    return getScaledPixeli(dotsPerInch, pixels);
}

QFont LyqScaling::getScaledFont(const QFont& font, float dotsPerInch) {
    const double pixels = font.pointSizeF() > 0.0
                              ? font.pointSizeF() * static_cast<double>(effectiveDotsPerInch(dotsPerInch)) / 72.0
                              : scaled(dotsPerInch, font.pixelSize());
    QFont result = font;
    result.setPixelSize(std::clamp(roundedHalfUp(pixels), 1, LARGEST_FONT));
    return result;
}
