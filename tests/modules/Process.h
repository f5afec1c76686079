#pragma once

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

/** What a process can tell of itself. */
namespace process {

/** True if a file is mapped into the process: also one that was replaced or removed since. */
inline bool maps(const std::string& path) {
    const std::string wanted = std::filesystem::weakly_canonical(path);
    std::ifstream file("/proc/self/maps");
    for (std::string line; std::getline(file, line);) {
        // The path is the last field; that of a removed file has a remark behind it.
        if (line.ends_with(' ' + wanted) || line.ends_with(' ' + wanted + " (deleted)")) {
            return true;
        }
    }
    return false;
}

/** Resident memory in bytes. */
inline long long residentBytes() {
    std::ifstream file("/proc/self/statm");
    long long total = 0;
    long long resident = 0;
    file >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

/** Bytes that are allocated and not freed. */
inline long long heapBytes() {
    const struct mallinfo2 info = mallinfo2();
    return static_cast<long long>(info.uordblks + info.hblkhd);
}

/** How many lines the list of mappings has. */
inline long long mappingCount() {
    std::ifstream file("/proc/self/maps");
    long long count = 0;
    for (std::string line; std::getline(file, line);) {
        ++count;
    }
    return count;
}

inline long long openFileCount() {
    long long count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

}  // namespace process
