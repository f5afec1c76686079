#include <tiffio.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>

#include <lyr_volume/LyrFormats_p.h>
#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrInputFile_p.h>
#include <lyr_volume/LyrRawSamples_p.h>
#include <lyr_volume/LyrSampleType_p.h>
#include <lyr_volume/LyrTiffPages_p.h>

namespace lyrvolume {
namespace {

std::optional<SampleType> sampleType(const TiffPage& page) {
    const bool whole = page.sampleFormat == 1 || page.sampleFormat == 4;  // 4: not stated
    switch (page.sampleFormat == 3   ? 1000 + page.bits
            : page.sampleFormat == 2 ? 500 + page.bits
            : whole                  ? page.bits
                                     : 0) {
        case 8:
            return SampleType::UInt8;
        case 16:
            return SampleType::UInt16;
        case 32:
            return SampleType::UInt32;
        case 64:
            return SampleType::UInt64;
        case 508:
            return SampleType::Int8;
        case 516:
            return SampleType::Int16;
        case 532:
            return SampleType::Int32;
        case 564:
            return SampleType::Int64;
        case 1032:
            return SampleType::Float32;
        case 1064:
            return SampleType::Float64;
        default:
            return std::nullopt;
    }
}

/** The most that a compression can shrink data; a page that claims more is no page. */
std::uint64_t largestRatio(std::uint64_t compression) {
    switch (compression) {
        case 1:
            return 1;
        case 8:
        case 32946:
            return kLargestDeflateRatio;
        case 5:
            return 1536;  // LZW: 3838 codes of 9 to 12 bits stand for 3838² / 2 bytes at best
        case 32773:
            return 64;  // PackBits: 128 bytes in 2
        default:
            return 16384;  // what modern ones reach on constant pages
    }
}

/** A page of a file that takes part in the volume. */
struct Slice {
    const std::string* path = nullptr;
    std::string name;  ///< for messages: the file, and the page where there are several
    TiffPage page;
};

bool checkPage(const Slice& slice, const Slice& first, ReadContext& context) {
    const TiffPage& page = slice.page;
    if (page.samples != 1 || (page.photometric != 0 && page.photometric != 1)) {
        return context.fail(slice.name,
                            "is in colour or holds several values for each pixel; only grey pages can be read, "
                            "store them as grey values");
    }
    if (!sampleType(page)) {
        return context.fail(slice.name, "has samples of " + std::to_string(page.bits) +
                                            " bits in a form that is not supported; store them as 8, 16 or 32 bits");
    }
    if (page.width != first.page.width || page.height != first.page.height ||
        sampleType(page) != sampleType(first.page)) {
        return context.fail(slice.name, "has " + std::to_string(page.width) + " × " + std::to_string(page.height) +
                                            " pixels of " + sampleName(*sampleType(page)) + ", the first slice " +
                                            std::to_string(first.page.width) + " × " +
                                            std::to_string(first.page.height) + " of " +
                                            sampleName(*sampleType(first.page)) + "; all slices must be alike");
    }
    std::uint64_t stored = 0;
    for (const std::uint64_t length : page.dataLengths) {
        stored += length;
    }
    const std::uint64_t claimed = page.width * page.height * sampleBytes(*sampleType(page));
    if (claimed / largestRatio(page.compression) > stored) {
        return context.fail(slice.name, "claims " + std::to_string(claimed) + " bytes, which its " +
                                            std::to_string(stored) + " stored bytes cannot hold; the file is damaged");
    }
    return true;
}

/** The value behind "name=" on a line of its own, as some programs write them into the description. */
std::optional<std::string_view> described(const TiffPage& page, std::string_view name) {
    std::string_view text = page.description;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        if (line.size() > name.size() && line.substr(0, name.size()) == name && line[name.size()] == '=') {
            return line.substr(name.size() + 1);
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return std::nullopt;
}

/** All pages that are slices; smaller copies of others are left out. */
bool collectSlices(const std::vector<std::string>& paths, std::vector<Slice>& slices, ReadContext& context) {
    for (const std::string& path : paths) {
        InputFile file;
        std::vector<TiffPage> pages;
        if (!file.open(path, context) || !readTiffPages(file, pages, context)) {
            return false;
        }
        const auto images = parseAs<std::uint64_t>(described(pages[0], "images").value_or(""));
        if (images && *images > pages.size() && described(pages[0], "ImageJ")) {
            return context.fail(path, "says it holds " + std::to_string(*images) + " images, there are " +
                                          std::to_string(pages.size()) + "; the file is cut off");
        }
        std::erase_if(pages, [](const TiffPage& page) { return (page.subfile & 1U) != 0; });
        if (paths.size() > 1 && pages.size() != 1) {
            return context.fail(path,
                                "holds " + std::to_string(pages.size()) +
                                    " pages; in a folder each file must be one slice, or give one file by itself");
        }
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const std::string name = pages.size() > 1 ? path + ", page " + std::to_string(i + 1) : path;
            slices.push_back({&path, name, std::move(pages[i])});
        }
        if (!context.advance(0.0)) {
            return false;
        }
    }
    return !slices.empty() || context.fail(paths.empty() ? "TIFF" : paths[0], "holds no slices");
}

extern "C" {
/** Keeps the first message of libtiff; warnings about unknown tags and the like are dropped. */
static int lyrKeepTiffError(TIFF*, void* message, const char*, const char* format, va_list arguments) {
    auto& text = *static_cast<std::string*>(message);
    if (text.empty()) {
        std::array<char, 256> buffer{};
        std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
        text = buffer.data();
    }
    return 1;
}

static int lyrDropTiffWarning(TIFF*, void*, const char*, const char*, va_list) {
    return 1;
}
}

/** Decodes pages of one file by libtiff. */
class Decoder {
public:
    bool open(const std::string& path) {
        TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
        TIFFOpenOptionsSetErrorHandlerExtR(options, lyrKeepTiffError, &problem_);
        TIFFOpenOptionsSetWarningHandlerExtR(options, lyrDropTiffWarning, nullptr);
        handle_.reset(TIFFOpenExt(path.c_str(), "rm", options));  // m: no mapping, a file may shrink meanwhile
        TIFFOpenOptionsFree(options);
        return handle_ != nullptr;
    }

    /** Appends the page's samples to `out`; false with a reason in `problem`. */
    bool decode(const TiffPage& page, std::vector<float>& out) {
        if (TIFFSetSubDirectory(handle_.get(), page.place) == 0) {
            return false;
        }
        // libtiff hands samples out in this machine's byte order.
        format_.type = *sampleType(page);
        format_.bigEndian = std::endian::native == std::endian::big;
        return page.tiled() ? decodeTiles(page, out) : decodeStrips(page, out);
    }

    const std::string& problem() const { return problem_; }

private:
    void append(const unsigned char* stored, std::uint64_t count, std::vector<float>& out) {
        values_.resize(count);
        convertSamples(format_, stored, count, 1, values_.data());
        out.insert(out.end(), values_.begin(), values_.end());
    }

    bool decodeStrips(const TiffPage& page, std::vector<float>& out) {
        const std::uint64_t rows = std::min(page.rowsPerStrip, page.height);
        const std::uint64_t rowBytes = page.width * sampleBytes(format_.type);
        bytes_ = std::make_unique_for_overwrite<unsigned char[]>(rows * rowBytes);
        for (std::uint64_t row = 0; row < page.height; row += rows) {
            const std::uint64_t length = std::min(rows, page.height - row) * rowBytes;
            const auto strip = static_cast<std::uint32_t>(row / rows);
            if (TIFFReadEncodedStrip(handle_.get(), strip, bytes_.get(), static_cast<tmsize_t>(length)) !=
                static_cast<tmsize_t>(length)) {
                return false;
            }
            append(bytes_.get(), length / sampleBytes(format_.type), out);
        }
        return true;
    }

    bool decodeTiles(const TiffPage& page, std::vector<float>& out) {
        const std::uint64_t sample = sampleBytes(format_.type);
        const std::uint64_t tileBytes = page.tileWidth * page.tileHeight * sample;
        const std::uint64_t across = (page.width + page.tileWidth - 1) / page.tileWidth;
        const auto tile = std::make_unique_for_overwrite<unsigned char[]>(tileBytes);
        bytes_ = std::make_unique_for_overwrite<unsigned char[]>(page.width * page.tileHeight * sample);
        for (std::uint64_t top = 0; top < page.height; top += page.tileHeight) {
            const std::uint64_t rows = std::min(page.tileHeight, page.height - top);
            for (std::uint64_t column = 0; column < across; ++column) {
                const auto index = static_cast<std::uint32_t>(top / page.tileHeight * across + column);
                if (TIFFReadEncodedTile(handle_.get(), index, tile.get(), static_cast<tmsize_t>(tileBytes)) !=
                    static_cast<tmsize_t>(tileBytes)) {
                    return false;
                }
                const std::uint64_t left = column * page.tileWidth;
                const std::uint64_t width = std::min(page.tileWidth, page.width - left);
                for (std::uint64_t row = 0; row < rows; ++row) {
                    std::memcpy(bytes_.get() + (row * page.width + left) * sample,
                                tile.get() + row * page.tileWidth * sample, width * sample);
                }
            }
            append(bytes_.get(), rows * page.width, out);
        }
        return true;
    }

    struct Close {
        void operator()(TIFF* handle) const { TIFFClose(handle); }
    };

    std::string problem_;
    std::unique_ptr<TIFF, Close> handle_;
    SampleFormat format_;
    std::unique_ptr<unsigned char[]> bytes_;  // not filled beforehand: only what is decoded takes memory
    std::vector<float> values_;
};

bool decodeSlices(const std::vector<Slice>& slices, std::vector<float>& out, ReadContext& context) {
    std::optional<Decoder> decoder;
    for (std::size_t i = 0; i < slices.size(); ++i) {
        const Slice& slice = slices[i];
        bool opened = true;
        if (i == 0 || slice.path != slices[i - 1].path) {
            decoder.emplace();
            opened = decoder->open(*slice.path);
        }
        if (!opened || !decoder->decode(slice.page, out)) {
            const std::string& problem = decoder->problem();
            return context.fail(slice.name, "cannot be decoded" + (problem.empty() ? problem : " (" + problem + ")") +
                                                "; the file is damaged, fetch it again");
        }
        if (!context.advance(static_cast<double>(i + 1) / static_cast<double>(slices.size()))) {
            return false;
        }
    }
    return true;
}

/** How many mm the resolution's unit has; nothing where there is no unit. */
std::optional<UnitScale> resolutionScale(const TiffPage& page) {
    if (page.resolutionUnit == 2 || page.resolutionUnit == 3) {
        return page.resolutionUnit == 2 ? UnitScale{25.4, 1.0} : UnitScale{10.0, 1.0};
    }
    const auto unit = described(page, "unit");
    return unit ? unitScale(*unit) : std::nullopt;
}

void describeGeometry(const Slice& first, LyrVolume::Description& description, ReadContext& context) {
    const TiffPage& page = first.page;
    const std::optional<UnitScale> scale = resolutionScale(page);
    if (!scale || !(page.resolution[0] > 0.0) || !(page.resolution[1] > 0.0)) {
        description.unit.clear();
        return;
    }
    description.spacing[0] = scale->apply(1.0 / page.resolution[0]);
    description.spacing[1] = scale->apply(1.0 / page.resolution[1]);
    description.spacing[2] = description.spacing[0];
    const auto unit = described(page, "unit");
    const auto between = parseAs<double>(described(page, "spacing").value_or(""));
    const std::optional<UnitScale> betweenScale = unit ? unitScale(*unit) : scale;
    if (between && betweenScale && std::isfinite(*between) && *between != 0.0) {
        description.spacing[2] = betweenScale->apply(std::abs(*between));
    } else if (description.size[2] > 1) {
        context.warn(first.name, "the distance between slices is not stated; the edge of a pixel was taken");
    }
}

}  // namespace

bool readTiff(const std::vector<std::string>& paths, Draft& draft, ReadContext& context) {
    std::vector<Slice> slices;
    if (!collectSlices(paths, slices, context)) {
        return false;
    }
    for (const Slice& slice : slices) {
        if (!checkPage(slice, slices[0], context)) {
            return false;
        }
    }
    const std::array<std::uint64_t, 3> size{slices[0].page.width, slices[0].page.height, slices.size()};
    std::uint64_t voxels = 0;
    if (!countVoxels(slices[0].name, size, voxels, context)) {
        return false;
    }
    for (std::size_t i = 0; i < 3; ++i) {
        draft.description.size[i] = static_cast<std::int64_t>(size[i]);
    }
    if (slices[0].page.photometric == 0) {
        context.warn(slices[0].name, "shows small values bright; values are left as they are stored");
    }
    describeGeometry(slices[0], draft.description, context);
    draft.description.format = "TIFF, " + sampleName(*sampleType(slices[0].page)) + ", " +
                               std::to_string(slices.size()) + (paths.size() > 1 ? " files" : " pages");
    draft.samples.reserve(voxels);
    return decodeSlices(slices, draft.samples, context);
}

}  // namespace lyrvolume
