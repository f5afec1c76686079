#include <lyr_core/LyrJsonValue_p.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <clocale>
#include <iterator>
#include <new>
#include <nlohmann/json.hpp>

namespace {

using Kind = LyrJsonValue::Kind;

/** Walks the text and knows how far the parser has read: it reads one character ahead of a number's end. */
struct Progress {
    std::uint32_t line = 1;
    char last = 0;
};

struct CountingIterator {
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    const char* at = nullptr;
    Progress* progress = nullptr;

    reference operator*() const { return *at; }
    CountingIterator& operator++() {
        progress->last = *at++;
        progress->line += progress->last == '\n' ? 1 : 0;
        return *this;
    }
    CountingIterator operator++(int) {
        CountingIterator before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const CountingIterator& a, const CountingIterator& b) { return a.at == b.at; }
};

/** Puts this thread into the C locale while it lives: the parser passes numbers through strtod() and hands them on with
 * the decimal point of the locale. */
class NumbersInC {
public:
    NumbersInC() : mC(::newlocale(LC_ALL_MASK, "C", nullptr)), mBefore(mC ? ::uselocale(mC) : nullptr) {
        if (!mC) {
            throw std::bad_alloc();
        }
    }
    ~NumbersInC() {
        ::uselocale(mBefore);
        ::freelocale(mC);
    }
    NumbersInC(const NumbersInC&) = delete;
    NumbersInC& operator=(const NumbersInC&) = delete;

private:
    locale_t mC;
    locale_t mBefore;
};

template <class Number>
std::string digitsOf(Number value) {
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    return std::string(digits.data(), end.ptr);
}

/** The reason out of the parser's own message, without what it had read last: that may be as long as the text. */
std::string reasonOf(std::string_view what) {
    const auto position = what.find("at line ");
    if (position == std::string_view::npos) {
        return "a number is beyond the range of a double";
    }
    what.remove_prefix(position + 3);
    std::string reason(what.substr(0, what.find("; last read")));
    const auto expected = what.rfind("; expected ");
    if (expected != std::string_view::npos && expected > reason.size()) {
        reason += what.substr(expected);
    }
    return reason.size() > 300 ? reason.substr(0, 300) : reason;
}

/** Builds the tree while the text is being parsed. */
class TreeBuilder {
public:
    TreeBuilder(LyrJsonValue& root, const Progress& progress, std::string& message)
        : mRoot(root), mProgress(progress), mMessage(message) {}

    bool null() { return put(LyrJsonValue(Kind::Null)); }
    bool boolean(bool value) { return put(LyrJsonValue(value ? Kind::True : Kind::False)); }
    // "-0" is the only lexeme that arrives here as a signed zero.
    bool number_integer(std::int64_t value) { return putNumber(value == 0 ? "-0" : digitsOf(value)); }
    bool number_unsigned(std::uint64_t value) { return putNumber(digitsOf(value)); }
    bool number_float(double, const std::string& digits) { return putNumber(digits); }
    bool string(std::string& value) { return put(LyrJsonValue(Kind::String, std::move(value))); }
    bool binary(nlohmann::json::binary_t&) { return false; }

    bool start_object(std::size_t) { return open(Kind::Object); }
    bool start_array(std::size_t) { return open(Kind::Array); }
    bool end_array() {
        mOpen.pop_back();
        return true;
    }
    bool end_object() {
        const LyrJsonValue& object = *mOpen.back();
        mOpen.pop_back();
        std::vector<std::string_view> names(object.keys.begin(), object.keys.end());
        std::sort(names.begin(), names.end());
        const auto twin = std::adjacent_find(names.begin(), names.end());
        if (twin == names.end()) {
            return true;
        }
        return fail(object.line, "the member \"" + std::string(twin->substr(0, 80)) + "\" is there twice");
    }
    bool key(std::string& name) {
        mOpen.back()->keys.push_back(std::move(name));
        return true;
    }

    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception& error) {
        const std::string reason = reasonOf(error.what());
        if (reason.starts_with("line ")) {
            mMessage = "not valid JSON, " + reason;
            return false;
        }
        return fail(lineOfNumber(), reason);
    }

private:
    bool fail(std::uint32_t line, const std::string& reason) {
        mMessage = "line " + digitsOf(line) + ": " + reason;
        return false;
    }

    std::uint32_t lineOfNumber() const { return mProgress.line - (mProgress.last == '\n' ? 1 : 0); }

    bool putNumber(std::string digits) {
        LyrJsonValue value(Kind::Number, std::move(digits));
        value.line = lineOfNumber();
        return put(std::move(value));
    }

    bool put(LyrJsonValue value) {
        if (++mCount > LyrJsonValue::MAXIMUM_VALUES) {
            return fail(mProgress.line, "more values than an object file may hold");
        }
        value.line = value.line ? value.line : mProgress.line;
        (mOpen.empty() ? mRoot : mOpen.back()->items.emplace_back()) = std::move(value);
        return true;
    }

    bool open(Kind kind) {
        if (mOpen.size() >= LyrJsonValue::MAXIMUM_DEPTH) {
            return fail(mProgress.line, "nested more than " + digitsOf(LyrJsonValue::MAXIMUM_DEPTH) + " levels deep");
        }
        LyrJsonValue* place = mOpen.empty() ? &mRoot : nullptr;
        if (!put(LyrJsonValue(kind))) {
            return false;
        }
        // A place stays where it is while it is open: its siblings come after it is closed.
        mOpen.push_back(place ? place : &mOpen.back()->items.back());
        return true;
    }

    LyrJsonValue& mRoot;
    const Progress& mProgress;
    std::string& mMessage;
    std::vector<LyrJsonValue*> mOpen;
    std::size_t mCount = 0;
};

/** Writes the tree. */
class Formatter {
public:
    explicit Formatter(std::string& text) : mText(text) {}

    bool isTooLong() const noexcept { return mTooLong; }

    bool write(const LyrJsonValue& value, std::size_t depth) {
        if (++mCount > LyrJsonValue::MAXIMUM_VALUES || mText.size() > LyrJsonValue::MAXIMUM_TEXT) {
            mTooLong = true;
            return false;
        }
        switch (value.kind) {
            case Kind::Null:
                mText += "null";
                return true;
            case Kind::False:
                mText += "false";
                return true;
            case Kind::True:
                mText += "true";
                return true;
            case Kind::Number:
                mText += value.text;
                return true;
            case Kind::String:
                writeString(value.text);
                return true;
            case Kind::Array:
            case Kind::Object:
                return writeItems(value, depth);
        }
        return false;
    }

private:
    static bool holdsObject(const LyrJsonValue& array) {
        return std::any_of(array.items.begin(), array.items.end(), [](const LyrJsonValue& item) {
            return item.kind == Kind::Object || (item.kind == Kind::Array && holdsObject(item));
        });
    }

    bool writeItems(const LyrJsonValue& value, std::size_t depth) {
        if (depth >= LyrJsonValue::MAXIMUM_DEPTH) {
            return false;
        }
        const bool isObject = value.kind == Kind::Object;
        const bool block = isObject ? !value.items.empty() : holdsObject(value);
        mText += isObject ? '{' : '[';
        for (std::size_t i = 0; i < value.items.size(); ++i) {
            if (i > 0) {
                mText += block ? "," : ", ";
            }
            if (block) {
                newLine(depth + 1);
            }
            if (isObject) {
                writeString(value.keys[i]);
                mText += ": ";
            }
            if (!write(value.items[i], depth + 1)) {
                return false;
            }
        }
        if (block) {
            newLine(depth);
        }
        mText += isObject ? '}' : ']';
        return true;
    }

    void newLine(std::size_t depth) {
        mText += '\n';
        mText.append(2 * depth, ' ');
    }

    void writeString(std::string_view string) {
        mText += '"';
        for (const char c : string) {
            writeCharacter(c);
        }
        mText += '"';
    }

    void writeCharacter(char c) {
        static constexpr std::string_view named = "\"\\\b\f\n\r\t";
        static constexpr std::string_view letters = "\"\\bfnrt";
        static constexpr std::string_view hex = "0123456789abcdef";
        if (const auto at = named.find(c); at != std::string_view::npos) {
            mText += '\\';
            mText += letters[at];
        } else if (static_cast<unsigned char>(c) < 0x20) {
            mText += "\\u00";
            mText += hex[static_cast<unsigned char>(c) >> 4];
            mText += hex[static_cast<unsigned char>(c) & 15];
        } else {
            mText += c;
        }
    }

    std::string& mText;
    std::size_t mCount = 0;
    bool mTooLong = false;
};

}  // namespace

const LyrJsonValue* LyrJsonValue::find(std::string_view key) const noexcept {
    const auto found = std::find(keys.begin(), keys.end(), key);
    const auto index = static_cast<std::size_t>(found - keys.begin());
    return index < items.size() ? &items[index] : nullptr;
}

LyrJsonValue& LyrJsonValue::add(std::string key, LyrJsonValue value) {
    keys.push_back(std::move(key));
    return items.emplace_back(std::move(value));
}

bool lyrParseJson(std::string_view text, LyrJsonValue& root, std::string& message) {
    root = LyrJsonValue();
    if (text.size() > LyrJsonValue::MAXIMUM_TEXT) {
        message = "larger than the " + digitsOf(LyrJsonValue::MAXIMUM_TEXT >> 20) + " MiB that an object file may have";
        return false;
    }
    // The parser would take a zero byte for the end of the text and leave what follows unread.
    if (const auto zero = text.find('\0'); zero != std::string_view::npos) {
        message = "line " +
                  digitsOf(1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(zero), '\n')) +
                  ": not valid JSON, there is a zero byte";
        return false;
    }
    const NumbersInC locale;
    Progress progress;
    TreeBuilder builder(root, progress, message);
    const CountingIterator begin{text.data(), &progress};
    const CountingIterator end{text.data() + text.size(), &progress};
    try {
        return nlohmann::json::sax_parse(begin, end, &builder);
    } catch (const nlohmann::json::exception& error) {
        message = reasonOf(error.what());
        return false;
    }
}

bool lyrFormatJson(const LyrJsonValue& root, std::string& text, std::string& message) {
    Formatter formatter(text);
    if (formatter.write(root, 0) && text.size() < LyrJsonValue::MAXIMUM_TEXT) {
        text += '\n';
        return true;
    }
    message = formatter.isTooLong() ? "the object holds more than an object file may"
                                    : "the objects are nested deeper than an object file may be";
    return false;
}

bool lyrIsUtf8(std::string_view text) noexcept {
    // Length and least code point of a sequence by the number of leading ones in its first byte.
    static constexpr char32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
    for (std::size_t i = 0; i < text.size();) {
        const auto first = static_cast<unsigned char>(text[i]);
        const int ones = std::countl_one(first);
        if (ones == 0) {
            ++i;
            continue;
        }
        const auto length = static_cast<std::size_t>(ones);
        if (ones == 1 || ones > 4 || text.size() - i < length) {
            return false;
        }
        char32_t code = first & (0x7Fu >> ones);
        for (std::size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0u) != 0x80u) {
                return false;
            }
            code = (code << 6) | (next & 0x3Fu);
        }
        if (code < least[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
            return false;
        }
        i += length;
    }
    return true;
}
