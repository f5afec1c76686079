#pragma once

#include <cmath>
#include <concepts>
#include <cstring>

#include <lyr_core/LyrRGBA.h>
#include <lyr_core/LyrString.h>
#include <lyr_core/LyrValuePair.h>
#include <lyr_core/LyrVector2.h>
#include <lyr_core/LyrVector3.h>

/** lyrSameValue(a, b): whether writing b over a stored a would change nothing. Unlike ==, every NaN is the same value
 *  as every other NaN, and −0 is not the same as 0. */
template <class T>
bool lyrSameValue(const T& a, const T& b) {
    if constexpr (std::floating_point<T>) {
        return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
    } else {
        return a == b;
    }
}

/** Zero-terminated texts by their characters; a null pointer is the same as a null pointer only. */
inline bool lyrSameValue(const char* a, const char* b) {
    return a == b || (a != nullptr && b != nullptr && std::strcmp(a, b) == 0);
}

template <class T>
bool lyrSameValue(const LyrValuePair<T>& a, const LyrValuePair<T>& b) {
    return lyrSameValue(a.first, b.first) && lyrSameValue(a.second, b.second);
}

template <class T>
bool lyrSameValue(const LyrVector2<T>& a, const LyrVector2<T>& b) {
    return lyrSameValue(a.x, b.x) && lyrSameValue(a.y, b.y);
}

template <class T>
bool lyrSameValue(const LyrVector3<T>& a, const LyrVector3<T>& b) {
    return lyrSameValue(a.x, b.x) && lyrSameValue(a.y, b.y) && lyrSameValue(a.z, b.z);
}

template <class T>
bool lyrSameValue(const LyrRGBA<T>& a, const LyrRGBA<T>& b) {
    return lyrSameValue(a.red, b.red) && lyrSameValue(a.green, b.green) && lyrSameValue(a.blue, b.blue) &&
           lyrSameValue(a.alpha, b.alpha);
}
