#include <lys_core/PresetFileName_p.h>

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QStringDecoder>

#include <charconv>

namespace lys::presets {

namespace {

constexpr std::string_view SUFFIX = ".json";
constexpr std::size_t DIGEST_DIGITS = 16;
/** With digest and suffix well below the 255 bytes that file systems allow. */
constexpr std::size_t MAXIMUM_READABLE = 180;

LyrString translated(const char* text) {
    return QCoreApplication::translate("LyqPresetStore", text);
}

bool isPlain(char c, bool isFirst) {
    const bool isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    const bool isDigit = c >= '0' && c <= '9';
    return isLetter || isDigit || (!isFirst && (c == ' ' || c == '_' || c == '-' || c == '.'));
}

std::string digestOf(std::string_view name) {
    const QByteArray bytes(name.data(), static_cast<qsizetype>(name.size()));
    const QByteArray digest = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
    return digest.left(static_cast<qsizetype>(DIGEST_DIGITS)).toStdString();
}

std::string readablePart(std::string_view name) {
    constexpr const char* digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : name) {
        const auto byte = static_cast<unsigned char>(c);
        const std::string item =
            isPlain(c, text.empty()) ? std::string(1, c) : std::string{'%', digits[byte >> 4], digits[byte & 15]};
        if (text.size() + item.size() > MAXIMUM_READABLE) {
            return text + '~';
        }
        text += item;
    }
    return text;
}

bool isUtf8(std::string_view text) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString decoded = decoder.decode(QByteArrayView(text.data(), static_cast<qsizetype>(text.size())));
    return !decoder.hasError() && decoded.toUtf8().toStdString() == text;
}

std::string decoded(std::string_view text) {
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned int byte = 0;
        const char* begin = text.data() + i + 1;
        if (text[i] == '%' && i + 2 < text.size() && std::from_chars(begin, begin + 2, byte, 16).ptr == begin + 2) {
            name += static_cast<char>(byte);
            i += 2;
        } else {
            name += text[i];
        }
    }
    return name;
}

}  // namespace

LyrString checkName(const LyrString& name) {
    if (name.isEmpty()) {
        return translated(QT_TRANSLATE_NOOP("LyqPresetStore", "A preset needs a name."));
    }
    if (name.view().find('\0') != std::string_view::npos) {
        return translated(QT_TRANSLATE_NOOP("LyqPresetStore", "The name of a preset cannot hold the character 0."));
    }
    if (name.size() > MAXIMUM_NAME) {
        return translated(QT_TRANSLATE_NOOP("LyqPresetStore", "The name of a preset cannot be longer than %1 bytes."))
            .arg(MAXIMUM_NAME);
    }
    // Texts of the toolkit lose it, and a name must be the same wherever it is shown.
    if (name.view().starts_with("\xEF\xBB\xBF")) {
        return translated(QT_TRANSLATE_NOOP(
            "LyqPresetStore", "The name of a preset cannot begin with an invisible byte order mark (U+FEFF)."));
    }
    if (!isUtf8(name.view())) {
        return translated(QT_TRANSLATE_NOOP("LyqPresetStore", "The name of a preset must be text in UTF-8."));
    }
    return {};
}

std::string fileNameOf(const LyrString& name) {
    return readablePart(name.view()) + '-' + digestOf(name.view()) + std::string(SUFFIX);
}

LyrString nameOfFile(const std::string& fileName) {
    std::string_view stem = fileName;
    if (stem.ends_with(SUFFIX)) {
        stem.remove_suffix(SUFFIX.size());
    }
    if (stem.size() > DIGEST_DIGITS + 1 && stem[stem.size() - DIGEST_DIGITS - 1] == '-') {
        const std::string_view digest = stem.substr(stem.size() - DIGEST_DIGITS);
        const std::string_view readable = stem.substr(0, stem.size() - DIGEST_DIGITS - 1);
        const bool isDigest = digest.find_first_not_of("0123456789abcdef") == std::string_view::npos;
        const bool isWhole = isDigest && digestOf(decoded(readable)) == digest;
        if (isWhole || (isDigest && readable.ends_with('~'))) {
            stem = readable;
        }
    }
    const std::string name = decoded(stem);
    return LyrString(checkName(LyrString(name)).isNull() ? name : std::string(stem));
}

}  // namespace lys::presets
