#include <lyr_core/LyrPropertyPtr.h>
#include <lys_core/LyrApplicationObject.h>

#include <QHBoxLayout>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QPointer>
#include <QSurfaceFormat>
#include <QWidget>

#include <lys_core/views/ViewTools.h>

#include <GL/gl.h>

namespace {

constexpr QRgb BACKGROUND = 0xff232528u;

/** Fills the lower left quarter of the viewport with red in the scene pass. */
bool drawQuarter(TestDriver&, long long pass) {
    if (pass == LyrRendering::SCENE_PASS) {
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glColor4f(1, 0, 0, 1);
        glRectf(-1, -1, 0, 0);
    }
    return true;
}

}  // namespace

using CameraWidget = Views;

TEST_F(CameraWidget, draws_what_its_drivers_draw) {
    calls.render = drawQuarter;
    addLayer();
    const auto view = show<LyqSceneWidget>();
    ASSERT_TRUE(view->hasOpenGL());
    const QImage image = view->getImage();
    ASSERT_EQ(image.size(), QSize(200, 150));
    EXPECT_EQ(image.pixel(1, 148), 0xffff0000u);
    EXPECT_EQ(image.pixel(99, 148), 0xffff0000u);
    EXPECT_EQ(image.pixel(101, 140), BACKGROUND);
    EXPECT_EQ(image.pixel(2, 2), BACKGROUND);
}

TEST_F(CameraWidget, draws_nothing_while_nothing_changes) {
    addLayer();
    const auto slice = show<LyqSliceWidget>();
    const auto scene = show<LyqSceneWidget>();
    runEvents(200);
    frames = 0;
    runEvents(1500);
    EXPECT_EQ(frames, 0);
}

TEST_F(CameraWidget, draws_once_for_many_changes) {
    TestLayer* layer = addLayer();
    const auto view = show<LyqSliceWidget>();
    calls.init = [](TestDriver& driver) {
        driver.node->addUpdateFlags(5);
        return true;
    };
    frames = 0;
    const int before = calls.inits;
    calls.init = [&](TestDriver& driver) {
        if (calls.inits == before + 1) {
            driver.node->addUpdateFlags(5);
        }
        return true;
    };
    for (int i = 0; i < 100; ++i) {
        layer->setNameTemplate(i % 2 ? "a" : "b");
        lyrSetValue(view->camera(), Lyr::DotsPerInch, LyrVector2<float>(90.0f + static_cast<float>(i), 90.0f));
    }
    EXPECT_EQ(calls.inits, before);
    runEvents(200);
    EXPECT_EQ(frames, 1);
    EXPECT_EQ(calls.inits, before + 2);  // and one more, since the first reported a change
}

TEST_F(CameraWidget, prepares_without_drawing_when_no_driver_has_something_new) {
    TestLayer* layer = addLayer();
    const auto view = show<LyqSliceWidget>();
    frames = 0;
    const int before = calls.inits;
    layer->setNameTemplate("other");
    runEvents(200);
    EXPECT_EQ(calls.inits, before + 1);
    EXPECT_EQ(frames, 0);
}

TEST_F(CameraWidget, ends_a_chain_of_frames_that_each_report_a_change) {
    TestLayer* layer = addLayer();
    const auto view = show<LyqSliceWidget>();
    calls.init = [](TestDriver& driver) {
        driver.node->addUpdateFlags(5);
        return true;
    };
    const int before = calls.inits;
    layer->setNameTemplate("spin");
    runEvents(300);
    EXPECT_EQ(calls.inits, before + 4);
}

TEST_F(CameraWidget, ends_changes_that_two_views_make_to_each_other) {
    const auto one = show<LyqSliceWidget>();
    const auto other = show<LyqSliceWidget>();
    TestLayer* layer = addLayer();
    runEvents(100);
    int number = 0;
    calls.init = [&](TestDriver&) {
        layer->setNameTemplate(++number % 2 ? "a" : "b");  // reaches both views
        return true;
    };
    const int before = calls.inits;
    layer->setNameTemplate("start");
    runEvents(300);
    EXPECT_LE(calls.inits, before + 8);
    EXPECT_GE(calls.inits, before + 2);
}

TEST_F(CameraWidget, prepares_when_display_units_or_the_workspace_change) {
    addLayer();
    const auto view = show<LyqSliceWidget>();
    int before = calls.inits;
    LyqApplication::instance().displayUnits().setInchSystem(true);
    runEvents(50);
    EXPECT_EQ(calls.inits, before + 1);
    LyqApplication::instance().displayUnits().setInchSystem(false);
    runEvents(50);
    before = calls.inits;
    frames = 0;
    workspace->setCrossPosition({1, 1, 1});
    runEvents(100);
    EXPECT_EQ(calls.inits, before + 1);
    EXPECT_EQ(frames, 1);
}

TEST_F(CameraWidget, lets_a_view_answer_to_the_last_frame_of_another) {
    const auto one = show<LyqSliceWidget>();
    const auto other = show<LyqSliceWidget>();
    TestLayer* layer = addLayer();
    runEvents(100);
    int ofOne = 0;
    int ofOther = 0;
    calls.init = [&](TestDriver& driver) {
        if (driver.node->getCameraNode()->getObject() == other->camera()) {
            ++ofOther;
            return true;
        }
        if (++ofOne < 4) {
            driver.node->addUpdateFlags(5);  // one frame more
        } else {
            lyrSetValue(other->camera(), Lyr::DotsPerInch, LyrVector2<float>(50.0f, 50.0f));
        }
        return true;
    };
    one->scheduleFrame();
    runEvents(300);
    EXPECT_EQ(ofOne, 4);
    EXPECT_EQ(ofOther, 1);
    layer->setNameTemplate("later");
    runEvents(300);
    EXPECT_EQ(ofOne, 5);
}

TEST_F(CameraWidget, unites_what_is_to_be_drawn_anew) {
    const TestLayer* a = addLayer();
    TestLayer* b = addLayer();
    const auto view = show<LyqSceneWidget>();
    calls.update = [&](TestDriver& driver, long long pass) {
        if (driver.node->getObject() == a) {
            return pass == LyrRendering::SCENE_PASS ? LyrRendering::DeviceRect{{-0.5f, -0.25f}, {0.0f, 0.0f}}
                                                    : LyrRendering::emptyRect();
        }
        return pass == LyrRendering::OVERLAY_PASS ? LyrRendering::DeviceRect{{-0.25f, -0.75f}, {0.125f, 0.5f}}
                                                  : LyrRendering::emptyRect();
    };
    frames = 0;
    b->setNameTemplate("other");
    runEvents(200, [this] { return frames > 0; });
    EXPECT_EQ(frames, 1);
    const LyrRendering::DeviceRect united = view->scene().getUpdateRect();
    EXPECT_EQ(united.first, LyrVector2<float>(-0.5f, -0.75f));
    EXPECT_EQ(united.second, LyrVector2<float>(0.125f, 0.5f));
    calls.update = {};
    b->setNameTemplate("calm");
    runEvents(200);
    EXPECT_TRUE(LyrRendering::isEmpty(view->scene().getUpdateRect()));
    EXPECT_EQ(frames, 1);
}

TEST_F(CameraWidget, draws_a_driver_that_covers_nothing) {
    calls.coverage = [](TestDriver&, long long) { return LyrRendering::emptyRect(); };
    calls.render = drawQuarter;
    addLayer();
    const auto view = show<LyqSceneWidget>();
    EXPECT_EQ(view->getImage().pixel(1, 148), 0xffff0000u);
}

TEST_F(CameraWidget, runs_no_init_while_it_draws) {
    /** Knows whether the toolkit delivers a paint event to the surface. */
    struct PaintWatch : QObject {
        bool eventFilter(QObject* surface, QEvent* event) override {
            if (event->type() != QEvent::Paint || painting) {
                return false;
            }
            painting = true;
            ++paints;
            QCoreApplication::sendEvent(surface, event);  // comes by here again, and is let through
            painting = false;
            return true;
        }
        bool painting = false;
        int paints = 0;
    } watch;
    addLayer();
    const auto view = show<LyqSceneWidget>();
    for (QWidget* child : view->findChildren<QWidget*>()) {
        if (child->inherits("QOpenGLWidget")) {
            child->installEventFilter(&watch);
        }
    }
    int drawn = 0;
    calls.render = [&](TestDriver&, long long) {
        drawn += watch.painting ? 1 : 0;
        return true;
    };
    calls.init = [&](TestDriver&) {
        EXPECT_FALSE(watch.painting);
        return true;
    };
    const int before = calls.inits;
    for (int size = 100; size < 130; ++size) {
        view->resize(size, size);
        runEvents(5);
    }
    runEvents(100);
    EXPECT_GT(watch.paints, 0);
    EXPECT_GT(drawn, 0);
    EXPECT_GT(calls.inits, before);
}

TEST_F(CameraWidget, shows_layers_in_views_that_are_there_and_in_those_to_come) {
    TestLayer* early = addLayer();
    const auto first = show<LyqSliceWidget>();
    TestLayer* late = addLayer();
    const auto second = show<LyqSceneWidget>();
    for (const LyqCameraWidget* view :
         {static_cast<LyqCameraWidget*>(first.get()), static_cast<LyqCameraWidget*>(second.get())}) {
        ASSERT_EQ(view->scene().getViewportNodeCount(), 2);
        EXPECT_EQ(view->scene().getViewportNode(0)->getObject(), early);
        EXPECT_EQ(view->scene().getViewportNode(1)->getObject(), late);
    }
    EXPECT_EQ(calls.made, 4);
    workspace->removeLayer(early);
    EXPECT_EQ(calls.destroyed, 2);
    EXPECT_EQ(first->scene().getViewportNodeCount(), 1);
    EXPECT_EQ(calls.cleanups, 2);  // with the context, which the views had
}

TEST_F(CameraWidget, keeps_the_camera_in_pixels_of_the_framebuffer) {
    const auto view = show<LyqSliceWidget>(173, 91);
    const LyrSceneGraph::CameraTransform& camera = view->cameraTransform();
    const auto ratio = static_cast<float>(view->devicePixelRatioF());
    EXPECT_EQ(camera.getViewportMin(), LyrVector2<float>(0, 0));
    EXPECT_EQ(camera.getViewportMax(), LyrVector2<float>(173 * ratio, 91 * ratio));
    const auto dpi = lyrGetValue(view->camera(), Lyr::DotsPerInch, LyrVector2<float>());
    EXPECT_EQ(dpi.x, static_cast<float>(view->logicalDpiX()) * ratio);
}

TEST_F(CameraWidget, survives_sizes_of_no_and_one_pixel) {
    calls.render = drawQuarter;
    addLayer();
    QWidget window;
    auto* view = new LyqSliceWidget;
    auto* scene = new LyqSceneWidget;
    view->setParent(&window);
    scene->setParent(&window);
    window.resize(300, 300);
    window.show();
    runEvents(100);
    for (const QSize& size :
         {QSize(0, 0), QSize(1, 1), QSize(0, 50), QSize(50, 0), QSize(1, 200), QSize(-5, 3), QSize(100, 80)}) {
        for (LyqCameraWidget* each : {static_cast<LyqCameraWidget*>(view), static_cast<LyqCameraWidget*>(scene)}) {
            each->setMinimumSize(0, 0);
            each->setGeometry(QRect(QPoint(0, 0), size));
            runEvents(20);
            each->resetView();
            runEvents(20);
            EXPECT_EQ(each->getImage().size(), each->size().isEmpty() ? QSize(0, 0) : each->size());
        }
    }
    EXPECT_EQ(view->getImage().pixel(1, 78), 0xffff0000u);
}

TEST_F(CameraWidget, may_be_deleted_inside_of_an_init) {
    addLayer();
    QPointer<LyqCameraWidget> view = show<LyqSliceWidget>().release();
    calls.init = [&](TestDriver&) {
        const int destroyed = calls.destroyed;
        delete view;
        EXPECT_EQ(calls.destroyed, destroyed);
        return true;
    };
    workspace->setCrossPosition({1, 1, 1});
    runEvents(100);
    EXPECT_FALSE(view);
    EXPECT_EQ(calls.destroyed, 1);
    EXPECT_EQ(calls.cleanups, 1);
    view = new LyqSceneWidget;
    view->show();  // deleted in its first frame
    runEvents(100);
    EXPECT_FALSE(view);
    EXPECT_EQ(calls.destroyed, 2);
    view = new LyqSceneWidget;
    EXPECT_TRUE(view->getImage().isNull());
    EXPECT_FALSE(view);
}

TEST_F(CameraWidget, lets_layers_go_while_it_draws) {
    TestLayer* layer = addLayer();
    calls.render = [&](TestDriver&, long long) {
        workspace->removeLayer(layer);
        EXPECT_EQ(calls.destroyed, 0);
        return true;
    };
    const auto view = show<LyqSliceWidget>();
    EXPECT_EQ(calls.destroyed, 1);
    EXPECT_EQ(calls.cleanups, 1);
    runEvents(50);
}

TEST_F(CameraWidget, composes_into_a_picture_of_its_window) {
    calls.render = [](TestDriver&, long long pass) {
        if (pass == LyrRendering::OVERLAY_PASS) {
            glMatrixMode(GL_PROJECTION);
            glLoadIdentity();
            glMatrixMode(GL_MODELVIEW);
            glLoadIdentity();
            glDisable(GL_DEPTH_TEST);
            glEnable(GL_BLEND);
            glColorMask(1, 1, 1, 1);
            glColor4f(1, 1, 1, 0.5f);
            glRectf(-1, -1, 1, 1);
        }
        return true;
    };
    addLayer();
    QWidget window;
    QHBoxLayout layout(&window);
    auto* view = new LyqSceneWidget;
    layout.addWidget(view);
    window.resize(240, 200);
    window.show();
    runEvents(300);
    view->finishFrames();
    const QColor inWindow = window.grab().toImage().pixelColor(view->pos() + QPoint(100, 5));
    // Half white over the background: 35 + (255 - 35) / 2.
    EXPECT_NEAR(inWindow.red(), 145, 1);
    EXPECT_EQ(inWindow, view->getImage().pixelColor(100, 5));
}

TEST_F(CameraWidget, keeps_drawing_when_it_moves_to_another_window) {
    calls.render = drawQuarter;
    addLayer();
    auto view = show<LyqSceneWidget>();
    QWidget window;
    QHBoxLayout layout(&window);
    layout.addWidget(view.get());
    window.resize(240, 200);
    window.show();
    runEvents(200);
    EXPECT_EQ(view->getImage().pixel(2, view->height() - 3), 0xffff0000u);
    view->setParent(nullptr);
    view->show();
    runEvents(200);
    EXPECT_EQ(view->getImage().pixel(2, view->height() - 3), 0xffff0000u);
    view.reset();
}

TEST_F(CameraWidget, gives_a_picture_of_a_view_that_was_never_shown) {
    calls.render = drawQuarter;
    addLayer();
    LyqSceneWidget view;
    view.resize(64, 48);
    const QImage image = view.getImage();
    EXPECT_TRUE(image.isNull() || image.pixel(1, 46) == 0xffff0000u);
}

TEST_F(CameraWidget, tries_out_opengl_without_taking_the_current_context_away) {
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    ASSERT_TRUE(context.create());
    ASSERT_TRUE(context.makeCurrent(&surface));
    const QSurfaceFormat before = QSurfaceFormat::defaultFormat();
    QSurfaceFormat other = before;
    other.setSamples(before.samples() == 4 ? 2 : 4);  // a format that was not tried out yet
    QSurfaceFormat::setDefaultFormat(other);
    EXPECT_TRUE(LyqCameraWidget::openGLProblem().isEmpty());
    EXPECT_EQ(QOpenGLContext::currentContext(), &context);
    EXPECT_EQ(context.surface(), &surface);
    context.doneCurrent();
    QSurfaceFormat::setDefaultFormat(before);
    EXPECT_TRUE(LyqCameraWidget::openGLProblem().isEmpty());
    EXPECT_EQ(QOpenGLContext::currentContext(), nullptr);
}

TEST_F(CameraWidget, says_so_where_there_is_only_a_core_profile) {
    addLayer();
    const QSurfaceFormat before = QSurfaceFormat::defaultFormat();
    QSurfaceFormat core;
    core.setVersion(3, 3);
    core.setProfile(QSurfaceFormat::CoreProfile);
    QSurfaceFormat::setDefaultFormat(core);
    {
        LyqSceneWidget view;
        EXPECT_FALSE(view.hasOpenGL());
        EXPECT_TRUE(LyqCameraWidget::openGLProblem().contains(QLatin1String("core profile")));
        view.show();
        runEvents(50);
        EXPECT_TRUE(view.getImage().isNull());
        EXPECT_EQ(calls.made, 0);
    }
    QSurfaceFormat::setDefaultFormat(before);
    EXPECT_TRUE(LyqCameraWidget::openGLProblem().isEmpty());
}

TEST_F(CameraWidget, keeps_memory_of_the_context_only_while_a_layer_is_shown) {
    const auto view = show<LyqSliceWidget>();
    for (int i = 0; i < 20; ++i) {
        TestLayer* layer = addLayer();
        view->getImage();
        workspace->removeLayer(layer);
    }
    EXPECT_EQ(calls.made, 20);
    EXPECT_EQ(calls.destroyed, 20);
    EXPECT_EQ(calls.cleanups, 20);
}
