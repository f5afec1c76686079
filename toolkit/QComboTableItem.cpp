#include <toolkit/QComboTableItem.h>

QComboTableItem::QComboTableItem(const QStringList& entries) {
    setStringList(entries);
}

void QComboTableItem::setStringList(const QStringList& entries) {
    if (entries != mEntries) {
        mEntries = entries;
        mCurrent = entries.isEmpty() ? -1 : 0;
        setText(currentText());
    }
}

void QComboTableItem::setCurrentItem(int index) {
    if (index >= 0 && index < count() && index != mCurrent) {
        mCurrent = index;
        setText(currentText());
    }
}
