#pragma once

#include <colortable/editor/LyqColorLookupTableEditor.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyrApplicationObject.h>
#include <toolkit/QComboTableItem.h>
#include <toolkit/QTable.h>

#include <QComboBox>
#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include "EditorTools.h"

enum EditorColumn { FROM = 0, TO = 1, TYPE = 2, DETAIL = 3 };

/** Counts rebuilds and notes the hooks that are called. */
class ObservedEditor : public LyqColorLookupTableEditor {
public:
    using LyqColorLookupTableEditor::LyqColorLookupTableEditor;
    int syncs = 0;
    QStringList hooks;

protected:
    void doSync() override {
        ++syncs;
        LyqColorLookupTableEditor::doSync();
    }
    void createSmoothStart() override { hooks.append("smooth start"); }
    void createSmoothEnd() override { hooks.append("smooth end"); }
    void createSmoothAbort() override { hooks.append("smooth abort"); }
    void createSteppedStart() override { hooks.append("stepped start"); }
    void createSteppedEnd() override { hooks.append("stepped end"); }
    void createSteppedAbort() override { hooks.append("stepped abort"); }
    void createSphereSegmentSteppedStart() override { hooks.append("sphere start"); }
    void createSphereSegmentSteppedEnd() override { hooks.append("sphere end"); }
    void createSphereSegmentSteppedAbort() override { hooks.append("sphere abort"); }
};

/** An editor on the screen, driven by the names of its widgets. */
class EditorFixture : private ToolkitApplication, public testing::Test {
protected:
    EditorFixture() {
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        QLocale::setDefault(QLocale::c());
        LyqApplication::instance().undoStack().clear();
        editor.setLogicObject(table.get());
        editor.resize(460, 700);
        editor.show();
        settle();
    }
    ~EditorFixture() override {
        LyqApplication::instance().displayUnits().setInchSystem(false);
        LyqApplication::instance().undoStack().clear();
        QLocale::setDefault(QLocale::c());
    }

    /** Shows another table. */
    void show(const LyrObjectRefPtr& other) {
        table = other;
        editor.setLogicObject(table.get());
        settle();
    }

    /** Lets the toolkit paint, commit and close editors. */
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    template <class Widget>
    Widget* find(const char* name) {
        return editor.findChild<Widget*>(QString::fromUtf8(name));
    }

    QRect cell(int row, int column) { return rows.visualRect(rows.model()->index(row, column)); }
    QComboTableItem* combo(int row) { return dynamic_cast<QComboTableItem*>(rows.item(row, TYPE)); }

    template <class Editor>
    Editor* openEditor(int row, int column) {
        rows.setFocus();
        rows.setCurrentCell(row, column);
        QTest::keyClick(&rows, Qt::Key_F2);
        return rows.viewport()->findChild<Editor*>();
    }

    /** Types a text into a cell as a user does. */
    void type(int row, int column, const QString& text) {
        auto* line = openEditor<QLineEdit>(row, column);
        ASSERT_TRUE(line);
        line->selectAll();
        if (text.isEmpty()) {
            QTest::keyClick(line, Qt::Key_Delete);
        }
        QTest::keyClicks(line, text);
        QTest::keyClick(line, Qt::Key_Return);
        settle();
    }

    void choose(int row, int entry) {
        auto* box = openEditor<QComboBox>(row, TYPE);
        ASSERT_TRUE(box);
        box->setCurrentIndex(entry);
        Q_EMIT box->activated(entry);
        settle();
    }

    void selectRows(const std::vector<int>& selected) {
        rows.clearSelection();
        for (const int row : selected) {
            QTest::mouseClick(rows.viewport(), Qt::LeftButton, Qt::ControlModifier, cell(row, FROM).center());
        }
    }

    /** Opens the menu on a row; `use` is called with its two entries. */
    void menuOn(int row, const std::function<void(QAction& split, QAction& merge, QMenu& menu)>& use) {
        bool seen = false;
        QTimer::singleShot(0, &editor, [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_TRUE(menu);
            seen = true;
            ASSERT_EQ(menu->actions().size(), 2);
            use(*menu->actions()[0], *menu->actions()[1], *menu);
            menu->close();
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, cell(row, FROM).center(),
                                rows.viewport()->mapToGlobal(cell(row, FROM).center()));
        QCoreApplication::sendEvent(rows.viewport(), &event);
        settle();
        EXPECT_TRUE(seen);
    }
    void split(int row) {
        menuOn(row, [](QAction& entry, QAction&, QMenu& menu) { clickEntry(menu, entry); });
    }
    void merge(int row) {
        menuOn(row, [](QAction&, QAction& entry, QMenu& menu) { clickEntry(menu, entry); });
    }
    static void clickEntry(QMenu& menu, QAction& entry) {
        QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(&entry).center());
    }

    QStringList column(int index) {
        QStringList texts;
        for (int row = 0; row < rows.numRows(); ++row) {
            texts.append(rows.text(row, index));
        }
        return texts;
    }

    LyrObjectRefPtr table = newTable();
    ObservedEditor editor{nullptr, "editor"};
    QTable& rows = *editor.findChild<QTable*>(QStringLiteral("mSectionsTable"));
};
