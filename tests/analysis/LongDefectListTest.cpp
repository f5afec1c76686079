#include "AnalysisTools.h"

#include <Heartbeat.h>
#include <Sanitizers.h>
#include <analysis/DefectPanel.h>
#include <analysis/DefectTableModel.h>
#include <analysis/LyrDefectLayer.h>
#include <analysis/compute/LyrDefectResult.h>
#include <gtest/gtest.h>
#include <lys_core/LyqSession.h>

#include <QFile>
#include <QLabel>
#include <QLocale>
#include <QTableView>
#include <QTest>

#include <algorithm>
#include <iostream>

namespace {

constexpr std::size_t MILLION = 1000000;

/** A million defects, the largest first, with sizes in no order; their places do not matter here. */
std::shared_ptr<LyrDefectResult> millionDefects() {
    auto result = std::make_shared<LyrDefectResult>();
    result->volume = result->values = countingVolume();
    result->labels.assign(24, 0);
    result->defects.resize(MILLION);
    for (std::size_t i = 0; i < MILLION; ++i) {
        LyrDefect& defect = result->defects[i];
        defect.number = static_cast<std::uint32_t>(i + 1);
        defect.volume = 2.0 + static_cast<double>(MILLION - i) * 1e-6;
        // A step that shares no factor with a million visits each number once.
        defect.size = static_cast<double>(i * 7919 % MILLION);
        defect.sphericity = 0.5;
    }
    return result;
}

long residentMegabytes() {
    QFile file("/proc/self/statm");
    const QList<QByteArray> pages = file.open(QIODevice::ReadOnly) ? file.readAll().split(' ') : QList<QByteArray>();
    constexpr long PAGES_IN_MEGABYTE = 256;
    return pages.size() > 1 ? pages[1].toLong() / PAGES_IN_MEGABYTE : 0;
}

/** The list of a million defects on the screen. */
class LongList : public ::testing::Test, protected LayerOfValues {
protected:
    void SetUp() override {
        QLocale::setDefault(QLocale::c());
        show();
    }
    void show() {
        LyqSession::instance().setDocument(document.get());
        panel = std::make_unique<DefectPanel>(nullptr);
        panel->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(panel.get()));
        list = panel->findChild<QTableView*>("defectList");
        model = qobject_cast<DefectTableModel*>(list->model());
        const auto result = millionDefects();
        DefectSurface surface;
        surface.mesh = std::make_shared<LyrRendering::SurfaceMesh>();
        heart = std::make_unique<Heartbeat>();
        before = residentMegabytes();
        LyrDefectLayer* layer = LyrDefectLayer::create(static_cast<LyrVolumeObject*>(document.get()), result, surface);
        ASSERT_TRUE(LyqSession::instance().addLayer(layer));
        QTest::qWait(50);
    }
    void close() {
        panel.reset();
        LyqSession::instance().setDocument(nullptr);
    }
    void TearDown() override {
        close();
        QLocale::setDefault(QLocale::system());
    }
    bool sorted() {
        return QTest::qWaitFor([&] { return !model->isSorting(); }, 60000);
    }
    /** Everything that users do with a list. */
    void use() {
        ASSERT_EQ(model->rowCount(), static_cast<int>(MILLION));
        EXPECT_TRUE(panel->findChild<QLabel*>("defectTotals")->text().contains("1000000"));
        list->selectRow(2);
        list->sortByColumn(DefectTableModel::Size, Qt::AscendingOrder);
        EXPECT_TRUE(model->isSorting());
        EXPECT_EQ(model->numberAt(0), 1u) << "the order stays as it is meanwhile";
        ASSERT_TRUE(sorted());
        for (const int row : {0, 1, 500000, 999999}) {
            EXPECT_EQ(size(row), row);
        }
        // Defect 3 is still the selected one: its size is 2 · 7919.
        EXPECT_EQ(list->currentIndex().row(), 2 * 7919);
        list->sortByColumn(DefectTableModel::Size, Qt::DescendingOrder);
        list->sortByColumn(DefectTableModel::Number, Qt::DescendingOrder);
        list->sortByColumn(DefectTableModel::Volume, Qt::AscendingOrder);
        ASSERT_TRUE(sorted());
        EXPECT_EQ(model->numberAt(0), MILLION) << "what was asked for last counts";
        EXPECT_EQ(model->numberAt(999999), 1u);
        list->scrollToBottom();
        list->selectRow(999999);
        QTest::qWait(50);
    }
    double size(int row) const { return model->index(row, DefectTableModel::Size).data(Qt::UserRole).toDouble(); }

    std::unique_ptr<DefectPanel> panel;
    QTableView* list = nullptr;
    DefectTableModel* model = nullptr;
    std::unique_ptr<Heartbeat> heart;
    long before = 0;
};

}  // namespace

TEST_F(LongList, is_shown_sorted_and_selected_while_the_window_answers_in_little_memory) {
    bool isFresh = true;
    long taken = 0;
    constexpr double WORKING = 100.0 * SANITIZER_SLOWDOWN;
    constexpr double BLOCKED = 1000.0 * SANITIZER_SLOWDOWN;
    const Heartbeat::Gap longest = calmestOf3(WORKING, BLOCKED, [&](Heartbeat::Gap& gap) {
        if (!isFresh) {
            close();
            show();
        }
        isFresh = false;
        ASSERT_NO_FATAL_FAILURE(use());
        // A list that is shown again takes memory that the one before gave back.
        taken = std::max(taken, residentMegabytes() - before);
        gap = heart->longest();
        std::cout << "longest gap in ms: working " << gap.working << ", blocked " << gap.blocked << "; " << taken
                  << " MB\n";
    });
    EXPECT_LT(longest.working, WORKING);
    EXPECT_LT(longest.blocked, BLOCKED);
    if (!SANITIZED) {
        EXPECT_LT(taken, 100);
    }
}

TEST_F(LongList, may_go_while_it_is_being_sorted) {
    list->sortByColumn(DefectTableModel::Size, Qt::AscendingOrder);
    ASSERT_TRUE(model->isSorting());
    LyqSession::instance().setDocument(nullptr);
    EXPECT_EQ(model->rowCount(), 0);
    ASSERT_TRUE(sorted());
    EXPECT_EQ(model->rowCount(), 0);
    list->sortByColumn(DefectTableModel::Volume, Qt::AscendingOrder);
    panel.reset();
}
