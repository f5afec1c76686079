#pragma once

#include <toolkit/ToolkitExport.h>

#include <QPalette>
#include <QRect>
#include <QTableWidgetItem>

class QPainter;

/** A cell of a QTable. */
class TOOLKIT_EXPORT QTableItem : public QTableWidgetItem {
public:
    /** The run-time types of this library; those of other item classes are up to them. */
    enum Rtti { TableItem = 0, ComboTableItem = 1 };

    explicit QTableItem(const QString& text = QString());

    /** Tells item classes apart. */
    virtual int rtti() const { return TableItem; }
    /** Draws the cell. False leaves it to the table, which shows the text. */
    virtual bool paint(QPainter& painter, const QPalette& palette, const QRect& cell, bool selected);

    int col() const { return column(); }
};
