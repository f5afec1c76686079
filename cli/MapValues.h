#pragma once

#include "BlockColors.h"

#include <string>

namespace lys::cli {

/** Reads the values of `--at`, separated by commas. Throws Failure (Unusable) for what is no float. */
std::vector<float> parseValues(const std::string& text);

/** Prints a line "r g b a" for each value. */
void mapValues(BlockColors& colors, std::span<const float> values);

/** Colours a stream of raw floats into one of raw colours: four floats each, little-endian. "-" is standard input or
 * output. */
void mapRaw(BlockColors& colors, const std::string& input, const std::string& output);

}  // namespace lys::cli
