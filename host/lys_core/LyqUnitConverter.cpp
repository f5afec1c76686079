#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrQuantity.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqUnitConverter.h>
#include <lys_core/LyrApplicationObject.h>

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace {

constexpr int SIGNIFICANT_DIGITS = 6;

/** No spelling of a unit is longer, in characters. */
constexpr qsizetype LONGEST_UNIT = 40;

QLocale typingLocale(QLocale locale) {
    locale.setNumberOptions(QLocale::OmitGroupSeparator | QLocale::RejectGroupSeparator);
    return locale;
}

/** A number of the user's locale in C. The toolkit writes signs with marks of writing direction, and powers of ten like
 * "×10^−9", that it does not read. */
QString withoutLocale(const QString& text, const QLocale& locale) {
    QString plain = text;
    plain.replace(locale.exponential(), QLatin1String("e"), Qt::CaseInsensitive);
    plain.replace(locale.negativeSign(), QLatin1String("-"));
    plain.replace(locale.positiveSign(), QLatin1String("+"));
    plain.replace(locale.decimalPoint(), QLatin1String("."));
    for (QChar& character : plain) {
        if (character.isDigit()) {
            character = QLatin1Char(static_cast<char>('0' + character.digitValue()));
        }
    }
    return plain;
}

/** A number in the user's locale, else in C. */
bool readNumber(const QString& text, double& out) {
    const QLocale locale = typingLocale(QLocale());
    const QLocale plain = typingLocale(QLocale::c());
    bool ok = false;
    out = locale.toDouble(text, &ok);
    if (!ok) {
        out = plain.toDouble(text, &ok);
    }
    if (!ok) {
        out = plain.toDouble(withoutLocale(text, locale), &ok);
    }
    return ok && std::isfinite(out);
}

/** Does what handles texts, the toolkit's among it. False, and an error, when memory ran out. */
template <class Work>
bool withTexts(Work work) noexcept {
    try {
        work();
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return false;
    }
}

/** Reads a number with or without a unit of the quantity, which becomes `unit`. */
bool readQuantity(const QString& text, Lyrenum quantity, double& number, Lyrenum& unit) {
    const QString trimmed = text.trimmed();
    bool valid = readNumber(trimmed, number);
    // The longest unit first: "1.5 e" is no number, "1.5e3" is one.
    for (qsizetype at = std::max<qsizetype>(1, trimmed.size() - LONGEST_UNIT); !valid && at < trimmed.size(); ++at) {
        const Lyrenum named = LyrQuantity::findUnit(quantity, LyrString(trimmed.mid(at).trimmed()));
        if (named != Lyrenum(-1) && readNumber(trimmed.left(at).trimmed(), number)) {
            unit = named;
            valid = true;
        }
    }
    return valid;
}

}  // namespace

LyqUnitConverter::LyqUnitConverter(Lyrenum quantity, QObject* parent)
    : QObject(parent), mUnits(this, &LyqApplication::instance().displayUnits()), mQuantity(quantity) {
    updateDisplayUnit();
}

void LyqUnitConverter::setQuantity(Lyrenum quantity) {
    if (quantity != mQuantity) {
        mQuantity = quantity;
        updateDisplayUnit();
    }
}

void LyqUnitConverter::setFixedUnit(Lyrenum unit) {
    mFixedUnit = unit;
    updateDisplayUnit();
}

void LyqUnitConverter::updateDisplayUnit() {
    const bool fixed = LyrQuantity::isUnitOf(mFixedUnit, mQuantity);
    const Lyrenum unit =
        fixed ? mFixedUnit : static_cast<const LyrDisplayUnits&>(*mUnits.get()).getDisplayUnit(mQuantity);
    if (unit != mDisplayUnit) {
        mDisplayUnit = unit;
        Q_EMIT displayUnitChanged(unit);
    }
}

QString LyqUnitConverter::getDisplayUnitAbbr() const {
    return mDisplayUnit == Lyrenum(-1) ? QString() : QString::fromUtf8(LyrQuantity::getUnitSymbol(mDisplayUnit).utf8());
}

double LyqUnitConverter::internalToDisplay(double value) const {
    return LyrQuantity::internalToUnit(value, mQuantity, mDisplayUnit);
}

double LyqUnitConverter::displayToInternal(double value) const {
    return LyrQuantity::unitToInternal(value, mQuantity, mDisplayUnit);
}

QString LyqUnitConverter::internalToDisplayString(double value, int displayMode, int precision) const {
    QString text;
    const bool done = withTexts([&] {
        const int digits = precision < 0 ? SIGNIFICANT_DIGITS : precision;
        text = typingLocale(QLocale()).toString(internalToDisplay(value), 'g', digits);
        const QString unit = getDisplayUnitAbbr();
        if (displayMode == WithUnit && !unit.isEmpty()) {
            text += QLatin1Char(' ') + unit;
        }
    });
    return done ? text : QString();
}

double LyqUnitConverter::unitStringToInternal(const QString& text, bool* ok) const {
    double number = 0.0;
    Lyrenum unit = mDisplayUnit;
    bool valid = false;
    withTexts([&] { valid = readQuantity(text, mQuantity, number, unit); });
    const double internal = valid ? LyrQuantity::unitToInternal(number, mQuantity, unit) : 0.0;
    valid = valid && std::isfinite(internal);
    if (ok) {
        *ok = valid;
    }
    return valid ? internal : 0.0;
}

bool LyqUnitConverter::iocCallback(Message& message) {
    if (message.getInitialSender() == mUnits.get() && message.getPropertyID() == Lyr::DisplayUnitList) {
        updateDisplayUnit();
    }
    return LyrIOC::iocCallback(message);
}
