#include "AnalysisTools.h"

#include <analysis/HistogramView.h>
#include <analysis/SectionInspector.h>
#include <analysis/SectionShareModel.h>
#include <analysis/ValueOrder.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <lys_core/LyqApplication.h>

#include <QApplication>
#include <QLocale>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QUndoStack>

#include <limits>

namespace {

/** The values 0 … 23, each once, shown with a table from 0 to 23. */
class Inspector : public ::testing::Test {
protected:
    Inspector() {
        QLocale::setDefault(QLocale::c());
        inspector = std::make_unique<SectionInspector>(nullptr);
        histogram = inspector->findChild<HistogramView*>("valueHistogram");
        list = inspector->findChild<QTableView*>("sectionShares");
    }
    ~Inspector() override {
        inspector.reset();
        QLocale::setDefault(QLocale::system());
    }

    void showLayer() {
        inspector->resize(300, 300);
        inspector->show();
        inspector->setLayer(&made.layer());
        const auto& order = made.layer().valueOrder();
        ASSERT_TRUE(QTest::qWaitFor([&] { return order->isFinished() && order->values(); }, 10000));
    }
    QString cell(int row, int column) const {
        return list->model()->index(row, column).data(Qt::DisplayRole).toString();
    }
    bool moveBoundary(std::size_t which, float value) {
        LyrValueArrayOPCache<float> boundaries;
        if (!boundaries.load(made.layer().table(), Lyr::PositionList)) {
            return false;
        }
        boundaries.items().at(which) = value;
        return boundaries.store(made.layer().table(), Lyr::PositionList);
    }

    LayerOfValues made;
    std::unique_ptr<SectionInspector> inspector;
    HistogramView* histogram = nullptr;
    QTableView* list = nullptr;
};

}  // namespace

TEST_F(Inspector, lists_sections_from_the_top_with_their_shares_of_the_volume) {
    showLayer();
    ASSERT_EQ(list->model()->rowCount(), 3);
    EXPECT_EQ(cell(0, SectionShareModel::Section), "> 23");
    EXPECT_EQ(cell(1, SectionShareModel::Section), QString::fromUtf8("0 … 23"));
    EXPECT_EQ(cell(2, SectionShareModel::Section), "< 0");
    EXPECT_EQ(cell(0, SectionShareModel::Share), "0.00 %");
    EXPECT_EQ(cell(1, SectionShareModel::Share), "100.00 %");
}

TEST_F(Inspector, follows_a_boundary_that_is_moved) {
    showLayer();
    ASSERT_TRUE(moveBoundary(1, 5.0f));
    QTest::qWait(20);
    // 6 of 24 values lie from 0 to 5, 18 above.
    EXPECT_EQ(cell(0, SectionShareModel::Share), "75.00 %");
    EXPECT_EQ(cell(1, SectionShareModel::Share), "25.00 %");
    const HistogramLayout& layout = histogram->layoutOfBars();
    ASSERT_EQ(layout.lines.size(), 2u);
    EXPECT_NEAR(layout.lines[1], layout.size.width() * 5 / 23, 1);
}

TEST_F(Inspector, tells_bounds_and_share_in_tool_tips) {
    showLayer();
    EXPECT_EQ(list->model()->index(1, 0).data(Qt::ToolTipRole).toString(),
              QString::fromUtf8("0 … 23: 100.00 % of the volume"));
}

TEST_F(Inspector, a_table_that_colors_nothing_has_no_sections) {
    showLayer();
    LyrValueArrayOPCache<float> none;
    none.items() = {1.0f};
    ASSERT_TRUE(none.store(made.layer().table(), Lyr::PositionList));
    QTest::qWait(20);
    EXPECT_EQ(list->model()->rowCount(), 0);
    EXPECT_FALSE(histogram->layoutOfBars().isEmpty()) << "the values are there all the same";
}

TEST_F(Inspector, sorts_nothing_before_it_is_seen) {
    inspector->setLayer(&made.layer());
    QTest::qWait(100);
    EXPECT_TRUE(histogram->layoutOfBars().isEmpty());
}

TEST_F(Inspector, a_section_under_the_mouse_stands_out_until_the_mouse_leaves) {
    showLayer();
    LyqColorLookupTableWidget bar;
    bar.setColorTable(made.layer().table());
    bar.resize(120, 300);
    inspector->watch(&bar);
    QUndoStack& history = LyqApplication::instance().undoStack();
    const int steps = history.count();
    const auto moveTo = [](QWidget& widget, int x, int y) {
        QMouseEvent move(QEvent::MouseMove, QPointF(x, y), QPointF(x, y), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&widget, &move);
    };
    const auto leave = [](QWidget& widget) {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(&widget, &event);
    };
    EXPECT_EQ(made.layer().highlightedSection(), -1);
    moveTo(*histogram, histogram->width() / 2, 10);
    EXPECT_EQ(made.layer().highlightedSection(), 1);
    EXPECT_TRUE(histogram->toolTip().contains("100.00 %")) << histogram->toolTip().toStdString();
    leave(*histogram);
    EXPECT_EQ(made.layer().highlightedSection(), -1);
    moveTo(bar, 5, bar.realToWidget(0.0f) + 4);
    EXPECT_EQ(made.layer().highlightedSection(), 0);
    moveTo(bar, 5, bar.realToWidget(11.0f));
    EXPECT_EQ(made.layer().highlightedSection(), 1);
    moveTo(bar, 5, bar.realToWidget(23.0f) - 4);
    EXPECT_EQ(made.layer().highlightedSection(), 2);
    leave(bar);
    EXPECT_EQ(made.layer().highlightedSection(), -1);
    moveTo(bar, 5, bar.realToWidget(11.0f));
    inspector->setLayer(nullptr);
    EXPECT_EQ(made.layer().highlightedSection(), -1);
    EXPECT_EQ(history.count(), steps);
}

TEST_F(Inspector, values_outside_the_highlighted_section_are_dimmed) {
    const std::vector<float> values{-1.0f, 5.0f, 30.0f, std::numeric_limits<float>::quiet_NaN()};
    std::vector<std::uint8_t> pixels(16, 240), vertices(16, 255);
    made.layer().dimSlice(values, pixels);
    EXPECT_EQ(pixels, std::vector<std::uint8_t>(16, 240)) << "nothing is highlighted yet";
    made.layer().setHighlightedSection(1);
    made.layer().dimSlice(values, pixels);
    for (const std::size_t value : {0u, 1u, 2u, 3u}) {
        EXPECT_EQ(pixels[4 * value], 240) << value;
        EXPECT_EQ(pixels[4 * value + 3], value == 1 ? 240 : 40) << value;
    }
    made.layer().dimMesh(values, vertices);
    EXPECT_EQ(vertices[4], 255);
    // A sixth of 255 and five sixths of 110.
    EXPECT_EQ(vertices[0], 134);
    EXPECT_EQ(vertices[3], 255) << "a surface stays opaque";
}

TEST_F(Inspector, a_layer_may_go_while_it_is_shown) {
    showLayer();
    made.object = LyrObjectPtr();
    inspector->repaint();
    inspector->setLayer(nullptr);
    EXPECT_EQ(list->model()->rowCount(), 0);
    EXPECT_TRUE(histogram->layoutOfBars().isEmpty());
}
