#pragma once

#include <lyr_core/LyrObjectPtr.h>

#include <string>
#include <vector>

namespace lys::cli {

/** The render settings of a legend: those of a file, or the defaults when `path` is empty, with single properties
 * replaced by "Name=Value". Throws Failure (Unusable) for a file that cannot be used and for an unknown property or
 * value. */
LyrObjectPtr readLegendSettings(const std::string& path, const std::vector<std::string>& replacements);

}  // namespace lys::cli
