#pragma once

#include <lyr_core/LyrValuePair.h>
#include <lyr_core/LyrVector2.h>

#include <algorithm>
#include <limits>

namespace LyrRendering {

/** A rectangle in normalised device coordinates: its lower left and its upper right corner. Empty is min > max, which
 *  survives all operations below; a NaN in either corner counts as empty as well. */
using DeviceRect = LyrValuePair<LyrVector2<float>>;

inline DeviceRect emptyRect() {
    constexpr float MAX = std::numeric_limits<float>::max();
    return {{MAX, MAX}, {-MAX, -MAX}};
}

/** All of a viewport. */
inline DeviceRect deviceSquare() {
    return {{-1.0f, -1.0f}, {1.0f, 1.0f}};
}

inline bool isEmpty(const DeviceRect& rect) {
    return !(rect.first.x <= rect.second.x && rect.first.y <= rect.second.y);
}

inline DeviceRect unite(const DeviceRect& a, const DeviceRect& b) {
    if (isEmpty(a) || isEmpty(b)) {
        return isEmpty(a) ? (isEmpty(b) ? emptyRect() : b) : a;
    }
    return {{std::min(a.first.x, b.first.x), std::min(a.first.y, b.first.y)},
            {std::max(a.second.x, b.second.x), std::max(a.second.y, b.second.y)}};
}

/** Grows a rectangle by a margin on every side. */
inline DeviceRect enlarge(const DeviceRect& rect, float margin) {
    if (isEmpty(rect)) {
        return emptyRect();
    }
    return {{rect.first.x - margin, rect.first.y - margin}, {rect.second.x + margin, rect.second.y + margin}};
}

inline DeviceRect intersect(const DeviceRect& a, const DeviceRect& b) {
    if (isEmpty(a) || isEmpty(b)) {
        return emptyRect();
    }
    const DeviceRect common{{std::max(a.first.x, b.first.x), std::max(a.first.y, b.first.y)},
                            {std::min(a.second.x, b.second.x), std::min(a.second.y, b.second.y)}};
    return isEmpty(common) ? emptyRect() : common;
}

}  // namespace LyrRendering
