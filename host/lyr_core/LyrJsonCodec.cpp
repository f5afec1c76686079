#include <lyr_core/LyrJsonCodec_p.h>
#include <lyr_core/LyrMemoryWatch_p.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <new>

namespace {

using Kind = LyrJsonValue::Kind;

/** A text from a file, fit to be shown in a message. */
std::string shown(const std::string& text) {
    constexpr std::size_t longest = 60;
    // A zero byte would end the message.
    std::size_t end = std::min(text.find('\0'), longest);
    if (text.size() <= end) {
        return '"' + text + '"';
    }
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u) {
        --end;
    }
    return '"' + text.substr(0, end) + "…\"";
}

template <class Number>
std::string digitsOf(Number value) {
    std::array<char, 32> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    return std::string(digits.data(), end.ptr);
}

bool decodeNotFinite(const std::string& text, float& value) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    if (text == "nan") {
        value = std::numeric_limits<float>::quiet_NaN();
    } else if (text == "inf") {
        value = infinity;
    } else if (text == "-inf") {
        value = -infinity;
    } else {
        return false;
    }
    return true;
}

/** Reads digits that lie outside the normal range of float. False beyond its largest value. */
bool decodeOutOfRange(const std::string& digits, float& value) {
    double wide = 0.0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), wide);
    if (result.ec == std::errc() && std::fabs(wide) > 1.0) {
        return false;
    }
    // Too small for a double as well: the parser has refused what is too large for one.
    value = result.ec == std::errc() ? static_cast<float>(wide) : std::copysign(0.0f, digits[0] == '-' ? -1.0f : 1.0f);
    return true;
}

}  // namespace

LyrJsonValue lyrEncode(float value) {
    if (std::isnan(value)) {
        return LyrJsonValue(Kind::String, "nan");
    }
    if (std::isinf(value)) {
        return LyrJsonValue(Kind::String, value < 0 ? "-inf" : "inf");
    }
    // Many readers take "-0" for the integer 0 and lose the sign.
    return LyrJsonValue(Kind::Number, value == 0 && std::signbit(value) ? "-0.0" : digitsOf(value));
}

LyrJsonValue lyrEncode(long long value) {
    return LyrJsonValue(Kind::Number, digitsOf(value));
}

std::string lyrNameOf(Lyrenum value) {
    const LyrMemoryWatch watch;
    std::string name = value.getName();
    // A number means something in this process only: never instead of a name that could not be copied.
    if (name.empty() && watch.hasFailed()) {
        throw std::bad_alloc();
    }
    return name;
}

LyrJsonValue lyrEncode(Lyrenum value) {
    std::string name = lyrNameOf(value);
    return name.empty() ? LyrJsonValue(Kind::Number, digitsOf(int(value)))
                        : LyrJsonValue(Kind::String, std::move(name));
}

bool lyrDecode(const LyrJsonValue& json, float& value, std::string& reason) {
    if (json.kind == Kind::String && decodeNotFinite(json.text, value)) {
        return true;
    }
    if (json.kind != Kind::Number) {
        reason = "a number is needed, or \"nan\", \"inf\", \"-inf\"";
        return false;
    }
    const char* end = json.text.data() + json.text.size();
    float read = 0.0f;
    const auto result = std::from_chars(json.text.data(), end, read);
    if (result.ec == std::errc::result_out_of_range ? !decodeOutOfRange(json.text, read) : result.ptr != end) {
        reason = json.text.substr(0, 60) + " is beyond the range of a float, ±3.4028235e+38";
        return false;
    }
    value = read;
    return true;
}

bool lyrDecode(const LyrJsonValue& json, long long& value, std::string& reason) {
    const char* end = json.text.data() + json.text.size();
    long long read = 0;
    if (json.kind == Kind::Number) {
        const auto result = std::from_chars(json.text.data(), end, read);
        if (result.ec == std::errc() && result.ptr == end) {
            value = read;
            return true;
        }
    }
    reason = "a whole number of 64 bits is needed";
    return false;
}

bool lyrDecode(const LyrJsonValue& json, Lyrenum& value, std::string& reason) {
    if (json.kind == Kind::String) {
        const bool isName = json.text.find('\0') == std::string::npos;
        const int number = isName ? LyrIdentifierRegistry::find(json.text.c_str()) : -1;
        if (number == -1) {
            reason = shown(json.text) + " is no identifier known here; the module that knows it may not be loaded";
            return false;
        }
        value = number;
        return true;
    }
    long long number = 0;
    if (!lyrDecode(json, number, reason) || number < std::numeric_limits<int>::min() ||
        number > std::numeric_limits<int>::max()) {
        reason = "an identifier is needed: a registered name, or a whole number of 32 bits";
        return false;
    }
    value = static_cast<int>(number);
    return true;
}
