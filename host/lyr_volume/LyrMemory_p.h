#pragma once

#include <charconv>
#include <cstdint>
#include <fstream>
#include <limits>
#include <string>
#include <system_error>

namespace lyrvolume {

/** Bytes that can be taken now without swapping; where that is unknown, the largest number. */
inline std::uint64_t availableMemory() {
    std::ifstream file("/proc/meminfo");
    const std::string key = "MemAvailable:";
    for (std::string line; std::getline(file, line);) {
        const std::size_t digits = line.find_first_of("0123456789");
        std::uint64_t kibibytes = 0;
        if (line.compare(0, key.size(), key) == 0 && digits != std::string::npos &&
            std::from_chars(line.data() + digits, line.data() + line.size(), kibibytes).ec == std::errc()) {
            return kibibytes * 1024;
        }
    }
    return std::numeric_limits<std::uint64_t>::max();
}

}  // namespace lyrvolume
