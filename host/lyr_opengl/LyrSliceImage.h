#pragma once

#include <lyr_core/LyrVector2.h>

#include <cstdint>
#include <vector>

namespace LyrRendering {

/** The picture of one slice. */
struct SliceImage {
    int width = 0;
    int height = 0;
    /** RGBA, 8 bits each, not premultiplied, row 0 on top: 4 * width * height bytes. */
    std::vector<std::uint8_t> pixels;
    /** The outer edges of the picture in the plane, in millimetres: the corner of its first pixel and the opposite one.
     * The first coordinate runs to the right, the second down: (x, y) in a slice across z, (x, z) across y, (y, z)
     * across x. */
    LyrVector2<float> min;
    LyrVector2<float> max;
    /** Whether pixels are blended into each other where they are magnified. */
    bool smooth = false;
};

}  // namespace LyrRendering
