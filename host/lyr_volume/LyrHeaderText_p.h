#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <lyr_volume/LyrInputFile_p.h>
#include <lyr_volume/LyrReadContext_p.h>

namespace lyrvolume {

std::string_view trimmed(std::string_view text);
std::string lowerCase(std::string_view text);
/** The words between blanks. */
std::vector<std::string_view> splitWords(std::string_view text);

/** A whole number or a real number that takes up all of the text. */
template <typename T>
std::optional<T> parseAs(std::string_view text) {
    T value{};
    if (text.size() > 1 && text.front() == '+') {
        text.remove_prefix(1);
    }
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) {
        return std::nullopt;
    }
    return value;
}

/** All words of a text as numbers, or nothing if one of them is none. */
template <typename T>
std::optional<std::vector<T>> parseAll(std::string_view text) {
    std::vector<T> values;
    for (const std::string_view word : splitWords(text)) {
        const std::optional<T> value = parseAs<T>(word);
        if (!value) {
            return std::nullopt;
        }
        values.push_back(*value);
    }
    return values;
}

/** The lines of a text header at the start of a file; what lies behind a mebibyte is no header. */
class HeaderLines {
public:
    explicit HeaderLines(const InputFile& file);

    /** The next line without its end, which may be LF or CR LF; false at the end of the text. */
    bool next(std::string_view& line);
    /** Whether the line just given had an end: a file that was cut off mostly has a last line without. */
    bool ended() const { return ended_; }
    /** Place in the file behind the line just given. */
    std::uint64_t place() const { return place_; }

private:
    std::string text_;
    std::size_t place_ = 0;
    bool ended_ = true;
};

/** The path of a data file named in a header: relative ones start in the header's folder. */
std::string besideHeader(const std::string& headerPath, std::string_view name);

/** The names of a numbered row of files: `pattern` holds one "%d" or "%03d". Nothing if it is malformed or if more than
 * a hundred thousand files, or more than 4 MiB of names, are asked for. */
std::optional<std::vector<std::string>> numberedNames(std::string_view pattern, std::int64_t first, std::int64_t last,
                                                      std::int64_t step);

/** How many mm a unit of length has, written as a fraction so that common scalings stay exact. */
struct UnitScale {
    double multiply = 1.0;
    double divide = 1.0;
    double apply(double value) const { return value * multiply / divide; }
};

/** The scale of a unit's name or symbol ("mm", "um", "µm", "inch", …); nothing for one that is no known length. */
std::optional<UnitScale> unitScale(std::string_view name);

/** A spacing as a positive number; 0 and what is not finite become 1, with a warning. */
double usableSpacing(double spacing, std::size_t axis, const std::string& place, ReadContext& context);

}  // namespace lyrvolume
