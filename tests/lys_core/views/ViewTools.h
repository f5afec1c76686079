#pragma once

#include <lyr_core/LyrError.h>
#include <lyr_opengl/LyrSliceDriver.h>
#include <lyr_opengl/LyrSurfaceDriver.h>
#include <lyr_opengl/LyrViewScene.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqSceneWidget.h>
#include <lys_core/LyqSliceWidget.h>
#include <lys_core/LyrWorkspace.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QImage>
#include <QThread>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>
#include <lyr_opengl/TestDrivers.h>

#include <functional>
#include <memory>
#include <vector>

/** Has the toolkit's application made for views that draw. */
struct PreparedApplication {
    PreparedApplication() { [[maybe_unused]] static const bool prepared = (LyqCameraWidget::prepareOpenGL(), true); }
};

/** Lets the event loop run for a while, or until something is so. */
inline void runEvents(int milliseconds, const std::function<bool()>& until = {}) {
    QElapsedTimer timer;
    timer.start();
    do {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        if (until && until()) {
            return;
        }
        QThread::msleep(1);
    } while (timer.elapsed() < milliseconds);
}

/** Views on a workspace of 8 x 6 x 4 voxels of 1 mm, and a layer that tests draw with. */
struct Views : private PreparedApplication, private ToolkitApplication, testing::Test {
    struct Errors : LyrError::Listener {
        int count = 0;
        bool errorEmitted(const LyrError::Message& message) override {
            ADD_FAILURE() << message.getText();
            return ++count > 0;
        }
    };

    Views() { workspace->setScene({0, 0, 0}, {8, 6, 4}, {1, 1, 1}); }
    ~Views() override {
        while (!workspace->layers().view().empty()) {
            workspace->removeLayer(workspace->layers().view().front().getLink());
        }
    }

    /** Shows a view of a size and waits for its first frame. */
    template <class View>
    std::unique_ptr<View> show(int width = 200, int height = 150) {
        std::unique_ptr<View> view(new View);
        QObject::connect(view.get(), &LyqCameraWidget::frameDrawn, [this] { ++frames; });
        view->resize(width, height);
        view->show();
        runEvents(5000, [this, before = frames] { return frames > before; });
        runEvents(50);
        return view;
    }

    TestLayer* addLayer() {
        layers.emplace_back(new TestLayer(plugin.get()));
        workspace->addLayer(layers.back().get());
        return static_cast<TestLayer*>(layers.back().get());
    }

    Errors errors;
    LyrWorkspace* workspace = LyqApplication::instance().workspace();
    TestDriver::Calls calls;
    LyrObjectPtr plugin{new TestPlugin(calls)};
    std::vector<LyrObjectPtr> layers;
    int frames = 0;
};
