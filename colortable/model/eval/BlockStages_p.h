#pragma once

#include <colortable/model/eval/PlanData_p.h>

namespace lys::eval {

/// What the stages of one block hand to each other. Lanes are in the kernel's own order within each group of a register's
/// length; every array is filled in whole groups.
struct BlockStages {
    alignas(64) float values[blockSize];
    alignas(64) uint32_t offsets[blockSize];    ///< of the sections' records, in bytes
    alignas(64) int32_t keys[blockSize];
    alignas(64) uint32_t buckets[blockSize];
    alignas(64) float gradientPlace[blockSize];  ///< place in the interval, 0 where the section is no gradient
    alignas(64) float sinePlace[blockSize];      ///< NaN where the section is no rainbow, so that no colour comes out
    alignas(64) float huePlace[blockSize];
    alignas(64) float thirdsPlace[blockSize];
    alignas(64) float red[blockSize];  ///< analytic colours, 0 where the section is not analytic
    alignas(64) float green[blockSize];
    alignas(64) float blue[blockSize];
};

}  // namespace lys::eval
