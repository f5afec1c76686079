#pragma once

#include <type_traits>

/** A vector of three components, laid out as three consecutive T. */
template <class T>
struct LyrVector3 {
    T x{};
    T y{};
    T z{};

    constexpr LyrVector3() = default;
    constexpr LyrVector3(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}

    static constexpr LyrVector3 ZERO() { return LyrVector3(); }

    /** The component 0 (x), 1 (y) or 2 (z); any other index is a mistake of the caller. */
    constexpr T& operator[](int index) { return index == 0 ? x : index == 1 ? y : z; }
    constexpr const T& operator[](int index) const { return index == 0 ? x : index == 1 ? y : z; }

    /** True when every component differs from v's by at most eps. A NaN is similar to nothing. */
    constexpr bool isSimilar(const LyrVector3& v, T eps) const {
        return isNear(x, v.x, eps) && isNear(y, v.y, eps) && isNear(z, v.z, eps);
    }

    /** Plain comparison: −0 equals 0, a NaN equals nothing. */
    friend constexpr bool operator==(const LyrVector3& a, const LyrVector3& b) = default;
    friend constexpr LyrVector3 operator+(const LyrVector3& a, const LyrVector3& b) {
        return {static_cast<T>(a.x + b.x), static_cast<T>(a.y + b.y), static_cast<T>(a.z + b.z)};
    }
    friend constexpr LyrVector3 operator-(const LyrVector3& a, const LyrVector3& b) {
        return {static_cast<T>(a.x - b.x), static_cast<T>(a.y - b.y), static_cast<T>(a.z - b.z)};
    }
    friend constexpr LyrVector3 operator*(const LyrVector3& v, T factor) {
        return {static_cast<T>(v.x * factor), static_cast<T>(v.y * factor), static_cast<T>(v.z * factor)};
    }
    friend constexpr LyrVector3 operator*(T factor, const LyrVector3& v) { return v * factor; }

private:
    // The equality comes first, since the difference of two equal infinities is NaN.
    static constexpr bool isNear(T a, T b, T eps) { return a == b || (a > b ? a - b <= eps : b - a <= eps); }
};

static_assert(sizeof(LyrVector3<float>) == 3 * sizeof(float) && std::is_trivially_copyable_v<LyrVector3<float>>);
