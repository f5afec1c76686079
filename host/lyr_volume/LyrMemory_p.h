#pragma once

#include <unistd.h>

#include <cstdint>
#include <limits>

namespace lyrvolume {

/** Bytes of main memory in this machine; where that is unknown, the largest number. */
inline std::uint64_t physicalMemory() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    if (pages <= 0 || pageSize <= 0) {
        return std::numeric_limits<std::uint64_t>::max();
    }
    return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize);
}

}  // namespace lyrvolume
