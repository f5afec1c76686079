#include "OpenWorkbench.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectFile.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqPresetComboBox.h>
#include <lys_core/LyqPresetHandler.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LyqSession.h>

#include <QApplication>
#include <QDialog>
#include <QDockWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QUndoStack>

namespace {

/** Keeps the presets of whoever runs the tests out of them. */
struct OwnDataFolder {
    OwnDataFolder() { qputenv("XDG_DATA_HOME", folder.path().toUtf8()); }
    ~OwnDataFolder() { qputenv("XDG_DATA_HOME", before); }
    QTemporaryDir folder;
    QByteArray before = qgetenv("XDG_DATA_HOME");
};

class PresetsInTheWindow : OwnDataFolder, public OpenWorkbench {
protected:
    void SetUp() override {
        ASSERT_TRUE(open("builtin:casting@32"));
        auto* dock = window->findChild<QDockWidget*>("dock-colors");
        ASSERT_TRUE(dock);
        box = dock->widget()->findChild<LyqPresetComboBox*>("mPresetComboBox");
        ASSERT_TRUE(box);
        dock->raise();
        settle();
    }

    static LyrObject& table() { return *LyqSession::instance().activeLayer()->contents()[0].object; }
    static std::string textOfTable() {
        std::string text;
        EXPECT_TRUE(LyrObjectFile::write(table(), text));
        return text;
    }
    void choose(const QString& item) {
        box->refresh();
        const int index = box->findText(item);
        ASSERT_GE(index, 0) << item.toStdString();
        box->setCurrentIndex(index);
        Q_EMIT box->activated(index);
        settle();
    }
    /** Chooses an item that opens a dialog, and closes that. The name of the dialog's class. */
    QString dialogOf(const QString& item) {
        QString name;
        QTimer timer;
        connect(&timer, &QTimer::timeout, this, [&] {
            if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                name = dialog->metaObject()->className();
                dialog->reject();
            }
        });
        timer.start(20);
        choose(item);
        return name;
    }

    LyqPresetComboBox* box = nullptr;
};

}  // namespace

TEST_F(PresetsInTheWindow, are_offered_beside_the_active_layers_table) {
    EXPECT_TRUE(box->isVisibleTo(window.get()));
    ASSERT_TRUE(box->handler());
    EXPECT_EQ(box->handler()->getApplicationObject(), &table());
    EXPECT_GE(box->findText("Rainbow"), 0);
    EXPECT_GE(box->findText("Reverse Rainbow"), 0);
}

TEST_F(PresetsInTheWindow, are_applied_as_one_step_that_undo_takes_back_whole) {
    QUndoStack& history = LyqApplication::instance().undoStack();
    const std::string original = textOfTable();
    const int steps = history.count();
    choose("Reverse Rainbow");
    EXPECT_EQ(history.count(), steps + 1);
    const std::string after = textOfTable();
    EXPECT_NE(after.find("\"InvertedRainbow\""), std::string::npos);
    ASSERT_TRUE(LyqApplication::instance().undo());
    EXPECT_EQ(textOfTable(), original);
    ASSERT_TRUE(LyqApplication::instance().redo());
    EXPECT_EQ(textOfTable(), after);
}

TEST_F(PresetsInTheWindow, are_saved_and_managed_from_the_box) {
    EXPECT_EQ(dialogOf("Save preset..."), QStringLiteral("LyqPresetSaveDialog"));
    EXPECT_EQ(dialogOf("Manage presets..."), QStringLiteral("LyqPresetManageDialog"));
    ASSERT_TRUE(box->handler()->savePresetAs("mine"));
    EXPECT_GE(box->findText("mine"), 0);
}

TEST_F(PresetsInTheWindow, go_with_the_plug_in_that_brought_them) {
    const Lyrenum category = box->getHandlerId();
    EXPECT_EQ(LyqPresetRegistry::instance().findHandler(category), box->handler());
    window.reset();
    EXPECT_EQ(plugins.unloadAll(), QStringList());
    EXPECT_EQ(LyqPresetRegistry::instance().findHandler(category), nullptr);
}
