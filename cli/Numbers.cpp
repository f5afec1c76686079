#include "Numbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace lys::cli {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/** Blanks around it and a plus sign are how people write numbers; std::from_chars takes neither. */
std::string_view withoutDecoration(std::string_view text) {
    text = trimmed(text);
    const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-' && text[1] != '+';
    return plus ? text.substr(1) : text;
}

/** True for a decimal number whose magnitude is below 1. The text is known to be a number. */
bool isBelowOne(std::string_view text) {
    const std::size_t mark = text.find_first_of("eE");
    const std::string_view digits = text.substr(0, mark);
    std::int64_t exponent = 0;
    if (mark != std::string_view::npos) {
        std::string_view written = text.substr(mark + 1);
        written.remove_prefix(written.starts_with('+') ? 1 : 0);
        if (std::from_chars(written.data(), written.data() + written.size(), exponent).ec != std::errc()) {
            return written.starts_with('-');
        }
    }
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const std::size_t first = digits.find_first_of("123456789");
    if (first == std::string_view::npos) {
        return true;
    }
    // Decimal places from the first digit that counts to the point: negative for 0.001.
    const std::int64_t places = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first) - (first < point);
    return places + exponent < 0;
}

template <class T>
std::string shortest(T value) {
    if (std::isnan(value)) {
        return "nan";
    }
    char buffer[64];
    const std::to_chars_result result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

}  // namespace

std::optional<float> parseFloat(std::string_view text) {
    const std::string_view number = withoutDecoration(text);
    const char* end = number.data() + number.size();
    float value = 0.0F;
    const std::from_chars_result result = std::from_chars(number.data(), end, value);
    if (result.ptr != end || result.ec == std::errc::invalid_argument) {
        return std::nullopt;
    }
    if (result.ec == std::errc::result_out_of_range) {
        const bool negative = number.starts_with('-');
        return isBelowOne(number) ? std::optional(negative ? -0.0F : 0.0F) : std::nullopt;
    }
    return value;
}

std::optional<double> parseDouble(std::string_view text) {
    const std::string_view number = withoutDecoration(text);
    const char* end = number.data() + number.size();
    double value = 0.0;
    const std::from_chars_result result = std::from_chars(number.data(), end, value);
    return result.ptr == end && result.ec == std::errc() ? std::optional(value) : std::nullopt;
}

std::optional<std::int64_t> parseCount(std::string_view text) {
    const char* end = text.data() + text.size();
    std::int64_t value = 0;
    const std::from_chars_result result = std::from_chars(text.data(), end, value);
    const bool good = result.ptr == end && result.ec == std::errc() && !text.starts_with('-');
    return good ? std::optional(value) : std::nullopt;
}

std::string formatNumber(float value) {
    return shortest(value);
}
std::string formatNumber(double value) {
    return shortest(value);
}

std::vector<std::string_view> splitText(std::string_view text, char separator) {
    std::vector<std::string_view> items;
    std::size_t begin = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos; end = text.find(separator, begin)) {
        items.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    items.push_back(text.substr(begin));
    return items;
}

}  // namespace lys::cli
