#pragma once

#include "Output.h"

#include <lyr_core/LyrRGBA.h>

#include <array>
#include <cstdint>
#include <span>

namespace lys::cli {

/** A colour as 8-bit red, green, blue, alpha, not premultiplied: each int(channel · 255) in single precision, clamped
 * to 0 … 255; NaN is 0. */
std::array<std::uint8_t, 4> toBytes(const LyrRGBA<float>& color);

/** Writes an RGBA picture as PNG. `pixels` are width · height · 4 bytes, row 0 on top. Throws Failure (Failed). */
void writePng(Output& output, std::span<const std::uint8_t> pixels, std::int64_t width, std::int64_t height);

}  // namespace lys::cli
