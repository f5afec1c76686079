#pragma once

#include <toolkit/QTableItem.h>

#include <QStringList>

/** A cell of a QTable that offers a list of entries. It shows the current one. */
class TOOLKIT_EXPORT QComboTableItem : public QTableItem {
public:
    explicit QComboTableItem(const QStringList& entries = QStringList());

    int rtti() const override { return ComboTableItem; }

    const QStringList& stringList() const { return mEntries; }
    /** Replaces the entries, the first one becomes current. Equal entries change nothing. */
    void setStringList(const QStringList& entries);

    int count() const { return static_cast<int>(mEntries.size()); }
    /** The entry's text, empty outside the list. */
    QString text(int index) const { return mEntries.value(index); }
    /** The index of the current entry, -1 in an empty list. */
    int currentItem() const { return mCurrent; }
    QString currentText() const { return text(mCurrent); }
    /** An index outside the list changes nothing. */
    void setCurrentItem(int index);

private:
    QStringList mEntries;
    int mCurrent = -1;
};
