#include <lyr_opengl/LyrViewScene.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqSceneWidget.h>
#include <lys_core/LyqSliceWidget.h>
#include <lys_core/LyrWorkspace.h>

#include <QCoreApplication>
#include <QLabel>
#include <QMouseEvent>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>
#include <lyr_opengl/TestDrivers.h>

#include <memory>

namespace {

/** These cases run on a platform without OpenGL. */
class CameraWidgetWithoutOpenGL : private ToolkitApplication, public testing::Test {
protected:
    TestDriver::Calls calls;
    LyrObjectPtr plugin{new TestPlugin(calls)};
    LyrObjectPtr layer{new TestLayer(plugin.get())};
    LyrWorkspace* workspace = LyqApplication::instance().workspace();
};

}  // namespace

TEST_F(CameraWidgetWithoutOpenGL, says_so_and_makes_no_drivers) {
    workspace->addLayer(layer.get());
    {
        LyqSliceWidget view;
        EXPECT_FALSE(view.hasOpenGL());
        const auto* label = view.findChild<QLabel*>();
        ASSERT_NE(label, nullptr);
        EXPECT_EQ(label->text(), LyqCameraWidget::openGLProblem());
        EXPECT_TRUE(label->text().contains(QLatin1String("offscreen")));
        ASSERT_EQ(view.scene().getViewportNodeCount(), 1);
        EXPECT_EQ(view.scene().getViewportNode(0)->getRenderingDriverCount(), 0);
        EXPECT_EQ(calls.made, 0);
    }
    workspace->removeLayer(layer.get());
}

TEST_F(CameraWidgetWithoutOpenGL, is_shown_resized_moved_in_and_grabbed_all_the_same) {
    workspace->setScene({0, 0, 0}, {8, 6, 4}, {1, 1, 1});
    LyqSliceWidget slice;
    LyqSceneWidget scene;
    for (LyqCameraWidget* view : {static_cast<LyqCameraWidget*>(&slice), static_cast<LyqCameraWidget*>(&scene)}) {
        view->resize(80, 60);
        view->show();
        QCoreApplication::processEvents();
        view->resize(1, 0);
        view->resize(90, 70);
        QMouseEvent press(QEvent::MouseButtonPress, QPointF(45, 35), QPointF(45, 35), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(view, &press);
        QMouseEvent move(QEvent::MouseMove, QPointF(50, 30), QPointF(50, 30), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(view, &move);
        QCoreApplication::processEvents();
        EXPECT_TRUE(view->getImage().isNull());
        EXPECT_EQ(view->grab().size(), QSize(90, 70));
    }
}
