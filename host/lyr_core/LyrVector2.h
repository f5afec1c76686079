#pragma once

#include <type_traits>

/** A vector of two components, laid out as two consecutive T. */
template <class T>
struct LyrVector2 {
    T x{};
    T y{};

    constexpr LyrVector2() = default;
    constexpr LyrVector2(T x_, T y_) : x(x_), y(y_) {}

    static constexpr LyrVector2 ZERO() { return LyrVector2(); }

    /** The component 0 (x) or 1 (y); any other index is a mistake of the caller. */
    constexpr T& operator[](int index) { return index == 0 ? x : y; }
    constexpr const T& operator[](int index) const { return index == 0 ? x : y; }

    /** True when every component differs from v's by at most eps. A NaN is similar to nothing. */
    constexpr bool isSimilar(const LyrVector2& v, T eps) const { return isNear(x, v.x, eps) && isNear(y, v.y, eps); }

    /** Plain comparison: −0 equals 0, a NaN equals nothing. */
    friend constexpr bool operator==(const LyrVector2& a, const LyrVector2& b) = default;
    friend constexpr LyrVector2 operator+(const LyrVector2& a, const LyrVector2& b) {
        return {static_cast<T>(a.x + b.x), static_cast<T>(a.y + b.y)};
    }
    friend constexpr LyrVector2 operator-(const LyrVector2& a, const LyrVector2& b) {
        return {static_cast<T>(a.x - b.x), static_cast<T>(a.y - b.y)};
    }
    friend constexpr LyrVector2 operator*(const LyrVector2& v, T factor) {
        return {static_cast<T>(v.x * factor), static_cast<T>(v.y * factor)};
    }
    friend constexpr LyrVector2 operator*(T factor, const LyrVector2& v) { return v * factor; }

private:
    // The equality comes first, since the difference of two equal infinities is NaN.
    static constexpr bool isNear(T a, T b, T eps) { return a == b || (a > b ? a - b <= eps : b - a <= eps); }
};

static_assert(sizeof(LyrVector2<float>) == 2 * sizeof(float) && std::is_trivially_copyable_v<LyrVector2<float>>);
