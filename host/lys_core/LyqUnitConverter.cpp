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

/** The unit that a text names, -1 for none. */
Lyrenum findUnit(Lyrenum quantity, const QString& text) {
    try {
        return LyrQuantity::findUnit(quantity, LyrString(text));
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return Lyrenum(-1);
    }
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
    const QString number =
        typingLocale(QLocale()).toString(internalToDisplay(value), 'g', precision < 0 ? SIGNIFICANT_DIGITS : precision);
    const QString unit = getDisplayUnitAbbr();
    return displayMode == WithUnit && !unit.isEmpty() ? number + QLatin1Char(' ') + unit : number;
}

double LyqUnitConverter::unitStringToInternal(const QString& text, bool* ok) const {
    const QString trimmed = text.trimmed();
    double number = 0.0;
    bool valid = readNumber(trimmed, number);
    Lyrenum unit = mDisplayUnit;
    // The longest unit first: "1.5 e" is no number, "1.5e3" is one.
    for (qsizetype at = std::max<qsizetype>(1, trimmed.size() - LONGEST_UNIT); !valid && at < trimmed.size(); ++at) {
        const Lyrenum named = findUnit(mQuantity, trimmed.mid(at).trimmed());
        if (named != Lyrenum(-1) && readNumber(trimmed.left(at).trimmed(), number)) {
            unit = named;
            valid = true;
        }
    }
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
