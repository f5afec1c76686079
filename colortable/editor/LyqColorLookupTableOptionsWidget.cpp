#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/LyqColorLookupTableOptionsWidget.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrQuantity.h>
#include <lyr_core/LyrUndoJournal.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqComboBox.h>
#include <lys_core/LyqLineEdit.h>
#include <lys_core/LyqUnitConverter.h>

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

/** Stands for "no limit". */
constexpr float FLOAT_MAX = std::numeric_limits<float>::max();
/** Of a refused text this much is shown, in characters. */
constexpr int QUOTED_WIDTH = 20;
/** Lines that are kept free for a message, so that the panel does not jump. */
constexpr int MESSAGE_LINES = 4;

using Range = LyrValuePair<float>;

Range maximumRangeOf(const LyrObject* table) {
    return lyrGetValue(table, Lyr::MaximumRange, Range{-FLOAT_MAX, FLOAT_MAX});
}

LyrValuePair<Lyrenum> finiteModeOf(const LyrObject* table) {
    return lyrGetValue(table, Lyr::FiniteMode, LyrValuePair<Lyrenum>{0, 0});
}

bool isProper(const Range& range) {
    return std::isfinite(range.first) && std::isfinite(range.second) && range.first < range.second;
}

/** Writes a property as one undo step. The table counts some of its properties as side notes, which a write alone does
 * not record. */
template <class T>
void writeAsStep(LyrObject* table, Lyrenum id, const T& value, const QString& name) {
    const LyrSingleValueOPPtr<LyrSingleValuePropertyIF<T>> property(table, id);
    T before{};
    if (!property || !property->getValue(before) || before == value) {
        return;
    }
    LyqApplication::UserActionScope action(name);
    if (!property->isRecorded()) {
        LyrUndoJournal::instance().addSnapshot(*property.get());
    }
    if (!property->setValue(value)) {
        action.abort();
    }
}

/** Stretches positions from [first, last] to [low, high]: formed in double, narrowed once. False if they have no range.
 */
bool stretch(std::vector<float>& positions, double low, double high) {
    if (positions.size() < 2 || !isProper({positions.front(), positions.back()})) {
        return false;
    }
    const auto first = static_cast<double>(positions.front());
    const auto last = static_cast<double>(positions.back());
    for (float& item : positions) {
        const auto position = static_cast<double>(item);
        const double moved = position == last ? high : low + (position - first) * (high - low) / (last - first);
        item = static_cast<float>(moved);
    }
    return true;
}

}  // namespace

struct LyqColorLookupTableOptionsWidget::Private {
    explicit Private(LyqColorLookupTableOptionsWidget& owner) : table(&owner) {}

    LyrObjectIOCPtr table;
    Range dataRange{0.0f, 0.0f};
    LyqUnitConverter converter{Lyr::Length};
    std::vector<Lyrenum> quantities = LyrQuantity::getQuantities();
    /** What the table's limits read as when they were shown last: only a change of that replaces a text being typed. */
    QString shownLimits[2];

    QLabel* quantityLabel = nullptr;
    LyqComboBox* quantity = nullptr;
    QCheckBox* finite[2] = {};
    QLabel* limitLabels[2] = {};
    LyqLineEdit* limits[2] = {};
    QLabel* dataRangeLabel = nullptr;
    QPushButton* fit = nullptr;
    QLabel* message = nullptr;
};

LyqColorLookupTableOptionsWidget::LyqColorLookupTableOptionsWidget(QWidget* parent, const char* name)
    : QWidget(parent), d(new Private(*this)) {
    setObjectName(QString::fromUtf8(name ? name : "LyqColorLookupTableOptionsWidget"));
    buildForm();
    connectControls();
    languageChange();
}

LyqColorLookupTableOptionsWidget::~LyqColorLookupTableOptionsWidget() = default;

void LyqColorLookupTableOptionsWidget::buildForm() {
    const auto named = [](auto* widget, const char* name) {
        widget->setObjectName(QString::fromUtf8(name));
        return widget;
    };
    d->quantityLabel = named(new QLabel(this), "mQuantityLabel");
    d->quantity = new LyqComboBox(this, "mQuantityComboBox");
    d->finite[LOWER] = named(new QCheckBox(this), "mFiniteBelowCheckBox");
    d->finite[UPPER] = named(new QCheckBox(this), "mFiniteAboveCheckBox");
    d->limitLabels[LOWER] = named(new QLabel(this), "mMaximumRangeLowerLabel");
    d->limits[LOWER] = new LyqLineEdit(this, "mMaximumRangeLowerLineEdit");
    d->limitLabels[UPPER] = named(new QLabel(this), "mMaximumRangeUpperLabel");
    d->limits[UPPER] = new LyqLineEdit(this, "mMaximumRangeUpperLineEdit");
    d->dataRangeLabel = named(new QLabel(this), "mDataRangeLabel");
    d->fit = named(new QPushButton(this), "mFitPushButton");
    d->message = named(new QLabel(this), "mMessageLabel");
    d->fit->setAutoDefault(false);
    for (QLabel* text : {d->dataRangeLabel, d->message}) {
        text->setTextFormat(Qt::PlainText);
        text->setWordWrap(true);
    }
    d->message->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    d->message->setMinimumHeight(MESSAGE_LINES * fontMetrics().lineSpacing());

    auto* grid = new QGridLayout(this);
    grid->addWidget(d->quantityLabel, 0, 0);
    grid->addWidget(d->quantity, 0, 1);
    d->quantityLabel->setBuddy(d->quantity);
    for (const Side side : {LOWER, UPPER}) {
        grid->addWidget(d->finite[side], 1 + side, 0, 1, 2);
        grid->addWidget(d->limitLabels[side], 3 + side, 0);
        grid->addWidget(d->limits[side], 3 + side, 1);
        d->limitLabels[side]->setBuddy(d->limits[side]);
    }
    grid->addWidget(d->dataRangeLabel, 5, 0, 1, 2);
    grid->addWidget(d->fit, 6, 0, 1, 2);
    grid->addWidget(d->message, 7, 0, 1, 2);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(8, 1);
}

void LyqColorLookupTableOptionsWidget::connectControls() {
    connect(d->quantity, &QComboBox::activated, this, &LyqColorLookupTableOptionsWidget::takeQuantity);
    for (const Side side : {LOWER, UPPER}) {
        connect(d->finite[side], &QAbstractButton::clicked, this, &LyqColorLookupTableOptionsWidget::takeFiniteMode);
        connect(d->limits[side], &QLineEdit::editingFinished, this, [this, side] { takeLimit(side); });
        connect(d->limits[side], &QLineEdit::textEdited, d->message, &QLabel::clear);
    }
    connect(d->fit, &QAbstractButton::clicked, this, &LyqColorLookupTableOptionsWidget::fitToData);
    connect(&d->converter, &LyqUnitConverter::displayUnitChanged, this, [this] { update(); });
}

void LyqColorLookupTableOptionsWidget::languageChange() {
    d->quantityLabel->setText(tr("&Quantity"));
    d->finite[LOWER]->setText(tr("Black &below the range"));
    d->finite[UPPER]->setText(tr("Black &above the range"));
    d->limitLabels[LOWER]->setText(tr("&Least boundary"));
    d->limitLabels[UPPER]->setText(tr("&Greatest boundary"));
    for (LyqLineEdit* limit : d->limits) {
        limit->setPlaceholderText(tr("unlimited"));
    }
    d->fit->setText(tr("&Fit to data"));
    QStringList names;
    for (const Lyrenum quantity : d->quantities) {
        names.append(QString::fromUtf8(LyrQuantity::getQuantityName(quantity).utf8()));
    }
    d->quantity->setItems(names);
    sync();
}

void LyqColorLookupTableOptionsWidget::setTable(LyrObject* table) {
    if (table != d->table.get()) {
        d->table = table;
        d->message->clear();
        update();
    }
}

LyrObject* LyqColorLookupTableOptionsWidget::getTable() const {
    return d->table.get();
}

void LyqColorLookupTableOptionsWidget::setDataRange(const LyrValuePair<float>& range) {
    d->dataRange = range;
    update();
}

LyrValuePair<float> LyqColorLookupTableOptionsWidget::getDataRange() const {
    return d->dataRange;
}

// Only marked here: the controls follow with the next paint.
bool LyqColorLookupTableOptionsWidget::iocCallback(Message& message) {
    update();
    return LyrIOC::iocCallback(message);
}

void LyqColorLookupTableOptionsWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange) {
        languageChange();
    }
}

void LyqColorLookupTableOptionsWidget::showEvent(QShowEvent* event) {
    sync();
    QWidget::showEvent(event);
}

void LyqColorLookupTableOptionsWidget::paintEvent(QPaintEvent* event) {
    sync();
    QWidget::paintEvent(event);
}

void LyqColorLookupTableOptionsWidget::sync() {
    if (!isVisible()) {
        return;
    }
    const LyrObject* table = d->table.get();
    const Lyrenum quantity = lyrGetValue(table, Lyr::Quantity, Lyr::Length);
    const auto finite = finiteModeOf(table);
    const auto found = std::find(d->quantities.begin(), d->quantities.end(), quantity);
    d->converter.setQuantity(quantity);
    d->quantity->setCurrentSilently(found != d->quantities.end() ? static_cast<int>(found - d->quantities.begin())
                                                                 : -1);
    d->finite[LOWER]->setChecked(finite.first == Lyrenum(1));
    d->finite[UPPER]->setChecked(finite.second == Lyrenum(1));
    for (const Side side : {LOWER, UPPER}) {
        const QString text = limitText(side);
        if (text != d->shownLimits[side]) {
            d->shownLimits[side] = text;
            d->limits[side]->showText(text);
        }
    }
    const bool fits = isProper(d->dataRange);
    const auto shown = [this](float value) {
        return d->converter.internalToDisplayString(static_cast<double>(value), LyqUnitConverter::WithUnit);
    };
    d->dataRangeLabel->setText(fits
                                   ? tr("Data from %1 to %2").arg(shown(d->dataRange.first), shown(d->dataRange.second))
                                   : tr("No data range"));
    d->fit->setEnabled(table && fits);
    for (QWidget* control : std::initializer_list<QWidget*>{d->quantity, d->finite[LOWER], d->finite[UPPER],
                                                            d->limits[LOWER], d->limits[UPPER]}) {
        control->setEnabled(table);
    }
}

/** The table's limit as it is shown; empty for none. */
QString LyqColorLookupTableOptionsWidget::limitText(Side side) const {
    const Range range = maximumRangeOf(d->table.get());
    const float limit = side == LOWER ? range.first : range.second;
    const bool unlimited = side == LOWER ? limit == -FLOAT_MAX : limit == FLOAT_MAX;
    return unlimited ? QString()
                     : d->converter.internalToDisplayString(static_cast<double>(limit), LyqUnitConverter::WithUnit);
}

void LyqColorLookupTableOptionsWidget::takeQuantity(int index) {
    d->message->clear();
    if (index >= 0 && static_cast<std::size_t>(index) < d->quantities.size()) {
        writeAsStep(d->table.get(), Lyr::Quantity, d->quantities[static_cast<std::size_t>(index)],
                    tr("Change quantity"));
    }
    update();
}

void LyqColorLookupTableOptionsWidget::takeFiniteMode() {
    d->message->clear();
    const auto flag = [this](Side side) { return Lyrenum(d->finite[side]->isChecked() ? 1 : 0); };
    writeAsStep(d->table.get(), Lyr::FiniteMode, LyrValuePair<Lyrenum>{flag(LOWER), flag(UPPER)},
                tr("Change colors beyond the range"));
    update();
}

void LyqColorLookupTableOptionsWidget::takeLimit(Side side) {
    // The text is a rounded form of the limit: left as it is, it says nothing.
    const QString text = d->limits[side]->text().trimmed();
    if (!d->table || text == limitText(side)) {
        return;
    }
    Range range = maximumRangeOf(d->table.get());
    const QString reason = reasonToRefuseLimit(side, text, range);
    d->message->setText(reason);
    if (reason.isEmpty()) {
        writeAsStep(d->table.get(), Lyr::MaximumRange, range, tr("Change maximum range"));
    }
    d->shownLimits[side] = limitText(side);
    d->limits[side]->showText(d->shownLimits[side]);
    update();
}

/** Empty for a text that gives a limit, which `range` has then; else what is wrong with it. */
QString LyqColorLookupTableOptionsWidget::reasonToRefuseLimit(Side side, const QString& text, Range& range) const {
    bool ok = text.isEmpty();
    double internal = static_cast<double>(side == LOWER ? -FLOAT_MAX : FLOAT_MAX);
    if (!ok) {
        internal = d->converter.unitStringToInternal(text, &ok);
    }
    // A long text would push the reason out of sight.
    const QString quoted =
        fontMetrics().elidedText(text, Qt::ElideMiddle, fontMetrics().averageCharWidth() * QUOTED_WIDTH);
    if (!ok) {
        return tr("\"%1\" is no number with a unit of the quantity. Empty: no limit.").arg(quoted);
    }
    if (std::abs(internal) > static_cast<double>(FLOAT_MAX)) {
        return tr("%1 is beyond what a boundary can be. Empty: no limit.").arg(quoted);
    }
    Range changed = range;
    (side == LOWER ? changed.first : changed.second) = static_cast<float>(internal);
    if (!isProper(changed)) {
        return side == LOWER ? tr("%1 is not below the greatest boundary.").arg(quoted)
                             : tr("%1 is not above the least boundary.").arg(quoted);
    }
    range = changed;
    return {};
}

void LyqColorLookupTableOptionsWidget::fitToData() {
    LyrObject* table = d->table.get();
    if (!table || !isProper(d->dataRange)) {
        return;
    }
    d->message->clear();
    const Range limits = maximumRangeOf(table);
    const Range target{std::max(d->dataRange.first, limits.first), std::min(d->dataRange.second, limits.second)};
    LyrValueArrayOPCache<float> positions;
    if (!isProper(target)) {
        d->message->setText(tr("The data lies outside of the boundaries that are allowed. Change their limits first."));
    } else if (!positions.load(table, Lyr::PositionList) ||
               !stretch(positions.items(), static_cast<double>(target.first), static_cast<double>(target.second))) {
        d->message->setText(tr("The table has no range that could be stretched. Create a table first."));
    } else {
        LyqApplication::UserActionScope action(tr("Fit to data"));
        if (!positions.store(table, Lyr::PositionList)) {
            action.abort();
            d->message->setText(tr("The boundaries could not be changed."));
        } else if (!(target == d->dataRange)) {
            d->message->setText(tr("Fitted to that part of the data in which boundaries are allowed."));
        }
    }
    update();
}
