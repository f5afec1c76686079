#include "OpenWorkbench.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrUndoJournal.h>
#include <lyr_core/LyrUnitIdentifiers.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyrApplicationObject.h>
#include <lys_core/LyrWorkspace.h>
#include <workbench/ContentFiles.h>
#include <workbench/DocumentChanges.h>

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDockWidget>
#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUndoStack>

#include <memory>
#include <new>

namespace {

constexpr int TO = 1;
/** The one section between the two outermost ones: the greatest values stand on top. */
constexpr int MIDDLE = 1;

/** The window with a casting in color, whose table reaches from its least to its greatest value. */
class Editing : public OpenWorkbench {
protected:
    void SetUp() override {
        ASSERT_TRUE(open("builtin:casting@32"));
        ASSERT_EQ(contents().size(), 2u);
        first = positions();
        ASSERT_EQ(first.size(), 2u);
    }

    static std::vector<LyqLayer::Content> contents() { return LyqSession::instance().activeLayer()->contents(); }
    static QUndoStack& history() { return LyqApplication::instance().undoStack(); }
    QWidget& colors() const { return *window->findChild<QDockWidget*>("dock-colors")->widget(); }
    QTableWidget& rows() const { return *colors().findChild<QTableWidget*>("mSectionsTable"); }

    static std::vector<float> positions() {
        LyrValueArrayOPCache<float> list;
        EXPECT_TRUE(list.load(contents()[0].object, Lyrenum("PositionList", true)));
        return list.items();
    }

    /** Types the upper bound of the middle section into its cell. */
    void typeBound(const QString& text) {
        QLineEdit* line = openBound();
        ASSERT_TRUE(line);
        line->selectAll();
        QTest::keyClicks(line, text);
        QTest::keyClick(line, Qt::Key_Return);
        settle();
    }
    QLineEdit* openBound() const {
        rows().setFocus();
        rows().setCurrentCell(MIDDLE, TO);
        QTest::keyClick(&rows(), Qt::Key_F2);
        return rows().viewport()->findChild<QLineEdit*>();
    }

    std::vector<QImage> pictures() const {
        std::vector<QImage> all;
        for (LyqCameraWidget* view : window->views().views()) {
            all.push_back(view->getImage());
        }
        return all;
    }

    /** Closes the window and answers the question by one of its buttons. True if there was a question. */
    bool closeAndPress(const QString& button) {
        bool asked = false;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (box && box->objectName() == "unsavedChanges") {
                asked = true;
                timer.stop();
                QTest::mouseClick(box->findChild<QPushButton*>(button), Qt::LeftButton);
            }
        });
        timer.start(20);
        window->close();
        return asked;
    }

    std::vector<float> first;
};

}  // namespace

TEST_F(Editing, a_bound_typed_into_the_dock_recolors_all_views_and_is_one_step) {
    const std::vector<QImage> before = pictures();
    typeBound("15000");
    EXPECT_EQ(positions(), std::vector<float>({first[0], 15000.0f}));
    EXPECT_EQ(history().count(), 1);
    const std::vector<QImage> after = pictures();
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_NE(before[i], after[i]) << i;
    }
    window->findChild<QAction*>("undo")->trigger();
    settle();
    EXPECT_EQ(positions(), first);
    EXPECT_EQ(pictures(), before);
    window->findChild<QAction*>("redo")->trigger();
    settle();
    EXPECT_EQ(pictures(), after);
}

TEST_F(Editing, the_legend_dock_switches_the_legend_of_all_views_in_one_step) {
    const std::vector<QImage> before = pictures();
    auto* dock = window->findChild<QDockWidget*>("dock-legend");
    ASSERT_TRUE(dock);
    dock->raise();
    settle();
    auto* shown = dock->findChild<QComboBox*>("mRenderingComboBox");
    ASSERT_TRUE(shown);
    shown->setFocus();
    QTest::keyClick(shown, shown->currentIndex() == 0 ? Qt::Key_Down : Qt::Key_Up);
    settle();
    EXPECT_EQ(history().count(), 1);
    EXPECT_TRUE(window->contents().changes().isModified(contents()[1].object));
    EXPECT_FALSE(window->contents().changes().isModified(contents()[0].object));
    const std::vector<QImage> after = pictures();
    for (std::size_t i = 0; i < before.size(); ++i) {
        EXPECT_NE(before[i], after[i]) << i;
    }
    window->findChild<QAction*>("undo")->trigger();
    settle();
    EXPECT_EQ(pictures(), before);
}

TEST_F(Editing, undo_and_redo_say_what_they_would_do) {
    auto* undo = window->findChild<QAction*>("undo");
    auto* redo = window->findChild<QAction*>("redo");
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_FALSE(redo->isEnabled());
    typeBound("15000");
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_TRUE(undo->text().contains(history().text(0)));
    EXPECT_TRUE(undo->toolTip().contains(history().text(0)));
    undo->trigger();
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_TRUE(redo->text().contains(history().text(0)));
}

TEST_F(Editing, a_click_into_the_history_goes_to_that_state) {
    for (const char* bound : {"20000", "19000", "18000"}) {
        typeBound(bound);
    }
    auto* list = window->findChild<QListView*>("history");
    ASSERT_TRUE(list);
    ASSERT_EQ(list->model()->rowCount(), 4);
    window->findChild<QDockWidget*>("dock-history")->raise();
    settle();
    const auto click = [&](int row) {
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                          list->visualRect(list->model()->index(row, 0)).center());
        settle();
    };
    click(1);
    EXPECT_EQ(positions(), std::vector<float>({first[0], 20000.0f}));
    EXPECT_EQ(list->currentIndex().row(), 1);
    click(0);
    EXPECT_EQ(positions(), first);
    click(3);
    EXPECT_EQ(positions(), std::vector<float>({first[0], 18000.0f}));
    EXPECT_EQ(history().index(), 3);
}

TEST_F(Editing, the_docks_outlive_the_layer_that_they_show) {
    ASSERT_TRUE(openBound());
    LyqLayer* layer = LyqSession::instance().activeLayer();
    const LyrObjectPtr held(layer);
    EXPECT_TRUE(LyqSession::instance().removeLayer(layer));
    settle();
    EXPECT_FALSE(colors().isEnabled() && rows().isEnabled());
    EXPECT_FALSE(window->findChild<QAction*>("openContent0"));
    EXPECT_TRUE(LyqSession::instance().addLayer(layer));
    settle();
    EXPECT_TRUE(rows().isEnabled());
    typeBound("15000");
    EXPECT_EQ(positions(), std::vector<float>({first[0], 15000.0f}));
    window->closeVolume();
    settle();
    EXPECT_FALSE(rows().isEnabled());
    EXPECT_EQ(window->findChild<QListView*>("history")->model()->rowCount(), 1);
}

TEST_F(Editing, the_docks_follow_the_table_that_the_layer_links) {
    LyqLayer* layer = LyqSession::instance().activeLayer();
    const LyrObjectRefPtr other("LyrColorLookupTable", Lyr::DocumentScope);
    ASSERT_TRUE(other);
    ASSERT_TRUE(lyrSetValue(layer, Lyrenum("ColorLookupTable", true), LyrObjectLink(other.get(), nullptr, -1)));
    settle();
    EXPECT_EQ(contents()[0].object, other.get());
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(positions(), std::vector<float>({-1.0f, 1.0f}));
    EXPECT_EQ(rows().item(MIDDLE, TO)->text(), "1");
    typeBound("0.5");
    EXPECT_EQ(positions(), std::vector<float>({-1.0f, 0.5f}));
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(Editing, the_docks_go_with_the_plug_in_and_come_back) {
    typeBound("15000");
    history().clear();  // its steps hold objects of the plug-in
    EXPECT_EQ(plugins.unloadAll(), QStringList());
    EXPECT_FALSE(window->findChild<QDockWidget*>("dock-colors"));
    EXPECT_FALSE(window->findChild<QDockWidget*>("dock-legend"));
    EXPECT_FALSE(window->contents().changes().isModified());
    EXPECT_EQ(plugins.loadAll(), QStringList());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 20000));
    settle();
    EXPECT_EQ(positions(), first);
    EXPECT_TRUE(rows().isEnabled());
}

TEST_F(Editing, a_table_that_was_saved_comes_back_as_one_step) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("colors.json");
    QString message;
    ASSERT_TRUE(window->contents().save(contents()[0], file, message)) << message.toStdString();
    typeBound("15000");
    typeBound("12000");
    ASSERT_TRUE(window->contents().open(contents()[0], file, message)) << message.toStdString();
    EXPECT_EQ(message, QString());
    EXPECT_EQ(positions(), first);
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_EQ(history().count(), 3);
    EXPECT_TRUE(LyqApplication::instance().undo());
    EXPECT_EQ(positions(), std::vector<float>({first[0], 12000.0f}));
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(Editing, settings_of_a_legend_are_saved_and_opened) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("legend.json");
    LyrObject* settings = contents()[1].object;
    const Lyrenum thickness("Thickness", true);
    QString message;
    ASSERT_TRUE(lyrSetValue(settings, thickness, 33LL));
    EXPECT_TRUE(window->isWindowModified());
    ASSERT_TRUE(window->contents().save(contents()[1], file, message)) << message.toStdString();
    EXPECT_FALSE(window->isWindowModified());
    ASSERT_TRUE(lyrSetValue(settings, thickness, 44LL));
    ASSERT_TRUE(window->contents().open(contents()[1], file, message)) << message.toStdString();
    EXPECT_EQ(lyrGetValue(settings, thickness, 0LL), 33LL);
}

TEST_F(Editing, a_table_whose_opening_could_not_be_undone_is_not_opened) {
    struct Full : LyrUndoJournal::Sink {
        Full() { LyrUndoJournal::instance().setSink(this); }
        ~Full() override { LyrUndoJournal::instance().setSink(before); }
        bool stepFinished(std::unique_ptr<LyrUndoStep>&) override { throw std::bad_alloc(); }
        LyrUndoJournal::Sink* before = LyrUndoJournal::instance().getSink();
    };
    const QTemporaryDir folder;
    const QString file = folder.filePath("colors.json");
    QString message;
    ASSERT_TRUE(window->contents().save(contents()[0], file, message)) << message.toStdString();
    typeBound("15000");
    {
        const Full full;
        EXPECT_FALSE(window->contents().open(contents()[0], file, message));
    }
    EXPECT_TRUE(message.contains("memory")) << message.toStdString();
    EXPECT_EQ(positions(), std::vector<float>({first[0], 15000.0f}));
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(history().count(), 1);
}

TEST_F(Editing, a_file_that_cannot_be_opened_is_a_message_and_changes_nothing) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("broken.json");
    QFile out(file);
    ASSERT_TRUE(out.open(QIODevice::WriteOnly));
    out.write("{ \"format\": \"lyr-object\", ");
    out.close();
    typeBound("15000");
    QString message;
    EXPECT_FALSE(window->contents().open(contents()[0], file, message));
    EXPECT_TRUE(message.contains("broken.json")) << message.toStdString();
    // A file of the other kind.
    const QString legend = folder.filePath("legend.json");
    ASSERT_TRUE(window->contents().save(contents()[1], legend, message));
    EXPECT_FALSE(window->contents().open(contents()[0], legend, message));
    EXPECT_TRUE(message.contains("legend.json")) << message.toStdString();
    EXPECT_EQ(positions(), std::vector<float>({first[0], 15000.0f}));
    EXPECT_EQ(history().count(), 1);
    EXPECT_FALSE(window->contents().save(contents()[0], "/there/is/no/folder/a.json", message));
    EXPECT_TRUE(message.contains("/there/is/no/folder/a.json"));
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(Editing, undo_to_what_was_saved_makes_the_document_unmodified) {
    EXPECT_FALSE(window->isWindowModified());
    typeBound("15000");
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_TRUE(LyqApplication::instance().undo());
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_TRUE(LyqApplication::instance().redo());
    EXPECT_TRUE(window->isWindowModified());
}

TEST_F(Editing, what_is_no_content_does_not_modify_the_document) {
    LyqSession::instance().activeLayer()->setOpacity(0.5f);
    LyqApplication::instance().workspace()->setCrossPosition({1.0f, 1.0f, 1.0f});
    settle();
    EXPECT_FALSE(window->isWindowModified());
    EXPECT_FALSE(closeAndPress("cancel"));
    EXPECT_FALSE(window->isVisible());
}

TEST_F(Editing, closing_asks_and_cancel_keeps_everything) {
    typeBound("15000");
    EXPECT_TRUE(closeAndPress("cancel"));
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(LyqSession::instance().document());
    EXPECT_EQ(positions(), std::vector<float>({first[0], 15000.0f}));
    EXPECT_TRUE(closeAndPress("discard"));
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(LyqSession::instance().document());
}

TEST_F(Editing, closing_saves_to_the_file_that_the_table_has) {
    const QTemporaryDir folder;
    const QString file = folder.filePath("colors.json");
    QString message;
    ASSERT_TRUE(window->contents().save(contents()[0], file, message));
    typeBound("15000");
    EXPECT_TRUE(closeAndPress("save"));
    EXPECT_FALSE(window->isVisible());
    QFile in(file);
    ASSERT_TRUE(in.open(QIODevice::ReadOnly));
    EXPECT_TRUE(in.readAll().contains("15000"));
}

TEST_F(Editing, another_volume_does_not_take_unsaved_changes_away_unasked) {
    typeBound("15000");
    bool asked = false;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            asked = true;
            timer.stop();
            QTest::mouseClick(box->findChild<QPushButton*>("cancel"), Qt::LeftButton);
        }
    });
    timer.start(20);
    window->openVolume("builtin:casting@16");
    ASSERT_TRUE(QTest::qWaitFor([&] { return asked && !window->isBusy(); }, 20000));
    EXPECT_EQ(positions(), std::vector<float>({first[0], 15000.0f}));
    EXPECT_TRUE(window->windowTitle().contains("casting@32"));
}

TEST_F(Editing, units_are_chosen_from_the_menu) {
    const LyrDisplayUnits& units = LyqApplication::instance().displayUnits();
    window->findChild<QAction*>("inchUnits")->trigger();
    EXPECT_EQ(units.getDisplayUnit(Lyr::Length), Lyr::Inch);
    window->findChild<QAction*>("unit-Centimeter")->trigger();
    EXPECT_EQ(units.getDisplayUnit(Lyr::Length), Lyrenum("Centimeter", true));
    EXPECT_EQ(units.getDisplayUnit(Lyr::Area), Lyr::SquareInch);
    window->findChild<QAction*>("metricUnits")->trigger();
    EXPECT_EQ(units.getDisplayUnit(Lyr::Length), Lyr::Millimeter);
}
