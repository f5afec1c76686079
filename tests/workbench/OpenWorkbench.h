#pragma once

#include <ToolkitApplication.h>
#include <gtest/gtest.h>
#include <lys_core/LyqCameraWidget.h>
#include <workbench/MainWindow.h>
#include <workbench/PluginHost.h>
#include <workbench/ViewGrid.h>

#include <QMouseEvent>
#include <QSignalSpy>
#include <QTest>

#include <memory>

/** Views need to know of OpenGL before the application is made. */
struct ApplicationWithOpenGL {
    ApplicationWithOpenGL() {
        // Software OpenGL draws in the thread of the test then: how many frames are under way, and the memory that they
        // take, would depend on what else the machine does.
        if (!qEnvironmentVariableIsSet("LP_NUM_THREADS")) {
            qputenv("LP_NUM_THREADS", "0");
        }
        LyqCameraWidget::prepareOpenGL();
        const ToolkitApplication application;
    }
};

/** The window with all plug-ins, in a case of its own. */
class OpenWorkbench : public QObject, public ::testing::Test {
protected:
    OpenWorkbench() : plugins(LYS_MODULES) {
        EXPECT_EQ(plugins.loadAll(), QStringList());
        window = std::make_unique<workbench::MainWindow>(false);
        window->resize(1000, 800);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }
    ~OpenWorkbench() override {
        window.reset();
        EXPECT_EQ(plugins.unloadAll(), QStringList());
    }

    /** Opens a volume and waits until all of it is shown. */
    bool open(const QString& path, int milliseconds = 20000) {
        window->openVolume(path);
        const bool done = QTest::qWaitFor([&] { return !window->isBusy(); }, milliseconds);
        settle();
        return done;
    }
    /** Has everything drawn that is waiting to be. */
    void settle() {
        QTest::qWait(50);
        window->views().finishFrames();
        QTest::qWait(50);
    }
    /** Tells a widget that the pointer is somewhere in it. The display's own pointer stays: what it does comes late
     * where the machine is busy. */
    static void movePointer(QWidget* widget, const QPointF& place) {
        QMouseEvent move(QEvent::MouseMove, place, widget->mapToGlobal(place), Qt::NoButton, Qt::NoButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(widget, &move);
    }

private:
    ApplicationWithOpenGL mApplication;

protected:
    workbench::PluginHost plugins;
    std::unique_ptr<workbench::MainWindow> window;
};
