#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>

#include <lys_core/views/DrawnLayers.h>

namespace {

using LyrRendering::SurfaceColors;
using LyrRendering::SurfaceMesh;

/** A square across y through the middle of the box, its corners (2, 3, 1) and (6, 3, 3), that looks at the first eye.
 */
std::shared_ptr<SurfaceMesh> square() {
    auto mesh = std::make_shared<SurfaceMesh>();
    mesh->positions = {2, 3, 1, 6, 3, 1, 6, 3, 3, 2, 3, 3};
    mesh->normals = {0, 1, 0, 0, 1, 0, 0, 1, 0, 0, 1, 0};
    mesh->triangles = {0, 1, 2, 0, 2, 3};
    return mesh;
}

std::shared_ptr<SurfaceColors> colors(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    auto made = std::make_shared<SurfaceColors>();
    for (int i = 0; i < 4; ++i) {
        for (const std::uint8_t channel : {red, green, blue, std::uint8_t(255)}) {
            made->push_back(channel);
        }
    }
    return made;
}

struct SceneWidget : Views {
    SceneWidget() {
        layers.emplace_back(new TestLayer(surfacePlugin.get()));
        workspace->addLayer(layers.back().get());
        // The borders of the slices stay away from the square's middle.
        workspace->setCrossPosition({0.5f, 0.5f, 0.25f});
    }
    ~SceneWidget() override { view.reset(); }

    void open() { view = show<LyqSceneWidget>(300, 300); }
    QColor colorAt(const LyrVector3<float>& world) {
        layers.back()->setNameTemplate(layers.back()->getNameTemplate()[0] == 'a' ? "b" : "a");
        const LyrVector3<float> at = view->cameraTransform().worldToWidget(world);
        return view->getImage().pixelColor(static_cast<int>(at.x), static_cast<int>(at.y));
    }
    void mouse(QEvent::Type type, const QPointF& at, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(type, at, view->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(view.get(), &event);
    }

    LyrRendering::Surface surface;
    LyrObjectPtr surfacePlugin{new DrawingPlugin([this](auto* node) { return new TestSurfaceDriver(node, surface); })};
    std::unique_ptr<LyqSceneWidget> view;
};

}  // namespace

TEST_F(SceneWidget, draws_a_surface_in_its_colours_and_lit) {
    surface = {square(), colors(200, 100, 0)};
    open();
    const QColor lit = colorAt({4.5f, 3, 1.6f});
    EXPECT_GT(lit.red(), 100);
    EXPECT_NEAR(lit.green() * 2, lit.red(), 2);
    EXPECT_EQ(lit.blue(), 0);
    EXPECT_EQ(colorAt({7.5f, 3, 2}).rgb(), 0xff232528u);
}

TEST_F(SceneWidget, lights_a_surface_the_same_whichever_way_its_triangles_run) {
    auto mesh = square();
    surface = {mesh, colors(200, 200, 200)};
    open();
    const QColor oneWay = colorAt({4.5f, 3, 1.6f});
    mesh = square();
    mesh->triangles = {0, 2, 1, 0, 3, 2};
    surface.mesh = mesh;
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}), oneWay);
    // Its back, seen through the normals that point away, is lit as well.
    mesh = square();
    for (std::size_t i = 1; i < mesh->normals.size(); i += 3) {
        mesh->normals[i] = -1;
    }
    surface.mesh = mesh;
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}), oneWay);
}

TEST_F(SceneWidget, draws_a_surface_without_normals_in_its_very_colours) {
    auto mesh = square();
    mesh->normals.clear();
    surface = {mesh, colors(200, 100, 7)};
    open();
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}).rgb(), qRgb(200, 100, 7));
}

TEST_F(SceneWidget, takes_over_other_colours_and_other_meshes) {
    auto mesh = square();
    mesh->normals.clear();
    surface = {mesh, colors(200, 0, 0)};
    open();
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}).rgb(), qRgb(200, 0, 0));
    surface.colors = colors(0, 200, 0);
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}).rgb(), qRgb(0, 200, 0));
    surface.mesh = nullptr;
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}).rgb(), 0xff232528u);
    surface.mesh = mesh;
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}).rgb(), qRgb(0, 200, 0));
}

TEST_F(SceneWidget, hides_what_lies_behind) {
    auto mesh = square();
    mesh->normals.clear();
    mesh->positions.insert(mesh->positions.end(), {2, 2, 1, 6, 2, 1, 6, 2, 3, 2, 2, 3});  // farther from the eye
    mesh->triangles = {0, 1, 2, 0, 2, 3, 4, 5, 6, 4, 6, 7};
    auto both = colors(200, 0, 0);
    const auto far = colors(0, 0, 200);
    both->insert(both->end(), far->begin(), far->end());
    surface = {mesh, both};
    open();
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}).rgb(), qRgb(200, 0, 0));
}

TEST_F(SceneWidget, reports_and_leaves_out_a_mesh_that_does_not_fit_together) {
    struct Expected : LyrError::Listener {
        int count = 0;
        bool errorEmitted(const LyrError::Message& message) override {
            EXPECT_EQ(message.getCode(), Lyr::InvalidParameters);
            return ++count > 0;
        }
    } expected;
    auto mesh = square();
    mesh->triangles.back() = 4;
    surface = {mesh, nullptr};
    open();
    EXPECT_EQ(expected.count, 1);
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}).rgb(), 0xff232528u);
    EXPECT_EQ(expected.count, 1);
    auto grey = square();
    grey->normals.clear();
    surface = {grey, std::make_shared<SurfaceColors>(3)};  // colours that are too few are left out
    EXPECT_EQ(colorAt({4.5f, 3, 1.6f}).rgb(), qRgb(191, 191, 191));
}

TEST_F(SceneWidget, finds_the_place_of_the_surface_under_the_mouse) {
    surface = {square(), nullptr};
    open();
    LyrVector3<float> place;
    bool isInside = false;
    QObject::connect(view.get(), &LyqCameraWidget::positionHovered, [&](const LyrVector3<float>& at, bool inside) {
        place = at;
        isInside = inside;
    });
    const LyrVector3<float> at = view->cameraTransform().worldToWidget({4.5f, 3, 1.6f});
    const QPointF position(std::floor(double(at.x)) + 0.5, std::floor(double(at.y)) + 0.5);
    mouse(QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton);
    EXPECT_TRUE(isInside);
    EXPECT_TRUE(place.isSimilar({4.5f, 3, 1.6f}, 0.05f)) << place.x << " " << place.y << " " << place.z;
    mouse(QEvent::MouseMove, {3, 3}, Qt::NoButton, Qt::NoButton);
    EXPECT_FALSE(isInside);
}

TEST_F(SceneWidget, turns_pans_and_zooms) {
    open();
    const LyrVector3<float> before = view->cameraTransform().worldToWidget({8, 3, 2});
    mouse(QEvent::MouseButtonPress, {100, 100}, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseMove, {150, 100}, Qt::NoButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, {150, 100}, Qt::LeftButton, Qt::NoButton);
    EXPECT_FALSE(view->cameraTransform().worldToWidget({8, 3, 2}).isSimilar(before, 5.0f));
    const LyrVector3<float> center = view->cameraTransform().worldToWidget({4, 3, 2});
    EXPECT_TRUE(center.isSimilar({150, 150, center.z}, 0.01f));
    mouse(QEvent::MouseButtonPress, {100, 100}, Qt::MiddleButton, Qt::MiddleButton);
    mouse(QEvent::MouseMove, {120, 90}, Qt::NoButton, Qt::MiddleButton);
    mouse(QEvent::MouseButtonRelease, {120, 90}, Qt::MiddleButton, Qt::NoButton);
    EXPECT_TRUE(view->cameraTransform().worldToWidget({4, 3, 2}).isSimilar({170, 140, center.z}, 0.1f));
    const double scale = view->cameraTransform().getPixelsPerMillimeter();
    QWheelEvent wheel({10, 10}, {10, 10}, QPoint(), QPoint(0, -240), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                      false);
    QApplication::sendEvent(view.get(), &wheel);
    EXPECT_NEAR(view->cameraTransform().getPixelsPerMillimeter(), scale / (1.15 * 1.15), 1e-6);
    view->resetView();
    EXPECT_TRUE(view->cameraTransform().worldToWidget({8, 3, 2}).isSimilar(before, 1e-3f));
}
