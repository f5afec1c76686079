#include "modules/ModuleTools.h"
#include "modules/Process.h"

#include <lyr_core/LyrMetaClass.h>
#include <lyr_opengl/LyrViewScene.h>
#include <lys_core/LyqCameraWidget.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <ToolkitApplication.h>

#include <memory>

using namespace modules;

// The plug-in of the documentation, in a host that knows it by its file only.

namespace {

constexpr const char* EXAMPLE = "example_handler";

using View = std::unique_ptr<LyqWorkspaceWidget>;

View makeView(const char* name) {
    return View(dynamic_cast<LyqWorkspaceWidget*>(LyrMetaClass::create(name)));
}

struct NoContext : LyrSceneGraph::ViewScene::Surface {
    bool makeCurrent() override { return false; }
    void doneCurrent() override {}
};

/** Prepares the frames of a view, and tells which legends its container has then. */
std::vector<LyrObject*> legendsIn(const View& view) {
    NoContext surface;
    LyrSceneGraph::ViewScene scene(static_cast<const LyqCameraWidget&>(*view).camera());
    scene.setSurface(&surface);
    scene.prepare();
    const LyrObject* container =
        lyrGetValue(view.get(), id("ColorLookupTableAnnotationContainer"), LyrObjectLink()).getLink();
    LyrValueArrayOPCache<LyrObjectLink> list;
    EXPECT_TRUE(list.load(container, id("AnnotationList")));
    std::vector<LyrObject*> legends;
    for (const LyrObjectLink& link : list.items()) {
        legends.push_back(link.getLink());
    }
    return legends;
}

class ExampleHandler : private ToolkitApplication, public testing::Test {
protected:
    ExampleHandler() {
        LyqApplication::instance();
        EXPECT_TRUE(loader.load(COLORTABLE_MODULE)) << loader.message;
        EXPECT_TRUE(loader.init()) << loader.message;
        EXPECT_TRUE(loader.load(EXAMPLE_MODULE)) << loader.message;
    }
    ~ExampleHandler() override {
        EXPECT_FALSE(process::maps(EXAMPLE_MODULE));
        EXPECT_FALSE(process::maps(COLORTABLE_MODULE));
    }
    void unloadAll() {
        EXPECT_TRUE(loader.cleanup(EXAMPLE)) << loader.message;
        EXPECT_TRUE(loader.unload(EXAMPLE)) << loader.message;
        EXPECT_TRUE(loader.cleanup()) << loader.message;
        EXPECT_TRUE(loader.unload()) << loader.message;
    }

    Loader loader;
};

}  // namespace

TEST_F(ExampleHandler, shows_its_legend_in_views_that_are_open_and_in_later_ones) {
    View slice = makeView("LyqSliceWidget");
    EXPECT_EQ(legendsIn(slice).size(), 0u);
    ASSERT_TRUE(loader.init(EXAMPLE)) << loader.message;
    View scene = makeView("LyqSceneWidget");
    for (const View* view : {&slice, &scene}) {
        const std::vector<LyrObject*> legends = legendsIn(*view);
        ASSERT_EQ(legends.size(), 1u);
        EXPECT_STREQ(legends[0]->getMetaClass().getClassName(), "LyqColorLookupTableAnnotation");
        const LyrObject* table = lyrGetValue(legends[0], Lyr::Object, LyrObjectLink()).getLink();
        LyrValueArrayOPCache<float> positions;
        ASSERT_TRUE(positions.load(table, id("PositionList")));
        EXPECT_EQ(positions.items(), (std::vector<float>{1.0f, 3.0f}));
        const LyrObject* settings =
            lyrGetValue(legends[0], id("ColorLookupTableRenderSettings"), LyrObjectLink()).getLink();
        EXPECT_EQ(lyrGetValue<Lyrenum>(settings, Lyr::Position, Lyr::Left), Lyr::Right);
    }
    slice.reset();
    scene.reset();
    unloadAll();
}

TEST_F(ExampleHandler, takes_its_legend_back_from_a_view_that_stays_open) {
    const View slice = makeView("LyqSliceWidget");
    ASSERT_TRUE(loader.init(EXAMPLE));
    EXPECT_EQ(legendsIn(slice).size(), 1u);
    ASSERT_TRUE(loader.cleanup(EXAMPLE));
    EXPECT_EQ(legendsIn(slice).size(), 0u);
    ASSERT_TRUE(loader.unload(EXAMPLE)) << loader.message;
    EXPECT_FALSE(process::maps(EXAMPLE_MODULE));
    ASSERT_TRUE(loader.cleanup());
    ASSERT_TRUE(loader.unload()) << loader.message;
}

TEST_F(ExampleHandler, has_its_legend_drawn_anew_when_a_section_alone_is_changed) {
    View slice = makeView("LyqSliceWidget");
    ASSERT_TRUE(loader.init(EXAMPLE));
    {
        NoContext surface;
        LyrSceneGraph::ViewScene scene(static_cast<const LyqCameraWidget&>(*slice).camera());
        scene.setSurface(&surface);
        EXPECT_TRUE(scene.prepare().changed);
        EXPECT_FALSE(scene.prepare().changed);
        const LyrObject* table = lyrGetValue(legendsIn(slice).at(0), Lyr::Object, LyrObjectLink()).getLink();
        LyrValueArrayOPCache<LyrObjectLink> sections;
        ASSERT_TRUE(sections.load(table, id("SectionList")));
        ASSERT_EQ(sections.items().size(), 3u);
        LyrValueArrayOPCache<LyrVector2<float>> red;
        red.items().emplace_back(0.0f, 0.5f);
        ASSERT_TRUE(red.store(sections.items()[1].getLink(), id("PointListRed")));
        EXPECT_TRUE(scene.prepare().changed);
        EXPECT_FALSE(scene.prepare().changed);
    }
    slice.reset();
    unloadAll();
}

TEST_F(ExampleHandler, leaves_no_undo_step_behind) {
    ASSERT_TRUE(loader.init(EXAMPLE));
    EXPECT_EQ(LyqApplication::instance().undoStack().count(), 0);
    unloadAll();
}
