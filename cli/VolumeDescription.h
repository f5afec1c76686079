#pragma once

#include <lyr_volume/LyrVolume.h>

#include <string>

namespace lys::cli {

/** Several lines about a volume for people. */
std::string volumeText(const LyrVolume& volume);

/** One JSON object about a volume. For the built-in casting it has a member "truth": what is in the part, by
 * construction. */
std::string volumeJson(const LyrVolume& volume, bool isCasting);

}  // namespace lys::cli
