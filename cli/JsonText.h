#pragma once

#include "Numbers.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace lys::cli {

/** Builds JSON text from top to bottom: two spaces of indent, lists of numbers on one line. Numbers are the shortest
 * that read back to the same bits; those that are not finite are the strings "nan", "inf" and "-inf". */
class JsonText {
public:
    /** An object or a list: begun in its parent under a key (empty in a list), ended in the reverse order. */
    void begin(char bracket, std::string_view key = {});
    void end();

    void add(std::string_view key, std::string_view text);
    void add(std::string_view key, const char* text) { add(key, std::string_view(text)); }
    void add(std::string_view key, bool value) { addToken(key, value ? "true" : "false"); }
    void add(std::string_view key, std::int64_t value) { addToken(key, std::to_string(value)); }
    template <std::floating_point T>
    void add(std::string_view key, T value) {
        addToken(key, number(value));
    }
    /** A list of numbers, on one line. */
    template <class List>
    void addNumbers(std::string_view key, const List& list) {
        std::string text;
        for (const auto& item : list) {
            text += (text.empty() ? "" : ", ") + number(item);
        }
        addToken(key, "[" + text + "]");
    }
    /** JSON that is ready. */
    void addToken(std::string_view key, std::string_view token);

    /** The whole text, once everything that was begun is ended. */
    const std::string& text() const { return mText; }

    static std::string quoted(std::string_view text);
    template <class T>
    static std::string number(T value) {
        if constexpr (std::floating_point<T>) {
            const std::string text = formatNumber(value);
            return text.find_first_of("ni") == std::string::npos ? text : quoted(text);
        } else {
            return std::to_string(value);
        }
    }

private:
    void beginItem(std::string_view key);

    std::string mText;
    std::string mClosing;  // the brackets that are open, innermost last
    bool mFirst = true;
};

}  // namespace lys::cli
