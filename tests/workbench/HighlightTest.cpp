#include "OpenWorkbench.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyqSliceWidget.h>

#include <QApplication>
#include <QDockWidget>
#include <QMouseEvent>

namespace {

/** The window with a casting in colour; its dock of colours is open. */
class Highlight : public OpenWorkbench {
protected:
    void SetUp() override {
        ASSERT_TRUE(open("builtin:casting@32"));
        auto* dock = window->findChild<QDockWidget*>("dock-colors");
        ASSERT_TRUE(dock);
        dock->show();
        dock->raise();
        settle();
        for (QWidget* each : dock->findChildren<QWidget*>()) {
            preview = qstrcmp(each->metaObject()->className(), "LyqColorLookupTableWidget") == 0 ? each : preview;
        }
        ASSERT_TRUE(preview);
        // Sorting the values for the dock's histogram goes on beside this.
        ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 20000));
        settle();
        for (LyqCameraWidget* view : window->views().views()) {
            connect(view, &LyqCameraWidget::frameDrawn, this, [this, view] { ++frames[view]; });
        }
    }

    static long long section() {
        return lyrGetValue<long long>(LyqSession::instance().activeLayer(), Lyrenum("HighlightedSection", true), -2);
    }
    /** Moves the mouse down the preview until a section is under it. */
    bool hover(long long wanted) {
        for (int y = 0; y < preview->height() && section() != wanted; ++y) {
            moveTo(y);
            last = y;
        }
        return section() == wanted;
    }
    void moveTo(int y) { movePointer(preview, QPointF(preview->width() / 4.0, y)); }
    void leave() {
        QEvent event(QEvent::Leave);
        QApplication::sendEvent(preview, &event);
    }
    std::vector<QImage> pictures() {
        std::vector<QImage> all;
        for (LyqCameraWidget* view : window->views().views()) {
            all.push_back(view->getImage());
        }
        return all;
    }
    /** How colourful the middle of a picture is, away from the legend: mean difference of red, green and blue. */
    static double colorfulness(const QImage& picture) {
        double sum = 0.0;
        int count = 0;
        for (int y = picture.height() / 4; y < picture.height() * 3 / 4; ++y) {
            for (int x = picture.width() * 2 / 5; x < picture.width() * 3 / 5; ++x, ++count) {
                const QColor color = picture.pixelColor(x, y);
                sum += std::max({color.red(), color.green(), color.blue()}) -
                       std::min({color.red(), color.green(), color.blue()});
            }
        }
        return sum / count;
    }

    QWidget* preview = nullptr;
    int last = -1;  ///< where the mouse is
    std::map<LyqCameraWidget*, int> frames;
};

}  // namespace

TEST_F(Highlight, of_a_section_under_the_mouse_is_drawn_by_one_frame_of_each_view) {
    const std::vector<QImage> before = pictures();
    frames.clear();
    ASSERT_TRUE(hover(2)) << "the section above all values";
    QTest::qWait(150);
    for (LyqCameraWidget* view : window->views().views()) {
        EXPECT_EQ(frames[view], 1);
    }
    const std::vector<QImage> dimmed = pictures();
    for (std::size_t i = 0; i < before.size(); ++i) {
        // None of the voxels lies in it: all step back, to a sixth of their colour.
        EXPECT_GT(colorfulness(before[i]), 60.0) << i;
        EXPECT_LT(colorfulness(dimmed[i]), colorfulness(before[i]) / 3.0) << i;
    }
    frames.clear();
    leave();
    QTest::qWait(150);
    for (LyqCameraWidget* view : window->views().views()) {
        EXPECT_EQ(frames[view], 1);
    }
    EXPECT_EQ(pictures(), before);
}

TEST_F(Highlight, leaves_the_voxels_of_the_section_as_they_are) {
    const std::vector<QImage> before = pictures();
    ASSERT_TRUE(hover(1)) << "the section of all values";
    QTest::qWait(150);
    EXPECT_EQ(pictures(), before);
    frames.clear();
    moveTo(last + 1);
    EXPECT_EQ(section(), 1);
    QTest::qWait(150);
    EXPECT_TRUE(frames.empty()) << "the same section again is nothing new";
}
