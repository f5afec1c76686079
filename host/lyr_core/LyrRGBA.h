#pragma once

#include <type_traits>

#include <lyr_core/LyrColorMode.h>
#include <lyr_core/LyrVector3.h>

/** A colour of red, green, blue and alpha, nominally in [0, 1], laid out as four consecutive T. The default is
 *  (0, 0, 0, 0): fully transparent. */
template <class T>
struct LyrRGBA {
    T red{};
    T green{};
    T blue{};
    T alpha{};

    constexpr LyrRGBA() = default;
    constexpr LyrRGBA(T red_, T green_, T blue_, T alpha_ = T(1))
        : red(red_), green(green_), blue(blue_), alpha(alpha_) {}
    template <class U>
    constexpr explicit LyrRGBA(const LyrRGBA<U>& other)
        : red(static_cast<T>(other.red)),
          green(static_cast<T>(other.green)),
          blue(static_cast<T>(other.blue)),
          alpha(static_cast<T>(other.alpha)) {}

    static constexpr LyrRGBA BLACK() { return GRAY(T(0)); }
    static constexpr LyrRGBA WHITE() { return GRAY(T(1)); }
    /** The opaque grey (level, level, level, 1). */
    static constexpr LyrRGBA GRAY(T level) { return LyrRGBA(level, level, level, T(1)); }

    /** One channel brought into [0, 1]; a NaN stays NaN and −0 stays −0. */
    static constexpr T clampChannel(T v) { return v < T(0) ? T(0) : v > T(1) ? T(1) : v; }

    /** Brings every channel of this colour into [0, 1] (see clampChannel()) and returns it. */
    constexpr LyrRGBA& clamp() {
        red = clampChannel(red);
        green = clampChannel(green);
        blue = clampChannel(blue);
        alpha = clampChannel(alpha);
        return *this;
    }

    /** The clamped mode of the whole process: while it is on, colours are clamped channel by channel where they are
     *  handed over. It is off at start; safe to call from any thread. */
    static bool isClamped() { return LyrColorMode::isClamped(); }
    static void setClamped(bool clamped) { LyrColorMode::setClamped(clamped); }

    /** CIE 1931 (X, Y, Z) of the colour taken as linear light, white having Y = 1; alpha plays no part. The matrix
     *  follows from the chromaticities of IEC 61966-2-1: red (0.64, 0.33), green (0.30, 0.60), blue (0.15, 0.06) and
     *  white D65 (0.3127, 0.3290). Formed in double, narrowed once. */
    constexpr LyrVector3<T> toXYZ() const {
        const double r = static_cast<double>(red), g = static_cast<double>(green), b = static_cast<double>(blue);
        return {static_cast<T>(0.4123907992659595 * r + 0.35758433938387796 * g + 0.1804807884018343 * b),
                static_cast<T>(0.21263900587151036 * r + 0.7151686787677559 * g + 0.07219231536073371 * b),
                static_cast<T>(0.01933081871559185 * r + 0.11919477979462599 * g + 0.9505321522496606 * b)};
    }

    /** The linear colour of (X, Y, Z): the inverse of toXYZ(), not clamped. */
    static constexpr LyrRGBA fromXYZ(const LyrVector3<T>& xyz, T alpha = T(1)) {
        const double x = static_cast<double>(xyz.x), y = static_cast<double>(xyz.y), z = static_cast<double>(xyz.z);
        return {static_cast<T>(3.2409699419045213 * x - 1.5373831775700935 * y - 0.4986107602930033 * z),
                static_cast<T>(-0.9692436362808798 * x + 1.8759675015077206 * y + 0.04155505740717561 * z),
                static_cast<T>(0.05563007969699361 * x - 0.20397695888897657 * y + 1.0569715142428786 * z), alpha};
    }

    /** Plain comparison of all channels: −0 equals 0, a NaN equals nothing. */
    friend constexpr bool operator==(const LyrRGBA& a, const LyrRGBA& b) = default;
};

using LyrRGBAf = LyrRGBA<float>;

static_assert(sizeof(LyrRGBAf) == 4 * sizeof(float) && std::is_trivially_copyable_v<LyrRGBAf> &&
              std::is_standard_layout_v<LyrRGBAf>);
