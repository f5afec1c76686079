#include "colortable/viewport/LegendView.h"

#include <lyr_opengl/LyrViewScene.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <cmath>

using namespace legends;

// Also run with the scale factor 2.

namespace {

struct PreparedApplication {
    PreparedApplication() { [[maybe_unused]] static const bool prepared = (LyqCameraWidget::prepareOpenGL(), true); }
};

class LegendPixelRatio : private PreparedApplication, private ToolkitApplication, public testing::Test {
protected:
    LegendPixelRatio() {
        lyrSetValue(legend.settings.get(), Lyr::Alignment, Lyr::Top);
        lyrSetValue(legend.settings.get(), Lyr::Size, 0.5f);
        handler = LyrObjectPtr(new Handler([this](Entries& list, LyrObject*, LyrTimestamp since) {
            list.append(legend.entry(visible));
            return legend.table->getModificationTimestamp() > since;
        }));
        setList(rendererOf(view().camera()).get(), Lyr::AnnotationHandlerList, {handler.get()});
    }
    LyqCameraWidget& view() const { return static_cast<LyqCameraWidget&>(*widget); }

    static double wantedRatio() {
        const QByteArray factor = qgetenv("QT_SCALE_FACTOR");
        return factor.isEmpty() ? 1.0 : factor.toDouble();
    }
    void show() {
        view().resize(400, 300);
        view().show();
        QElapsedTimer timer;
        for (timer.start(); timer.elapsed() < 500; QThread::msleep(1)) {
            QCoreApplication::processEvents();
        }
    }

    const LibraryUse use;
    Legend legend;
    bool visible = true;
    LyrObjectPtr handler;
    std::unique_ptr<LyqWorkspaceWidget> widget{
        dynamic_cast<LyqWorkspaceWidget*>(LyrMetaClass::create("LyqSceneWidget"))};
};

}  // namespace

TEST_F(LegendPixelRatio, places_legends_in_pixels_of_the_framebuffer) {
    show();
    ASSERT_EQ(view().devicePixelRatioF(), wantedRatio());
    const QImage image = view().getImage();
    ASSERT_EQ(image.size(), QSize(400, 300) * wantedRatio());
    // A margin of 10 pixels at 96 dots per inch, and half of what is free between two of them.
    const double margin = 10.0 * view().logicalDpiX() * wantedRatio() / 96.0;
    const double length = std::trunc(0.5 * (image.height() - 2.0 * margin));
    const QRect frame = legend.annotation().frameGeometry();
    EXPECT_EQ(frame.topLeft(), QPoint(static_cast<int>(margin), static_cast<int>(margin)));
    EXPECT_EQ(frame.height(), static_cast<int>(length));
    const QImage own = legend.annotation().getImage();
    ASSERT_EQ(own.size(), frame.size());
    visible = false;
    const QImage bare = view().getImage();  // the view's own marks
    ASSERT_EQ(bare.size(), image.size());
    int wrong = 0;
    int shown = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QPoint at = QPoint(x, y) - frame.topLeft();
            const bool legendHere = own.valid(at) && (own.pixel(at) & 0xffffffu) != 8u;
            shown += legendHere ? 1 : 0;
            wrong += image.pixel(x, y) == (legendHere ? own.pixel(at) | 0xff000000u : bare.pixel(x, y)) ? 0 : 1;
        }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(shown, 500);
}
