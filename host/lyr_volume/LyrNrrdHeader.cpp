#include <algorithm>

#include <lyr_volume/LyrHeaderText_p.h>
#include <lyr_volume/LyrInputFile_p.h>
#include <lyr_volume/LyrNrrdHeader_p.h>

namespace lyrvolume {
namespace {

constexpr std::size_t kMostAxes = 16;  // as many as the format allows

/** Field names have more than one spelling. */
std::string mainName(const std::string& name) {
    if (name == "datafile") {
        return "data file";
    }
    if (name == "lineskip" || name == "byteskip") {
        return name.substr(0, 4) + " skip";
    }
    return name == "centers" ? "centerings" : name;
}

bool takeLine(std::string_view line, NrrdHeader& header, ReadContext& context) {
    const std::size_t colon = line.find(": ");
    if (line.find(":=") < colon) {
        return true;  // a key with a value: free text of other programs
    }
    const bool bare = colon == std::string_view::npos && !line.empty() && line.back() == ':';
    if (colon == std::string_view::npos && !bare) {
        return context.fail(header.path, "the header line \"" + std::string(line.substr(0, 60)) +
                                             "\" is no \"field: value\"; the file is damaged");
    }
    const std::string name = mainName(lowerCase(trimmed(line.substr(0, bare ? line.size() - 1 : colon))));
    const std::string value(bare ? std::string_view() : trimmed(line.substr(colon + 2)));
    if (!header.fields.emplace(name, value).second) {
        return context.fail(header.path, "the header field \"" + name + "\" is given twice; remove one");
    }
    return true;
}

/** One entry for each axis, or a message. */
bool checkCount(const NrrdHeader& header, const char* name, std::size_t count, std::size_t axes, ReadContext& context) {
    return count == axes ||
           context.fail(header.path, std::string("the header field \"") + name + "\" has " + std::to_string(count) +
                                         " entries for " + std::to_string(axes) + " axes; the header is wrong");
}

bool readSizes(const NrrdHeader& header, std::vector<NrrdAxis>& axes, ReadContext& context) {
    const auto dimension = parseAs<std::uint64_t>(header.field("dimension").value_or(""));
    if (!dimension || *dimension < 1 || *dimension > kMostAxes) {
        return context.fail(header.path, "the header field \"dimension\" must be 1 to 16");
    }
    const auto sizes = parseAll<std::int64_t>(header.field("sizes").value_or(""));
    if (!sizes) {
        return context.fail(header.path, "the header field \"sizes\" holds something that is no whole number");
    }
    if (!checkCount(header, "sizes", sizes->size(), *dimension, context)) {
        return false;
    }
    for (const std::int64_t size : *sizes) {
        if (size < 1) {
            return context.fail(header.path, "the header claims a size of " + std::to_string(size) +
                                                 " along an axis; sizes start at 1");
        }
        axes.emplace_back().size = static_cast<std::uint64_t>(size);
    }
    return true;
}

bool readDirections(const NrrdHeader& header, std::vector<NrrdAxis>& axes, ReadContext& context) {
    const auto text = header.field("space directions");
    if (!text) {
        return true;
    }
    std::vector<std::optional<std::vector<double>>> vectors;
    if (!parseNrrdVectors(*text, vectors)) {
        return context.fail(header.path, "the header field \"space directions\" holds something that is no vector");
    }
    if (!checkCount(header, "space directions", vectors.size(), axes.size(), context)) {
        return false;
    }
    for (std::size_t i = 0; i < axes.size(); ++i) {
        axes[i].directionIsNone = !vectors[i];
        axes[i].direction = std::move(vectors[i]);
    }
    return true;
}

bool readSpacings(const NrrdHeader& header, std::vector<NrrdAxis>& axes, ReadContext& context) {
    const auto text = header.field("spacings");
    if (!text) {
        return true;
    }
    const auto spacings = parseAll<double>(*text);
    if (!spacings) {
        return context.fail(header.path, "the header field \"spacings\" holds something that is no number");
    }
    if (!checkCount(header, "spacings", spacings->size(), axes.size(), context)) {
        return false;
    }
    for (std::size_t i = 0; i < axes.size(); ++i) {
        axes[i].spacing = (*spacings)[i];
    }
    return true;
}

bool readKindsAndUnits(const NrrdHeader& header, std::vector<NrrdAxis>& axes, ReadContext& context) {
    if (const auto kinds = header.field("kinds")) {
        const auto words = splitWords(*kinds);
        if (!checkCount(header, "kinds", words.size(), axes.size(), context)) {
            return false;
        }
        for (std::size_t i = 0; i < axes.size(); ++i) {
            const std::string kind = lowerCase(words[i]);
            axes[i].kind = kind == "???" || kind == "none" ? std::string() : kind;
        }
    }
    if (const auto units = header.field("units")) {
        const auto texts = parseNrrdQuoted(*units);
        if (!checkCount(header, "units", texts.size(), axes.size(), context)) {
            return false;
        }
        for (std::size_t i = 0; i < axes.size(); ++i) {
            axes[i].unit = texts[i];
        }
    }
    return true;
}

}  // namespace

std::optional<std::string_view> NrrdHeader::field(const std::string& name) const {
    const auto found = fields.find(name);
    return found == fields.end() ? std::nullopt : std::optional<std::string_view>(found->second);
}

bool readNrrdHeader(const std::string& path, NrrdHeader& header, ReadContext& context) {
    header.path = path;
    InputFile file;
    if (!file.open(path, context)) {
        return false;
    }
    HeaderLines lines(file);
    std::string_view line;
    if (!lines.next(line) || line.substr(0, 7) != "NRRD000") {
        return context.fail(path, "the first line is no NRRD signature; the file is cut off or of another format");
    }
    bool listing = false;
    while (lines.next(line)) {
        header.lastLineEnded = lines.ended();
        if (listing) {
            if (!trimmed(line).empty()) {
                header.listedFiles.emplace_back(trimmed(line));
            }
            continue;
        }
        if (line.empty() && lines.ended()) {
            header.hasEnd = true;
            break;
        }
        if (line.empty() || line.front() == '#') {
            continue;
        }
        if (!takeLine(line, header, context)) {
            return false;
        }
        const auto dataFile = header.field("data file");
        listing = dataFile && (*dataFile == "LIST" || dataFile->substr(0, 5) == "LIST ");
    }
    header.dataPlace = lines.place();
    for (const char* name : {"dimension", "type", "encoding", "sizes"}) {
        if (!header.field(name)) {
            return context.fail(path, std::string("the header field \"") + name +
                                          "\" is missing; the file is cut off or no whole NRRD");
        }
    }
    return true;
}

bool readNrrdAxes(const NrrdHeader& header, std::vector<NrrdAxis>& axes, ReadContext& context) {
    return readSizes(header, axes, context) && readDirections(header, axes, context) &&
           readSpacings(header, axes, context) && readKindsAndUnits(header, axes, context);
}

bool parseNrrdVectors(std::string_view text, std::vector<std::optional<std::vector<double>>>& vectors) {
    text = trimmed(text);
    while (!text.empty()) {
        if (text.substr(0, 4) == "none") {
            vectors.emplace_back(std::nullopt);
            text = trimmed(text.substr(4));
            continue;
        }
        const std::size_t close = text.find(')');
        if (text.front() != '(' || close == std::string_view::npos) {
            return false;
        }
        std::string inside(text.substr(1, close - 1));
        std::replace(inside.begin(), inside.end(), ',', ' ');
        std::optional<std::vector<double>> vector = parseAll<double>(inside);
        if (!vector || vector->empty()) {
            return false;
        }
        vectors.push_back(std::move(vector));
        text = trimmed(text.substr(close + 1));
    }
    return true;
}

std::vector<std::string> parseNrrdQuoted(std::string_view text) {
    std::vector<std::string> texts;
    for (std::size_t open = text.find('"'); open != std::string_view::npos; open = text.find('"', open)) {
        const std::size_t close = text.find('"', open + 1);
        if (close == std::string_view::npos) {
            break;
        }
        texts.emplace_back(trimmed(text.substr(open + 1, close - open - 1)));
        open = close + 1;
    }
    return texts;
}

}  // namespace lyrvolume
