// Before the toolkit includes the same headers.
#define GL_GLEXT_PROTOTYPES

#include "GlTarget.h"
#include "colortable/viewport/LegendView.h"

#include <lyr_opengl/LyrViewScene.h>

#include <GL/gl.h>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

using namespace legends;

// The host's own frames, with this library as one of its plug-ins.

namespace {

struct CurrentSurface : LyrSceneGraph::ViewScene::Surface {
    bool makeCurrent() override { return true; }
    void doneCurrent() override {}
};

class LegendScene : private ToolkitApplication, public testing::Test {
protected:
    LegendScene() {
        handler = LyrObjectPtr(new Handler([this](Entries& list, LyrObject*, LyrTimestamp since) {
            list.append(legend.entry(visible));
            return legend.table->getModificationTimestamp() > since;
        }));
        scene.getCameraNode()->transform().setViewport({0.0f, 0.0f}, {400.0f, 300.0f});
        setList(rendererOf(camera()).get(), Lyr::AnnotationHandlerList, {handler.get()});
    }
    ~LegendScene() override { scene.setSurface(nullptr); }

    LyrObject* camera() const { return static_cast<const LyqCameraWidget&>(*view).camera(); }
    void settle() {
        for (int i = 0; i < 4; ++i) {
            frame();
        }
    }
    bool frame() {
        const bool drawn = scene.prepare().mustDraw;
        if (drawn) {
            scene.draw({0.5f, 0.5f, 0.5f});
        }
        return drawn;
    }

    const LibraryUse use;
    CurrentSurface surface;
    Legend legend;
    bool visible = true;
    LyrObjectPtr handler;
    std::unique_ptr<LyqWorkspaceWidget> view{dynamic_cast<LyqWorkspaceWidget*>(LyrMetaClass::create("LyqSceneWidget"))};
    // After the view: its host tries out OpenGL with a context of its own.
    GlTarget target{400, 300};
    LyrSceneGraph::ViewScene scene{camera()};
};

}  // namespace

TEST_F(LegendScene, shows_the_legend_and_draws_nothing_while_nothing_changes) {
    scene.setSurface(&surface);
    EXPECT_TRUE(frame());
    settle();
    target.read();
    const QRect place = legend.annotation().frameGeometry();
    const QImage image = legend.annotation().getImage();
    int shown = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if ((pixel & 0xffffffu) != 8u) {
                ASSERT_TRUE(target.at(place.left() + x, place.top() + y) ==
                            (GlTarget::Color{qRed(pixel), qGreen(pixel), qBlue(pixel)}));
                ++shown;
            }
        }
    }
    EXPECT_GT(shown, 500);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    for (int i = 0; i < 20; ++i) {
        EXPECT_FALSE(frame());
    }
}

TEST_F(LegendScene, is_drawn_anew_after_a_change_that_its_handler_tells_of) {
    scene.setSurface(&surface);
    settle();
    ASSERT_FALSE(frame());
    legend.table->stampModification();
    EXPECT_TRUE(frame());
    EXPECT_FALSE(frame());
    visible = false;
    EXPECT_TRUE(frame());
    target.read();
    const QPoint at = legend.annotation().frameGeometry().topLeft();
    for (int y = 0; y < 100; ++y) {
        EXPECT_TRUE(target.at(at.x() + 5, at.y() + y) == (GlTarget::Color{128, 128, 128}));
    }
}

TEST_F(LegendScene, has_no_driver_any_more_when_the_camera_gives_up_its_role) {
    scene.setSurface(&surface);
    settle();
    ASSERT_EQ(scene.getViewportNodeCount(), 1);
    ASSERT_EQ(scene.getViewportNode(0)->getRenderingDriverCount(), 1);
    camera()->deactivateRole(Lyr::Camera);
    settle();
    EXPECT_EQ(scene.getViewportNodeCount(), 0);
    camera()->activateRole(Lyr::Camera);
    settle();
    EXPECT_EQ(scene.getViewportNodeCount(), 1);
}
