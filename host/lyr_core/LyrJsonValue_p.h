#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/** One value of a JSON text, as it stood there: numbers keep their digits, members their order. */
struct LyrJsonValue {
    enum class Kind : std::uint8_t { Null, False, True, Number, String, Array, Object };

    /** What a text may hold at most; a longer one is refused before it takes memory without end. */
    static constexpr std::size_t MAXIMUM_TEXT = std::size_t(64) << 20;  // bytes
    static constexpr std::size_t MAXIMUM_VALUES = std::size_t(1) << 22;
    static constexpr std::size_t MAXIMUM_DEPTH = 64;

    Kind kind = Kind::Null;
    std::uint32_t line = 0;           ///< where it stands in the text, from 1; 0 for a value made in memory
    std::string text;                 ///< a string's characters, a number's digits
    std::vector<LyrJsonValue> items;  ///< of an array, or the values of an object's members
    std::vector<std::string> keys;    ///< the names of an object's members

    LyrJsonValue() = default;
    explicit LyrJsonValue(Kind kind_) : kind(kind_) {}
    LyrJsonValue(Kind kind_, std::string text_) : kind(kind_), text(std::move(text_)) {}

    /** The member of an object, null if there is none. */
    const LyrJsonValue* find(std::string_view key) const noexcept;
    /** Adds a member to an object. */
    LyrJsonValue& add(std::string key, LyrJsonValue value);
};

/** Parses a JSON text (UTF-8, a byte order mark is passed over). Refused are, beside what is no JSON: duplicate
 * members, numbers beyond the range of a double, zero bytes, and whatever exceeds the limits above. On failure
 * `message` says line, column where known, and reason; `root` then holds what was read up to there. May throw
 * std::bad_alloc. */
bool lyrParseJson(std::string_view text, LyrJsonValue& root, std::string& message);

/** Writes a value in the one layout of object files: two spaces of indent, a member a line; arrays without objects
 * inside on one line, others an item a line. Fails beyond the limits above. May throw std::bad_alloc. */
bool lyrFormatJson(const LyrJsonValue& root, std::string& text, std::string& message);

/** True if the bytes are UTF-8: no overlong forms, no surrogates. */
bool lyrIsUtf8(std::string_view text) noexcept;
