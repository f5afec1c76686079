#include <lyr_core/LyrPropertyPtr.h>

#include <lys_core/views/ViewTools.h>

#include <GL/gl.h>

// Also run with the scale factor 2.

namespace {

double wantedRatio() {
    const QByteArray factor = qgetenv("QT_SCALE_FACTOR");
    return factor.isEmpty() ? 1.0 : factor.toDouble();
}

/** Fills the lower left quarter of the viewport with red. */
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

using PixelRatio = Views;

TEST_F(PixelRatio, is_that_of_the_view_and_its_camera) {
    const auto view = show<LyqSliceWidget>(174, 92);
    ASSERT_EQ(view->devicePixelRatioF(), wantedRatio());
    const auto ratio = static_cast<float>(wantedRatio());
    EXPECT_EQ(view->cameraTransform().getViewportMin(), LyrVector2<float>(0, 0));
    EXPECT_EQ(view->cameraTransform().getViewportMax(), LyrVector2<float>(174.0f * ratio, 92.0f * ratio));
    const auto resolution = lyrGetValue(view->camera(), Lyr::DotsPerInch, LyrVector2<float>());
    EXPECT_EQ(resolution.x, static_cast<float>(view->logicalDpiX()) * ratio);
    EXPECT_EQ(resolution.y, static_cast<float>(view->logicalDpiY()) * ratio);
}

TEST_F(PixelRatio, makes_pictures_of_all_pixels_of_the_framebuffer) {
    calls.render = drawQuarter;
    addLayer();
    const auto view = show<LyqSceneWidget>(200, 150);
    ASSERT_TRUE(view->hasOpenGL());
    const QImage image = view->getImage();
    ASSERT_EQ(image.size(), QSize(200, 150) * wantedRatio());
    EXPECT_EQ(image.devicePixelRatio(), 1.0);
    const QSize half = image.size() / 2;
    const QRgb red = 0xffff0000u;
    EXPECT_EQ(image.pixel(0, image.height() - 1), red);
    EXPECT_EQ(image.pixel(half.width() - 1, half.height()), red);
    EXPECT_NE(image.pixel(half.width(), half.height()), red);
    EXPECT_NE(image.pixel(half.width() - 1, half.height() - 1), red);
}
