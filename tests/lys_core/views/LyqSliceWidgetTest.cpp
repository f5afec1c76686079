#include <lyr_core/LyrRGBA.h>
#include <lyr_opengl/LyrViewMarks.h>

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>

#include <lys_core/views/DrawnLayers.h>

#include <cmath>

namespace {

/** A colour for each voxel. */
QRgb voxelColor(int axis, int index, int x, int y) {
    return qRgb(20 + 25 * x, 20 + 30 * y, 40 + 50 * index + 5 * axis);
}

QRgb planeColor(int axis) {
    const LyrRGBA<float> color = LyrRendering::planeColor(axis);
    const auto channel = [](float value) { return static_cast<int>(std::lround(value * 255.0f)); };
    return qRgb(channel(color.red), channel(color.green), channel(color.blue));
}

struct SliceWidget : Views {
    SliceWidget() {
        slices.color = voxelColor;
        layers.emplace_back(new TestLayer(slicePlugin.get()));
        workspace->addLayer(layers.back().get());
        workspace->setCrossPosition({0.5f, 0.5f, 2.5f});
    }
    ~SliceWidget() override { view.reset(); }

    void open(int axis, int width = 400, int height = 300) {
        view = show<LyqSliceWidget>(width, height);
        view->setSliceAxis(axis);
        runEvents(50);
    }
    QPointF positionOf(const LyrVector3<float>& world) const {
        const LyrVector3<float> widget = view->cameraTransform().worldToWidget(world);
        return QPointF(double(widget.x), double(widget.y)) / view->devicePixelRatioF();
    }
    void mouse(QEvent::Type type, const QPointF& at, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(type, at, view->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(view.get(), &event);
    }
    void drag(Qt::MouseButton button, const QPointF& from, const QPointF& to) {
        mouse(QEvent::MouseButtonPress, from, button, button);
        mouse(QEvent::MouseMove, to, Qt::NoButton, button);
        mouse(QEvent::MouseButtonRelease, to, button, Qt::NoButton);
    }
    void wheel(int delta, Qt::KeyboardModifiers modifiers = Qt::NoModifier, const QPointF& at = {100, 100}) {
        QWheelEvent event(at, view->mapToGlobal(at), QPoint(), QPoint(0, delta), Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(view.get(), &event);
    }
    void key(int code) {
        QKeyEvent event(QEvent::KeyPress, code, Qt::NoModifier);
        QApplication::sendEvent(view.get(), &event);
    }

    SliceLayer slices;
    LyrObjectPtr slicePlugin{new DrawingPlugin([this](auto* node) { return new TestSliceDriver(node, slices); })};
    std::unique_ptr<LyqSliceWidget> view;
};

}  // namespace

TEST_F(SliceWidget, shows_every_voxel_of_the_slice_at_its_place) {
    for (int axis = 0; axis < 3; ++axis) {
        workspace->setCrossPosition({0.5f, 0.5f, 0.5f});
        open(axis);
        const QImage image = view->getImage();
        const int right = axis == 0 ? 1 : 0;
        const int down = axis == 2 ? 1 : 2;
        int looked = 0;
        for (int y = 1; y < slices.sizes[down]; ++y) {
            for (int x = 1; x < slices.sizes[right]; ++x) {  // the cross-hair runs through the first ones
                LyrVector3<float> world{0.5f, 0.5f, 0.5f};
                world[right] = static_cast<float>(x) + 0.5f;
                world[down] = static_cast<float>(y) + 0.5f;
                const LyrVector3<float> at = view->cameraTransform().worldToWidget(world);
                EXPECT_EQ(image.pixel(static_cast<int>(at.x), static_cast<int>(at.y)), voxelColor(axis, 0, x, y));
                ++looked;
            }
        }
        EXPECT_GE(looked, 15);
        view.reset();
    }
}

TEST_F(SliceWidget, magnifies_voxels_with_sharp_edges_where_they_meet) {
    open(2);
    const QImage image = view->getImage();
    // 8 x 6 mm in 400 x 300 pixels: 95 % of 50 pixels a millimetre, the middle of the box in that of the view. Voxel
    // (4, 3) begins at pixel 200, 150.
    EXPECT_EQ(image.pixel(199, 160), voxelColor(2, 2, 3, 3));
    EXPECT_EQ(image.pixel(200, 160), voxelColor(2, 2, 4, 3));
    EXPECT_EQ(image.pixel(210, 149), voxelColor(2, 2, 4, 2));
    EXPECT_EQ(image.pixel(210, 150), voxelColor(2, 2, 4, 3));
    // The picture's border: 200 - 4 * 47.5 = 10.
    EXPECT_EQ(image.pixel(9, 160), 0xff232528u);
    EXPECT_EQ(image.pixel(10, 160), voxelColor(2, 2, 0, 3));
}

TEST_F(SliceWidget, draws_the_cross_hair_in_the_colours_of_the_other_planes) {
    open(2);
    workspace->setCrossPosition({2.5f, 4.5f, 2.5f});
    const QImage image = view->getImage();
    // x: 200 + (2.5 - 4) * 47.5 = 128.75, y: 150 + (4.5 - 3) * 47.5 = 221.25.
    EXPECT_EQ(image.pixel(128, 5), planeColor(0));
    EXPECT_EQ(image.pixel(128, 295), planeColor(0));
    EXPECT_EQ(image.pixel(5, 221), planeColor(1));
    EXPECT_EQ(image.pixel(395, 221), planeColor(1));
    EXPECT_EQ(image.pixel(128, 221), voxelColor(2, 2, 2, 4));  // the gap shows what lies under the cross
    EXPECT_EQ(image.pixel(127, 5), 0xff232528u);
    EXPECT_EQ(image.pixel(129, 5), 0xff232528u);
}

TEST_F(SliceWidget, goes_to_other_slices_by_wheel_and_keys) {
    open(2);
    std::vector<int> shown;
    QObject::connect(view.get(), &LyqSliceWidget::sliceChanged, [&](int index, int count) {
        EXPECT_EQ(count, 4);
        shown.push_back(index);
    });
    wheel(120);
    wheel(120);
    wheel(-60);
    wheel(-60);  // together one step
    key(Qt::Key_Down);
    key(Qt::Key_Up);
    key(Qt::Key_Home);
    key(Qt::Key_End);
    key(Qt::Key_PageDown);
    EXPECT_EQ(shown, (std::vector<int>{3, 2, 1, 2, 0, 3, 0}));
    EXPECT_EQ(workspace->getCrossPosition().z, 0.5f);
    EXPECT_EQ(view->getSliceIndex(), 0);
    view->setSliceIndex(99);
    EXPECT_EQ(view->getSliceIndex(), 3);
    const QImage image = view->getImage();
    EXPECT_EQ(image.pixel(210, 160), voxelColor(2, 3, 4, 3));
}

TEST_F(SliceWidget, sets_the_cross_with_the_left_button) {
    open(1);
    workspace->setCrossPosition({1, 2.5f, 1});
    const QPointF from = positionOf({2, 2.5f, 1.5f});
    const QPointF to = positionOf({6.25f, 2.5f, 3.25f});
    mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    EXPECT_TRUE(workspace->getCrossPosition().isSimilar({2, 2.5f, 1.5f}, 0.01f));
    mouse(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    EXPECT_TRUE(workspace->getCrossPosition().isSimilar({6.25f, 2.5f, 3.25f}, 0.01f));
    mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    mouse(QEvent::MouseMove, from, Qt::NoButton, Qt::NoButton);
    EXPECT_TRUE(workspace->getCrossPosition().isSimilar({6.25f, 2.5f, 3.25f}, 0.01f));
}

TEST_F(SliceWidget, zooms_pans_and_resets) {
    open(2);
    const double fitted = view->cameraTransform().getPixelsPerMillimeter();
    const LyrVector3<float> under = view->cameraTransform().widgetToWorld({100, 100});
    wheel(120, Qt::ControlModifier);
    EXPECT_NEAR(view->cameraTransform().getPixelsPerMillimeter(), fitted * 1.15, 1e-6);
    EXPECT_TRUE(view->cameraTransform().widgetToWorld({100, 100}).isSimilar(under, 1e-3f));
    EXPECT_EQ(view->getSliceIndex(), 2);
    drag(Qt::MiddleButton, {50, 60}, {80, 40});
    EXPECT_TRUE(view->cameraTransform().widgetToWorld({130, 80}).isSimilar(under, 1e-3f));
    drag(Qt::RightButton, {50, 60}, {50, 10});
    EXPECT_NEAR(view->cameraTransform().getPixelsPerMillimeter(), fitted * 1.15 * std::pow(1.01, 50), 1e-3);
    EXPECT_EQ(workspace->getCrossPosition(), LyrVector3<float>(0.5f, 0.5f, 2.5f));
    key(Qt::Key_R);
    EXPECT_NEAR(view->cameraTransform().getPixelsPerMillimeter(), fitted, 1e-9);
}

TEST_F(SliceWidget, tells_the_place_under_the_mouse_and_asks_for_the_whole_window) {
    open(0);
    LyrVector3<float> place;
    bool isInside = false;
    int maximized = 0;
    QObject::connect(view.get(), &LyqCameraWidget::positionHovered, [&](const LyrVector3<float>& at, bool inside) {
        place = at;
        isInside = inside;
    });
    QObject::connect(view.get(), &LyqCameraWidget::maximizeRequested, [&] { ++maximized; });
    mouse(QEvent::MouseMove, positionOf({0.5f, 4.75f, 1.25f}), Qt::NoButton, Qt::NoButton);
    EXPECT_TRUE(isInside);
    EXPECT_TRUE(place.isSimilar({0.5f, 4.75f, 1.25f}, 1e-3f));
    mouse(QEvent::MouseMove, {1, 1}, Qt::NoButton, Qt::NoButton);
    EXPECT_FALSE(isInside);
    mouse(QEvent::MouseButtonDblClick, {10, 10}, Qt::LeftButton, Qt::LeftButton);
    EXPECT_EQ(maximized, 1);
}

TEST_F(SliceWidget, asks_for_a_picture_only_when_there_is_another) {
    open(2);
    const int before = slices.fetches;
    for (int i = 0; i < 5; ++i) {
        workspace->setCrossPosition({static_cast<float>(i) + 0.25f, 1, 2.5f});
        view->finishFrames();
    }
    EXPECT_EQ(slices.fetches, before);
    slices.color = [](int, int, int, int) { return qRgb(1, 2, 3); };
    slices.changed = LyrTimestamp::getCurrentTimestamp();
    EXPECT_EQ(view->getImage().pixel(210, 160), qRgb(1, 2, 3));
    EXPECT_EQ(slices.fetches, before + 1);
}

TEST_F(SliceWidget, lets_what_lies_below_shine_through) {
    SliceLayer glass;
    glass.color = [](int, int, int x, int) { return x < 4 ? qRgba(255, 255, 255, 0) : qRgba(255, 255, 255, 51); };
    const LyrObjectPtr over(new DrawingPlugin([&](auto* node) { return new TestSliceDriver(node, glass); }));
    open(2);
    layers.emplace_back(new TestLayer(over.get()));
    workspace->addLayer(layers.back().get());
    const QImage image = view->getImage();
    EXPECT_EQ(image.pixel(190, 160), voxelColor(2, 2, 3, 3));
    // A fifth of white over (120, 110, 150).
    EXPECT_NEAR(qRed(image.pixel(210, 160)), 147, 1);
    EXPECT_NEAR(qGreen(image.pixel(210, 160)), 139, 1);
    EXPECT_NEAR(qBlue(image.pixel(210, 160)), 171, 1);
    workspace->removeLayer(layers.back().get());
}

TEST_F(SliceWidget, draws_pictures_that_are_larger_than_a_texture) {
    // Wider than any context's textures are: a red left end, a blue right one.
    constexpr int WIDE = 40000;
    slices.sizes[0] = WIDE;
    slices.sizes[1] = 1;
    slices.color = [](int, int, int x, int) { return x < 30000 ? qRgb(255, 0, 0) : qRgb(0, 0, 255); };
    workspace->setScene({0, 0, 0}, {WIDE, 1, 4}, {1, 1, 1});
    open(2);
    for (int i = 0; i < 60; ++i) {
        const LyrVector3<float> at = view->cameraTransform().worldToWidget({30000, 0.5f, 2.5f});
        wheel(120, Qt::ControlModifier, {double(at.x), double(at.y)});
    }
    const QImage image = view->getImage();
    const LyrVector3<float> at = view->cameraTransform().worldToWidget({30000, 0.1f, 2.5f});  // beside the cross-hair
    EXPECT_EQ(image.pixel(static_cast<int>(at.x) - 20, static_cast<int>(at.y)), qRgb(255, 0, 0));
    EXPECT_EQ(image.pixel(static_cast<int>(at.x) + 20, static_cast<int>(at.y)), qRgb(0, 0, 255));
}
