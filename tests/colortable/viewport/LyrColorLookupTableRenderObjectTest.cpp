#include "LegendView.h"

#include <colortable/viewport/LyrColorLookupTableRenderPlugin.h>
#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrRoleManager.h>
#include <lyr_opengl/LyrRenderPlugin.h>
#include <lys_core/LyrApplicationObject.h>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <algorithm>

using namespace legends;

namespace {

class RenderObject : private ToolkitApplication, public testing::Test {
protected:
    void TearDown() override { setWorkspace(nullptr); }
    static void setWorkspace(LyrObject* workspace) {
        lyrSetValue(&LyqApplication::instance().object(), Lyr::Workspace, link(workspace));
    }
    LyrObject* shownIn() const { return lyrGetValue(object.get(), Lyr::WorkspaceWidget, LyrObjectLink()).getLink(); }
    static std::unique_ptr<LyqWorkspaceWidget> make(const char* name) {
        return std::unique_ptr<LyqWorkspaceWidget>(dynamic_cast<LyqWorkspaceWidget*>(LyrMetaClass::create(name)));
    }
    void renderIn(const LyqWorkspaceWidget& view) {
        setList(static_cast<const LyqCameraWidget&>(view).camera(), Lyr::RenderedObjectList, {object.get()});
    }

    Errors errors;
    LyrObjectRefPtr object{"LyrColorLookupTableRenderObject", Lyr::TransientScope};
};

/** Counts what is told of one property. */
struct Ear : LyrIOC {
    explicit Ear(Lyrenum id) : property(id) {}
    bool iocCallback(Message& message) override {
        count += message.getPropertyID() == property ? 1 : 0;
        return LyrIOC::iocCallback(message);
    }
    Lyrenum property;
    int count = 0;
};

const char* const PLUGIN = "LyrColorLookupTableRenderPlugin";

LyrObject* pluginOf(const LyrObject* object) {
    return lyrGetValue(object, Lyr::RenderPlugin, LyrObjectLink()).getLink();
}

long long countOf(const char* name) {
    return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern(name));
}

}  // namespace

TEST_F(RenderObject, has_its_properties_in_order_with_their_defaults) {
    const Lyrenum ids[] = {Lyr::WorkspaceWidget, Lyr::AnnotationHandlerList, Lyr::RenderPlugin, Lyr::Rendering};
    ASSERT_EQ(object->getPropertyCount(), 4);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(object->getPropertyAt(i)->getPropertyID(), ids[i]);
        EXPECT_EQ(object->getPropertyAt(i)->getFlags(LyrFlags::DATA), 0u);
    }
    EXPECT_EQ(int(Lyr::RenderPlugin), 0x0C35014A);
    EXPECT_EQ(int(Lyr::Rendering), 0x0C35014F);
    EXPECT_EQ(shownIn(), nullptr);
    EXPECT_TRUE(objectsIn(object.get(), Lyr::AnnotationHandlerList).empty());
    EXPECT_EQ(lyrGetValue<Lyrenum>(object.get(), Lyr::Rendering, -1), 1);
    ASSERT_NE(pluginOf(object.get()), nullptr);
    EXPECT_STREQ(pluginOf(object.get())->getMetaClass().getClassName(), PLUGIN);
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(RenderObject, finds_the_view_whose_camera_renders_it) {
    const auto first = make("LyqSliceWidget");
    const auto second = make("LyqSceneWidget");
    EXPECT_EQ(shownIn(), nullptr);
    renderIn(*second);
    EXPECT_EQ(shownIn(), second.get());
    renderIn(*first);
    EXPECT_EQ(shownIn(), first.get());
    setList(static_cast<const LyqCameraWidget&>(*first).camera(), Lyr::RenderedObjectList, {});
    EXPECT_EQ(shownIn(), second.get());
    EXPECT_FALSE(lyrSetValue(object.get(), Lyr::WorkspaceWidget, link(first.get())));
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(RenderObject, takes_the_slice_cameras_property_before_the_scene_cameras_even_if_it_links_nothing) {
    const auto view = make("LyqSceneWidget");
    renderIn(*view);
    LyrObjectSoftLinkOP sliceCamera;
    ASSERT_TRUE(view->addProperty(Lyr::SliceCamera, &sliceCamera));
    EXPECT_EQ(shownIn(), nullptr);
    LyrCamera* camera = new LyrCamera;
    const LyrObjectPtr held(camera);
    sliceCamera.setValue(link(camera));
    EXPECT_EQ(shownIn(), nullptr);
    setList(camera, Lyr::RenderedObjectList, {object.get()});
    EXPECT_EQ(shownIn(), view.get());
    view->removeProperty(Lyr::SliceCamera);
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(RenderObject, forgets_a_view_that_is_gone) {
    auto view = make("LyqSliceWidget");
    renderIn(*view);
    ASSERT_EQ(shownIn(), view.get());
    view.reset();
    EXPECT_EQ(shownIn(), nullptr);
}

TEST_F(RenderObject, tells_of_its_view_when_the_application_or_its_workspace_changes) {
    Ear ear(Lyr::WorkspaceWidget);
    const LyrObjectIOCPtr line(&ear, object.get());
    const LyrObjectPtr workspace(new LyrCamera);
    setWorkspace(workspace.get());
    EXPECT_EQ(ear.count, 1);
    lyrSetValue(workspace.get(), Lyr::DotsPerInch, LyrVector2<float>{1.0f, 2.0f});
    EXPECT_EQ(ear.count, 2);
    setWorkspace(nullptr);
    EXPECT_EQ(ear.count, 3);
    lyrSetValue(workspace.get(), Lyr::DotsPerInch, LyrVector2<float>{3.0f, 2.0f});
    EXPECT_EQ(ear.count, 3);
}

TEST_F(RenderObject, keeps_no_workspace_alive) {
    LyrObjectPtr workspace(new LyrCamera);
    setWorkspace(workspace.get());
    EXPECT_EQ(workspace->getRefCount(), 1);
}

TEST_F(RenderObject, finds_the_one_plug_in_again_on_reset) {
    LyrObject* const plugin = pluginOf(object.get());
    const LyrObjectRefPtr other("LyrColorLookupTableRenderObject", Lyr::TransientScope);
    EXPECT_EQ(pluginOf(other.get()), plugin);
    EXPECT_TRUE(lyrSetValue(object.get(), Lyr::RenderPlugin, LyrObjectLink()));
    EXPECT_TRUE(object->getProperty(Lyr::RenderPlugin)->resetData());
    EXPECT_EQ(pluginOf(object.get()), plugin);
    EXPECT_EQ(countOf(PLUGIN), 1);
    EXPECT_TRUE(plugin->isRoleActive(Lyr::RenderPlugin));
}

TEST_F(RenderObject, leaves_its_handlers_on_reset) {
    const LyrObjectRefPtr handler("LyrColorLookupTableAnnotationHandler", Lyr::TransientScope);
    setList(object.get(), Lyr::AnnotationHandlerList, {handler.get()});
    lyrSetValue(object.get(), Lyr::Rendering, Lyrenum(0));
    object->resetToDefaults();
    EXPECT_EQ(objectsIn(object.get(), Lyr::AnnotationHandlerList), std::vector<LyrObject*>{handler.get()});
    EXPECT_EQ(lyrGetValue<Lyrenum>(object.get(), Lyr::Rendering, -1), 1);
}

TEST_F(RenderObject, keeps_its_handlers_alive) {
    LyrObjectRefPtr handler("LyrColorLookupTableAnnotationHandler", Lyr::TransientScope);
    LyrObject* const raw = handler.get();
    setList(object.get(), Lyr::AnnotationHandlerList, {raw});
    handler.release();
    EXPECT_EQ(raw->getRefCount(), 1);
    EXPECT_EQ(countOf("LyrColorLookupTableAnnotationHandler"), 1);
    setList(object.get(), Lyr::AnnotationHandlerList, {});
    EXPECT_EQ(countOf("LyrColorLookupTableAnnotationHandler"), 0);
}

TEST_F(RenderObject, is_copied_with_the_same_plug_in) {
    lyrSetValue(object.get(), Lyr::Rendering, Lyrenum(0));
    const LyrObjectPtr copy(dynamic_cast<LyrObject*>(object->getMetaClass().clone(object.get())));
    ASSERT_TRUE(copy);
    EXPECT_EQ(pluginOf(copy.get()), pluginOf(object.get()));
    EXPECT_EQ(lyrGetValue<Lyrenum>(copy.get(), Lyr::Rendering, -1), 0);
    EXPECT_EQ(countOf(PLUGIN), 1);
}

TEST_F(RenderObject, s_handlers_have_protected_flags_and_are_copied_as_plain_objects) {
    const LyrObjectRefPtr handler("LyrColorLookupTableAnnotationHandler", Lyr::TransientScope);
    handler->setNameTemplate("Name");
    EXPECT_EQ(handler->getProtectedFlags(), 0x110100u);
    const LyrObjectPtr copy(dynamic_cast<LyrObject*>(handler->getMetaClass().clone(handler.get())));
    ASSERT_TRUE(copy);
    EXPECT_STREQ(copy->getNameTemplate(), "Name");
    EXPECT_STREQ(handler->getMetaClass().getModule(), "lys_colortable");
    EXPECT_EQ(&handler->getMetaClass(), &LyrColorLookupTableAnnotationHandler::metaClass());
}

TEST_F(RenderObject, s_plug_in_prepends_a_driver_to_a_viewport_node) {
    using namespace LyrSceneGraph;
    LyrObject* const plugin = pluginOf(object.get());
    const LyrObjectPtr camera(new CameraNode(nullptr));
    const LyrObjectPtr root(new SceneGraphObjectNode(nullptr));
    auto* node = new ViewportObjectNode(object.get(), static_cast<SceneGraphObjectNode*>(root.get()),
                                        static_cast<CameraNode*>(camera.get()));
    const LyrObjectPtr held(node);
    EXPECT_TRUE(plugin->runAction(Lyr::DriverInit, node));
    LyrRendering::Driver* const first = node->getRenderingDriver(0);
    EXPECT_NE(dynamic_cast<LyrColorLookupTableRenderDriver*>(first), nullptr);
    EXPECT_TRUE(plugin->runAction(Lyr::DriverInit, node));
    ASSERT_EQ(node->getRenderingDriverCount(), 2);
    EXPECT_EQ(node->getRenderingDriver(1), first);
    EXPECT_EQ(node->getOverlayPass(first), LyrRendering::OVERLAY_PASS);
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(RenderObject, s_plug_in_refuses_what_is_no_viewport_node) {
    LyrObject* const plugin = pluginOf(object.get());
    const LyrObjectPtr node(new LyrSceneGraph::SceneGraphObjectNode(nullptr));
    EXPECT_FALSE(plugin->runAction(Lyr::DriverInit, node.get()));
    EXPECT_FALSE(plugin->runAction(Lyr::DriverInit, nullptr));
    EXPECT_EQ(errors.codes, (std::vector<int>{WRONG_TYPE, WRONG_TYPE}));
}

TEST_F(RenderObject, s_plug_in_is_a_singleton_of_the_hosts_class_without_copies) {
    const LyrMetaClass* meta = LyrMetaClass::find(PLUGIN);
    ASSERT_NE(meta, nullptr);
    EXPECT_EQ(meta->getParent(), &LyrRenderPlugin::metaClass());
    EXPECT_TRUE(meta->isSingleton());
    EXPECT_STREQ(meta->getModule(), "lys_colortable");
    EXPECT_EQ(meta->clone(pluginOf(object.get())), nullptr);
    EXPECT_EQ(errors.codes.size(), 1u);
}

TEST_F(RenderObject, s_plug_in_registers_its_role_once) {
    using Roles = LyrObject::RoleManager;
    EXPECT_TRUE(Roles::isRole(Lyr::RenderPlugin));
    const auto* before = Roles::getRoleInterface(Lyr::RenderPlugin);
    ASSERT_NE(before, nullptr);
    EXPECT_EQ(before->getRole(), Lyr::RenderPlugin);
    EXPECT_TRUE(LyrIdentifierRegistry::moduleRegistrationCount("lys_colortable") > 0);
    ASSERT_TRUE(LyrColorLookupTableRenderPlugin::registerRole());
    EXPECT_EQ(Roles::getRoleInterface(Lyr::RenderPlugin), before);
    EXPECT_TRUE(errors.codes.empty());
}

TEST_F(RenderObject, s_plug_in_has_its_action_under_its_name) {
    const auto& plugin = dynamic_cast<const LyrColorLookupTableRenderPlugin&>(*pluginOf(object.get()));
    const LyrAction* action = plugin.getDriverInit();
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->getActionID(), Lyr::DriverInit);
    EXPECT_EQ(int(action->getActionID()), 0x0C350078);
    ASSERT_FALSE(action->getName() == Lyrenum(-1));
    EXPECT_EQ(action->getName(), Lyrenum("ColorLookupTableRenderPlugin", true));
}
