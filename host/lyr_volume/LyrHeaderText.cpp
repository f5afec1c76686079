#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include <lyr_volume/LyrHeaderText_p.h>

namespace lyrvolume {
namespace {

constexpr std::size_t kLongestHeader = std::size_t{1} << 20U;
// A header of a line must not make names without end. The largest detectors give a few thousand slices.
constexpr std::int64_t kMostFiles = 100'000;
constexpr std::size_t kMostNameBytes = std::size_t{4} << 20U;

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

std::vector<std::string_view> splitWords(std::string_view text) {
    std::vector<std::string_view> words;
    std::size_t at = 0;
    while (at < text.size()) {
        if (isBlank(text[at])) {
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < text.size() && !isBlank(text[end])) {
            ++end;
        }
        words.push_back(text.substr(at, end - at));
        at = end;
    }
    return words;
}

HeaderLines::HeaderLines(const InputFile& file) {
    text_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(file.length(), kLongestHeader)));
    const auto bytes = std::span(reinterpret_cast<unsigned char*>(text_.data()), text_.size());
    text_.resize(file.readAt(0, bytes));
}

bool HeaderLines::next(std::string_view& line) {
    if (place_ >= text_.size()) {
        return false;
    }
    const std::size_t end = text_.find('\n', place_);
    ended_ = end != std::string::npos;
    line = std::string_view(text_).substr(place_, ended_ ? end - place_ : std::string::npos);
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    place_ = ended_ ? end + 1 : text_.size();
    return true;
}

std::string besideHeader(const std::string& headerPath, std::string_view name) {
    const std::filesystem::path path{std::string(name)};
    return path.is_absolute() ? path.string() : (std::filesystem::path(headerPath).parent_path() / path).string();
}

std::optional<std::vector<std::string>> numberedNames(std::string_view pattern, std::int64_t first, std::int64_t last,
                                                      std::int64_t step) {
    const std::size_t percent = pattern.find('%');
    std::size_t end = percent == std::string_view::npos ? percent : percent + 1;
    std::size_t width = 0;
    while (end < pattern.size() && pattern[end] >= '0' && pattern[end] <= '9' && width < 100) {
        width = width * 10 + static_cast<std::size_t>(pattern[end] - '0');
        ++end;
    }
    const bool wellFormed =
        end < pattern.size() && pattern[end] == 'd' && width < 100 && pattern.find('%', end) == std::string_view::npos;
    const auto sensible = [](std::int64_t n) { return n >= -1'000'000'000 && n <= 1'000'000'000; };
    if (!wellFormed || !sensible(first) || !sensible(last) || !sensible(step) || step == 0 ||
        (last - first) / step < 0 || (last - first) / step >= kMostFiles ||
        static_cast<std::size_t>((last - first) / step) >= kMostNameBytes / (pattern.size() + width)) {
        return std::nullopt;
    }
    const bool zeros = pattern[percent + 1] == '0';
    std::vector<std::string> names;
    for (std::int64_t i = 0; i <= (last - first) / step; ++i) {
        std::string number = std::to_string(first + i * step);
        if (number.size() < width) {
            number.insert(0, width - number.size(), zeros ? '0' : ' ');
        }
        names.push_back(std::string(pattern.substr(0, percent)) + number + std::string(pattern.substr(end + 1)));
    }
    return names;
}

std::optional<UnitScale> unitScale(std::string_view name) {
    static const std::vector<std::pair<std::string_view, UnitScale>> units{
        {"mm", {1.0, 1.0}},           {"millimeter", {1.0, 1.0}},  {"millimeters", {1.0, 1.0}},
        {"millimetre", {1.0, 1.0}},   {"um", {1.0, 1e3}},          {"\u00B5m", {1.0, 1e3}},
        {"\u03BCm", {1.0, 1e3}},      {"\\u00b5m", {1.0, 1e3}},    {"micron", {1.0, 1e3}},
        {"microns", {1.0, 1e3}},      {"micrometer", {1.0, 1e3}},  {"micrometers", {1.0, 1e3}},
        {"micrometre", {1.0, 1e3}},   {"nm", {1.0, 1e6}},          {"nanometer", {1.0, 1e6}},
        {"nanometers", {1.0, 1e6}},   {"cm", {10.0, 1.0}},         {"centimeter", {10.0, 1.0}},
        {"centimeters", {10.0, 1.0}}, {"centimetre", {10.0, 1.0}}, {"m", {1e3, 1.0}},
        {"meter", {1e3, 1.0}},        {"meters", {1e3, 1.0}},      {"metre", {1e3, 1.0}},
        {"in", {25.4, 1.0}},          {"inch", {25.4, 1.0}},       {"inches", {25.4, 1.0}},
    };
    const std::string lower = lowerCase(trimmed(name));
    const auto found = std::find_if(units.begin(), units.end(), [&](const auto& unit) { return unit.first == lower; });
    return found == units.end() ? std::nullopt : std::optional(found->second);
}

double usableSpacing(double spacing, std::size_t axis, const std::string& place, ReadContext& context) {
    if (std::isfinite(spacing) && spacing != 0.0) {
        return std::abs(spacing);
    }
    context.warn(place, std::string("the spacing along ") + "xyz"[axis] + " is no distance; 1 was taken");
    return 1.0;
}

}  // namespace lyrvolume
