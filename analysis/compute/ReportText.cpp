#include <analysis/compute/ReportText_p.h>

#include <array>
#include <charconv>
#include <cmath>

namespace lyranalysis {

namespace {

template <typename Number>
std::string shortest(Number number) {
    if (!std::isfinite(number)) {
        return {};
    }
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

/** Length of the UTF-8 sequence that begins at a place; 0 where none does. */
std::size_t sequenceLength(std::string_view text, std::size_t at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(at);
    const std::size_t length = first < 0x80U ? 1 : first < 0xC2U ? 0 : first < 0xE0U ? 2 : first < 0xF0U ? 3 : 4;
    if (length == 0 || first > 0xF4U || at + length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    // Overlong forms, surrogates and what lies beyond the last code point.
    const unsigned second = length > 1 ? byte(at + 1) : 0U;
    const bool wrong = (first == 0xE0U && second < 0xA0U) || (first == 0xEDU && second > 0x9FU) ||
                       (first == 0xF0U && second < 0x90U) || (first == 0xF4U && second > 0x8FU);
    return wrong ? 0 : length;
}

/** Valid UTF-8; bytes that are none, as names of files may hold, become question marks. */
std::string validText(std::string_view text) {
    std::string valid;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = sequenceLength(text, at);
        valid += length > 0 ? text.substr(at, length) : std::string_view("?");
        at += length > 0 ? length : 1;
    }
    return valid;
}

std::string jsonString(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string quoted = "\"";
    for (const char c : validText(text)) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (static_cast<unsigned char>(c) < 0x20U) {
            quoted += "\\u00";
            quoted += kDigits[static_cast<unsigned char>(c) >> 4U];
            quoted += kDigits[static_cast<unsigned char>(c) & 0xFU];
        } else {
            quoted += c;
        }
    }
    return quoted + '"';
}

std::string jsonValue(const ReportValue& value) {
    if (value.isWords) {
        return jsonString(value.text);
    }
    return value.text.empty() ? "null" : value.text;
}

/** Words are quoted where they need it; line breaks in them would end the line for simple readers. */
std::string csvField(const ReportValue& value) {
    if (!value.isWords) {
        return value.text;
    }
    std::string field;
    bool quote = false;
    for (const char c : validText(value.text)) {
        quote = quote || c == ',' || c == '"';
        if (c == '"') {
            field += '"';
        }
        field += static_cast<unsigned char>(c) < 0x20U ? ' ' : c;
    }
    return quote ? '"' + field + '"' : field;
}

}  // namespace

ReportValue::ReportValue(double number) : text(shortest(number)) {}
ReportValue::ReportValue(float number) : text(shortest(number)) {}

namespace {

/** Calls write(index, row) for all rows. After the first ones `out` gets room for about all of the text, so that it
 * does not grow by doubling. */
template <typename Write>
void writeRows(const ReportText& report, std::string& out, const Write& write) {
    constexpr std::size_t kFirst = 256;
    const std::size_t before = out.size();
    ReportText::Row row;
    for (std::size_t i = 0; i < report.rowCount; ++i) {
        if (i == kFirst) {
            out.reserve(before + (out.size() - before) / kFirst * (report.rowCount + report.rowCount / 16));
        }
        row.clear();
        report.makeRow(i, row);
        write(i, row);
    }
}

}  // namespace

std::string ReportText::csv() const {
    std::string out;
    for (const auto& [name, value] : head) {
        out += "# " + name + ',' + csvField(value) + '\n';
    }
    for (std::size_t i = 0; i < columns.size(); ++i) {
        out += (i > 0 ? "," : "") + columns[i];
    }
    out += '\n';
    writeRows(*this, out, [&](std::size_t, const Row& row) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            out += i > 0 ? "," : "";
            out += csvField(row[i]);
        }
        out += '\n';
    });
    return out;
}

std::string ReportText::json() const {
    std::string out = "{\n";
    for (const auto& [name, value] : head) {
        out += "  " + jsonString(name) + ": " + jsonValue(value) + ",\n";
    }
    out += "  " + jsonString(rowsName) + ": [";
    std::vector<std::string> names;
    for (const std::string& column : columns) {
        names.push_back((names.empty() ? " " : ", ") + jsonString(column) + ": ");
    }
    writeRows(*this, out, [&](std::size_t index, const Row& row) {
        out += index > 0 ? ",\n    {" : "\n    {";
        for (std::size_t k = 0; k < row.size(); ++k) {
            out += names[k];
            out += jsonValue(row[k]);
        }
        out += " }";
    });
    out += rowCount == 0 ? "]\n}\n" : "\n  ]\n}\n";
    return out;
}

}  // namespace lyranalysis
