#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include <lyr_volume/LyrDicomCodec_p.h>

namespace lyrvolume {
namespace {

/** What a codestream says about its image. */
struct Facts {
    std::uint64_t columns = 0;
    std::uint64_t rows = 0;
    std::uint64_t components = 0;
    std::uint64_t bits = 0;
};

std::uint64_t bigNumber(std::span<const unsigned char> data, std::size_t place, std::size_t bytes) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < bytes; ++i) {
        value = value << 8U | data[place + i];
    }
    return value;
}

/** Frame headers of JPEG and JPEG-LS: C0 to CF without the tables among them, and F7 (ITU T.81, B.1; T.87, C.1). */
bool isFrameHeader(unsigned char marker) {
    return marker == 0xF7 || (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC);
}

/** Goes from segment to segment up to the frame header. */
std::optional<Facts> jpegFacts(std::span<const unsigned char> data) {
    if (data.size() < 4 || data[0] != 0xFF || data[1] != 0xD8) {
        return std::nullopt;
    }
    std::size_t at = 2;
    while (at + 4 <= data.size() && data[at] == 0xFF) {
        const unsigned char marker = data[at + 1];
        if (marker == 0xFF) {  // a fill byte
            ++at;
            continue;
        }
        const std::uint64_t length = bigNumber(data, at + 2, 2);
        if (isFrameHeader(marker)) {
            return at + 10 > data.size() ? std::nullopt
                                         : std::optional(Facts{bigNumber(data, at + 7, 2), bigNumber(data, at + 5, 2),
                                                               data[at + 9], data[at + 4]});
        }
        at += 2 + length;
    }
    return std::nullopt;
}

/** The SIZ segment right behind the start of a JPEG 2000 codestream (ITU T.800, A.5.1), bare or inside boxes. */
std::optional<Facts> jpeg2000Facts(std::span<const unsigned char> data) {
    constexpr std::array<unsigned char, 4> kStart{0xFF, 0x4F, 0xFF, 0x51};
    const std::span<const unsigned char> head = data.first(std::min<std::size_t>(data.size(), 4096));
    const auto found = std::search(head.begin(), head.end(), kStart.begin(), kStart.end());
    const auto at = static_cast<std::size_t>(found - head.begin());
    if (found == head.end() || (at != 0 && !(data[0] == 0 && data[1] == 0)) || at + 43 > data.size()) {
        return std::nullopt;
    }
    const std::uint64_t right = bigNumber(data, at + 8, 4);
    const std::uint64_t bottom = bigNumber(data, at + 12, 4);
    return Facts{right - bigNumber(data, at + 16, 4), bottom - bigNumber(data, at + 20, 4), bigNumber(data, at + 40, 2),
                 (data[at + 42] & 0x7FU) + 1U};
}

/** Both families end with the same mark; a fragment may be filled up behind it. */
bool hasEnd(std::span<const unsigned char> data) {
    for (std::size_t i = data.size(); i >= 2 && i + 16 > data.size(); --i) {
        if (data[i - 2] == 0xFF && data[i - 1] == 0xD9) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::string codestreamProblem(std::span<const unsigned char> data, const DicomPixelLayout& layout,
                              const std::string& transferSyntax) {
    // JPEG: 50 to 81; JPEG 2000: 90, 91; part 2 of it (92, 93), films and others are not for slices.
    const std::string_view family = "1.2.840.10008.1.2.4.";
    const std::string_view uid = transferSyntax;
    const std::string_view kind =
        uid.substr(0, family.size()) == family ? uid.substr(family.size()) : std::string_view();
    static constexpr std::array<std::string_view, 6> kJpeg{"50", "51", "57", "70", "80", "81"};
    const bool jpeg = std::find(kJpeg.begin(), kJpeg.end(), kind) != kJpeg.end();
    if (!jpeg && kind != "90" && kind != "91") {
        return "is compressed in a way that is not supported (" + transferSyntax + "); store it uncompressed";
    }
    const std::optional<Facts> facts = jpeg ? jpegFacts(data) : jpeg2000Facts(data);
    if (!facts) {
        return "its compressed pixel data do not begin as its transfer syntax says; the file is damaged";
    }
    if (facts->columns != layout.columns || facts->rows != layout.rows || facts->components != 1 || facts->bits < 2 ||
        facts->bits > layout.bitsAllocated || facts->bits > 16) {
        return "its compressed image is " + std::to_string(facts->columns) + " × " + std::to_string(facts->rows) +
               " of " + std::to_string(facts->bits) + " bits, its header says otherwise; the file is damaged";
    }
    return hasEnd(data) ? std::string() : "its compressed pixel data have no end; the file is cut off, fetch it again";
}

}  // namespace lyrvolume
