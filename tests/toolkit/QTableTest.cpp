#include <toolkit/QComboTableItem.h>
#include <toolkit/QTable.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QPainter>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

namespace {

/** Fills its cell with one colour. */
class RedItem : public QTableItem {
public:
    int rtti() const override { return 4711; }
    bool paint(QPainter& painter, const QPalette&, const QRect& cell, bool) override {
        painter.fillRect(cell, Qt::red);
        return true;
    }
};

class Table : private ToolkitApplication, public testing::Test {
protected:
    Table() {
        table.setNumRows(3);
        table.setNumCols(3);
        table.setRowSelection(true);
        for (int row = 0; row < 3; ++row) {
            table.setText(row, 0, QString::number(row));
            table.setItem(row, 1, new QComboTableItem({"a", "b", "c"}));
            table.setItem(row, 2, new RedItem);
        }
        table.resize(400, 300);
        table.show();
        QCoreApplication::processEvents();
    }

    QPoint centre(int row, int column) { return table.visualItemRect(table.item(row, column)).center(); }
    QComboTableItem& combo(int row) { return static_cast<QComboTableItem&>(*table.item(row, 1)); }

    template <class Editor>
    Editor* editorOf(int row, int column) {
        table.setCurrentCell(row, column);
        QTest::keyClick(&table, Qt::Key_F2);
        return table.viewport()->findChild<Editor*>();
    }
    /** Lets the toolkit commit, close and delete editors. */
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QTable table{nullptr, "table"};
    QSignalSpy changes{&table, SIGNAL(valueChanged(int, int))};
};

}  // namespace

TEST_F(Table, has_the_name_rows_and_columns_it_was_given) {
    EXPECT_EQ(table.objectName(), QStringLiteral("table"));
    EXPECT_EQ(table.numRows(), 3);
    EXPECT_EQ(table.numCols(), 3);
}

TEST_F(Table, items_tell_their_classes_apart) {
    EXPECT_EQ(table.item(0, 0)->rtti(), 0);
    EXPECT_EQ(table.item(0, 1)->rtti(), 1);
    EXPECT_EQ(table.item(0, 2)->rtti(), 4711);
    EXPECT_EQ(table.item(3, 0), nullptr);
    EXPECT_EQ(table.item(2, 1)->col(), 1);
}

TEST_F(Table, filling_it_tells_nothing) {
    table.setText(0, 0, QStringLiteral("new"));
    combo(1).setCurrentItem(2);
    combo(2).setStringList({"x"});
    table.setNumRows(7);
    QCoreApplication::processEvents();
    EXPECT_EQ(table.text(0, 0), QStringLiteral("new"));
    EXPECT_EQ(table.text(1, 1), QStringLiteral("c"));
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(Table, another_text_typed_by_the_user_is_told_once) {
    auto* line = editorOf<QLineEdit>(1, 0);
    ASSERT_TRUE(line);
    EXPECT_TRUE(table.isEditing(1, 0));
    EXPECT_FALSE(table.isEditing(1, 1));
    QTest::keyClicks(line, QStringLiteral("42"));
    QTest::keyClick(line, Qt::Key_Return);
    settle();
    EXPECT_EQ(table.text(1, 0), QStringLiteral("42"));
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0], (QList<QVariant>{1, 0}));
    EXPECT_FALSE(table.isEditing());
}

TEST_F(Table, an_editor_left_with_the_same_text_or_escaped_tells_nothing) {
    auto* line = editorOf<QLineEdit>(1, 0);
    QTest::keyClick(line, Qt::Key_Return);
    settle();
    line = editorOf<QLineEdit>(1, 0);
    QTest::keyClicks(line, QStringLiteral("42"));
    QTest::keyClick(line, Qt::Key_Escape);
    settle();
    EXPECT_EQ(table.text(1, 0), QStringLiteral("1"));
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(Table, return_opens_an_editor_and_does_not_close_it_at_once) {
    table.setCurrentCell(2, 0);
    QTest::keyClick(&table, Qt::Key_Return);
    settle();
    EXPECT_TRUE(table.isEditing(2, 0));
}

TEST_F(Table, an_edit_can_be_dropped_from_outside) {
    QSignalSpy closed(&table, SIGNAL(editorClosed()));
    auto* line = editorOf<QLineEdit>(1, 0);
    QTest::keyClicks(line, QStringLiteral("42"));
    table.cancelEdit();
    settle();
    EXPECT_FALSE(table.isEditing());
    EXPECT_EQ(table.text(1, 0), QStringLiteral("1"));
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(closed.count(), 1);
}

TEST_F(Table, an_edit_ends_with_its_row) {
    auto* line = editorOf<QLineEdit>(2, 0);
    QTest::keyClicks(line, QStringLiteral("42"));
    table.setNumRows(1);
    settle();
    EXPECT_FALSE(table.isEditing());
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(Table, an_entry_chosen_from_a_list_is_told_even_if_it_was_current) {
    for (const int index : {2, 2, 0}) {
        auto* box = editorOf<QComboBox>(1, 1);
        ASSERT_TRUE(box);
        EXPECT_EQ(box->currentIndex(), combo(1).currentItem());
        box->setCurrentIndex(index);
        Q_EMIT box->activated(index);
        settle();
        EXPECT_EQ(combo(1).currentItem(), index);
        EXPECT_FALSE(table.isEditing());
    }
    EXPECT_EQ(changes.count(), 3);
}

TEST_F(Table, a_list_opens_and_is_chosen_from_by_keyboard) {
    auto* box = editorOf<QComboBox>(0, 1);
    QCoreApplication::processEvents();
    ASSERT_TRUE(box->view()->isVisible());
    QTest::keyClick(box->view(), Qt::Key_Down);
    QTest::keyClick(box->view(), Qt::Key_Return);
    settle();
    EXPECT_EQ(combo(0).currentText(), QStringLiteral("b"));
    EXPECT_EQ(changes.count(), 1);
}

TEST_F(Table, a_list_left_without_a_choice_tells_nothing) {
    auto* box = editorOf<QComboBox>(0, 1);
    box->hidePopup();
    QTest::keyClick(box, Qt::Key_Return);
    settle();
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(Table, a_list_item_starts_with_its_first_entry_and_keeps_the_current_one_of_equal_entries) {
    QComboTableItem item({"a", "b"});
    EXPECT_EQ(item.currentItem(), 0);
    item.setCurrentItem(1);
    item.setStringList({"a", "b"});
    EXPECT_EQ(item.currentItem(), 1);
    item.setCurrentItem(2);
    item.setCurrentItem(-1);
    EXPECT_EQ(item.currentText(), QStringLiteral("b"));
    item.setStringList({"b"});
    EXPECT_EQ(item.currentItem(), 0);
    item.setStringList({});
    EXPECT_EQ(item.currentItem(), -1);
    EXPECT_EQ(item.count(), 0);
}

TEST_F(Table, read_only_columns_are_not_edited) {
    table.setColumnReadOnly(0, true);
    EXPECT_FALSE(editorOf<QLineEdit>(1, 0));
    QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, centre(1, 0));
    EXPECT_FALSE(table.isEditing());
    table.setItem(2, 0, new QTableItem);
    EXPECT_FALSE(table.item(2, 0)->flags().testFlag(Qt::ItemIsEditable));
    table.setColumnReadOnly(0, false);
    EXPECT_TRUE(editorOf<QLineEdit>(1, 0));
}

TEST_F(Table, keys_that_would_edit_are_told_in_read_only_cells) {
    table.setColumnReadOnly(2, true);
    QSignalSpy keys(&table, SIGNAL(keyPressedInReadOnlyCell(int, int, Qt::KeyboardModifiers)));
    table.setCurrentCell(1, 2);
    QTest::keyClick(&table, Qt::Key_Return);
    QTest::keyClick(&table, Qt::Key_F2, Qt::ShiftModifier);
    QTest::keyClick(&table, Qt::Key_Down);
    ASSERT_EQ(keys.count(), 2);
    EXPECT_EQ(keys[1][0].toInt(), 1);
    EXPECT_EQ(keys[1][1].toInt(), 2);
    EXPECT_EQ(keys[1][2].value<Qt::KeyboardModifiers>(), Qt::ShiftModifier);
}

TEST_F(Table, a_double_click_is_told_with_cell_button_and_viewport_position) {
    table.setColumnReadOnly(2, true);
    QSignalSpy clicks(&table, SIGNAL(doubleClicked(int, int, int, QPoint)));
    const QPoint position = centre(1, 2) + QPoint(3, 1);
    QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, position);
    QTest::mouseDClick(table.viewport(), Qt::LeftButton, {}, table.viewport()->rect().bottomRight());
    ASSERT_EQ(clicks.count(), 1);
    EXPECT_EQ(clicks[0], (QList<QVariant>{1, 2, int(Qt::LeftButton), position}));
}

TEST_F(Table, a_right_press_leaves_the_selection) {
    table.selectRow(0);
    QTest::mouseClick(table.viewport(), Qt::RightButton, {}, centre(2, 0));
    EXPECT_TRUE(table.isRowSelected(0));
    EXPECT_FALSE(table.isRowSelected(2));
}

TEST_F(Table, a_menu_is_asked_for_by_mouse_and_by_key) {
    QSignalSpy menus(&table, SIGNAL(contextMenuRequested(int, int, QPoint)));
    QContextMenuEvent atCell(QContextMenuEvent::Mouse, centre(1, 0), QPoint(70, 80));
    QCoreApplication::sendEvent(table.viewport(), &atCell);
    QContextMenuEvent outside(QContextMenuEvent::Mouse, table.viewport()->rect().bottomRight(), QPoint(7, 8));
    QCoreApplication::sendEvent(table.viewport(), &outside);
    table.setCurrentCell(2, 1);
    QContextMenuEvent byKey(QContextMenuEvent::Keyboard, QPoint(0, 0), QPoint(0, 0));
    QCoreApplication::sendEvent(table.viewport(), &byKey);
    ASSERT_EQ(menus.count(), 3);
    EXPECT_EQ(menus[0], (QList<QVariant>{1, 0, QPoint(70, 80)}));
    EXPECT_EQ(menus[1], (QList<QVariant>{-1, -1, QPoint(7, 8)}));
    EXPECT_EQ(menus[2], (QList<QVariant>{2, 1, table.viewport()->mapToGlobal(centre(2, 1))}));
}

TEST_F(Table, whole_rows_are_selected_one_or_several) {
    table.selectRow(0);
    QTest::mouseClick(table.viewport(), Qt::LeftButton, Qt::ControlModifier, centre(2, 0));
    EXPECT_TRUE(table.isRowSelected(0));
    EXPECT_FALSE(table.isRowSelected(1));
    EXPECT_TRUE(table.isRowSelected(2));
    table.setRowSelection(false);
    table.clearSelection();
    QTest::mouseClick(table.viewport(), Qt::LeftButton, {}, centre(0, 0));
    QTest::mouseClick(table.viewport(), Qt::LeftButton, Qt::ControlModifier, centre(2, 0));
    EXPECT_FALSE(table.isRowSelected(0));
}

TEST_F(Table, a_stretchable_column_takes_the_room_that_is_left) {
    EXPECT_FALSE(table.isColumnStretchable(2));
    table.setColumnStretchable(2, true);
    EXPECT_TRUE(table.isColumnStretchable(2));
    QCoreApplication::processEvents();
    EXPECT_EQ(table.columnWidth(0) + table.columnWidth(1) + table.columnWidth(2), table.viewport()->width());
    table.setColumnStretchable(2, false);
    EXPECT_FALSE(table.isColumnStretchable(2));
}

TEST_F(Table, asks_for_a_width_that_shows_its_columns) {
    table.setColumnWidth(0, 300);
    table.setColumnWidth(1, 200);
    table.setColumnStretchable(2, true);
    table.resize(table.sizeHint());
    QCoreApplication::processEvents();
    EXPECT_FALSE(table.horizontalScrollBar()->isVisible());
    EXPECT_GE(table.columnWidth(2), table.horizontalHeader()->sectionSizeHint(2));
}

TEST_F(Table, rows_and_columns_are_labelled) {
    EXPECT_EQ(table.rowLabel(1), QStringLiteral("2"));
    table.setRowLabels({"x", "y", "z", "beyond"});
    table.setRowLabels({"x", "v", "z"});
    table.setColumnLabels({"p", "q", "r"});
    EXPECT_EQ(table.rowLabel(1), QStringLiteral("v"));
    EXPECT_EQ(table.horizontalHeaderItem(2)->text(), QStringLiteral("r"));
}

TEST_F(Table, an_item_may_paint_its_whole_cell) {
    const QRect cell = table.visualItemRect(table.item(0, 2));
    const QImage image = table.viewport()->grab(cell).toImage();
    EXPECT_EQ(image.pixelColor(1, 1), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(cell.width() - 3, cell.height() - 3), QColor(Qt::red));
}

TEST_F(Table, tab_leaves_it) {
    QWidget window;
    auto* inner = new QTable(&window);
    auto* line = new QLineEdit(&window);
    inner->setNumRows(2);
    inner->setNumCols(2);
    inner->setCurrentCell(0, 0);
    window.show();
    inner->setFocus();
    QTest::keyClick(inner, Qt::Key_Tab);
    EXPECT_EQ(inner->currentColumn(), 0);
    EXPECT_EQ(window.focusWidget(), line);
}
