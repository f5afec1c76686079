#pragma once

#include <lyr_volume/LyrVolume.h>

#include <memory>
#include <string>

namespace lys::cli {

/** True for the name of a volume that is part of the program. */
bool isBuiltInVolume(const std::string& name);

/** Reads the volume that a user names: a file, a folder of slices, or a built-in one. Shows the progress and what the
 * reader has to say. Throws Failure (Unusable) when it cannot be read. */
std::shared_ptr<const LyrVolume> readVolume(const std::string& pathOrName);

}  // namespace lys::cli
