#pragma once

#include <string>

class LyrObject;

namespace lys::cli {

/** Writes an object as an object file, safely, or to standard output for "-". Throws Failure (Failed). */
void writeObject(const LyrObject& object, const std::string& path);

}  // namespace lys::cli
