#include "modules/ModuleTools.h"
#include "modules/Process.h"

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrRoleManager.h>
#include <lyr_opengl/LyrRenderingDriver.h>
#include <lyr_opengl/LyrViewScene.h>
#include <lyr_opengl/LyrViewportObjectNode.h>
#include <lys_core/LyqCameraWidget.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <gmock/gmock.h>

#include <ToolkitApplication.h>

#include <memory>

using namespace modules;
using testing::HasSubstr;
using testing::Not;

// Views of a host, and the module that puts legends into them, which the host knows by its file only.

namespace {

using View = std::unique_ptr<LyqWorkspaceWidget>;

View makeView(const char* name) {
    return View(dynamic_cast<LyqWorkspaceWidget*>(LyrMetaClass::create(name)));
}

LyrObject* containerOf(const View& view) {
    return lyrGetValue(view.get(), id("ColorLookupTableAnnotationContainer"), LyrObjectLink()).getLink();
}

std::vector<LyrObjectLink> renderedIn(const View& view) {
    LyrValueArrayOPCache<LyrObjectLink> rendered;
    rendered.load(static_cast<const LyqCameraWidget&>(*view).camera(), Lyr::RenderedObjectList);
    return rendered.items();
}

struct Errors : LyrError::Listener {
    int count = 0;
    bool errorEmitted(const LyrError::Message&) override { return ++count > 0; }
};

class LegendModule : private ToolkitApplication, public testing::Test {
protected:
    LegendModule() {
        LyqApplication::instance();
        EXPECT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
    }
    ~LegendModule() override {
        EXPECT_FALSE(LyrModuleLoader::isLoaded(COLORTABLE));
        EXPECT_FALSE(process::maps(COLORTABLE_MODULE));
        EXPECT_EQ(LyrMetaClass::moduleClassCount(COLORTABLE), 0);
        EXPECT_FALSE(LyrObject::RoleManager::isRole(Lyr::RenderPlugin));
        EXPECT_EQ(LyrObject::RoleManager::getRoleInterface(Lyr::RenderPlugin), nullptr);
        EXPECT_EQ(errors.count, 0);
    }

    Errors errors;
    Loader loader;
};

}  // namespace

TEST_F(LegendModule, stays_while_views_are_open_and_goes_when_they_are_closed) {
    EXPECT_TRUE(LyrObject::RoleManager::isRole(Lyr::RenderPlugin));
    View slice = makeView("LyqSliceWidget");
    ASSERT_TRUE(loader.init());
    View scene = makeView("LyqSceneWidget");
    ASSERT_NE(containerOf(slice), nullptr);
    ASSERT_NE(containerOf(scene), nullptr);
    ASSERT_EQ(renderedIn(slice).size(), 1u);
    EXPECT_FALSE(loader.unload());
    EXPECT_THAT(loader.message, HasSubstr("LyrColorLookupTableAnnotationContainer"));
    EXPECT_THAT(loader.message, HasSubstr("LyrColorLookupTableRenderObject"));
    EXPECT_NE(containerOf(slice), nullptr) << "a refused unload changes nothing";
    EXPECT_EQ(renderedIn(scene).size(), 1u);
    slice.reset();
    scene.reset();
    EXPECT_TRUE(loader.unload()) << loader.message;
}

TEST_F(LegendModule, takes_everything_back_from_open_views_and_equips_them_again) {
    const View slice = makeView("LyqSliceWidget");
    for (int round = 0; round < 3; ++round) {
        ASSERT_TRUE(loader.init());
        EXPECT_EQ(renderedIn(slice).size(), 1u);
        EXPECT_EQ(slice->getPropertyCount(), 2);
        ASSERT_TRUE(loader.cleanup());
        EXPECT_EQ(renderedIn(slice).size(), 0u);
        EXPECT_EQ(slice->getPropertyCount(), 1);
        ASSERT_TRUE(loader.unload()) << loader.message;
        EXPECT_FALSE(process::maps(COLORTABLE_MODULE));
        ASSERT_TRUE(round == 2 || loader.load(COLORTABLE_MODULE)) << loader.message;
    }
}

TEST_F(LegendModule, goes_after_it_has_prepared_and_drawn_into_a_node) {
    using namespace LyrSceneGraph;
    ASSERT_TRUE(loader.init());
    {
        const View slice = makeView("LyqSliceWidget");
        LyrObject* const camera = static_cast<const LyqCameraWidget&>(*slice).camera();
        const LyrObjectPtr renderer(renderedIn(slice).front().getLink());
        auto* cameraNode = new CameraNode(camera);
        const LyrObjectPtr heldCamera(cameraNode);
        auto* root = new SceneGraphObjectNode(camera);
        const LyrObjectPtr heldRoot(root);
        auto* node = new ViewportObjectNode(renderer.get(), root, cameraNode);
        const LyrObjectPtr heldNode(node);
        LyrObject* plugin = lyrGetValue(renderer.get(), Lyr::RenderPlugin, LyrObjectLink()).getLink();
        ASSERT_NE(plugin, nullptr);
        ASSERT_TRUE(plugin->runAction(Lyr::DriverInit, node));
        ASSERT_EQ(node->getRenderingDriverCount(), 1);
        EXPECT_TRUE(node->getRenderingDriver(0)->init());
        EXPECT_EQ(node->getUpdateFlags(), 5u);
        EXPECT_FALSE(loader.unload());
    }
    ASSERT_TRUE(loader.unload()) << loader.message;
}

TEST_F(LegendModule, stays_while_a_scene_has_drivers_of_it) {
    struct NoContext : LyrSceneGraph::ViewScene::Surface {
        bool makeCurrent() override { return false; }
        void doneCurrent() override {}
    } surface;
    ASSERT_TRUE(loader.init());
    {
        const View slice = makeView("LyqSliceWidget");
        LyrSceneGraph::ViewScene scene(static_cast<const LyqCameraWidget&>(*slice).camera());
        EXPECT_FALSE(loader.unload());
        EXPECT_THAT(loader.message, Not(HasSubstr("rendering drivers")));  // other reasons alone
        scene.setSurface(&surface);
        ASSERT_EQ(scene.getViewportNode(0)->getRenderingDriverCount(), 1);
        EXPECT_FALSE(loader.unload());
        EXPECT_THAT(loader.message, HasSubstr("1 rendering drivers of it draw in views"));
    }
    ASSERT_TRUE(loader.unload()) << loader.message;
}

TEST(LegendModuleDeathTest, is_there_at_the_end_of_the_process_with_views_open) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            const ToolkitApplication application;
            LyqApplication::instance();
            Loader loader;
            loader.load(COLORTABLE_MODULE);
            loader.init();
            makeView("LyqSliceWidget").release();
            makeView("LyqSceneWidget").release();
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
}
