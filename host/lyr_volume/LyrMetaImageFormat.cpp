#include <algorithm>
#include <cmath>
#include <map>
#include <optional>

#include <lyr_volume/LyrFormats_p.h>
#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrRawSamples_p.h>

namespace lyrvolume {
namespace {

/** The tags of the header, and where the data begin. */
struct MetaHeader {
    std::string path;
    std::map<std::string, std::string> tags;
    std::vector<std::string> listedFiles;  ///< behind "ElementDataFile = LIST"
    std::uint64_t dataPlace = 0;

    std::string_view tag(const std::string& name) const {
        const auto found = tags.find(name);
        return found == tags.end() ? std::string_view() : std::string_view(found->second);
    }

    bool isTrue(const std::string& name) const {
        const std::string_view value = tag(name);
        return !value.empty() && (value[0] == 'T' || value[0] == 't' || value[0] == '1');
    }
};

bool isList(std::string_view dataFile) {
    return dataFile == "LIST" || dataFile.substr(0, 5) == "LIST ";
}

/** ElementDataFile is the last tag; behind it come the data or the list of files. */
bool readHeader(const std::string& path, MetaHeader& header, ReadContext& context) {
    header.path = path;
    InputFile file;
    if (!file.open(path, context)) {
        return false;
    }
    HeaderLines lines(file);
    std::string_view line;
    while (lines.next(line)) {
        if (trimmed(line).empty()) {
            continue;
        }
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            return context.fail(path, "the header line \"" + std::string(line.substr(0, 60)) +
                                          "\" is no \"tag = value\"; the file is damaged or of another format");
        }
        const std::string name(trimmed(line.substr(0, equals)));
        if (!header.tags.emplace(name, trimmed(line.substr(equals + 1))).second) {
            return context.fail(path, "the header tag \"" + name + "\" is given twice; remove one");
        }
        if (name == "ElementDataFile") {
            header.dataPlace = lines.place();
            while (isList(header.tag(name)) && lines.next(line)) {
                if (!trimmed(line).empty()) {
                    header.listedFiles.emplace_back(trimmed(line));
                }
            }
            return true;
        }
    }
    return context.fail(path, "the header does not come to its last tag, \"ElementDataFile\"; the file is cut off");
}

std::optional<SampleType> sampleType(std::string_view name) {
    static const std::map<std::string, SampleType, std::less<>> types{
        {"MET_UCHAR", SampleType::UInt8},     {"MET_CHAR", SampleType::Int8},
        {"MET_ASCII_CHAR", SampleType::Int8}, {"MET_USHORT", SampleType::UInt16},
        {"MET_SHORT", SampleType::Int16},     {"MET_UINT", SampleType::UInt32},
        {"MET_INT", SampleType::Int32},       {"MET_ULONG", SampleType::UInt32},
        {"MET_LONG", SampleType::Int32},      {"MET_ULONG_LONG", SampleType::UInt64},
        {"MET_LONG_LONG", SampleType::Int64}, {"MET_FLOAT", SampleType::Float32},
        {"MET_DOUBLE", SampleType::Float64}};
    const auto found = types.find(name);
    return found == types.end() ? std::nullopt : std::optional(found->second);
}

bool readSize(const MetaHeader& header, RawLayout& layout, Draft& draft, ReadContext& context) {
    const auto dimensions = parseAs<std::uint64_t>(header.tag("NDims"));
    const auto sizes = parseAll<std::int64_t>(header.tag("DimSize"));
    if (!dimensions || *dimensions < 1 || *dimensions > 10) {
        return context.fail(header.path, "the header tag \"NDims\" is missing or not 1 to 10");
    }
    if (!sizes || sizes->size() != *dimensions) {
        return context.fail(header.path,
                            "the header tag \"DimSize\" must hold " + std::to_string(*dimensions) + " whole numbers");
    }
    draft.description.size = {1, 1, 1};
    for (std::size_t i = 0; i < sizes->size(); ++i) {
        const std::int64_t size = (*sizes)[i];
        if (size < 1) {
            return context.fail(header.path, "the header claims a size of " + std::to_string(size) +
                                                 " along an axis; sizes start at 1");
        }
        if (i < 3) {
            layout.size[i] = static_cast<std::uint64_t>(size);
            draft.description.size[i] = size;
        } else if (__builtin_mul_overflow(layout.frames, static_cast<std::uint64_t>(size), &layout.frames)) {
            return context.fail(header.path, "the header claims an impossible number of frames");
        }
    }
    if (layout.frames > 1) {
        context.warn(header.path, "holds " + std::to_string(layout.frames) + " frames; the first was taken");
    }
    return true;
}

double numberOr(const MetaHeader& header, const char* tag, double fallback) {
    const auto value = parseAs<double>(header.tag(tag));
    return value && std::isfinite(*value) ? *value : fallback;
}

bool readFormat(const MetaHeader& header, RawLayout& layout, ReadContext& context) {
    const auto type = sampleType(header.tag("ElementType"));
    if (!type) {
        return context.fail(header.path, "the element type \"" + std::string(header.tag("ElementType")) +
                                             "\" is missing, unknown or no single number; store it as another type");
    }
    const std::string_view channels = header.tag("ElementNumberOfChannels");
    if (!channels.empty() && parseAs<std::uint64_t>(channels) != 1U) {
        return context.fail(header.path, "it holds " + std::string(channels) +
                                             " values for each sample (colour or vectors); only volumes with one value "
                                             "for each sample can be read, store one of them by itself");
    }
    layout.format.type = *type;
    layout.format.bigEndian = header.isTrue("BinaryDataByteOrderMSB") || header.isTrue("ElementByteOrderMSB");
    layout.format.slope = numberOr(header, "ElementToIntensityFunctionSlope", 1.0);
    layout.format.intercept = numberOr(header, "ElementToIntensityFunctionOffset", 0.0);
    const bool text = !header.tag("BinaryData").empty() && !header.isTrue("BinaryData");
    layout.encoding = header.isTrue("CompressedData") ? Encoding::Deflate : text ? Encoding::Text : Encoding::Raw;
    return true;
}

/** The data's files by name; none when the tag is malformed. */
std::vector<std::string> dataFiles(const MetaHeader& header) {
    const std::string_view value = header.tag("ElementDataFile");
    std::vector<std::string> names;
    const auto words = splitWords(value);
    if (isList(value)) {
        names = header.listedFiles;
    } else if (words.size() >= 3 && words[0].find('%') != std::string_view::npos) {
        const auto first = parseAs<std::int64_t>(words[1]);
        const auto last = parseAs<std::int64_t>(words[2]);
        const auto step = words.size() > 3 ? parseAs<std::int64_t>(words[3]) : std::optional<std::int64_t>(1);
        if (first && last && step) {
            names = numberedNames(words[0], *first, *last, *step).value_or(names);
        }
    } else if (!value.empty()) {
        names.emplace_back(value);
    }
    for (std::string& name : names) {
        name = besideHeader(header.path, name);
    }
    return names;
}

bool locateData(const MetaHeader& header, RawLayout& layout, ReadContext& context) {
    const auto headerSize = parseAs<std::int64_t>(header.tag("HeaderSize")).value_or(0);
    if (headerSize < -1) {
        return context.fail(header.path, "the header tag \"HeaderSize\" must be -1 or more");
    }
    const std::string_view dataFile = header.tag("ElementDataFile");
    if (dataFile == "LOCAL" || dataFile == "local" || dataFile == "Local") {
        layout.files.push_back({header.path, header.dataPlace});
    } else {
        for (std::string& path : dataFiles(header)) {
            DataFile file{std::move(path)};
            file.atEnd = headerSize == -1 && layout.encoding == Encoding::Raw;
            file.place = headerSize > 0 ? static_cast<std::uint64_t>(headerSize) : 0;
            layout.files.push_back(std::move(file));
        }
    }
    if (layout.files.empty()) {
        return context.fail(header.path, "the header tag \"ElementDataFile\" names no usable file");
    }
    const auto compressed = parseAs<std::uint64_t>(header.tag("CompressedDataSize"));
    if (layout.encoding == Encoding::Deflate && compressed && *compressed > 0 && layout.files.size() == 1) {
        layout.files[0].storedLength = *compressed;
    }
    return true;
}

/** Values of the first of some tags that is there, all of them numbers. */
std::vector<double> numbersOf(const MetaHeader& header, std::initializer_list<const char*> tags) {
    for (const char* tag : tags) {
        if (!header.tag(tag).empty()) {
            return parseAll<double>(header.tag(tag)).value_or(std::vector<double>());
        }
    }
    return {};
}

void describeGeometry(const MetaHeader& header, LyrVolume::Description& description, ReadContext& context) {
    const auto spacing = numbersOf(header, {"ElementSpacing", "ElementSize"});
    const auto origin = numbersOf(header, {"Offset", "Origin", "Position"});
    const std::string unit(header.tag("DistanceUnits"));
    const bool stated = !unit.empty() && unit != "?";
    const std::optional<UnitScale> scale = stated ? unitScale(unit) : std::optional(UnitScale{});
    if (!scale) {
        context.warn(header.path, "the unit \"" + unit + "\" is no known length; distances are left as they are");
    }
    const UnitScale used = scale.value_or(UnitScale{});
    for (std::size_t i = 0; i < 3; ++i) {
        if (i < spacing.size()) {
            description.spacing[i] = usableSpacing(used.apply(spacing[i]), i, header.path, context);
        }
        if (i < origin.size() && std::isfinite(origin[i])) {
            description.origin[i] = used.apply(origin[i]);
        }
    }
    description.unit = spacing.empty() ? std::string() : scale ? std::string("mm") : unit;
}

}  // namespace

bool readMetaImage(const std::string& path, Draft& draft, ReadContext& context) {
    MetaHeader header;
    RawLayout layout;
    layout.header = path;
    if (!readHeader(path, header, context) || !readSize(header, layout, draft, context) ||
        !readFormat(header, layout, context) || !locateData(header, layout, context)) {
        return false;
    }
    describeGeometry(header, draft.description, context);
    const char* encoding = layout.encoding == Encoding::Raw    ? "raw"
                           : layout.encoding == Encoding::Text ? "text"
                                                               : "zlib";
    draft.description.format = "MetaImage, " + sampleName(layout.format.type) + ", " + encoding;
    return readRawSamples(layout, draft.samples, context);
}

}  // namespace lyrvolume
