#include "LegendView.h"

#include <colortable/viewport/LyrColorTableCameraRoleHook.h>
#include <colortable/viewport/LyrColorTableWorkspaceWidgetPreparations.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrLinkProperty.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

using namespace legends;
using LYQCOLORTABLE::LibraryInit;

namespace {

/** A workspace widget of another kind. */
class OtherWidget : public LyqWorkspaceWidget {
public:
    ~OtherWidget() override { LyrMetaClass::prepareDestruction(this); }
    class Factory : public LyrMetaClass::Factory {
    public:
        LyrClass* create(void*) const override { return new OtherWidget; }
        LyrClass* createCopy(const LyrClass*, void*) const override { return nullptr; }
        bool assign(LyrClass*, const LyrClass*) const override { return false; }
    };
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestOtherWidget", sizeof(OtherWidget), &LyqWorkspaceWidget::metaClass(),
                                       new Factory, "test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

/** Derived from slice views by its description. */
class SpecialSlice : public OtherWidget {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestSpecialSlice", sizeof(SpecialSlice), LyrMetaClass::find("LyqSliceWidget"),
                                       nullptr, "test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    ~SpecialSlice() override { LyrMetaClass::prepareDestruction(this); }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

using View = std::unique_ptr<LyqWorkspaceWidget>;

View makeView(const char* name) {
    return View(dynamic_cast<LyqWorkspaceWidget*>(LyrMetaClass::create(name)));
}

LyrObject* containerOf(const View& view) {
    return lyrGetValue(view.get(), Lyr::ColorLookupTableAnnotationContainer, LyrObjectLink()).getLink();
}

LyrObject* cameraOf(const View& view) {
    return static_cast<const LyqCameraWidget&>(*view).camera();
}

long long countOf(const char* name) {
    return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern(name));
}

long long legendsIn(const LyrObject* camera) {
    long long count = 0;
    for (const LyrObject* object : objectsIn(camera, Lyr::RenderedObjectList)) {
        count += object && object->getMetaClass().isOfType("LyrColorLookupTableRenderObject") ? 1 : 0;
    }
    return count;
}

class LegendHooks : private ToolkitApplication, public testing::Test {
protected:
    LegendHooks() {
        LyqApplication::instance();
        OtherWidget::metaClass();
        SpecialSlice::metaClass();
    }
    ~LegendHooks() override { EXPECT_TRUE(errors.codes.empty()); }

    Errors errors;
};

}  // namespace

TEST_F(LegendHooks, equip_views_and_cameras_that_are_there_and_those_that_come) {
    const View before[] = {makeView("LyqSliceWidget"), makeView("LyqSceneWidget")};
    LyrCamera* loose = new LyrCamera;
    const LyrObjectPtr held(loose);
    loose->prepareRoles();
    {
        const LibraryUse use;
        const View after[] = {makeView("LyqSliceWidget"), makeView("LyqSceneWidget")};
        for (const View* view : {&before[0], &before[1], &after[0], &after[1]}) {
            LyrObject* container = containerOf(*view);
            ASSERT_NE(container, nullptr);
            EXPECT_STREQ(container->getMetaClass().getClassName(), "LyrColorLookupTableAnnotationContainer");
            EXPECT_EQ(container->getParentLink().getOwner(), view->get());
            EXPECT_EQ(container->getRefCount(), 1);
            EXPECT_EQ(lyrGetValue(container, Lyr::WorkspaceWidget, LyrObjectLink()).getLink(), view->get());
            EXPECT_EQ(legendsIn(cameraOf(*view)), 1);
            EXPECT_EQ(lyrGetValue(rendererOf(cameraOf(*view)).get(), Lyr::WorkspaceWidget, LyrObjectLink()).getLink(),
                      view->get());
        }
        EXPECT_EQ(legendsIn(loose), 1);
        EXPECT_EQ(countOf("LyrColorLookupTableRenderObject"), 5);
    }
    for (const View& view : before) {
        EXPECT_EQ(view->getProperty(Lyr::ColorLookupTableAnnotationContainer), nullptr);
        EXPECT_EQ(legendsIn(cameraOf(view)), 0);
    }
    EXPECT_EQ(countOf("LyrColorLookupTableRenderObject"), 0);
    EXPECT_EQ(countOf("LyrColorLookupTableAnnotationContainer"), 0);
    EXPECT_EQ(countOf("LyrColorLookupTableRenderPlugin"), 0);
}

TEST_F(LegendHooks, work_from_the_first_user_to_the_last) {
    const View view = makeView("LyqSliceWidget");
    LibraryInit::init();
    LibraryInit::init();
    EXPECT_EQ(legendsIn(cameraOf(view)), 1);
    LyrObject* const container = containerOf(view);
    LibraryInit::cleanup();
    EXPECT_EQ(containerOf(view), container);
    EXPECT_EQ(legendsIn(cameraOf(view)), 1);
    LibraryInit::cleanup();
    EXPECT_EQ(containerOf(view), nullptr);
    EXPECT_EQ(legendsIn(cameraOf(view)), 0);
    LibraryInit::cleanup();
    LibraryInit::init();  // back at 0: nothing is installed
    EXPECT_EQ(containerOf(view), nullptr);
    EXPECT_EQ(legendsIn(cameraOf(view)), 0);
}

TEST_F(LegendHooks, leave_workspace_widgets_of_another_kind_alone) {
    const View before = makeView("TestOtherWidget");
    const LibraryUse use;
    const View after = makeView("TestOtherWidget");
    EXPECT_EQ(before->getPropertyCount(), 0);
    EXPECT_EQ(after->getPropertyCount(), 0);
}

TEST_F(LegendHooks, equip_views_of_derived_classes) {
    const SpecialSlice view;
    {
        const LibraryUse use;
        EXPECT_NE(view.getProperty(Lyr::ColorLookupTableAnnotationContainer), nullptr);
    }
    EXPECT_EQ(view.getProperty(Lyr::ColorLookupTableAnnotationContainer), nullptr);
}

TEST_F(LegendHooks, take_the_property_from_any_workspace_widget_in_the_end) {
    const View other = makeView("TestOtherWidget");
    {
        const LibraryUse use;
        auto* property = new LyrObjectParentLinkOP;
        ASSERT_TRUE(other->addProperty(Lyr::ColorLookupTableAnnotationContainer, property, true));
    }
    EXPECT_EQ(other->getProperty(Lyr::ColorLookupTableAnnotationContainer), nullptr);
}

TEST_F(LegendHooks, give_a_view_that_has_the_property_a_container_of_this_library) {
    const View view = makeView("LyqSliceWidget");
    ASSERT_TRUE(view->addProperty(Lyr::ColorLookupTableAnnotationContainer, new LyrObjectParentLinkOP, true));
    const LibraryUse use;
    EXPECT_NE(containerOf(view), nullptr);
}

TEST_F(LegendHooks, leave_a_reset_container_where_it_is) {
    const LibraryUse use;
    const View view = makeView("LyqSliceWidget");
    LyrObject* const container = containerOf(view);
    view->resetToDefaults();
    EXPECT_EQ(containerOf(view), container);
    auto* property = dynamic_cast<LyrSingleLinkOP*>(view->getProperty(Lyr::ColorLookupTableAnnotationContainer));
    ASSERT_NE(property, nullptr);
    EXPECT_EQ(property->getResetMode(), Lyrenum(0x0C35010A));
}

TEST_F(LegendHooks, a_container_goes_with_its_view) {
    const LibraryUse use;
    View view = makeView("LyqSliceWidget");
    LyrObjectPtr held(containerOf(view));
    EXPECT_EQ(countOf("LyrColorLookupTableAnnotationContainer"), 1);
    view.reset();
    EXPECT_EQ(held->getRefCount(), 1);
    EXPECT_EQ(lyrGetValue(held.get(), Lyr::WorkspaceWidget, LyrObjectLink()).getLink(), nullptr);
    held = LyrObjectPtr();
    EXPECT_EQ(countOf("LyrColorLookupTableAnnotationContainer"), 0);
    EXPECT_EQ(countOf("LyrColorLookupTableRenderObject"), 0);
}

TEST_F(LegendHooks, a_camera_that_leaves_and_enters_its_role_again_has_one_render_object) {
    const LibraryUse use;
    LyrCamera* camera = new LyrCamera;
    const LyrObjectPtr held(camera);
    EXPECT_EQ(legendsIn(camera), 0);
    EXPECT_TRUE(camera->activateRole(Lyr::Camera));
    EXPECT_EQ(legendsIn(camera), 1);
    camera->deactivateRole(Lyr::Camera);
    EXPECT_EQ(legendsIn(camera), 0);
    camera->activateRole(Lyr::Camera);
    EXPECT_EQ(legendsIn(camera), 1);
}

TEST_F(LegendHooks, leaving_takes_every_render_object_and_nothing_else) {
    const LibraryUse use;
    LyrCamera* camera = new LyrCamera;
    const LyrObjectPtr held(camera);
    const LyrObjectPtr other(new LyrObject);
    const LyrObjectRefPtr first("LyrColorLookupTableRenderObject", Lyr::TransientScope);
    const LyrObjectRefPtr second("LyrColorLookupTableRenderObject", Lyr::TransientScope);
    camera->activateRole(Lyr::Camera);
    setList(camera, Lyr::RenderedObjectList, {first.get(), second.get(), other.get(), nullptr, first.get()});
    camera->deactivateRole(Lyr::Camera);
    EXPECT_EQ(objectsIn(camera, Lyr::RenderedObjectList), (std::vector<LyrObject*>{other.get(), nullptr}));
}

TEST_F(LegendHooks, the_camera_hook_appends_behind_what_is_rendered) {
    const LibraryUse use;
    LyrCamera* camera = new LyrCamera;
    const LyrObjectPtr held(camera);
    const LyrObjectPtr other(new LyrObject);
    setList(camera, Lyr::RenderedObjectList, {other.get()});
    camera->activateRole(Lyr::Camera);
    const std::vector<LyrObject*> rendered = objectsIn(camera, Lyr::RenderedObjectList);
    ASSERT_EQ(rendered.size(), 2u);
    EXPECT_EQ(rendered[0], other.get());
}

TEST_F(LegendHooks, an_object_in_the_role_that_renders_nothing_is_left_alone) {
    const LyrObjectPtr object(new LyrObject);
    const View someCamera = makeView("LyqSliceWidget");  // makes the role known
    object->activateRole(Lyr::Camera);
    const LibraryUse use;
    EXPECT_EQ(object->getPropertyCount(), 0);
    object->deactivateRole(Lyr::Camera);
}

TEST_F(LegendHooks, a_camera_that_nobody_holds_lives_on) {
    LyrCamera camera;
    camera.prepareRoles();
    {
        const LibraryUse use;
        EXPECT_EQ(legendsIn(&camera), 1);
        EXPECT_EQ(camera.getRefCount(), 0);
    }
    EXPECT_EQ(legendsIn(&camera), 0);
    EXPECT_FALSE(camera.isDying());
}

TEST_F(LegendHooks, copies_of_cameras_have_render_objects_of_their_own) {
    const LibraryUse use;
    const View view = makeView("LyqSliceWidget");
    const LyrObjectPtr copy(dynamic_cast<LyrObject*>(cameraOf(view)->getMetaClass().clone(cameraOf(view))));
    ASSERT_TRUE(copy);
    EXPECT_EQ(legendsIn(copy.get()), 0);
    copy->prepareRoles();
    EXPECT_EQ(legendsIn(copy.get()), 1);
    EXPECT_FALSE(rendererOf(copy.get()) == rendererOf(cameraOf(view)));
}

TEST_F(LegendHooks, go_in_either_order_while_views_and_drivers_live) {
    for (const bool preparationsFirst : {true, false}) {
        auto preparations = std::make_unique<LyrColorTableWorkspaceWidgetPreparations>();
        auto cameraHook = std::make_unique<LyrColorTableCameraRoleHook>();
        const Legend legend;
        {
            LegendView view;  // uses the library once more: two of each hook
            view.shown = {legend.entry()};
            view.settle();
            if (preparationsFirst) {
                preparations.reset();
                cameraHook.reset();
            } else {
                cameraHook.reset();
                preparations.reset();
            }
            EXPECT_EQ(view.view->getProperty(Lyr::ColorLookupTableAnnotationContainer), nullptr);
            EXPECT_EQ(legendsIn(view.camera()), 0);
            view.frame();  // the driver, whose node is not gone yet, shows nothing any more
            EXPECT_TRUE(LyrRendering::isEmpty(view.driver().getDeviceCoverageRect(LyrRendering::OVERLAY_PASS)));
        }
        EXPECT_EQ(countOf("LyrColorLookupTableRenderObject"), 0);
        EXPECT_EQ(countOf("LyrColorLookupTableAnnotationContainer"), 0);
    }
}

TEST_F(LegendHooks, leave_render_objects_to_their_cameras) {
    const LyrObjectRefPtr object("LyrColorLookupTableRenderObject", Lyr::TransientScope);
    { const LyrColorTableWorkspaceWidgetPreparations preparations; }
    EXPECT_EQ(countOf("LyrColorLookupTableRenderObject"), 1);
    EXPECT_EQ(object->getRefCount(), 1);
}

TEST_F(LegendHooks, leave_no_undo_step) {
    auto& application = LyqApplication::instance();
    application.undoStack().clear();
    {
        const LyqApplication::UserActionScope action(QStringLiteral("Open"));
        const View before = makeView("LyqSceneWidget");
        const LibraryUse use;
        const View after = makeView("LyqSliceWidget");
    }
    EXPECT_EQ(application.undoStack().count(), 0);
}
