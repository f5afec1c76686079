#pragma once

#include <analysis/LysAnalysisExport.h>

#include <cstdint>
#include <span>

class LyrColorLookupTable;

/** Colours values through a table into 8-bit red, green, blue, alpha, not premultiplied: each int(c · 255) in single
 * precision, clamped to 0 … 255, NaN 0. A value that the table cannot colour becomes transparent.
 *  @param out      4 bytes for each value
 *  @param opacity  factor for alpha, 0 to 1 */
LYS_ANALYSIS_EXPORT void lysColorBytes(const LyrColorLookupTable& table, std::span<const float> values,
                                       std::span<std::uint8_t> out, float opacity);
