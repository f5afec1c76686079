#include "BlockVolume.h"

#include <ToolkitApplication.h>
#include <analysis/DefectPanel.h>
#include <analysis/DefectTableModel.h>
#include <analysis/LibraryInit.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/ToleranceChooser.h>
#include <analysis/compute/LyrDefectAnalysis.h>
#include <analysis/compute/LyrVerdict.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqPresetDefaultHandler.h>
#include <lys_core/LyqPresetFolders.h>
#include <lys_core/LyqPresetRegistry.h>
#include <lys_core/LyqSession.h>

#include <QColor>
#include <QFile>
#include <QLabel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

#include <memory>

namespace {

/** The list of defects over the hollow block: 64 mm³ and 16 mm³. The user's presets lie in a folder of the test. */
class Tolerance : public ::testing::Test, protected ToolkitApplication {
protected:
    Tolerance() {
        LYQANALYSIS::LibraryInit::init();
        handler =
            dynamic_cast<LyqPresetDefaultHandler*>(LyqPresetRegistry::instance().findHandler(Lyr::ColorLookupTable));
        handler->setPresetFolder(Lyr::UserPreset, folder.path().toStdString());
        document = LyrObjectPtr(new LyrVolumeObject(hollowBlock(), "block", "block"));
        LyqSession::instance().setDocument(document.get());
        panel = std::make_unique<DefectPanel>(nullptr);
        list = panel->findChild<QTableView*>("defectList");
        chooser = panel->findChild<ToleranceChooser*>("toleranceChooser");
    }
    ~Tolerance() override {
        panel.reset();
        LyqSession::instance().setDocument(nullptr);
        LYQANALYSIS::LibraryInit::cleanup();
    }

    /** Writes a preset that passes volumes up to `pass` mm³ and warns up to `warn`. */
    void writePreset(const QString& name, const char* pass, const char* warn, const char* quantity = "Volume") {
        QFile from(QString::fromStdString(LyqPresetFolders::installed()) + "/tolerance-pore-volume.json");
        ASSERT_TRUE(from.open(QIODevice::ReadOnly));
        QByteArray text = from.readAll();
        text.replace("[0.5, 4]", QByteArray("[") + pass + ", " + warn + "]");
        text.replace("\"Quantity\": \"Volume\"", QByteArray("\"Quantity\": \"") + quantity + "\"");
        text.replace("Tolerance Pore Volume", name.toUtf8());
        QFile file(folder.filePath(name + ".json"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }
    void analyse() {
        auto result = std::make_shared<LyrDefectResult>();
        LyrAnalysisOutcome outcome;
        auto* opened = static_cast<LyrVolumeObject*>(document.get());
        ASSERT_TRUE(LyrDefectAnalysis::run(opened->volume(), {}, *result, outcome)) << outcome.error;
        DefectSurface surface;
        surface.mesh = std::make_shared<LyrRendering::SurfaceMesh>();
        layer = LyrDefectLayer::create(opened, result, surface);
        ASSERT_TRUE(LyqSession::instance().addLayer(layer));
    }
    QStringList offered() const {
        QStringList all;
        for (int i = 0; i < chooser->count(); ++i) {
            all << chooser->itemText(i);
        }
        return all;
    }
    void choose(const QString& name) {
        chooser->refresh();
        const int index = chooser->findText(name);
        ASSERT_GE(index, 0) << name.toStdString();
        chooser->setCurrentIndex(index);
        Q_EMIT chooser->activated(index);
    }
    QVariant verdict(int row, int role = Qt::DisplayRole) const {
        return list->model()->index(row, DefectTableModel::Verdict).data(role);
    }

    QTemporaryDir folder;
    LyqPresetDefaultHandler* handler = nullptr;
    LyrObjectPtr document;
    std::unique_ptr<DefectPanel> panel;
    QTableView* list = nullptr;
    ToleranceChooser* chooser = nullptr;
    LyrDefectLayer* layer = nullptr;
};

}  // namespace

TEST_F(Tolerance, is_chosen_among_the_presets_that_judge_those_of_volumes_first) {
    writePreset("Own Volumes", "20", "40");
    writePreset("Own Lengths", "20", "40", "Length");
    QFile broken(folder.filePath("broken.json"));
    ASSERT_TRUE(broken.open(QIODevice::WriteOnly) && broken.write("{") == 1);
    broken.close();
    chooser->showPopup();
    chooser->hidePopup();
    // An empty text is a line between two groups; tables without verdicts and broken files are not there.
    EXPECT_EQ(offered(),
              QStringList({"The layer's own table", "", "Own Volumes", "Tolerance Pore Volume", "", "Own Lengths",
                           "Tolerance Both Sides", "Tolerance Lower Limit", "Tolerance Upper Limit"}));
    EXPECT_EQ(chooser->currentIndex(), 0);
    EXPECT_EQ(chooser->tolerance(), nullptr);
    EXPECT_TRUE(chooser->itemData(2, Qt::ToolTipRole).toString().contains(QString::fromUtf8("mm³")));
}

TEST_F(Tolerance, of_the_chosen_table_judges_while_the_layer_keeps_its_colors) {
    writePreset("Own Volumes", "20", "40");
    analyse();
    EXPECT_EQ(list->model()->columnCount(), 7);
    const int steps = LyqApplication::instance().undoStack().count();
    LyrColorLookupTable* const own = layer->table();
    choose("Own Volumes");
    ASSERT_EQ(list->model()->columnCount(), 8);
    EXPECT_EQ(verdict(0), "Fail") << "64 mm³";
    EXPECT_EQ(verdict(1), "Pass") << "16 mm³";
    EXPECT_EQ(verdict(0, Qt::DecorationRole).value<QColor>().rgb(), QColor(213, 94, 0).rgb());
    EXPECT_EQ(verdict(1, Qt::DecorationRole).value<QColor>().rgb(), QColor(0, 158, 115).rgb());
    EXPECT_EQ(verdict(0, Qt::TextAlignmentRole).toInt(), int(Qt::AlignLeft | Qt::AlignVCenter));
    EXPECT_EQ(layer->verdicts(), (std::vector<LyrVerdict>{LyrVerdict::Fail, LyrVerdict::Pass}));
    EXPECT_TRUE(panel->findChild<QLabel*>("defectTotals")->text().contains("Pass: 1   Warn: 0   Fail: 1"));
    EXPECT_EQ(layer->table(), own);
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), steps);
    choose("The layer's own table");
    EXPECT_EQ(list->model()->columnCount(), 7);
    EXPECT_TRUE(layer->verdicts().empty());
}

TEST_F(Tolerance, that_was_chosen_judges_the_next_analysis_too) {
    choose("Tolerance Pore Volume");
    analyse();
    EXPECT_EQ(verdict(0), "Fail");
    LyqSession::instance().setDocument(nullptr);
    LyqSession::instance().setDocument(document.get());
    analyse();
    EXPECT_EQ(verdict(1), "Fail");
    EXPECT_EQ(chooser->currentText(), "Tolerance Pore Volume");
}

TEST_F(Tolerance, that_is_saved_anew_judges_anew_and_one_that_is_deleted_judges_no_more) {
    writePreset("Own Volumes", "20", "40");
    analyse();
    choose("Own Volumes");
    ASSERT_EQ(verdict(0), "Fail");
    // The user applies it, moves the limits above all defects and saves it under its name.
    handler->setApplicationObject(layer->table());
    ASSERT_TRUE(handler->applyPreset("Own Volumes", Lyr::UserPreset)) << handler->getMessage().utf8();
    LyrValueArrayOPCache<float> limits;
    limits.items() = {100.0f, 200.0f};
    ASSERT_TRUE(limits.store(layer->table(), Lyr::PositionList));
    ASSERT_TRUE(handler->savePresetAs("Own Volumes")) << handler->getMessage().utf8();
    QTest::qWait(20);
    EXPECT_EQ(verdict(0), "Pass");
    ASSERT_TRUE(handler->removePreset("Own Volumes"));
    QTest::qWait(20);
    EXPECT_EQ(chooser->currentIndex(), 0);
    EXPECT_EQ(chooser->tolerance(), nullptr);
    EXPECT_EQ(layer->judgingTable(), layer->table());
}

TEST_F(Tolerance, outlives_the_presets_it_was_chosen_from) {
    analyse();
    choose("Tolerance Pore Volume");
    LyqPresetRegistry::instance().release(Lyr::ColorLookupTable);
    chooser->refresh();
    EXPECT_EQ(offered(), QStringList({"The layer's own table"}));
    EXPECT_TRUE(layer->verdicts().empty());
}
