#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <optional>
#include <set>

#include <lyr_volume/LyrTiffPages_p.h>

namespace lyrvolume {
namespace {

constexpr std::size_t kMostPages = 65536;

// Tags and value types of TIFF 6.0 and BigTIFF.
enum Tag : std::uint64_t {
    kNewSubfileType = 254,
    kImageWidth = 256,
    kImageLength = 257,
    kBitsPerSample = 258,
    kCompression = 259,
    kPhotometric = 262,
    kImageDescription = 270,
    kStripOffsets = 273,
    kSamplesPerPixel = 277,
    kRowsPerStrip = 278,
    kStripByteCounts = 279,
    kXResolution = 282,
    kYResolution = 283,
    kResolutionUnit = 296,
    kTileWidth = 322,
    kTileLength = 323,
    kTileOffsets = 324,
    kTileByteCounts = 325,
    kSampleFormat = 339
};

/** Bytes of a value of each type; 0 for types that are unknown. */
std::uint64_t valueBytes(std::uint64_t type) {
    constexpr std::array<std::uint8_t, 19> kBytes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < kBytes.size() ? kBytes[type] : 0;
}

/** One entry of a directory. */
struct Entry {
    std::uint64_t tag = 0;
    std::uint64_t type = 0;
    std::uint64_t count = 0;
    std::uint64_t place = 0;  ///< of its values
};

class Walker {
public:
    Walker(const InputFile& file, ReadContext& context) : file_(file), context_(context) {}

    bool walk(std::vector<TiffPage>& pages) {
        std::uint64_t next = 0;
        if (!readStart(next)) {
            return false;
        }
        std::set<std::uint64_t> seen;
        while (next != 0) {
            if (!seen.insert(next).second || pages.size() >= kMostPages) {
                return context_.fail(file_.path(), "its pages run in a circle or are too many; the file is damaged");
            }
            page_ = static_cast<std::int64_t>(pages.size()) + 1;
            TiffPage page;
            page.place = next;
            if (!readPage(page, next) || !checkData(page)) {
                return false;
            }
            pages.push_back(std::move(page));
        }
        return !pages.empty() || context_.fail(file_.path(), "has no pages; the file is damaged");
    }

private:
    bool fail(const std::string& reason) {
        return context_.fail(file_.path(), "page " + std::to_string(page_) + ": " + reason);
    }

    bool cut() { return fail("something lies behind the end of the file; the file is cut off, fetch it again"); }

    bool inside(std::uint64_t place, std::uint64_t length) const {
        return place <= file_.length() && length <= file_.length() - place;
    }

    /** An unsigned number of 1, 2, 4 or 8 bytes in the file's byte order. */
    std::optional<std::uint64_t> number(std::uint64_t place, std::uint64_t bytes) const {
        std::array<unsigned char, 8> raw{};
        if (!inside(place, bytes) || file_.readAt(place, {raw.data(), bytes}) != bytes) {
            return std::nullopt;
        }
        return decode(raw.data(), bytes);
    }

    std::uint64_t decode(const unsigned char* raw, std::uint64_t bytes) const {
        std::uint64_t value = 0;
        for (std::uint64_t i = 0; i < bytes; ++i) {
            value = value << 8U | raw[bigEndian_ ? i : bytes - 1 - i];
        }
        return value;
    }

    bool readStart(std::uint64_t& first) {
        std::array<unsigned char, 4> start{};
        file_.readAt(0, start);
        bigEndian_ = start[0] == 'M';
        big_ = decode(start.data() + 2, 2) == 43;
        const auto place = number(big_ ? 8 : 4, big_ ? 8 : 4);
        if (!place || *place == 0) {
            return context_.fail(file_.path(), "the place of its first page is missing; the file is cut off");
        }
        first = *place;
        return true;
    }

    bool readPage(TiffPage& page, std::uint64_t& next) {
        const std::uint64_t countBytes = big_ ? 8 : 2;
        const std::uint64_t entryBytes = big_ ? 20 : 12;
        const std::uint64_t linkBytes = big_ ? 8 : 4;
        const auto count = number(page.place, countBytes);
        if (!count || *count > 65535 || !inside(page.place + countBytes, *count * entryBytes + linkBytes)) {
            return cut();
        }
        for (std::uint64_t i = 0; i < *count; ++i) {
            if (!readEntry(page.place + countBytes + i * entryBytes, page)) {
                return false;
            }
        }
        next = number(page.place + countBytes + *count * entryBytes, linkBytes).value_or(0);
        return true;
    }

    bool readEntry(std::uint64_t place, TiffPage& page) {
        const std::uint64_t inlineBytes = big_ ? 8 : 4;
        Entry entry;
        entry.tag = number(place, 2).value_or(0);
        entry.type = number(place + 2, 2).value_or(0);
        entry.count = number(place + 4, inlineBytes).value_or(0);
        entry.place = place + 4 + inlineBytes;
        const std::uint64_t unit = valueBytes(entry.type);
        if (unit == 0) {
            return true;
        }
        if (entry.count > file_.length() / unit) {
            return cut();
        }
        if (entry.count * unit > inlineBytes) {
            entry.place = number(entry.place, inlineBytes).value_or(~std::uint64_t{0});
        }
        if (!inside(entry.place, entry.count * unit)) {
            return cut();
        }
        return take(entry, page);
    }

    bool take(const Entry& entry, TiffPage& page) {
        switch (entry.tag) {
            case kNewSubfileType:
                return takeNumber(entry, page.subfile);
            case kImageWidth:
                return takeNumber(entry, page.width);
            case kImageLength:
                return takeNumber(entry, page.height);
            case kBitsPerSample:
                return takeNumber(entry, page.bits);
            case kCompression:
                return takeNumber(entry, page.compression);
            case kPhotometric:
                return takeNumber(entry, page.photometric);
            case kSamplesPerPixel:
                return takeNumber(entry, page.samples);
            case kRowsPerStrip:
                return takeNumber(entry, page.rowsPerStrip);
            case kResolutionUnit:
                return takeNumber(entry, page.resolutionUnit);
            case kTileWidth:
                return takeNumber(entry, page.tileWidth);
            case kTileLength:
                return takeNumber(entry, page.tileHeight);
            case kSampleFormat:
                return takeNumber(entry, page.sampleFormat);
            case kXResolution:
                return takeRational(entry, page.resolution[0]);
            case kYResolution:
                return takeRational(entry, page.resolution[1]);
            case kStripOffsets:
            case kTileOffsets:
                return takeList(entry, page.dataPlaces);
            case kStripByteCounts:
            case kTileByteCounts:
                return takeList(entry, page.dataLengths);
            case kImageDescription:
                return takeText(entry, page.description);
            default:
                return true;
        }
    }

    static bool isWhole(std::uint64_t type) {
        return type == 1 || type == 3 || type == 4 || type == 13 || type == 16 || type == 18;
    }

    bool takeNumber(const Entry& entry, std::uint64_t& value) {
        if (!isWhole(entry.type) || entry.count < 1) {
            return fail("the value of tag " + std::to_string(entry.tag) + " is no number; the file is damaged");
        }
        value = number(entry.place, valueBytes(entry.type)).value_or(0);
        return true;
    }

    bool takeRational(const Entry& entry, double& value) {
        const auto above = number(entry.place, 4);
        const auto below = number(entry.place + 4, 4);
        if (entry.type == 5 && entry.count == 1 && above && below && *below != 0) {
            value = static_cast<double>(*above) / static_cast<double>(*below);
        }
        return true;
    }

    bool takeList(const Entry& entry, std::vector<std::uint64_t>& values) {
        const std::uint64_t unit = valueBytes(entry.type);
        // Lists of honest files do not overlap, so all of them together are no longer than the file.
        listed_ += entry.count * unit;
        if (!isWhole(entry.type) || listed_ > file_.length()) {
            return fail("the list of its strips is impossible; the file is damaged");
        }
        std::vector<unsigned char> raw(entry.count * unit);
        if (file_.readAt(entry.place, raw) != raw.size()) {
            return cut();
        }
        values.resize(entry.count);
        for (std::size_t i = 0; i < values.size(); ++i) {
            values[i] = decode(raw.data() + i * unit, unit);
        }
        return true;
    }

    bool takeText(const Entry& entry, std::string& text) {
        text.resize(std::min<std::uint64_t>(entry.count, 4096));
        text.resize(file_.readAt(entry.place, {reinterpret_cast<unsigned char*>(text.data()), text.size()}));
        return true;
    }

    /** Decoded bytes of strip or tile `index`. */
    static std::uint64_t decodedBytes(const TiffPage& page, std::uint64_t index) {
        const std::uint64_t pixelBytes = page.samples * ((page.bits + 7) / 8);
        if (page.tiled()) {
            return page.tileWidth * page.tileHeight * pixelBytes;
        }
        const std::uint64_t rows = std::min(page.rowsPerStrip, page.height);
        return std::min(rows, page.height - index * rows) * page.width * pixelBytes;
    }

    static std::uint64_t roundedUp(std::uint64_t a, std::uint64_t b) { return a / b + (a % b != 0 ? 1 : 0); }

    /** Sizes in a range where none of the products here overflows. */
    bool checkSize(const TiffPage& page) {
        constexpr std::uint64_t kLongest = std::uint64_t{1} << 24U;
        if (page.width == 0 || page.height == 0 || page.width > kLongest || page.height > kLongest) {
            return fail("a size of " + std::to_string(page.width) + " × " + std::to_string(page.height) +
                        " pixels is impossible; the file is damaged");
        }
        if (page.bits == 0 || page.bits > 64 || page.samples == 0 || page.samples > 1024 || page.rowsPerStrip == 0 ||
            (page.tiled() && (page.tileHeight == 0 || page.tileWidth > 65536 || page.tileHeight > 65536))) {
            return fail("its layout makes no sense; the file is damaged");
        }
        return true;
    }

    bool checkData(TiffPage& page) {
        if (!checkSize(page)) {
            return false;
        }
        const std::uint64_t rows = std::min(page.rowsPerStrip, page.height);
        const std::uint64_t needed =
            page.tiled() ? roundedUp(page.width, page.tileWidth) * roundedUp(page.height, page.tileHeight)
                         : roundedUp(page.height, rows);
        const bool severalValues = page.samples > 1;  // refused later; their planes may have strips of their own
        if (page.dataLengths.empty() && page.compression == 1 && !page.tiled() && page.dataPlaces.size() == needed) {
            for (std::uint64_t i = 0; i < needed; ++i) {
                page.dataLengths.push_back(decodedBytes(page, i));
            }
        }
        if (page.dataPlaces.size() != page.dataLengths.size() || (page.dataPlaces.size() != needed && !severalValues)) {
            return fail("has " + std::to_string(page.dataPlaces.size()) + " strips or tiles, " +
                        std::to_string(needed) + " are needed; the file is damaged");
        }
        for (std::size_t i = 0; i < page.dataPlaces.size(); ++i) {
            if (!inside(page.dataPlaces[i], page.dataLengths[i])) {
                return cut();
            }
            // Packed samples of other than whole bytes are refused later.
            if (page.compression == 1 && page.bits % 8 == 0 && !severalValues &&
                page.dataLengths[i] < decodedBytes(page, i)) {
                return fail("strip or tile " + std::to_string(i + 1) + " holds " + std::to_string(page.dataLengths[i]) +
                            " bytes, " + std::to_string(decodedBytes(page, i)) + " are needed; the file is damaged");
            }
        }
        return true;
    }

    const InputFile& file_;
    ReadContext& context_;
    bool bigEndian_ = false;
    bool big_ = false;
    std::int64_t page_ = 1;
    std::uint64_t listed_ = 0;
};

}  // namespace

bool readTiffPages(const InputFile& file, std::vector<TiffPage>& pages, ReadContext& context) {
    return Walker(file, context).walk(pages);
}

}  // namespace lyrvolume
