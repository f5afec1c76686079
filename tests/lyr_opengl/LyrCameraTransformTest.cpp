#include <lyr_opengl/LyrCameraTransform.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using LyrSceneGraph::CameraTransform;
using Vector = LyrVector3<float>;
using Point = LyrVector2<float>;

namespace {

void expectNear(const Vector& a, const Vector& b, float tolerance) {
    EXPECT_TRUE(a.isSimilar(b, tolerance))
        << a.x << " " << a.y << " " << a.z << " against " << b.x << " " << b.y << " " << b.z;
}

/** What OpenGL makes of a place: projection * modelview, divided by w, in widget pixels and depth. */
Vector throughMatrices(const CameraTransform& camera, const Vector& world) {
    double v[4] = {double(world.x), double(world.y), double(world.z), 1.0};
    for (const CameraTransform::Matrix& matrix : {camera.getModelView(), camera.getProjection()}) {
        double out[4] = {};
        for (std::size_t row = 0; row < 4; ++row) {
            for (std::size_t column = 0; column < 4; ++column) {
                out[row] += double(matrix[column * 4 + row]) * v[column];
            }
        }
        std::copy(out, out + 4, v);
    }
    const Point size = camera.getViewportSize();
    return {static_cast<float>((v[0] / v[3] + 1.0) / 2.0 * double(size.x)),
            static_cast<float>((1.0 - v[1] / v[3]) / 2.0 * double(size.y)), static_cast<float>(v[2] / v[3])};
}

CameraTransform sliceCamera(int axis) {
    CameraTransform camera;
    camera.setViewport({0, 0}, {400, 300});
    camera.setBox({0, 0, 0}, {100, 50, 20});
    camera.setSliceView(axis);
    camera.setSlice(3, 7.0f);
    return camera;
}

CameraTransform sceneCamera() {
    CameraTransform camera;
    camera.setViewport({0, 0}, {400, 300});
    camera.setBox({0, 0, 0}, {100, 50, 20});
    camera.setSceneView();
    return camera;
}

}  // namespace

TEST(LyrCameraTransform, a_slice_across_z_shows_x_to_the_right_and_y_down) {
    const CameraTransform camera = sliceCamera(2);
    // 100 x 50 mm in 400 x 300 pixels, of which 95 % are filled: 3.8 pixels a millimetre, the box's middle in the
    // view's.
    EXPECT_NEAR(camera.getPixelsPerMillimeter(), 3.8, 1e-12);
    expectNear(camera.worldToWidget({50, 25, 7}), {200, 150, 0}, 1e-4f);
    expectNear(camera.worldToWidget({60, 25, 7}), {238, 150, 0}, 1e-4f);
    expectNear(camera.worldToWidget({50, 35, 7}), {200, 188, 0}, 1e-4f);
    expectNear(camera.widgetToWorld({10, 55}), {0, 0, 7}, 1e-4f);
}

TEST(LyrCameraTransform, slices_across_y_and_x_show_z_down) {
    const CameraTransform acrossY = sliceCamera(1);
    expectNear(acrossY.worldToWidget({50, 7, 10}), {200, 150, 0}, 1e-4f);
    expectNear(acrossY.worldToWidget({60, 7, 20}), {238, 188, 0}, 1e-4f);
    const CameraTransform acrossX = sliceCamera(0);
    // 50 x 20 mm: 7.6 pixels a millimetre.
    expectNear(acrossX.worldToWidget({7, 35, 10}), {276, 150, 0}, 1e-4f);
    expectNear(acrossX.worldToWidget({7, 25, 20}), {200, 226, 0}, 1e-4f);
}

TEST(LyrCameraTransform, the_matrices_agree_with_the_mapping) {
    for (int kind = 0; kind < 4; ++kind) {
        CameraTransform camera = kind < 3 ? sliceCamera(kind) : sceneCamera();
        camera.zoom(1.7, {120, 80});
        camera.pan({13, -21});
        camera.rotate({40, 65});
        for (const Vector& world : {Vector(0, 0, 0), Vector(100, 50, 20), Vector(10, 40, 5), Vector(50, 25, 10)}) {
            expectNear(throughMatrices(camera, world), camera.worldToWidget(world), 2e-3f);
        }
    }
}

TEST(LyrCameraTransform, a_widget_position_at_its_depth_leads_back_to_the_place) {
    for (int kind = 0; kind < 4; ++kind) {
        CameraTransform camera = kind < 3 ? sliceCamera(kind) : sceneCamera();
        camera.rotate({-70, 20});
        for (const Vector& world : {Vector(0, 0, 0), Vector(100, 50, 20), Vector(10, 40, 5)}) {
            const Vector widget = camera.worldToWidget(world);
            expectNear(camera.widgetToWorld({widget.x, widget.y}, widget.z), world, 0.02f);
        }
    }
}

TEST(LyrCameraTransform, zooming_keeps_the_place_under_the_mouse) {
    CameraTransform camera = sliceCamera(2);
    const Vector before = camera.widgetToWorld({310, 40});
    camera.zoom(2.5, {310, 40});
    expectNear(camera.widgetToWorld({310, 40}), before, 1e-3f);
    EXPECT_NEAR(camera.getPixelsPerMillimeter(), 9.5, 1e-9);
    EXPECT_FALSE(camera.isFitted());
    camera.fit();
    EXPECT_NEAR(camera.getPixelsPerMillimeter(), 3.8, 1e-12);
}

TEST(LyrCameraTransform, panning_moves_what_is_shown_by_pixels) {
    for (int kind = 0; kind < 4; ++kind) {
        CameraTransform camera = kind < 3 ? sliceCamera(kind) : sceneCamera();
        const Vector world = camera.widgetToWorld({200, 150});
        camera.pan({30, -12});
        const Vector moved = camera.worldToWidget(world);
        EXPECT_NEAR(moved.x, 230.0f, 1e-2f);
        EXPECT_NEAR(moved.y, 138.0f, 1e-2f);
    }
}

TEST(LyrCameraTransform, a_camera_that_nobody_moved_stays_fitted_when_the_view_is_resized) {
    CameraTransform camera = sliceCamera(2);
    camera.setViewport({0, 0}, {800, 600});
    EXPECT_NEAR(camera.getPixelsPerMillimeter(), 7.6, 1e-12);
    camera.pan({1, 0});
    camera.setViewport({0, 0}, {400, 300});
    EXPECT_NEAR(camera.getPixelsPerMillimeter(), 7.6, 1e-12);
}

TEST(LyrCameraTransform, dragging_the_front_to_the_right_and_down_moves_it_there) {
    CameraTransform camera = sceneCamera();
    const Vector front = camera.widgetToWorld({200, 150}, 0.0f);  // nearer than the centre
    ASSERT_LT(camera.worldToWidget(front).z, camera.worldToWidget({50, 25, 10}).z);
    camera.rotate({20, 0});
    EXPECT_GT(camera.worldToWidget(front).x, 201.0f);
    EXPECT_NEAR(camera.worldToWidget(front).y, 150.0f, 0.01f);
    camera = sceneCamera();
    camera.rotate({0, 20});
    EXPECT_GT(camera.worldToWidget(front).y, 151.0f);
    EXPECT_NEAR(camera.worldToWidget(front).x, 200.0f, 0.01f);
}

TEST(LyrCameraTransform, a_thousand_turns_leave_the_directions_at_right_angles) {
    CameraTransform camera = sceneCamera();
    for (int i = 0; i < 1000; ++i) {
        camera.rotate({static_cast<float>(i % 37), static_cast<float>(i % 11) - 5.0f});
    }
    const CameraTransform::Matrix m = camera.getModelView();
    for (std::size_t a = 0; a < 3; ++a) {
        for (std::size_t b = 0; b < 3; ++b) {
            const double dot = double(m[a * 4]) * double(m[b * 4]) + double(m[a * 4 + 1]) * double(m[b * 4 + 1]) +
                               double(m[a * 4 + 2]) * double(m[b * 4 + 2]);
            EXPECT_NEAR(dot, a == b ? 1.0 : 0.0, 1e-5);
        }
    }
}

TEST(LyrCameraTransform, the_whole_box_lies_between_the_near_and_the_far_plane) {
    CameraTransform camera = sceneCamera();
    for (const double factor : {1.0, 0.1, 3.0}) {
        camera.zoom(factor, {0, 0});
        camera.pan({57, 31});
        const float depth = camera.worldToWidget({100, 50, 20}).z;
        EXPECT_LE(depth, 1.0f);
        EXPECT_LE(camera.worldToWidget({0, 0, 0}).z, 1.0f);
    }
}

TEST(LyrCameraTransform, views_without_pixels_and_boxes_without_extent_give_finite_numbers) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const Point& size : {Point(0, 0), Point(1, 1), Point(0, 500), Point(1, 500)}) {
        for (int kind = 0; kind < 4; ++kind) {
            CameraTransform camera = kind < 3 ? sliceCamera(kind) : sceneCamera();
            camera.setBox({1, 1, 1}, {1, 1, nan});
            camera.setViewport({0, 0}, size);
            camera.zoom(1e30, {0, 0});
            camera.zoom(double(nan), {0, 0});
            camera.zoom(-1.0, {0, 0});
            camera.pan({nan, 0});
            camera.rotate({nan, 3});
            const Vector widget = camera.worldToWidget({0.25f, 0.25f, 0.25f});
            EXPECT_TRUE(std::isfinite(widget.x) && std::isfinite(widget.y) && std::isfinite(widget.z));
            const Point device = camera.widgetToDevice({3, 4});
            EXPECT_TRUE(std::isfinite(device.x) && std::isfinite(device.y));
            for (const float number : camera.getProjection()) {
                EXPECT_TRUE(std::isfinite(number));
            }
        }
    }
}

TEST(LyrCameraTransform, zoom_ends_somewhere) {
    CameraTransform camera = sliceCamera(2);
    for (int i = 0; i < 1000; ++i) {
        camera.zoom(2.0, {200, 150});
    }
    EXPECT_NEAR(camera.getPixelsPerMillimeter(), 3.8 * 500, 1e-6);
    for (int i = 0; i < 1000; ++i) {
        camera.zoom(0.5, {200, 150});
    }
    EXPECT_NEAR(camera.getPixelsPerMillimeter(), 3.8 * 0.02, 1e-9);
}
