#include "BlockVolume.h"

#include <ToolkitApplication.h>
#include <analysis/DefectPanel.h>
#include <analysis/DefectTableModel.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/compute/LyrDefectAnalysis.h>
#include <gtest/gtest.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyrWorkspace.h>

#include <QDockWidget>
#include <QLabel>
#include <QLocale>
#include <QTableView>

#include <cmath>
#include <memory>

namespace {

/** The list of defects in a window with an opened block. */
class List : public ::testing::Test, protected ToolkitApplication {
protected:
    List() {
        QLocale::setDefault(QLocale::c());
        document = LyrObjectPtr(new LyrVolumeObject(hollowBlock(), "block", "block"));
        LyqSession::instance().setDocument(document.get());
        dock = std::make_unique<QDockWidget>();
        panel = new DefectPanel(dock.get());
        dock->setWidget(panel);
        table = panel->findChild<QTableView*>("defectList");
        totals = panel->findChild<QLabel*>("defectTotals");
        auto* opened = static_cast<LyrVolumeObject*>(document.get());
        if (LyrWorkspace* shown = LyqApplication::instance().workspace()) {
            shown->setScene({}, opened->extent(), opened->step());
        }
    }
    ~List() override {
        dock.reset();
        LyqSession::instance().setDocument(nullptr);
        QLocale::setDefault(QLocale::system());
    }

    /** Analyses the block and shows the result, as a run does. */
    void analyse() {
        auto result = std::make_shared<LyrDefectResult>();
        LyrAnalysisOutcome outcome;
        auto* opened = static_cast<LyrVolumeObject*>(document.get());
        ASSERT_TRUE(LyrDefectAnalysis::run(opened->volume(), {}, *result, outcome)) << outcome.error;
        DefectSurface surface;
        std::string error;
        ASSERT_TRUE(DefectSurface::extract(*result, surface, error, [](double) { return true; })) << error;
        layer = LyrDefectLayer::create(opened, result, surface);
        ASSERT_TRUE(LyqSession::instance().addLayer(layer));
    }
    QString cell(int row, int column) const {
        return table->model()->index(row, column).data(Qt::DisplayRole).toString();
    }
    LyrVector3<float> cross() const { return LyqApplication::instance().workspace()->getCrossPosition(); }

    LyrObjectPtr document;
    std::unique_ptr<QDockWidget> dock;
    DefectPanel* panel = nullptr;
    QTableView* table = nullptr;
    QLabel* totals = nullptr;
    LyrDefectLayer* layer = nullptr;
};

}  // namespace

TEST_F(List, is_empty_until_there_are_defects_and_opens_its_dock_then) {
    dock->hide();
    EXPECT_EQ(table->model()->rowCount(), 0);
    EXPECT_FALSE(totals->text().isEmpty());
    analyse();
    EXPECT_EQ(table->model()->rowCount(), 2);
    EXPECT_FALSE(dock->isHidden());
}

TEST_F(List, a_row_tells_number_volume_position_size_and_sphericity) {
    analyse();
    EXPECT_EQ(table->model()->columnCount(), 7);
    EXPECT_EQ(cell(0, DefectTableModel::Number), "1");
    EXPECT_NEAR(cell(0, DefectTableModel::Volume).toDouble(), 64.0, 0.5);
    // The middle of voxels 6 and 7: six and a half steps of 2 mm from the first one's centre.
    EXPECT_EQ(cell(0, DefectTableModel::X), "23");
    EXPECT_EQ(cell(0, DefectTableModel::Y), "33");
    EXPECT_EQ(cell(0, DefectTableModel::Z), "43");
    EXPECT_GT(cell(0, DefectTableModel::Size).toDouble(), 3.0);
    EXPECT_GT(cell(0, DefectTableModel::Sphericity).toDouble(), 0.5);
    const auto title = [&](int column) { return table->model()->headerData(column, Qt::Horizontal).toString(); };
    EXPECT_EQ(title(DefectTableModel::Volume), QString::fromUtf8("Volume [mm³]"));
    EXPECT_EQ(title(DefectTableModel::X), "X [mm]");
}

TEST_F(List, totals_tell_count_volume_and_porosity) {
    analyse();
    // 10 voxels of 8 mm³ in a part of 10³ voxels.
    EXPECT_TRUE(totals->text().contains("Defects: 2")) << totals->text().toStdString();
    EXPECT_TRUE(totals->text().contains(" 80 mm³")) << totals->text().toStdString();
    // 10 of 1000 voxels less those around the part: see the part's own numbers below.
    const double porosity = layer->result().porosity;
    EXPECT_NEAR(layer->result().defectVolume, 80.0, 1e-6);
    EXPECT_NEAR(porosity, 100.0 * 80.0 / (80.0 + layer->result().materialVolume), 1e-9);
    EXPECT_TRUE(totals->text().contains(QLocale().toString(porosity, 'g', 6).left(4))) << totals->text().toStdString();
}

TEST_F(List, sorts_by_the_values_of_a_column_and_keeps_what_is_selected) {
    analyse();
    table->selectRow(0);
    table->sortByColumn(DefectTableModel::Volume, Qt::AscendingOrder);
    EXPECT_EQ(cell(0, DefectTableModel::Number), "2");
    EXPECT_EQ(table->currentIndex().row(), 1) << "the selected defect is the same one";
    EXPECT_EQ(layer->markedDefect(), 1u);
    table->sortByColumn(DefectTableModel::Volume, Qt::DescendingOrder);
    EXPECT_EQ(cell(0, DefectTableModel::Number), "1");
}

TEST_F(List, a_selected_row_marks_the_defect_and_brings_the_views_there) {
    ASSERT_TRUE(LyqApplication::instance().workspace());
    analyse();
    table->selectRow(1);
    EXPECT_EQ(layer->markedDefect(), 2u);
    // In the world, which begins at the corner of the first voxel: between voxels 3 and 4, in the middle of voxel 4.
    EXPECT_EQ(cross(), LyrVector3<float>(8.0f, 9.0f, 9.0f));
}

TEST_F(List, a_defect_that_is_clicked_becomes_the_selected_one_and_the_views_stay) {
    ASSERT_TRUE(LyqApplication::instance().workspace());
    analyse();
    table->selectRow(1);
    const LyrVector3<float> before = cross();
    Q_EMIT LyqSession::instance().picked({15.0f, 13.0f, 13.0f});
    EXPECT_EQ(table->currentIndex().row(), 0);
    EXPECT_EQ(layer->markedDefect(), 1u);
    EXPECT_EQ(cross(), before);
    Q_EMIT LyqSession::instance().picked({1.0f, 1.0f, 1.0f});
    EXPECT_EQ(table->currentIndex().row(), 0) << "a click elsewhere changes nothing";
    Q_EMIT LyqSession::instance().picked({-1e9f, NAN, 1e9f});
    EXPECT_EQ(table->currentIndex().row(), 0);
}

TEST_F(List, a_layer_that_is_switched_off_is_not_clicked) {
    analyse();
    layer->setRendering(false);
    Q_EMIT LyqSession::instance().picked({15.0f, 13.0f, 13.0f});
    EXPECT_FALSE(table->currentIndex().isValid());
}

TEST_F(List, a_closed_volume_empties_it) {
    analyse();
    table->selectRow(0);
    LyqSession::instance().setDocument(nullptr);
    EXPECT_EQ(table->model()->rowCount(), 0);
}
