#include <algorithm>
#include <array>
#include <cmath>
#include <map>

#include <lyr_volume/LyrFormats_p.h>
#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrNrrdHeader_p.h>
#include <lyr_volume/LyrRawSamples_p.h>

namespace lyrvolume {
namespace {

std::optional<SampleType> sampleType(std::string_view text) {
    static const std::map<std::string, SampleType, std::less<>> types{{"signed char", SampleType::Int8},
                                                                      {"int8", SampleType::Int8},
                                                                      {"int8_t", SampleType::Int8},
                                                                      {"uchar", SampleType::UInt8},
                                                                      {"unsigned char", SampleType::UInt8},
                                                                      {"uint8", SampleType::UInt8},
                                                                      {"uint8_t", SampleType::UInt8},
                                                                      {"short", SampleType::Int16},
                                                                      {"short int", SampleType::Int16},
                                                                      {"signed short", SampleType::Int16},
                                                                      {"signed short int", SampleType::Int16},
                                                                      {"int16", SampleType::Int16},
                                                                      {"int16_t", SampleType::Int16},
                                                                      {"ushort", SampleType::UInt16},
                                                                      {"unsigned short", SampleType::UInt16},
                                                                      {"unsigned short int", SampleType::UInt16},
                                                                      {"uint16", SampleType::UInt16},
                                                                      {"uint16_t", SampleType::UInt16},
                                                                      {"int", SampleType::Int32},
                                                                      {"signed int", SampleType::Int32},
                                                                      {"int32", SampleType::Int32},
                                                                      {"int32_t", SampleType::Int32},
                                                                      {"uint", SampleType::UInt32},
                                                                      {"unsigned int", SampleType::UInt32},
                                                                      {"uint32", SampleType::UInt32},
                                                                      {"uint32_t", SampleType::UInt32},
                                                                      {"longlong", SampleType::Int64},
                                                                      {"long long", SampleType::Int64},
                                                                      {"long long int", SampleType::Int64},
                                                                      {"signed long long", SampleType::Int64},
                                                                      {"signed long long int", SampleType::Int64},
                                                                      {"int64", SampleType::Int64},
                                                                      {"int64_t", SampleType::Int64},
                                                                      {"ulonglong", SampleType::UInt64},
                                                                      {"unsigned long long", SampleType::UInt64},
                                                                      {"unsigned long long int", SampleType::UInt64},
                                                                      {"uint64", SampleType::UInt64},
                                                                      {"uint64_t", SampleType::UInt64},
                                                                      {"float", SampleType::Float32},
                                                                      {"double", SampleType::Float64}};
    const auto found = types.find(lowerCase(text));
    return found == types.end() ? std::nullopt : std::optional(found->second);
}

/** Kinds of axes that run over the values of one sample. */
bool isComponentKind(const std::string& kind) {
    for (const char* part : {"vector", "color", "normal", "gradient", "matrix", "quaternion", "complex", "point"}) {
        if (kind.find(part) != std::string::npos) {
            return true;
        }
    }
    return false;
}

bool isSpatialKind(const std::string& kind) {
    return kind == "domain" || kind == "space";
}

/** Which stored axes are x, y and z, and which run over frames. */
struct AxisRoles {
    std::vector<std::size_t> spatial;
    std::uint64_t interleaved = 1;  ///< frames on axes before x
    std::uint64_t frames = 1;       ///< frames on axes behind z
};

bool mayBeSpatial(const NrrdAxis& axis) {
    return axis.direction.has_value() || (!axis.directionIsNone && (axis.kind.empty() || isSpatialKind(axis.kind)));
}

bool assignRoles(const NrrdHeader& header, const std::vector<NrrdAxis>& axes, AxisRoles& roles, ReadContext& context) {
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const NrrdAxis& axis = axes[i];
        if (mayBeSpatial(axis) && roles.spatial.size() < 3) {
            roles.spatial.push_back(i);
            continue;
        }
        if (axis.size == 1) {
            continue;
        }
        const bool first = roles.spatial.empty();
        if (isComponentKind(axis.kind) || (first && axis.kind.empty())) {
            return context.fail(header.path, "it holds " + std::to_string(axis.size) +
                                                 " values for each sample (colour or vectors); only volumes with one "
                                                 "value for each sample can be read, store one of them by itself");
        }
        std::uint64_t& count = first ? roles.interleaved : roles.frames;
        const bool behindSpace =
            std::none_of(axes.begin() + static_cast<std::ptrdiff_t>(i) + 1, axes.end(), mayBeSpatial);
        if ((!first && roles.spatial.size() < 3 && !behindSpace) || __builtin_mul_overflow(count, axis.size, &count)) {
            return context.fail(header.path, "axis " + std::to_string(i + 1) +
                                                 " runs over frames between the axes of space; put it first or last");
        }
    }
    if (roles.spatial.empty()) {
        return context.fail(header.path, "no axis of the header is one of space; the header is wrong");
    }
    return true;
}

/** Distances in mm, as far as the units are known. */
class Distances {
public:
    Distances(const NrrdHeader& header, ReadContext& context) : header_(header), context_(context) {
        if (const auto text = header.field("space units")) {
            spaceUnits_ = parseNrrdQuoted(*text);
        }
    }

    double spacing(const NrrdAxis& axis, std::size_t number) {
        if (axis.direction) {
            double sum = 0.0;
            for (std::size_t k = 0; k < axis.direction->size(); ++k) {
                const double part = scale(spaceUnit(k), (*axis.direction)[k]);
                sum += part * part;
            }
            given_ = true;
            return usableSpacing(std::sqrt(sum), number, header_.path, context_);
        }
        if (axis.spacing && !std::isnan(*axis.spacing)) {
            given_ = true;
            return usableSpacing(scale(axis.unit.empty() ? spaceUnit(number) : axis.unit, *axis.spacing), number,
                                 header_.path, context_);
        }
        return 1.0;
    }

    double place(std::size_t k, double value) { return scale(spaceUnit(k), value); }

    std::string unit() const { return !given_ ? std::string() : unknown_.empty() ? std::string("mm") : unknown_; }

private:
    std::string spaceUnit(std::size_t k) const { return k < spaceUnits_.size() ? spaceUnits_[k] : std::string(); }

    /** No unit means mm, the convention of the format. */
    double scale(const std::string& unit, double value) {
        const std::optional<UnitScale> known = unit.empty() ? std::optional(UnitScale{}) : unitScale(unit);
        if (known) {
            return known->apply(value);
        }
        if (unknown_.empty()) {
            context_.warn(header_.path, "the unit \"" + unit + "\" is no known length; distances are left as they are");
            unknown_ = unit;
        }
        return value;
    }

    const NrrdHeader& header_;
    ReadContext& context_;
    std::vector<std::string> spaceUnits_;
    std::string unknown_;
    bool given_ = false;
};

void describeGeometry(const NrrdHeader& header, const std::vector<NrrdAxis>& axes, const AxisRoles& roles,
                      LyrVolume::Description& description, ReadContext& context) {
    Distances distances(header, context);
    for (std::size_t i = 0; i < roles.spatial.size(); ++i) {
        description.spacing[i] = distances.spacing(axes[roles.spatial[i]], i);
    }
    std::vector<std::optional<std::vector<double>>> origin;
    const auto text = header.field("space origin");
    if (text && parseNrrdVectors(*text, origin) && origin.size() == 1 && origin[0]) {
        for (std::size_t k = 0; k < std::min<std::size_t>(3, origin[0]->size()); ++k) {
            const double value = distances.place(k, (*origin[0])[k]);
            description.origin[k] = std::isfinite(value) ? value : 0.0;
        }
    }
    description.unit = distances.unit();
}

bool readEncoding(const NrrdHeader& header, RawLayout& layout, ReadContext& context) {
    const auto type = sampleType(trimmed(*header.field("type")));
    if (!type) {
        return context.fail(header.path, "the sample type \"" + std::string(*header.field("type")) +
                                             "\" is unknown or no number; store it as another type");
    }
    layout.format.type = *type;
    const std::string encoding = lowerCase(*header.field("encoding"));
    if (encoding == "raw") {
        layout.encoding = Encoding::Raw;
    } else if (encoding == "gz" || encoding == "gzip") {
        layout.encoding = Encoding::Deflate;
    } else if (encoding == "txt" || encoding == "text" || encoding == "ascii") {
        layout.encoding = Encoding::Text;
    } else if (encoding == "hex") {
        layout.encoding = Encoding::Hex;
    } else {
        return context.fail(header.path, "the encoding \"" + encoding + "\" is not supported; store it as raw or gzip");
    }
    const std::string endian = lowerCase(header.field("endian").value_or(""));
    if (endian != "big" && endian != "little" && layout.encoding != Encoding::Text && sampleBytes(*type) > 1) {
        return context.fail(header.path, "the header field \"endian\" must be \"little\" or \"big\" for this type");
    }
    layout.format.bigEndian = endian == "big";
    return true;
}

/** The files that "data file" names, or the header's own. */
bool listFiles(const NrrdHeader& header, std::vector<std::string>& files, ReadContext& context) {
    const auto field = header.field("data file");
    if (!field) {
        if (!header.hasEnd) {
            return context.fail(header.path, "the header does not end with an empty line; the file is cut off");
        }
        files.push_back(header.path);
        return true;
    }
    const auto words = splitWords(*field);
    if (!words.empty() && words[0] == "LIST") {
        for (const std::string& name : header.listedFiles) {
            files.push_back(besideHeader(header.path, name));
        }
    } else if (words.size() >= 4 && words[0].find('%') != std::string_view::npos) {
        const auto first = parseAs<std::int64_t>(words[1]);
        const auto last = parseAs<std::int64_t>(words[2]);
        const auto step = parseAs<std::int64_t>(words[3]);
        if (const auto names = first && last && step ? numberedNames(words[0], *first, *last, *step) : std::nullopt) {
            for (const std::string& name : *names) {
                files.push_back(besideHeader(header.path, name));
            }
        }
    } else if (!field->empty()) {
        files.push_back(besideHeader(header.path, *field));
    }
    return !files.empty() || context.fail(header.path, "the header field \"data file\" names no usable file");
}

/** Behind so many line ends in the file, from a place on; nothing if there are not so many. */
std::optional<std::uint64_t> skipLines(const std::string& header, const std::string& path, std::uint64_t place,
                                       std::uint64_t lines, ReadContext& context) {
    InputFile file;
    if (!file.open(path, context, header)) {
        return std::nullopt;
    }
    std::vector<unsigned char> chunk(std::size_t{1} << 16U);
    while (lines > 0) {
        const std::size_t count = file.readAt(place, chunk);
        if (count == 0) {
            context.fail(path, "there are fewer lines than \"line skip\" claims; the file is cut off");
            return std::nullopt;
        }
        std::size_t used = 0;
        while (used < count && lines > 0) {
            lines -= chunk[used++] == '\n' ? 1U : 0U;
        }
        place += used;
    }
    return place;
}

bool locateData(const NrrdHeader& header, RawLayout& layout, ReadContext& context) {
    std::vector<std::string> files;
    if (!listFiles(header, files, context)) {
        return false;
    }
    const auto lineSkip = parseAs<std::uint64_t>(header.field("line skip").value_or("0"));
    const auto byteSkip = parseAs<std::int64_t>(header.field("byte skip").value_or("0"));
    if (!lineSkip || !byteSkip || *byteSkip < -1 || (*byteSkip == -1 && layout.encoding != Encoding::Raw)) {
        return context.fail(header.path,
                            "the header fields \"line skip\" and \"byte skip\" must be 0 or more; only raw "
                            "data may have a byte skip of -1");
    }
    for (std::string& path : files) {
        const std::uint64_t start = header.field("data file") ? 0 : header.dataPlace;
        const auto place = skipLines(header.path, path, start, *lineSkip, context);
        if (!place) {
            return false;
        }
        DataFile file{std::move(path), *place};
        file.atEnd = *byteSkip == -1;
        file.skip = file.atEnd ? 0 : static_cast<std::uint64_t>(*byteSkip);
        layout.files.push_back(std::move(file));
    }
    layout.surplusMeansCut = header.field("data file") && !header.hasEnd && !header.lastLineEnded;
    return true;
}

}  // namespace

bool readNrrd(const std::string& path, Draft& draft, ReadContext& context) {
    NrrdHeader header;
    std::vector<NrrdAxis> axes;
    AxisRoles roles;
    RawLayout layout;
    layout.header = path;
    if (!readNrrdHeader(path, header, context) || !readNrrdAxes(header, axes, context) ||
        !assignRoles(header, axes, roles, context) || !readEncoding(header, layout, context) ||
        !locateData(header, layout, context)) {
        return false;
    }
    for (std::size_t i = 0; i < roles.spatial.size(); ++i) {
        layout.size[i] = axes[roles.spatial[i]].size;
        draft.description.size[i] = static_cast<std::int64_t>(layout.size[i]);
    }
    for (std::size_t i = roles.spatial.size(); i < 3; ++i) {
        draft.description.size[i] = 1;
    }
    layout.interleaved = roles.interleaved;
    layout.frames = roles.frames;
    describeGeometry(header, axes, roles, draft.description, context);
    draft.description.format = "NRRD, " + sampleName(layout.format.type) + ", " + lowerCase(*header.field("encoding"));
    if (layout.frames * layout.interleaved > 1) {
        context.warn(path,
                     "holds " + std::to_string(layout.frames * layout.interleaved) + " frames; the first was taken");
    }
    return readRawSamples(layout, draft.samples, context);
}

}  // namespace lyrvolume
