#include "OpenWorkbench.h"

#include <gtest/gtest.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_volume/LyrVolumeObject.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSceneWidget.h>
#include <lys_core/LyqSession.h>
#include <lys_core/LyqSliceWidget.h>
#include <lys_core/LyrWorkspace.h>
#include <workbench/LyrGreyLayer.h>
#include <workbench/ReadoutBar.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QListWidget>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

namespace {

LyrObject* linked(const LyrObject* object, const char* property) {
    return lyrGetValue(object, Lyrenum(property, true), LyrObjectLink()).getLink();
}

/** Where two pictures of one size differ; empty if they are the same. */
QRect difference(const QImage& a, const QImage& b) {
    QRect found;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (a.pixel(x, y) != b.pixel(x, y)) {
                found |= QRect(x, y, 1, 1);
            }
        }
    }
    return found;
}

/** Makes the outermost section (the one above the table) of the active table another red. */
void recolorUpperSection(float red) {
    const LyrObject* table = linked(LyqSession::instance().activeLayer(), "ColorLookupTable");
    LyrValueArrayOPCache<LyrObjectLink> sections;
    ASSERT_TRUE(sections.load(table, Lyrenum("SectionList", true)));
    LyrObject* section = sections.items().back().getLink();
    LyrValueArrayOPCache<LyrVector2<float>> points;
    ASSERT_TRUE(points.load(section, Lyrenum("PointListRed", true)));
    points.items()[0].y = red;
    ASSERT_TRUE(points.store(section, Lyrenum("PointListRed", true)));
}

}  // namespace

TEST_F(OpenWorkbench, shows_a_legend_in_all_four_views) {
    ASSERT_TRUE(open("builtin:casting@32"));
    std::vector<QImage> with;
    for (LyqCameraWidget* view : window->views().views()) {
        with.push_back(view->getImage());
    }
    LyrObject* settings = linked(LyqSession::instance().activeLayer(), "ColorLookupTableRenderSettings");
    ASSERT_TRUE(settings);
    ASSERT_TRUE(lyrSetValue<Lyrenum>(settings, Lyr::Rendering, 0));
    settle();
    for (std::size_t i = 0; i < with.size(); ++i) {
        LyqCameraWidget* view = window->views().views()[i];
        const QRect legend = difference(with[i], view->getImage());
        // On the left, in the middle, seven tenths of the view's height less the margins: the default settings.
        EXPECT_GE(legend.left(), 10) << i;
        EXPECT_LT(legend.right(), with[i].width() / 2) << i;
        EXPECT_NEAR(legend.height(), 0.7 * (with[i].height() - 20), 12.0) << i;
        EXPECT_NEAR(legend.center().y(), with[i].height() / 2.0, 8.0) << i;
    }
}

TEST_F(OpenWorkbench, editing_only_a_color_draws_the_legends_anew) {
    ASSERT_TRUE(open("builtin:casting@32"));
    std::vector<QImage> before;
    for (LyqCameraWidget* view : window->views().views()) {
        before.push_back(view->getImage());
    }
    recolorUpperSection(0.125f);
    settle();
    for (std::size_t i = 0; i < before.size(); ++i) {
        const QRect changed = difference(before[i], window->views().views()[i]->getImage());
        EXPECT_FALSE(changed.isEmpty()) << i;
        EXPECT_LT(changed.right(), 60) << i;  // the part of the bar above its upper end, nothing else
    }
}

TEST_F(OpenWorkbench, draws_nothing_while_nothing_changes) {
    ASSERT_TRUE(open("builtin:casting@32"));
    settle();
    int frames = 0;
    for (LyqCameraWidget* view : window->views().views()) {
        connect(view, &LyqCameraWidget::frameDrawn, view, [&] { ++frames; });
    }
    QTest::qWait(2000);
    EXPECT_EQ(frames, 0);
    recolorUpperSection(0.25f);
    settle();
    EXPECT_GE(frames, 4);
}

TEST_F(OpenWorkbench, the_readout_tells_the_color_that_the_slice_shows) {
    ASSERT_TRUE(open("builtin:casting@32"));
    LyqSliceWidget* view = window->views().sliceView(2);
    // Off the cross and the legend: a third of the way from the middle to the lower right corner of the slice.
    const QPoint place(view->width() * 5 / 8, view->height() * 5 / 8);
    movePointer(view, place);
    const QColor told = window->readout().color();
    ASSERT_TRUE(told.isValid()) << window->readout().text().toStdString();
    EXPECT_EQ(view->getImage().pixelColor(place).rgb(), told.rgb());
    EXPECT_TRUE(window->readout().text().contains("mm"));
}

TEST_F(OpenWorkbench, scroll_bars_and_views_move_together) {
    ASSERT_TRUE(open("builtin:casting@32"));
    LyqSliceWidget* view = window->views().sliceView(2);
    auto* bar = view->parentWidget()->findChild<QScrollBar*>("sliceBar");
    ASSERT_TRUE(bar);
    EXPECT_EQ(bar->maximum(), 31);
    bar->setValue(5);
    EXPECT_EQ(view->getSliceIndex(), 5);
    view->setSliceIndex(9);
    EXPECT_EQ(bar->value(), 9);
}

TEST_F(OpenWorkbench, a_double_click_maximizes_a_view_and_another_one_restores_all) {
    ASSERT_TRUE(open("builtin:casting@32"));
    LyqCameraWidget* view = window->views().sliceView(0);
    const QSize before = view->size();
    QTest::mouseDClick(view, Qt::LeftButton, {}, QPoint(40, 40));
    settle();
    EXPECT_EQ(window->views().maximizedView(), view);
    EXPECT_GT(view->width(), before.width() * 3 / 2);
    EXPECT_FALSE(window->views().sceneView()->isVisible());
    QTest::mouseDClick(view, Qt::LeftButton, {}, QPoint(40, 40));
    settle();
    EXPECT_EQ(window->views().maximizedView(), nullptr);
    EXPECT_EQ(view->size(), before);
}

TEST_F(OpenWorkbench, the_layers_list_switches_layers_and_the_grey_base_appears_below) {
    ASSERT_TRUE(open("builtin:casting@32"));
    auto* list = window->findChild<QListWidget*>("layerList");
    ASSERT_TRUE(list);
    ASSERT_EQ(list->count(), 2);
    LyqSliceWidget* view = window->views().sliceView(2);
    const QPoint place(view->width() * 5 / 8, view->height() * 5 / 8);
    list->item(0)->setCheckState(Qt::Unchecked);
    settle();
    const QColor grey = view->getImage().pixelColor(place);
    EXPECT_EQ(grey.red(), grey.green());
    EXPECT_EQ(grey.red(), grey.blue());
    EXPECT_FALSE(LyqSession::instance().layers()[1]->isRendering());
}

TEST_F(OpenWorkbench, the_title_names_the_volume_and_closing_empties_the_window) {
    ASSERT_TRUE(open("builtin:casting@32"));
    EXPECT_TRUE(window->windowTitle().contains("casting@32"));
    window->closeVolume();
    settle();
    EXPECT_FALSE(window->windowTitle().contains("casting"));
    EXPECT_TRUE(LyqSession::instance().layers().empty());
    EXPECT_EQ(LyqApplication::instance().workspace()->layers().view().size(), 0u);
    EXPECT_FALSE(window->isBusy());
}

TEST_F(OpenWorkbench, a_volume_that_cannot_be_read_leaves_the_open_one) {
    ASSERT_TRUE(open("builtin:casting@32"));
    QSignalSpy failed(window.get(), &workbench::MainWindow::volumeFailed);
    window->openVolume("/there/is/no/volume.nrrd");
    ASSERT_TRUE(failed.wait(10000));
    EXPECT_TRUE(failed[0][1].toString().contains("volume.nrrd"));
    EXPECT_TRUE(LyqSession::instance().document());
    EXPECT_EQ(LyqSession::instance().layers().size(), 2u);
}

TEST_F(OpenWorkbench, closing_while_a_volume_is_read_is_safe) {
    for (int i = 0; i < 5; ++i) {
        window->openVolume("builtin:casting@96");
        QTest::qWait(i * 7);
        window->closeVolume();
    }
    QTest::qWait(500);
    EXPECT_FALSE(LyqSession::instance().document());
    window->openVolume("builtin:casting@96");
    window.reset();
}

TEST_F(OpenWorkbench, a_picture_that_cannot_be_written_is_a_message) {
    const QImage picture(4, 4, QImage::Format_RGB32);
    QString message;
    EXPECT_FALSE(workbench::MainWindow::savePicture(picture, "/there/is/no/folder/a.png", message));
    EXPECT_TRUE(message.contains("/there/is/no/folder/a.png"));
    EXPECT_FALSE(workbench::MainWindow::savePicture(QImage(), "a.png", message));
    const QTemporaryDir folder;
    EXPECT_FALSE(workbench::MainWindow::savePicture(picture, folder.filePath("a.strange"), message));
    EXPECT_TRUE(message.contains("strange"));
    EXPECT_FALSE(QFile::exists(folder.filePath("a.strange")));
}

TEST_F(OpenWorkbench, a_click_in_a_slice_picks_its_place_and_a_drag_does_not) {
    ASSERT_TRUE(open("builtin:casting@32"));
    std::vector<LyrVector3<float>> picks;
    connect(&LyqSession::instance(), &LyqSession::picked, window.get(),
            [&](const LyrVector3<float>& place) { picks.push_back(place); });
    LyqSliceWidget* view = window->views().sliceView(2);
    const QPoint middle(view->width() / 2, view->height() / 2);
    movePointer(view, middle);
    QTest::mouseClick(view, Qt::LeftButton, {}, middle);
    ASSERT_EQ(picks.size(), 1u);
    // The casting's cube of 64 mm is in the middle of its view; half a pixel is some tenths of a millimetre.
    EXPECT_NEAR(picks[0].x, 32.0f, 0.5f);
    EXPECT_NEAR(picks[0].y, 32.0f, 0.5f);
    // Without a move before it, as with a pen.
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(view, &leave);
    QTest::mouseClick(view, Qt::LeftButton, {}, middle);
    ASSERT_EQ(picks.size(), 2u);
    EXPECT_NEAR(picks[1].x, 32.0f, 0.5f);
    QTest::mousePress(view, Qt::LeftButton, {}, middle);
    movePointer(view, middle + QPoint(60, 0));
    QTest::mouseRelease(view, Qt::LeftButton, {}, middle + QPoint(60, 0));
    EXPECT_EQ(picks.size(), 2u);
}

TEST_F(OpenWorkbench, a_file_that_is_dropped_onto_the_window_is_opened) {
    const QTemporaryDir folder;
    QFile file(folder.filePath("two.nrrd"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("NRRD0004\ntype: uchar\ndimension: 3\nsizes: 2 1 1\nencoding: raw\n\n\x01\x02");
    file.close();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(file.fileName())});
    QDragEnterEvent enter(QPoint(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(50, 50), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &drop);
    ASSERT_TRUE(QTest::qWaitFor([&] { return !window->isBusy(); }, 20000));
    const auto* opened = dynamic_cast<LyrVolumeObject*>(LyqSession::instance().document());
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->name(), "two.nrrd");
    EXPECT_EQ(opened->volume()->samples()[1], 2.0f);
}
