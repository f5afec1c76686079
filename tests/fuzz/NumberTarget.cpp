#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyqUnitConverter.h>

#include <QLocale>

#include <cmath>
#include <cstring>

#include "cli/Numbers.h"
#include "fuzz/FuzzTargets.h"

namespace {

const QLocale& localeOf(unsigned char byte) {
    static const QLocale LOCALES[] = {
        QLocale::c(), QLocale(QLocale::German, QLocale::Germany), QLocale(QLocale::French, QLocale::France),
        QLocale(QLocale::Turkish, QLocale::Turkey), QLocale(QLocale::Arabic, QLocale::Egypt)};
    return LOCALES[byte % std::size(LOCALES)];
}

LyqUnitConverter& converterOf(unsigned char byte) {
    static LyqUnitConverter length(Lyr::Length);
    static LyqUnitConverter volume(Lyr::Volume);
    static LyqUnitConverter angle(Lyr::Angle);
    LyqUnitConverter* const all[] = {&length, &volume, &angle};
    return *all[byte / 16 % std::size(all)];
}

bool readTyped(const QString& text, const LyqUnitConverter& converter) {
    bool typed = false;
    const double value = converter.unitStringToInternal(text, &typed);
    fuzz::require(std::isfinite(value), "a typed number is finite");
    fuzz::require(typed || value == 0.0, "what is no number gives 0");
    if (typed && std::isfinite(converter.internalToDisplay(value))) {
        const QString shown = converter.internalToDisplayString(value, LyqUnitConverter::WithUnit);
        bool ok = false;
        const double again = converter.unitStringToInternal(shown, &ok);
        fuzz::require(ok, "what is shown can be typed back");
        // Six digits are shown; of denormals there are fewer.
        fuzz::require(std::abs(again - value) <= 1e-5 * std::abs(value) + 1e-300, "what is shown is the number");
    }
    return typed;
}

template <class T>
void checkFormat(T value) {
    const std::string text = lys::cli::formatNumber(value);
    const auto again = lys::cli::parseDouble(text);
    const auto narrow = lys::cli::parseFloat(text);
    if (std::isfinite(value)) {
        fuzz::require(again.has_value(), "a number that is written can be read");
        if constexpr (sizeof(T) == sizeof(float)) {
            fuzz::require(narrow && std::memcmp(&*narrow, &value, sizeof value) == 0, "a float keeps its bits as text");
        } else {
            fuzz::require(std::memcmp(&*again, &value, sizeof value) == 0, "a double keeps its bits as text");
        }
    }
}

}  // namespace

/** The first byte chooses locale and quantity, the rest is what was typed. */
fuzz::Accepted fuzz::number(Bytes bytes) {
    if (bytes.empty()) {
        return 0;
    }
    const std::string text = textOf(bytes.subspan(1));
    QLocale::setDefault(localeOf(bytes[0] % 16));
    const bool typed = readTyped(QString::fromUtf8(text.data(), qsizetype(text.size())), converterOf(bytes[0]));
    QLocale::setDefault(QLocale::c());
    const auto narrow = lys::cli::parseFloat(text);
    if (narrow) {
        checkFormat(*narrow);
    }
    const auto wide = lys::cli::parseDouble(text);
    if (wide) {
        checkFormat(*wide);
    }
    const auto count = lys::cli::parseCount(text);
    require(!count || *count >= 0, "a count is not negative");
    lys::cli::splitText(text, ',');
    return bitIf(typed, 0) | bitIf(narrow.has_value(), 1) | bitIf(wide.has_value(), 2) | bitIf(count.has_value(), 3);
}
