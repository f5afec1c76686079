#pragma once

#include <charconv>
#include <compare>
#include <concepts>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include <lyr_core/LyrCoreExport.h>

/** A toolkit's string class that can tell its UTF-8 bytes. */
template <class Q>
concept LyrUtf8Source = requires(const Q& q) {
    { q.toUtf8().constData() } -> std::convertible_to<const char*>;
    { q.toUtf8().size() } -> std::convertible_to<std::size_t>;
    { q.isNull() } -> std::convertible_to<bool>;
};

/** A toolkit's string class that can be made from UTF-8 bytes. */
template <class Q>
concept LyrUtf8Target = std::default_initializable<Q> && requires(const char* p, std::ptrdiff_t n) {
    { Q::fromUtf8(p, n) } -> std::same_as<Q>;
};

/** Text in UTF-8. The bytes are kept as given, valid UTF-8 or not. A null string (the default) has no text at all and
 * is told apart from an empty one, also by comparisons; it lies before every other string. */
class LYR_CORE_EXPORT LyrString {
public:
    LyrString() = default;
    /** A copy of the zero-terminated text; a null pointer gives the null string. */
    LyrString(const char* utf8) : mText(utf8 ? utf8 : ""), mIsNull(utf8 == nullptr) {}
    LyrString(std::string_view utf8) : mText(utf8), mIsNull(false) {}
    LyrString(std::string utf8) : mText(std::move(utf8)), mIsNull(false) {}
    /** From a string of the toolkit; a null one gives the null string. */
    template <LyrUtf8Source Q>
    LyrString(const Q& text) : mIsNull(text.isNull()) {
        const auto bytes = text.toUtf8();
        mText.assign(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    }

    static LyrString fromUtf8(const char* utf8) { return LyrString(utf8); }
    static LyrString fromUtf8(std::string_view utf8) { return LyrString(utf8); }

    bool isNull() const { return mIsNull; }
    /** True for a string without bytes, the null string included. */
    bool isEmpty() const { return mText.empty(); }
    /** Number of bytes. */
    std::size_t size() const { return mText.size(); }

    /** The zero-terminated text, "" for the null string; valid until this string changes. */
    const char* utf8() const { return mText.c_str(); }
    std::string_view view() const { return mText; }

    /** To a string of the toolkit; the null string gives a null one. */
    template <LyrUtf8Target Q>
    operator Q() const {
        return mIsNull ? Q() : Q::fromUtf8(mText.data(), static_cast<std::ptrdiff_t>(mText.size()));
    }

    /** A copy in which every marker of the lowest number among %1 to %99 is replaced by the text. A marker takes two
     *  digits where there are two: "%10" is number ten. Without a marker the copy is unchanged. */
    LyrString arg(const LyrString& text) const;
    LyrString arg(char character) const { return arg(LyrString(std::string(1, character))); }
    /** The same with a whole number in decimal digits. */
    template <std::integral T>
    LyrString arg(T value) const {
        return arg(fromNumber(value));
    }
    /** The same with a number in the format 'g' (general), 'f' (fixed) or 'e' (scientific) with the given number of
     *  digits, always in the C locale. */
    template <std::floating_point T>
    LyrString arg(T value, char format = 'g', int precision = 6) const {
        return arg(fromNumber(static_cast<double>(value), format, precision));
    }
    /** Replaces the lowest-numbered markers by the first text, the next ones by the second and so on. Markers that
     * occur in the texts are left alone, unlike by calling arg(const LyrString&) again and again. */
    LyrString arg(std::initializer_list<LyrString> texts) const;

    /** A whole number in decimal digits. */
    template <std::integral T>
    static LyrString fromNumber(T value) {
        char digits[24];
        if constexpr (std::same_as<T, bool>) {
            return LyrString(value ? "1" : "0");
        } else {
            return LyrString(std::string_view(digits, std::to_chars(digits, digits + sizeof digits, value).ptr));
        }
    }
    /** A number as arg(T, char, int) writes it: "nan" without a sign, "inf", "-inf" and "-0". */
    static LyrString fromNumber(double value, char format = 'g', int precision = 6);

    LyrString& operator+=(const LyrString& other) {
        mText += other.mText;
        mIsNull = mIsNull && other.mIsNull;
        return *this;
    }
    friend LyrString operator+(LyrString a, const LyrString& b) { return std::move(a += b); }

    friend bool operator==(const LyrString& a, const LyrString& b) {
        return a.mIsNull == b.mIsNull && a.mText == b.mText;
    }
    /** Order by bytes, the null string first. */
    friend std::strong_ordering operator<=>(const LyrString& a, const LyrString& b) {
        if (a.mIsNull != b.mIsNull) {
            return a.mIsNull ? std::strong_ordering::less : std::strong_ordering::greater;
        }
        return a.mText.compare(b.mText) <=> 0;
    }

private:
    std::string mText;
    bool mIsNull = true;
};

template <>
struct std::hash<LyrString> {
    std::size_t operator()(const LyrString& text) const noexcept {
        return std::hash<std::string_view>()(text.view()) + (text.isNull() ? 1 : 0);
    }
};
