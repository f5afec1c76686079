#pragma once

#include <lyr_core/LyrString.h>

#include <string>

/** The file names of presets. A name becomes
 *
 *      <name, with everything but ASCII letters, digits and a few signs as %XX>-<16 digits>.json
 *
 *  where the digits are the first 64 bits of the SHA-256 of the name: names that differ by case or normal form alone
 * stay apart on every file system, and none is a name that a system reserves. Of a long name only the beginning stands
 * there, with "~" behind it. */
namespace lys::presets {

/** Longest name of a preset, in bytes. */
inline constexpr std::size_t MAXIMUM_NAME = 4096;

/** Why a name cannot be a preset's, a null string if it can: it must be UTF-8 without the character 0, not empty, and
 * no longer than MAXIMUM_NAME. */
LyrString checkName(const LyrString& name);

std::string fileNameOf(const LyrString& name);

/** The name that a file name stands for, as far as it can be told: for files that cannot be read. */
LyrString nameOfFile(const std::string& fileName);

}  // namespace lys::presets
