#include <toolkit/QComboTableItem.h>
#include <toolkit/QTable.h>

#include <QComboBox>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTimer>

namespace {

constexpr const char* CHOSEN = "entryChosen";

QComboTableItem* asCombo(QTableItem* item) {
    return item && item->rtti() == QTableItem::ComboTableItem ? static_cast<QComboTableItem*>(item) : nullptr;
}

bool isEditingKey(int key) {
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2;
}

}  // namespace

/** Edits cells and tells the table what was entered. Nothing else tells it: filling stays silent. */
class QTable::Delegate : public QStyledItemDelegate {
public:
    explicit Delegate(QTable& table) : QStyledItemDelegate(&table), mTable(table) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QTableItem* item = itemAt(index);
        QWidget* editor = asCombo(item) ? createBox(parent, *asCombo(item))
                                        : QStyledItemDelegate::createEditor(parent, option, index);
        mTable.mEditor = editor;
        mTable.mEdited = index;
        return editor;
    }

    void setEditorData(QWidget* editor, const QModelIndex& index) const override {
        auto* box = qobject_cast<QComboBox*>(editor);
        if (!box) {
            QStyledItemDelegate::setEditorData(editor, index);
        } else if (const QComboTableItem* item = asCombo(itemAt(index))) {
            box->setCurrentIndex(item->currentItem());
        }
    }

    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override {
        if (takeOver(editor, model, index)) {
            Q_EMIT mTable.valueChanged(index.row(), index.column());
        }
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QTableItem* item = itemAt(index);
        if (item && item->paint(*painter, option.palette, option.rect, option.state.testFlag(QStyle::State_Selected))) {
            paintFocus(painter, option);
            return;
        }
        QStyledItemDelegate::paint(painter, option, index);
        if (asCombo(item)) {
            paintArrow(painter, option);
        }
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return asCombo(itemAt(index)) ? size + QSize(size.height(), 0) : size;
    }

private:
    QTableItem* itemAt(const QModelIndex& index) const { return mTable.item(index.row(), index.column()); }

    QWidget* createBox(QWidget* parent, const QComboTableItem& item) const {
        auto* box = new QComboBox(parent);
        box->setFrame(false);
        box->addItems(item.stringList());
        // Choosing the entry that is current already is an entry as well.
        connect(box, &QComboBox::activated, this, [this, box] {
            box->setProperty(CHOSEN, true);
            auto* self = const_cast<Delegate*>(this);
            Q_EMIT self->commitData(box);
            if (mTable.mEditor == box) {
                Q_EMIT self->closeEditor(box);
            }
        });
        QTimer::singleShot(0, box, [box] {
            if (box->isVisible()) {
                box->showPopup();
            }
        });
        return box;
    }

    /** True if the user entered something. */
    bool takeOver(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
        if (auto* box = qobject_cast<QComboBox*>(editor)) {
            QComboTableItem* item = asCombo(itemAt(index));
            const bool chosen = item && (box->property(CHOSEN).toBool() || box->currentIndex() != item->currentItem());
            box->setProperty(CHOSEN, false);
            if (chosen) {
                item->setCurrentItem(box->currentIndex());
            }
            return chosen;
        }
        const QString before = mTable.text(index.row(), index.column());
        QStyledItemDelegate::setModelData(editor, model, index);
        return mTable.text(index.row(), index.column()) != before;
    }

    void paintFocus(QPainter* painter, const QStyleOptionViewItem& option) const {
        if (option.state.testFlag(QStyle::State_HasFocus)) {
            QStyleOptionFocusRect focus;
            focus.QStyleOption::operator=(option);
            focus.state |= QStyle::State_KeyboardFocusChange;
            mTable.style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter, &mTable);
        }
    }

    void paintArrow(QPainter* painter, const QStyleOptionViewItem& option) const {
        const QStyleOption& common = option;
        QStyleOption arrow = common;
        const int side = option.rect.height() / 2;
        arrow.rect = QRect(option.rect.right() - side - side / 2, option.rect.top() + (option.rect.height() - side) / 2,
                           side, side);
        mTable.style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, painter, &mTable);
    }

    QTable& mTable;
};

QTable::QTable(QWidget* parent, const char* name) : QTableWidget(parent) {
    setObjectName(QString::fromUtf8(name));
    setItemDelegate(new Delegate(*this));
    setEditTriggers(DoubleClicked | EditKeyPressed | AnyKeyPressed);
    setTabKeyNavigation(false);
}

QTable::~QTable() = default;

void QTable::setNumRows(int rows) {
    if (rows != rowCount()) {
        setRowCount(rows);
    }
}

void QTable::setNumCols(int columns) {
    if (columns != columnCount()) {
        setColumnCount(columns);
    }
}

QTableItem* QTable::item(int row, int column) const {
    return dynamic_cast<QTableItem*>(QTableWidget::item(row, column));
}

void QTable::setItem(int row, int column, QTableItem* item) {
    if (item) {
        applyFlags(*item, column);
    }
    QTableWidget::setItem(row, column, item);
}

QString QTable::text(int row, int column) const {
    const QTableItem* found = item(row, column);
    return found ? found->QTableWidgetItem::text() : QString();
}

void QTable::setText(int row, int column, const QString& text) {
    QTableItem* found = item(row, column);
    if (!found) {
        setItem(row, column, new QTableItem(text));
    } else if (found->QTableWidgetItem::text() != text) {
        found->setText(text);
    }
}

void QTable::applyFlags(QTableWidgetItem& item, int column) const {
    const Qt::ItemFlags flags =
        isColumnReadOnly(column) ? item.flags() & ~Qt::ItemIsEditable : item.flags() | Qt::ItemIsEditable;
    if (flags != item.flags()) {
        item.setFlags(flags);
    }
}

void QTable::setColumnReadOnly(int column, bool readOnly) {
    if (readOnly == isColumnReadOnly(column)) {
        return;
    }
    if (readOnly) {
        mReadOnly.insert(column);
    } else {
        mReadOnly.remove(column);
    }
    for (int row = 0; row < rowCount(); ++row) {
        if (QTableWidgetItem* cell = QTableWidget::item(row, column)) {
            applyFlags(*cell, column);
        }
    }
}

void QTable::setColumnStretchable(int column, bool stretchable) {
    if (stretchable != isColumnStretchable(column)) {
        horizontalHeader()->setSectionResizeMode(column, stretchable ? QHeaderView::Stretch : QHeaderView::Interactive);
    }
}

bool QTable::isColumnStretchable(int column) const {
    return column >= 0 && column < columnCount() &&
           horizontalHeader()->sectionResizeMode(column) == QHeaderView::Stretch;
}

void QTable::setRowLabels(const QStringList& labels) {
    for (int row = 0; row < rowCount() && row < labels.size(); ++row) {
        if (QTableWidgetItem* label = verticalHeaderItem(row); !label) {
            setVerticalHeaderItem(row, new QTableWidgetItem(labels[row]));
        } else if (label->text() != labels[row]) {
            label->setText(labels[row]);
        }
    }
}

void QTable::setColumnLabels(const QStringList& labels) {
    setHorizontalHeaderLabels(labels);
}

QString QTable::rowLabel(int row) const {
    const QTableWidgetItem* label = verticalHeaderItem(row);
    return label ? label->text() : QString::number(row + 1);
}

void QTable::setRowSelection(bool multiple) {
    setSelectionBehavior(SelectRows);
    setSelectionMode(multiple ? ExtendedSelection : SingleSelection);
}

bool QTable::isRowSelected(int row) const {
    return selectionModel()->isRowSelected(row, QModelIndex());
}

QSize QTable::sizeHint() const {
    int width = 2 * frameWidth() + verticalHeader()->sizeHint().width() + verticalScrollBar()->sizeHint().width();
    for (int column = 0; column < columnCount(); ++column) {
        width += isColumnStretchable(column) ? 2 * horizontalHeader()->sectionSizeHint(column) : columnWidth(column);
    }
    return QSize(width, QTableWidget::sizeHint().height());
}

bool QTable::isEditing() const {
    return mEditor && mEdited.isValid();
}

bool QTable::isEditing(int row, int column) const {
    return isEditing() && mEdited.row() == row && mEdited.column() == column;
}

void QTable::cancelEdit() {
    if (isEditing()) {
        closeEditor(mEditor, QAbstractItemDelegate::RevertModelCache);
    }
}

bool QTable::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    return !isColumnReadOnly(index.column()) && QTableWidget::edit(index, trigger, event);
}

void QTable::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    if (editor == mEditor) {
        mEditor = nullptr;
        mEdited = QPersistentModelIndex();
    }
    QTableWidget::closeEditor(editor, hint);
    Q_EMIT editorClosed();
}

void QTable::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton) {
        event->accept();
    } else {
        QTableWidget::mousePressEvent(event);
    }
}

void QTable::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPoint position = event->position().toPoint();
    const QModelIndex index = indexAt(position);
    const QPointer<QTable> self = this;
    if (event->button() != Qt::RightButton) {
        QTableWidget::mouseDoubleClickEvent(event);
    }
    if (self && index.isValid()) {
        Q_EMIT doubleClicked(index.row(), index.column(), static_cast<int>(event->button()), position);
    }
}

void QTable::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
    const QPoint position = byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos();
    Q_EMIT contextMenuRequested(index.row(), index.column(), position);
}

void QTable::keyPressEvent(QKeyEvent* event) {
    const QModelIndex index = currentIndex();
    if (state() != EditingState && index.isValid() && isEditingKey(event->key())) {
        event->accept();
        if (isColumnReadOnly(index.column())) {
            Q_EMIT keyPressedInReadOnlyCell(index.row(), index.column(), event->modifiers());
        } else {
            edit(index);
        }
        return;
    }
    QTableWidget::keyPressEvent(event);
}
