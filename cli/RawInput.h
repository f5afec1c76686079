#pragma once

#include "Descriptor.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace lys::cli {

/** A stream of little-endian 32-bit floats: a file, a pipe, or "-" for standard input. Throws Failure (Unusable) when
 * it cannot be read or its length is not a multiple of 4 bytes; of a file the length is checked at once. */
class RawInput {
public:
    explicit RawInput(const std::string& path);

    /** Fills `values` as far as the stream goes; fewer than asked for only at its end. */
    std::size_t read(std::span<float> values);

    /** How many values there are; empty for a stream of unknown length. */
    std::optional<std::int64_t> count() const { return mCount; }

private:
    [[noreturn]] void fail(const std::string& reason) const;
    [[noreturn]] void failCut(std::int64_t bytes) const;

    std::string mName;
    Descriptor mFile;
    std::int64_t mBytesRead = 0;
    std::optional<std::int64_t> mCount;
};

}  // namespace lys::cli
