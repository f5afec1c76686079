#include "JsonText.h"

namespace lys::cli {

void JsonText::beginItem(std::string_view key) {
    if (!mClosing.empty()) {
        mText.append(mFirst ? "\n" : ",\n").append(2 * mClosing.size(), ' ');
    }
    mFirst = false;
    if (!key.empty()) {
        mText.append(quoted(key)).append(": ");
    }
}

void JsonText::begin(char bracket, std::string_view key) {
    beginItem(key);
    mText += bracket;
    mClosing += bracket == '{' ? '}' : ']';
    mFirst = true;
}

void JsonText::end() {
    const char closing = mClosing.back();
    mClosing.pop_back();
    if (!mFirst) {
        mText.append("\n").append(2 * mClosing.size(), ' ');
    }
    mText += closing;
    if (mClosing.empty()) {
        mText += '\n';
    }
    mFirst = false;
}

void JsonText::add(std::string_view key, std::string_view text) {
    addToken(key, quoted(text));
}

void JsonText::addToken(std::string_view key, std::string_view token) {
    beginItem(key);
    mText.append(token);
}

std::string JsonText::quoted(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string out = "\"";
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            out.append(1, '\\').append(1, c);
        } else if (code < 0x20) {
            out.append("\\u00").append(1, digits[code >> 4]).append(1, digits[code & 15]);
        } else {
            out += c;
        }
    }
    return out + '"';
}

}  // namespace lys::cli
