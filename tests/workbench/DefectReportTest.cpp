#include "OpenWorkbench.h"
#include "RunProgram.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqExtensionRegistry.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqPresetDefaultHandler.h>
#include <lys_core/LyqPresetFolders.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LyqSession.h>
#include <workbench/AnalysisRunner.h>

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

namespace {

/** The window with the defects of a casting and a preset "Own Limits" of the user: pass to 20 mm³, warn to 100. */
class DefectReport : public OpenWorkbench {
protected:
    void SetUp() override {
        const QString presets = folder.filePath("lys_colortable/presets");
        ASSERT_TRUE(QDir().mkpath(presets));
        QByteArray text =
            contentOf(QString::fromStdString(LyqPresetFolders::installed()) + "/tolerance-pore-volume.json");
        text.replace("\"PositionList\": [0.5, 4]", "\"PositionList\": [20, 100]");
        text.replace("Tolerance Pore Volume", "Own Limits");
        QFile file(presets + "/own.json");
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        file.close();
        qputenv("XDG_DATA_HOME", folder.path().toUtf8());
        ASSERT_TRUE(open("builtin:casting@64"));
        auto* analysis = LyqExtensionRegistry::instance().find<LyqAnalysisExtension>("defect-volume");
        QString message;
        ASSERT_TRUE(analysis && window->analyses().start(*analysis, message)) << message.toStdString();
        ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 60000));
        auto* handler = dynamic_cast<LyqPresetDefaultHandler*>(LyqPresetRegistry::instance().findHandler(
            LyqSession::instance().activeLayer()->contents()[0].presetCategory));
        ASSERT_TRUE(handler);
        handler->setPresetFolder(Lyr::UserPreset, presets.toStdString());
        settle();
    }
    void TearDown() override { qputenv("XDG_DATA_HOME", dataHome); }

    /** Chooses a tolerance table in the list of defects, as a user does. */
    void choose(const QString& name) {
        auto* box = window->findChild<QComboBox*>("toleranceChooser");
        ASSERT_TRUE(box);
        box->showPopup();
        box->hidePopup();
        const int index = box->findText(name);
        ASSERT_GE(index, 0) << name.toStdString();
        box->setCurrentIndex(index);
        Q_EMIT box->activated(index);
        settle();
    }
    /** Saves the report from the list of defects. */
    void save(const QString& path) {
        auto* button = window->findChild<QPushButton*>("saveDefects");
        ASSERT_TRUE(button);
        QTimer::singleShot(0, window.get(), [path] {
            if (auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
                dialog->selectFile(path);
                QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
            }
        });
        button->click();
    }
    /** What the program writes without users. */
    QByteArray written(const QString& kind, const QStringList& options) {
        const QString path = folder.filePath("without-users" + kind);
        const EndedProgram ended =
            runWorkbench(QStringList{"builtin:casting@64", "--analysis", "defect-volume", "--report", path} + options);
        EXPECT_EQ(ended.status, 0) << ended.errors.toStdString();
        return contentOf(path);
    }

    QTemporaryDir folder;
    QByteArray dataHome = qgetenv("XDG_DATA_HOME");
};

}  // namespace

TEST_F(DefectReport, saved_from_the_window_is_that_of_the_command_line_whatever_table_judges) {
    QByteArray before;
    for (const char* table : {"", "Own Limits", "Tolerance Pore Volume"}) {
        choose(*table ? table : "The layer's own table");
        for (const QString& kind : {QString(".csv"), QString(".json")}) {
            const QString path = folder.filePath(QString("window") + table + kind);
            save(path);
            const QByteArray saved = contentOf(path);
            const QByteArray expected = written(kind, *table ? QStringList{"--preset", table} : QStringList());
            EXPECT_EQ(saved, expected) << table << kind.toStdString();
            EXPECT_EQ(saved.contains("verdict"), *table != '\0');
            EXPECT_NE(saved, before) << "each table judges otherwise";
            before = saved;
        }
    }
}

TEST_F(DefectReport, of_the_layers_own_table_is_the_same_once_a_preset_was_applied_to_it) {
    auto* handler =
        LyqPresetRegistry::instance().findHandler(LyqSession::instance().activeLayer()->contents()[0].presetCategory);
    handler->setApplicationObject(LyqSession::instance().activeLayer()->contents()[0].object);
    ASSERT_TRUE(handler->applyPreset("Own Limits", Lyr::UserPreset)) << handler->getMessage().utf8();
    settle();
    const QString path = folder.filePath("applied.json");
    save(path);
    EXPECT_EQ(contentOf(path), written(".json", {"--preset", "Own Limits"}));
}

TEST_F(DefectReport, that_cannot_be_written_is_a_message_with_the_path) {
    // A link to where nobody, not even root, can make a file; the file dialog lists the link's own folder only.
    const QString path = folder.filePath("defects.csv");
    ASSERT_TRUE(QFile::link("/there/is/no/folder/defects.csv", path));
    QString told;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, window.get(), [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            told = box->text();
            box->accept();
        }
    });
    watch.start(20);
    save(path);
    EXPECT_TRUE(told.contains("defects.csv")) << told.toStdString();
    EXPECT_FALSE(QFile::exists(path));
}
