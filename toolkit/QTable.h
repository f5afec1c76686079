#pragma once

#include <toolkit/QTableItem.h>
#include <toolkit/ToolkitExport.h>

#include <QPersistentModelIndex>
#include <QPointer>
#include <QSet>
#include <QTableWidget>

/** The 3.3 series' table, over the current one: rows and columns of QTableItem, edited in place.
 *
 *  Filling it is silent: valueChanged() tells of what a user entered. Positions are those of the viewport. Right
 * presses leave the selection alone, so that a menu acts on what was selected before. Tab leaves the table. */
class TOOLKIT_EXPORT QTable : public QTableWidget {
    Q_OBJECT

public:
    explicit QTable(QWidget* parent = nullptr, const char* name = nullptr);
    ~QTable() override;

    int numRows() const { return rowCount(); }
    int numCols() const { return columnCount(); }
    /** New cells of a read-only column are read-only too. Leaving the table as it is costs nothing. */
    void setNumRows(int rows);
    void setNumCols(int columns);
    using QTableWidget::edit;

    /** The cell's item; null for an empty cell, and for one that is no QTableItem. */
    QTableItem* item(int row, int column) const;
    /** Takes over the item; the one before is deleted. */
    void setItem(int row, int column, QTableItem* item);
    QString text(int row, int column) const;
    /** Makes the item of an empty cell. */
    void setText(int row, int column, const QString& text);

    void setColumnReadOnly(int column, bool readOnly);
    bool isColumnReadOnly(int column) const { return mReadOnly.contains(column); }
    /** A stretchable column takes the room that the others leave. */
    void setColumnStretchable(int column, bool stretchable);
    bool isColumnStretchable(int column) const;

    void setRowLabels(const QStringList& labels);
    void setColumnLabels(const QStringList& labels);
    QString rowLabel(int row) const;

    /** Whole rows are selected, several if `multiple`. */
    void setRowSelection(bool multiple);
    bool isRowSelected(int row) const;

    /** Wide enough for its columns; of a stretchable one, for twice its label. */
    QSize sizeHint() const override;

    /** Whether the user is entering something, here or anywhere. */
    bool isEditing(int row, int column) const;
    bool isEditing() const;
    /** Closes the editor; what was entered is dropped. */
    void cancelEdit();

Q_SIGNALS:
    /** A user entered something into a cell: another text, or any entry of a list, be it the same as before. */
    void valueChanged(int row, int column);
    void doubleClicked(int row, int column, int button, const QPoint& position);
    /** Row and column are -1 outside of all cells; the position is that of the screen. */
    void contextMenuRequested(int row, int column, const QPoint& globalPosition);
    /** Return, Enter or F2 was pressed in a read-only cell. */
    void keyPressedInReadOnlyCell(int row, int column, Qt::KeyboardModifiers modifiers);
    /** The user has finished editing a cell, or given up. */
    void editorClosed();

protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Delegate;
    using QTableWidget::setItem;

    void applyFlags(QTableWidgetItem& item, int column) const;

    QSet<int> mReadOnly;
    QPointer<QWidget> mEditor;
    QPersistentModelIndex mEdited;
};
