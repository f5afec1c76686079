#pragma once

#include <colortable/editor/TableEdits_p.h>

#include <QString>

class LyqUnitConverter;
class QTable;

/** The rows of the sections table: the section above the range on top, the one below it at the bottom. */
namespace lys::editor {

enum Column { FROM = 0, TO = 1, TYPE = 2, DETAIL = 3, COLUMN_COUNT = 4 };

/** Row r shows this section, and this section is shown by row r. */
inline long long sectionOfRow(long long sectionCount, long long row) {
    return sectionCount - 1 - row;
}

/** The texts of a table's boundaries, in the converter's unit. Where a largest range is set, its limits, as plain
 * numbers, stand for what is below the first and above the last. */
class BoundTexts {
public:
    BoundTexts(const LyrObject* table, const TableContent& content, const LyqUnitConverter& converter);
    /** -1 is below the first boundary. */
    QString at(long long index) const;

private:
    const TableContent& mContent;
    const LyqUnitConverter& mConverter;
    LyrValuePair<float> mRange;
};

/** Whether a row shows one of the two sections outside the range, which offer fewer types. */
inline bool isBorderRow(long long sectionCount, long long row) {
    return row == 0 || row == sectionCount - 1;
}
/** The type behind an entry of a row's list, -1 for none. */
Lyrenum typeOfEntry(bool border, int index);

/** Columns, selection and editing of the table. */
void prepareTable(QTable& rows);
/** Widths that fit what the columns may show. */
void fitColumns(QTable& rows);

/** Shows a consistent table. Cells are reused; one that is being edited is left alone. Rows without a section stay as
 * they are and are reported. */
void fillRows(QTable& rows, const LyrObject* table, const TableContent& content, const LyqUnitConverter& converter);

}  // namespace lys::editor
