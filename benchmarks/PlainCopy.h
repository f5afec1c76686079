#pragma once

#include <cstdint>

/// Reads 4 bytes and writes 16 for each value, past the caches and with the widest registers that the machine has: the
/// traffic of colouring without the work. out is aligned to 64 bytes, count a multiple of 16.
void plainCopy(int64_t count, const float* values, float* out);
