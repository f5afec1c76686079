#pragma once

#include <colortable/model/eval/PlanData_p.h>

namespace lys::eval {

/// What the stages of one block hand to each other. Lanes are in the kernel's own order within each group of a
/// register's length; arrays are filled in whole groups, and only those that the table needs.
struct BlockStages {
    alignas(64) float values[blockSize];
    alignas(64) uint32_t offsets[blockSize];  ///< of the sections' records, in bytes
    alignas(64) int32_t keys[blockSize];
    alignas(64) uint32_t buckets[blockSize];
    alignas(64) float gradientPlace[blockSize];  ///< place in the interval, 0 where the section is no gradient
    alignas(64) float huePlace[blockSize];       ///< place in the interval, noPlace where another rule colours
    alignas(64) float thirdsPlace[blockSize];
    alignas(64) float side[blockSize];   ///< argument of the sine that is blue or minus red, then the sine
    alignas(64) float green[blockSize];  ///< argument of green's sine, then the sine; both 0 where another rule colours
    alignas(64) float rgb[3][blockSize];  ///< analytic colours of tables with hue cycles or thirds, 0 where another
                                          ///< rule colours
};

/// Beyond every place in an interval.
inline constexpr float noPlace = 2.0f;

/// Minus red's sine is this or nearer to 0 where red is clamped: it is the rounding of sin(pi), the least true red
/// being twice as large.
inline constexpr float greatestClampedRed = 1e-7f;

}  // namespace lys::eval
