#include <colortable/ColortableIdentifiers.h>
#include <colortable/editor/PixmapTableItem_p.h>
#include <colortable/editor/SectionRows_p.h>
#include <colortable/legend/SectionImage.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqUnitConverter.h>
#include <toolkit/QComboTableItem.h>
#include <toolkit/QTable.h>

#include <QCoreApplication>
#include <QFontMetrics>
#include <QHeaderView>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lys::editor {

namespace {

constexpr const char* CONTEXT = "LyqColorLookupTableEditor";
constexpr int SWATCH_WIDTH = 32;
constexpr int CELL_MARGIN = 12;
/** What every bounds column has room for; longer texts widen it. */
constexpr const char* ORDINARY_BOUND = "-0.0000";

QString text(const char* source) {
    return QCoreApplication::translate(CONTEXT, source);
}

/** In the order of innerType(). */
QStringList innerTexts() {
    return {text(QT_TRANSLATE_NOOP("LyqColorLookupTableEditor", "Constant")),
            text(QT_TRANSLATE_NOOP("LyqColorLookupTableEditor", "Gradient")),
            text(QT_TRANSLATE_NOOP("LyqColorLookupTableEditor", "Rainbow")),
            text(QT_TRANSLATE_NOOP("LyqColorLookupTableEditor", "Reverse Rainbow")),
            text(QT_TRANSLATE_NOOP("LyqColorLookupTableEditor", "Hue cycle"))};
}

QStringList borderTexts() {
    return {text(QT_TRANSLATE_NOOP("LyqColorLookupTableEditor", "Continue")),
            text(QT_TRANSLATE_NOOP("LyqColorLookupTableEditor", "Constant"))};
}

std::array<Lyrenum, 5> innerTypes() {
    return {Lyr::Constant, Lyr::Gradient, Lyr::Rainbow, Lyr::InvertedRainbow, Lyr::HueCycle};
}

/** -1 for a type that is not on offer. */
int entryOfType(bool border, Lyrenum type) {
    if (border) {
        return type == Lyr::Continue ? 0 : 1;
    }
    const auto types = innerTypes();
    const auto found = std::find(types.begin(), types.end(), type);
    return found == types.end() ? -1 : static_cast<int>(found - types.begin());
}

/** The cell's item if it is of the class, else a new one in its place. */
template <class Item>
Item& itemAt(QTable& rows, int row, Column column, int rtti) {
    QTableItem* item = rows.item(row, column);
    if (!item || item->rtti() != rtti) {
        item = new Item;
        rows.setItem(row, column, item);
    }
    return static_cast<Item&>(*item);
}

void fillType(QTable& rows, int row, const QStringList& entries, bool border, Lyrenum type) {
    if (!rows.isEditing(row, TYPE)) {
        auto& item = itemAt<QComboTableItem>(rows, row, TYPE, QTableItem::ComboTableItem);
        item.setStringList(entries);
        item.setCurrentItem(entryOfType(border, type));
    }
}

void fillSwatch(QTable& rows, int row, const TableContent& content, long long index) {
    const QSize size(SWATCH_WIDTH, rows.rowHeight(row));
    const QImage image = lys::legend::sectionImage(size, lys::legend::Halves::UpperOverWhite, *content.sectionAt(index),
                                                   content.sectionAt(index - 1), content.sectionAt(index + 1));
    if (!image.isNull()) {
        itemAt<PixmapTableItem>(rows, row, DETAIL, PixmapTableItem::RTTI).setPixmap(QPixmap::fromImage(image));
    }
}

/** Widens a column for its longest text: digits are equally wide. A column never shrinks under the user's hands. */
void widenFor(QTable& rows, Column column, const QString& longest) {
    const int width = rows.fontMetrics().horizontalAdvance(longest) + CELL_MARGIN;
    if (width > rows.columnWidth(column)) {
        rows.setColumnWidth(column, width);
        rows.updateGeometry();
    }
}

void fillBound(QTable& rows, int row, Column column, const QString& bound) {
    if (!rows.isEditing(row, column)) {
        rows.setText(row, column, bound);
    }
}

/** Which of the two outer rows are hidden. */
struct Hidden {
    explicit Hidden(const LyrObject* table) {
        const auto finite = lyrGetValue(table, Lyr::FiniteMode, LyrValuePair<Lyrenum>{0, 0});
        bottom = finite.first == Lyrenum(1);
        top = finite.second == Lyrenum(1);
    }
    bool isHidden(int row, int count) const { return (top && row == 0) || (bottom && row == count - 1); }

    bool bottom;
    bool top;
};

/** A hidden row has no height: rows are shown before they are filled. */
void showRows(QTable& rows, const Hidden& hidden) {
    for (int row = 0; row < rows.numRows(); ++row) {
        if (rows.isRowHidden(row) && !hidden.isHidden(row, rows.numRows())) {
            rows.showRow(row);
        }
    }
}

/** Hides rows and counts the others from 1. */
void hideRows(QTable& rows, const Hidden& hidden) {
    QStringList labels;
    for (int row = 0; row < rows.numRows(); ++row) {
        labels.append(QString::number(hidden.top ? row : row + 1));
        if (!rows.isRowHidden(row) && hidden.isHidden(row, rows.numRows())) {
            rows.hideRow(row);
        }
    }
    rows.setRowLabels(labels);
}

}  // namespace

BoundTexts::BoundTexts(const LyrObject* table, const TableContent& content, const LyqUnitConverter& converter)
    : mContent(content), mConverter(converter), mRange(maximumRangeOf(table)) {}

QString BoundTexts::at(long long index) const {
    if (index >= 0 && index < mContent.positionCount()) {
        return mConverter.internalToDisplayString(mContent.positions[static_cast<std::size_t>(index)]);
    }
    const float limit = index < 0 ? mRange.first : mRange.second;
    const float unlimited = index < 0 ? -std::numeric_limits<float>::max() : std::numeric_limits<float>::max();
    if (std::isfinite(limit) && limit != unlimited) {
        return QStringLiteral("%1").arg(double(limit));
    }
    return index < 0 ? QStringLiteral("-inf") : QStringLiteral("+inf");
}

Lyrenum typeOfEntry(bool border, int index) {
    if (border) {
        return index == 0 ? Lyr::Continue : index == 1 ? Lyrenum(Lyr::Constant) : Lyrenum(-1);
    }
    const auto types = innerTypes();
    return index >= 0 && index < static_cast<int>(types.size()) ? types[static_cast<std::size_t>(index)] : Lyrenum(-1);
}

void prepareTable(QTable& rows) {
    rows.setNumCols(COLUMN_COUNT);
    rows.setRowSelection(true);
    for (const Column column : {FROM, TO, TYPE}) {
        rows.setColumnReadOnly(column, false);
        rows.setColumnStretchable(column, false);
    }
    rows.setColumnReadOnly(DETAIL, true);
    rows.setColumnStretchable(DETAIL, true);
}

void fitColumns(QTable& rows) {
    const QFontMetrics metrics = rows.fontMetrics();
    int widest = 0;
    for (const QString& entry : innerTexts() + borderTexts()) {
        widest = std::max(widest, metrics.horizontalAdvance(entry));
    }
    rows.horizontalHeader()->setMinimumSectionSize(SWATCH_WIDTH);
    const int bound = metrics.horizontalAdvance(QString::fromLatin1(ORDINARY_BOUND)) + CELL_MARGIN;
    for (const Column column : {FROM, TO}) {
        rows.setColumnWidth(column, std::max(bound, rows.horizontalHeader()->sectionSizeHint(column)));
    }
    // Room for the arrow that shows that there is a list.
    rows.setColumnWidth(TYPE, widest + CELL_MARGIN + metrics.height());
    rows.updateGeometry();
}

void fillRows(QTable& rows, const LyrObject* table, const TableContent& content, const LyqUnitConverter& converter) {
    const BoundTexts bounds(table, content, converter);
    const QStringList inner = innerTexts();
    const QStringList outer = borderTexts();
    const Hidden hidden(table);
    QString longest;
    rows.setNumRows(static_cast<int>(content.sectionCount()));
    showRows(rows, hidden);
    for (int row = 0; row < rows.numRows(); ++row) {
        const long long index = sectionOfRow(content.sectionCount(), row);
        const LyrColorLookupTable::Section* section = content.sectionAt(index);
        if (!section) {
            LyrError::emitError(
                LyrError::Message(content.sections[static_cast<std::size_t>(index)].getLink(), Lyr::WrongType));
            continue;
        }
        const bool border = isBorderRow(content.sectionCount(), row);
        for (const Column column : {FROM, TO}) {
            const QString bound = bounds.at(column == TO ? index : index - 1);
            fillBound(rows, row, column, bound);
            longest = bound.size() > longest.size() ? bound : longest;
        }
        fillType(rows, row, border ? outer : inner, border, lyrGetValue(section, Lyr::Type, Lyrenum(-1)));
        fillSwatch(rows, row, content, index);
    }
    widenFor(rows, FROM, longest);
    widenFor(rows, TO, longest);
    hideRows(rows, hidden);
}

}  // namespace lys::editor
