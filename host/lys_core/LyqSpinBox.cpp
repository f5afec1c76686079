#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrQuantity.h>
#include <lys_core/LyqSpinBox.h>
#include <lys_core/LyqUnitConverter.h>

#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QSignalBlocker>
#include <QStyleOptionSpinBox>
#include <QTimer>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace {

/** Decimals of the base: as many as a double can have, so that the base rounds nothing. */
constexpr int ALL_DECIMALS = 323;
/** What can be narrowed to a float. */
constexpr double LARGEST = std::numeric_limits<float>::max();
/** From here on numbers are shown with an exponent. */
constexpr double LARGEST_PLAIN = 1e12;
constexpr int DIGITS_WITH_EXPONENT = 10;
/** Digits before the point that a box is wide enough for. */
constexpr int ROOM_FOR_DIGITS = 5;

bool isSame(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

QString withoutTrailingZeros(QString text, const QString& point) {
    if (text.contains(point)) {
        while (text.endsWith(QLatin1Char('0'))) {
            text.chop(1);
        }
        if (text.endsWith(point)) {
            text.chop(point.size());
        }
    }
    return text;
}

}  // namespace

struct LyqSpinBox::Private {
    LyqUnitConverter converter{Lyr::Number};
    int precision = 2;
    double minimum = 0.0;
    double maximum = 99.99;
    /** The value as it was set, and what the base was given for it: as long as the base still has that, this is the
     * value. */
    double set = 0.0;
    double shownForSet = 0.0;
    /** The unit in which the base has its value. */
    Lyrenum unit{-1};

    double toShown(double internal) const {
        return LyrQuantity::internalToUnit(internal, converter.getQuantity(), unit);
    }
    double toInternal(double shown) const { return LyrQuantity::unitToInternal(shown, converter.getQuantity(), unit); }

    double rounded(double shown) const {
        const double factor = std::pow(10.0, precision);
        const double scaled = shown * factor;
        // Beyond 2^52 a double has no decimals, and the product may overflow.
        return std::abs(scaled) < 4503599627370496.0 ? std::round(scaled) / factor : shown;
    }
};

LyqSpinBox::LyqSpinBox(QWidget* parent, const char* name) : QDoubleSpinBox(parent), d(new Private) {
    setObjectName(QString::fromUtf8(name));
    setKeyboardTracking(false);
    setFocusPolicy(Qt::StrongFocus);
    QDoubleSpinBox::setDecimals(ALL_DECIMALS);
    applyRange();
    connect(this, &QDoubleSpinBox::valueChanged, this, [this] { Q_EMIT valueChanged(value()); });
    connect(&d->converter, &LyqUnitConverter::displayUnitChanged, this, &LyqSpinBox::showUnit);
}

LyqSpinBox::~LyqSpinBox() = default;

void LyqSpinBox::setQuantity(Lyrenum quantity) {
    const double internal = value();
    {
        const QSignalBlocker silent(&d->converter);
        d->converter.setQuantity(quantity);
    }
    d->unit = d->converter.getDisplayUnit();
    applyRange();
    showValue(internal);
}

Lyrenum LyqSpinBox::getQuantity() const {
    return d->converter.getQuantity();
}

void LyqSpinBox::setUnit(Lyrenum unit) {
    d->converter.setFixedUnit(unit);
}

Lyrenum LyqSpinBox::getUnit() const {
    return d->unit;
}

/** The unit is another now: the same value and limits, other numbers for them. */
void LyqSpinBox::showUnit() {
    const double internal = value();
    d->unit = d->converter.getDisplayUnit();
    applyRange();
    showValue(internal);
}

void LyqSpinBox::setPrecision(int decimals) {
    d->precision = std::clamp(decimals, 0, 15);
    refreshText();
    updateGeometry();
}

int LyqSpinBox::getPrecision() const {
    return d->precision;
}

void LyqSpinBox::setRange(double minimum, double maximum) {
    if (std::isnan(minimum) || std::isnan(maximum)) {
        return;
    }
    const double internal = value();
    d->minimum = std::clamp(minimum, -LARGEST, LARGEST);
    d->maximum = std::clamp(std::max(minimum, maximum), -LARGEST, LARGEST);
    applyRange();
    const double inside = std::clamp(internal, d->minimum, d->maximum);
    showValue(inside);
    if (!isSame(inside, internal)) {
        Q_EMIT valueChanged(inside);
    }
}

void LyqSpinBox::setMinimum(double minimum) {
    setRange(minimum, std::max(minimum, d->maximum));
}

void LyqSpinBox::setMaximum(double maximum) {
    setRange(std::min(maximum, d->minimum), maximum);
}

double LyqSpinBox::minimum() const {
    return d->minimum;
}

double LyqSpinBox::maximum() const {
    return d->maximum;
}

/** Hands the limits to the base, without a word: the value is set after it. */
void LyqSpinBox::applyRange() {
    const QSignalBlocker silent(this);
    QDoubleSpinBox::setRange(d->toShown(d->minimum), d->toShown(d->maximum));
    updateGeometry();
}

double LyqSpinBox::value() const {
    const double shown = QDoubleSpinBox::value();
    // Converted there and back, a limit might lie beside itself.
    return isSame(shown, d->shownForSet)              ? d->set
           : isSame(shown, QDoubleSpinBox::minimum()) ? d->minimum
           : isSame(shown, QDoubleSpinBox::maximum()) ? d->maximum
                                                      : d->toInternal(shown);
}

void LyqSpinBox::setValue(double value) {
    if (std::isnan(value)) {
        return;
    }
    const double inside = std::clamp(value, d->minimum, d->maximum);
    if (isSame(inside, LyqSpinBox::value())) {
        return;
    }
    // Two values may read the same in another unit, where the base would be silent.
    showValue(inside);
    Q_EMIT valueChanged(inside);
}

/** Shows a value in the unit of now, without a word. */
void LyqSpinBox::showValue(double internal) {
    const QSignalBlocker silent(this);
    d->set = internal;
    QDoubleSpinBox::setValue(d->toShown(internal));
    d->shownForSet = QDoubleSpinBox::value();
    refreshText();
}

void LyqSpinBox::refreshText() {
    const QString text = textFromValue(QDoubleSpinBox::value());
    if (lineEdit()->text() != text) {
        const QSignalBlocker silent(lineEdit());
        lineEdit()->setText(text);
    }
}

QString LyqSpinBox::textFromValue(double shown) const {
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text;
    if (std::abs(shown) < LARGEST_PLAIN) {
        // Adding zero: -0 reads as 0.
        text = withoutTrailingZeros(locale.toString(d->rounded(shown) + 0.0, 'f', d->precision), locale.decimalPoint());
    } else {
        text = locale.toString(shown, 'g', DIGITS_WITH_EXPONENT);
    }
    const QString unit = d->converter.getDisplayUnitAbbr();
    return unit.isEmpty() ? text : text + QLatin1Char(' ') + unit;
}

double LyqSpinBox::valueFromText(const QString& text) const {
    const double present = QDoubleSpinBox::value();
    double shown = present;
    return text != textFromValue(present) && reasonToRefuse(text, shown).isEmpty() ? shown : present;
}

/** Empty for a number that can be taken, which `shown` has then; else what is wrong with the text. */
QString LyqSpinBox::reasonToRefuse(const QString& text, double& shown) const {
    bool ok = false;
    const double internal = d->converter.unitStringToInternal(text, &ok);
    if (!ok) {
        const QString unit = d->converter.getDisplayUnitAbbr();
        return unit.isEmpty() ? tr("\"%1\" is no number.").arg(text)
                              : tr("\"%1\" is no number in %2 or in a unit like it.").arg(text, unit);
    }
    const double number = d->rounded(d->toShown(internal));
    const double low = QDoubleSpinBox::minimum();
    const double high = QDoubleSpinBox::maximum();
    // A limit as it reads stands for the exact one.
    if (number < std::min(low, d->rounded(low)) || number > std::max(high, d->rounded(high))) {
        return tr("%1 is not between %2 and %3.").arg(text.trimmed(), textFromValue(low), textFromValue(high));
    }
    shown = std::clamp(number, low, high);
    return {};
}

QValidator::State LyqSpinBox::validate(QString& text, int&) const {
    double shown = 0.0;
    const bool unchanged = text == textFromValue(QDoubleSpinBox::value());
    return unchanged || reasonToRefuse(text, shown).isEmpty() ? QValidator::Acceptable : QValidator::Intermediate;
}

void LyqSpinBox::fixup(QString& text) const {
    double shown = 0.0;
    const QString reason = reasonToRefuse(text, shown);
    if (reason.isEmpty()) {
        return;
    }
    text = textFromValue(QDoubleSpinBox::value());
    // Afterwards: a change of the focus, which is often why a number is taken, would hide it again.
    auto* self = const_cast<LyqSpinBox*>(this);
    QTimer::singleShot(0, self, [self, reason] {
        if (self->isVisible()) {
            QToolTip::showText(self->mapToGlobal(QPoint(0, self->height())), reason, self);
        }
    });
    Q_EMIT refused(reason);
}

void LyqSpinBox::stepBy(int steps) {
    interpretText();
    const double next = d->rounded(QDoubleSpinBox::value() + steps * singleStep());
    QDoubleSpinBox::setValue(std::clamp(next, QDoubleSpinBox::minimum(), QDoubleSpinBox::maximum()));
    selectAll();
}

QSize LyqSpinBox::sizeHint() const {
    ensurePolished();
    // Not by the limits, which may have forty digits.
    QString widest = QLatin1Char('-') + QString(ROOM_FOR_DIGITS, QLatin1Char('0'));
    if (d->precision > 0) {
        widest += QLatin1Char('.') + QString(d->precision, QLatin1Char('0'));
    }
    const QString unit = d->converter.getDisplayUnitAbbr();
    const int textWidth = fontMetrics().horizontalAdvance(unit.isEmpty() ? widest : widest + QLatin1Char(' ') + unit);
    QStyleOptionSpinBox option;
    initStyleOption(&option);
    const QSize content(textWidth + 2, lineEdit()->sizeHint().height());
    return style()->sizeFromContents(QStyle::CT_SpinBox, &option, content, this);
}

QSize LyqSpinBox::minimumSizeHint() const {
    return sizeHint();
}

void LyqSpinBox::changeEvent(QEvent* event) {
    QDoubleSpinBox::changeEvent(event);
    if (event->type() == QEvent::LanguageChange || event->type() == QEvent::LocaleChange) {
        refreshText();
    }
}

void LyqSpinBox::keyPressEvent(QKeyEvent* event) {
    const bool typing = lineEdit()->text() != textFromValue(QDoubleSpinBox::value());
    if (event->key() == Qt::Key_Escape && typing) {
        refreshText();
        selectAll();
    } else {
        QDoubleSpinBox::keyPressEvent(event);
    }
}

void LyqSpinBox::wheelEvent(QWheelEvent* event) {
    // A wheel that scrolls a panel must not change what happens to come under the mouse.
    if (hasFocus()) {
        QDoubleSpinBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}
