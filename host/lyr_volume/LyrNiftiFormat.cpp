#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <optional>

#include <lyr_volume/LyrFormats_p.h>
#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrNiftiHeader_p.h>
#include <lyr_volume/LyrRawSamples_p.h>

namespace lyrvolume {
namespace {

/** Reads numbers out of the header's bytes, in the byte order that was found. */
class Fields {
public:
    Fields(std::span<const unsigned char> bytes, bool bigEndian) : bytes_(bytes), bigEndian_(bigEndian) {}

    template <typename T>
    T get(std::size_t place) const {
        std::array<unsigned char, sizeof(T)> raw;
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(place), sizeof(T), raw.begin());
        if (bigEndian_ != (std::endian::native == std::endian::big)) {
            std::reverse(raw.begin(), raw.end());
        }
        return std::bit_cast<T>(raw);
    }

private:
    std::span<const unsigned char> bytes_;
    bool bigEndian_;
};

void decodeFirst(const Fields& fields, NiftiHeader& header) {
    for (std::size_t i = 0; i < 8; ++i) {
        header.dim[i] = fields.get<std::int16_t>(40 + 2 * i);
        header.pixdim[i] = static_cast<double>(fields.get<float>(76 + 4 * i));
    }
    header.intent = fields.get<std::int16_t>(68);
    header.datatype = fields.get<std::int16_t>(70);
    header.bitpix = fields.get<std::int16_t>(72);
    header.dataPlace = static_cast<double>(fields.get<float>(108));
    header.slope = static_cast<double>(fields.get<float>(112));
    header.intercept = static_cast<double>(fields.get<float>(116));
    header.units = fields.get<std::uint8_t>(123);
    header.qform = fields.get<std::int16_t>(252);
    header.sform = fields.get<std::int16_t>(254);
    for (std::size_t k = 0; k < 3; ++k) {
        header.qoffset[k] = static_cast<double>(fields.get<float>(268 + 4 * k));
        header.soffset[k] = static_cast<double>(fields.get<float>(280 + 16 * k + 12));
    }
}

void decodeSecond(const Fields& fields, NiftiHeader& header) {
    for (std::size_t i = 0; i < 8; ++i) {
        header.dim[i] = fields.get<std::int64_t>(16 + 8 * i);
        header.pixdim[i] = fields.get<double>(104 + 8 * i);
    }
    header.datatype = fields.get<std::int16_t>(12);
    header.bitpix = fields.get<std::int16_t>(14);
    header.dataPlace = static_cast<double>(fields.get<std::int64_t>(168));
    header.slope = fields.get<double>(176);
    header.intercept = fields.get<double>(184);
    header.qform = fields.get<std::int32_t>(344);
    header.sform = fields.get<std::int32_t>(348);
    for (std::size_t k = 0; k < 3; ++k) {
        header.qoffset[k] = fields.get<double>(376 + 8 * k);
        header.soffset[k] = fields.get<double>(400 + 32 * k + 24);
    }
    header.units = static_cast<std::uint8_t>(fields.get<std::int32_t>(500));
    header.intent = fields.get<std::int32_t>(504);
}

bool isGzip(const InputFile& file) {
    std::array<unsigned char, 2> start{};
    return file.readAt(0, start) == 2 && start[0] == 0x1F && start[1] == 0x8B;
}

std::size_t readStart(const InputFile& file, bool gzip, std::span<unsigned char> out, ReadContext& context) {
    if (!gzip) {
        return file.readAt(0, out);
    }
    const std::unique_ptr<ByteStream> stream = inflatedStream(file, 0, file.length(), context);
    std::size_t done = 0;
    while (done < out.size()) {
        const std::optional<std::size_t> count = stream->read(out.subspan(done));
        if (!count || *count == 0) {
            break;
        }
        done += *count;
    }
    return done;
}

}  // namespace

NiftiKind niftiKind(std::span<const unsigned char> bytes) {
    for (const bool bigEndian : {false, true}) {
        const Fields fields(bytes, bigEndian);
        if (bytes.size() >= kNiftiFirstBytes && fields.get<std::int32_t>(0) == 348 &&
            (std::memcmp(bytes.data() + 344, "n+1", 4) == 0 || std::memcmp(bytes.data() + 344, "ni1", 4) == 0)) {
            return {1, bigEndian, bytes[345] == '+'};
        }
        if (bytes.size() >= 12 && fields.get<std::int32_t>(0) == 540 &&
            (std::memcmp(bytes.data() + 4, "n+2", 4) == 0 || std::memcmp(bytes.data() + 4, "ni2", 4) == 0)) {
            return {2, bigEndian, bytes[5] == '+'};
        }
    }
    return {};
}

bool readNiftiHeader(const std::string& path, NiftiHeader& header, ReadContext& context) {
    InputFile file;
    if (!file.open(path, context)) {
        return false;
    }
    header.gzip = isGzip(file);
    std::array<unsigned char, kNiftiSecondBytes> bytes{};
    const std::size_t count = readStart(file, header.gzip, bytes, context);
    const std::span<const unsigned char> there(bytes.data(), count);
    header.kind = niftiKind(there);
    if (header.kind.version == 0 || count < (header.kind.version == 1 ? kNiftiFirstBytes : kNiftiSecondBytes)) {
        return context.fail(path, std::to_string(count) +
                                      " bytes of header hold no NIfTI header of 348 or 540 bytes; the "
                                      "file is cut off or of another format");
    }
    const Fields fields(there, header.kind.bigEndian);
    header.kind.version == 1 ? decodeFirst(fields, header) : decodeSecond(fields, header);
    return true;
}

namespace {

std::optional<SampleType> sampleType(int datatype) {
    switch (datatype) {
        case 2:
            return SampleType::UInt8;
        case 4:
            return SampleType::Int16;
        case 8:
            return SampleType::Int32;
        case 16:
            return SampleType::Float32;
        case 64:
            return SampleType::Float64;
        case 256:
            return SampleType::Int8;
        case 512:
            return SampleType::UInt16;
        case 768:
            return SampleType::UInt32;
        case 1024:
            return SampleType::Int64;
        case 1280:
            return SampleType::UInt64;
        default:
            return std::nullopt;
    }
}

bool readFormat(const std::string& path, const NiftiHeader& header, RawLayout& layout, ReadContext& context) {
    const auto type = sampleType(header.datatype);
    if (!type) {
        return context.fail(path,
                            "the data type " + std::to_string(header.datatype) +
                                " is unknown or holds several values for each sample (colour or complex numbers); "
                                "store it as one number for each sample");
    }
    layout.format.type = *type;
    layout.format.bigEndian = header.kind.bigEndian;
    if (static_cast<std::uint64_t>(header.bitpix) != 8 * sampleBytes(*type)) {
        context.warn(path, "the header states " + std::to_string(header.bitpix) + " bits for each " +
                               sampleName(*type) + " sample; the type was taken");
    }
    const bool usable = std::isfinite(header.slope) && std::isfinite(header.intercept);
    if (!usable) {
        context.warn(path, "slope or intercept are not finite; stored values are left as they are");
    } else if (header.slope != 0.0) {  // 0 says that there is no scaling
        layout.format.slope = header.slope;
        layout.format.intercept = header.intercept;
    }
    return true;
}

bool readSize(const std::string& path, const NiftiHeader& header, RawLayout& layout, Draft& draft,
              ReadContext& context) {
    const std::int64_t dimensions = header.dim[0];
    if (dimensions < 1 || dimensions > 7) {
        return context.fail(path,
                            "the header claims " + std::to_string(dimensions) + " dimensions; 1 to 7 are possible");
    }
    draft.description.size = {1, 1, 1};
    for (std::size_t i = 0; i < static_cast<std::size_t>(dimensions); ++i) {
        const std::int64_t size = header.dim[i + 1];
        if (size < 1) {
            return context.fail(path, "the header claims a size of " + std::to_string(size) + " along axis " +
                                          std::to_string(i + 1) + "; sizes start at 1");
        }
        if (i < 3) {
            layout.size[i] = static_cast<std::uint64_t>(size);
            draft.description.size[i] = size;
        } else if (__builtin_mul_overflow(layout.frames, static_cast<std::uint64_t>(size), &layout.frames)) {
            return context.fail(path, "the header claims an impossible number of frames; the header is wrong");
        }
    }
    // The fifth axis is for the values of one sample; these intents say vector, displacement, matrix and colour.
    const bool vectors = header.intent == 1004 || header.intent == 1005 || header.intent == 1006 ||
                         header.intent == 1007 || header.intent == 2003 || header.intent == 2004;
    if (vectors && dimensions >= 5 && header.dim[5] > 1) {
        return context.fail(path,
                            "it holds " + std::to_string(header.dim[5]) +
                                " values for each sample (vectors or colour); only volumes with one value for each "
                                "sample can be read, store one of them by itself");
    }
    if (layout.frames > 1) {
        context.warn(path, "holds " + std::to_string(layout.frames) + " frames; the first was taken");
    }
    return true;
}

/** Units of space by their code; the format's own "unknown" is taken as mm, which its writers mean. */
UnitScale scaleOf(const std::string& path, int code, ReadContext& context) {
    switch (code & 7) {
        case 1:
            return {1e3, 1.0};
        case 3:
            return {1.0, 1e3};
        case 0:
        case 2:
            return {};
        default:
            context.warn(path, "the unit code " + std::to_string(code & 7) + " is unknown; mm was taken");
            return {};
    }
}

void describeGeometry(const std::string& path, const NiftiHeader& header, LyrVolume::Description& description,
                      ReadContext& context) {
    const UnitScale scale = scaleOf(path, header.units, context);
    for (std::size_t i = 0; i < 3; ++i) {
        // Axes that the file does not have need no spacing.
        if (static_cast<std::int64_t>(i) < header.dim[0]) {
            description.spacing[i] = usableSpacing(scale.apply(header.pixdim[i + 1]), i, path, context);
        }
        const double offset = header.sform > 0 ? header.soffset[i] : header.qform > 0 ? header.qoffset[i] : 0.0;
        description.origin[i] = std::isfinite(offset) ? scale.apply(offset) : 0.0;
    }
}

/** "scan.img" or "scan.img.gz" for "scan.hdr" or "scan.hdr.gz", whichever is there. */
std::optional<std::string> pairedImage(const std::string& headerPath, ReadContext& context) {
    const std::size_t at = headerPath.rfind(".hdr");
    if (at == std::string::npos) {
        context.fail(headerPath, "its data lie in another file with the ending .img, so it must end in .hdr");
        return std::nullopt;
    }
    const std::string plain = headerPath.substr(0, at) + ".img";
    LyrVolumeReader::Report ignored;
    const LyrVolumeReader::Progress none;
    ReadContext quiet(ignored, none);
    InputFile packed;
    return packed.open(plain + ".gz", quiet) ? plain + ".gz" : plain;
}

bool locateData(const std::string& path, const NiftiHeader& header, RawLayout& layout, ReadContext& context) {
    const double least = !header.kind.single ? 0.0 : header.kind.version == 1 ? 348.0 : 540.0;
    if (!(header.dataPlace >= least && header.dataPlace < 9e15) || header.dataPlace != std::floor(header.dataPlace)) {
        return context.fail(path, "the header's place of the data is impossible; the header is wrong");
    }
    DataFile source{path};
    bool gzip = header.gzip;
    if (!header.kind.single) {
        const auto image = pairedImage(path, context);
        InputFile file;
        if (!image || !file.open(*image, context, path)) {
            return false;
        }
        source.path = *image;
        gzip = isGzip(file);
    }
    layout.encoding = gzip ? Encoding::Deflate : Encoding::Raw;
    source.skip = static_cast<std::uint64_t>(header.dataPlace);
    layout.files.push_back(std::move(source));
    return true;
}

}  // namespace

bool readNifti(const std::string& path, Draft& draft, ReadContext& context) {
    NiftiHeader header;
    RawLayout layout;
    layout.header = path;
    if (!readNiftiHeader(path, header, context) || !readFormat(path, header, layout, context) ||
        !readSize(path, header, layout, draft, context) || !locateData(path, header, layout, context)) {
        return false;
    }
    describeGeometry(path, header, draft.description, context);
    draft.description.format = "NIfTI-" + std::to_string(header.kind.version) + ", " + sampleName(layout.format.type) +
                               ", " + (layout.encoding == Encoding::Raw ? "raw" : "gzip");
    return readRawSamples(layout, draft.samples, context);
}

}  // namespace lyrvolume
