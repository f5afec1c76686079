#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/** A module file as bytes, looked at without loading it. */
struct LyrModuleFile {
    std::vector<unsigned char> bytes;
    std::size_t noteOffset = 0;  ///< of the module note in the file
    std::string name;            ///< module name in the note
    std::uint64_t seal = 0;      ///< as stored in the note

    /** Reads and checks a file: a whole 64-bit ELF library of this machine with a module note. On failure gives the
     * reason. */
    bool read(const std::string& path, std::string& reason);
    /** The ABI word in the note. */
    std::uint32_t abi() const;
    /** The checksum over the file with the seal taken as 0; never 0 itself. */
    std::uint64_t computeSeal() const;
};
