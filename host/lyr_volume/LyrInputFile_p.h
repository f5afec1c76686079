#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

/** A regular file opened for reading at any place. */
class InputFile {
public:
    InputFile() = default;
    ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    /** Fails with a message when the path is no readable regular file. `namedBy`: the header that names it, if any. */
    bool open(const std::string& path, ReadContext& context, const std::string& namedBy = {});

    const std::string& path() const { return path_; }
    std::uint64_t length() const { return length_; }

    /** Reads up to `out.size()` bytes at a place and returns how many there were; 0 behind the end or on an error. */
    std::size_t readAt(std::uint64_t place, std::span<unsigned char> out) const;

private:
    std::string path_;
    std::uint64_t length_ = 0;
    int descriptor_ = -1;
};

/** Bytes in a row, from a file as it is or inflated on the way. */
class ByteStream {
public:
    virtual ~ByteStream() = default;
    /** Reads as many bytes as are there, up to `out.size()`. Empty on a damaged stream, with a message in the context.
     */
    virtual std::optional<std::size_t> read(std::span<unsigned char> out) = 0;
    /** Part of the underlying file that is consumed, 0 to 1. */
    virtual double consumed() const = 0;
};

/** Bytes of a file from `place` on, as they are. */
std::unique_ptr<ByteStream> plainStream(const InputFile& file, std::uint64_t place);

/** Bytes inflated from a gzip or zlib stream that starts at `place` and has at most `length` stored bytes. A stream
 * that breaks off or whose checksum is wrong is damaged. Several gzip members in a row are one stream. */
std::unique_ptr<ByteStream> inflatedStream(const InputFile& file, std::uint64_t place, std::uint64_t length,
                                           ReadContext& context);

/** Deflate never packs tighter than this (RFC 1951: 258 bytes in 2 bits), so a file can hold no more than that. */
constexpr std::uint64_t kLargestDeflateRatio = 1032;

}  // namespace lyrvolume
