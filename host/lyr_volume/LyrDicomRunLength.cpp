#include <array>

#include <lyr_volume/LyrDicomCodec_p.h>

namespace lyrvolume {
namespace {

constexpr std::size_t kHeaderBytes = 64;
constexpr std::size_t kMostSegments = 15;

std::uint32_t word(std::span<const unsigned char> data, std::size_t place) {
    return static_cast<std::uint32_t>(data[place]) | static_cast<std::uint32_t>(data[place + 1]) << 8U |
           static_cast<std::uint32_t>(data[place + 2]) << 16U | static_cast<std::uint32_t>(data[place + 3]) << 24U;
}

/** Decodes one segment into every `step`-th byte of `out`, from `first` on. */
bool decodeSegment(std::span<const unsigned char> data, std::size_t first, std::size_t step,
                   std::vector<unsigned char>& out) {
    std::size_t at = first;
    std::size_t i = 0;
    while (at < out.size()) {
        if (i >= data.size()) {
            return false;
        }
        const unsigned char control = data[i++];
        if (control == 128) {
            continue;  // says nothing
        }
        const bool literal = control < 128;
        const std::size_t count = literal ? control + std::size_t{1} : 257U - control;
        if (i + (literal ? count : 1) > data.size()) {
            return false;
        }
        for (std::size_t k = 0; k < count; ++k, at += step) {
            if (at >= out.size()) {
                return false;
            }
            out[at] = data[literal ? i + k : i];
        }
        i += literal ? count : 1;
    }
    return true;
}

}  // namespace

bool decodeRunLength(std::span<const unsigned char> data, const DicomPixelLayout& layout,
                     std::vector<unsigned char>& out) {
    const std::size_t bytes = layout.bitsAllocated / 8;
    if (data.size() < kHeaderBytes || word(data, 0) != bytes || bytes > kMostSegments) {
        return false;
    }
    // Two bytes stand for 128 at most.
    const std::size_t needed = layout.rows * layout.columns * bytes;
    if (needed / 64 > data.size()) {
        return false;
    }
    out.assign(needed, 0);
    for (std::size_t segment = 0; segment < bytes; ++segment) {
        const std::size_t from = word(data, 4 + 4 * segment);
        const std::size_t to = segment + 1 < bytes ? word(data, 8 + 4 * segment) : data.size();
        if (from < kHeaderBytes || from > to || to > data.size() ||
            !decodeSegment(data.subspan(from, to - from), bytes - 1 - segment, bytes, out)) {
            return false;
        }
    }
    return true;
}

}  // namespace lyrvolume
