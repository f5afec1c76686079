#pragma once

#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrObjectPtr.h>

#include "fuzz/FuzzTargets.h"

namespace fuzz {

inline std::string written(const LyrObject& object) {
    std::string text;
    require(LyrObjectFile::write(object, text), "what was read can be written");
    return text;
}

/** What was read is written in a form that reads and writes back to the same bytes. */
inline void checkWriting(const LyrObject& object) {
    const std::string first = written(object);
    LyrObjectPtr again;
    LyrObjectFile::Report report;
    require(LyrObjectFile::read(first, again, report, {}, Lyr::TransientScope), "what was written can be read");
    require(again.get() && written(*again) == first, "what was written and read is written the same");
}

}  // namespace fuzz
