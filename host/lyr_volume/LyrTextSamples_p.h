#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

/** Samples written out as characters, from `place` to the end of a file. */
struct TextPart {
    std::string path;
    std::uint64_t place = 0;
};

/** Called with pieces of decoded bytes, each a whole multiple of the bytes asked for. */
using ByteSink = std::function<void(std::span<const unsigned char>)>;

/** Reads `count` decimal numbers with blanks or commas between them and hands them on as doubles of this machine, in
 *  pieces of whole groups of `group` numbers. */
bool readDecimalSamples(const TextPart& part, std::uint64_t count, std::uint64_t group, const ByteSink& sink,
                        ReadContext& context);

/** Reads `count` bytes, each two hexadecimal digits, with any blanks between them, and hands them on in pieces of whole
 *  groups of `group` bytes. */
bool readHexBytes(const TextPart& part, std::uint64_t count, std::uint64_t group, const ByteSink& sink,
                  ReadContext& context);

}  // namespace lyrvolume
