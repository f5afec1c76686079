#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrRoleManager.h>
#include <lys_core/LyqAnnotationGroup.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <memory>
#include <vector>

namespace {

/** Notes the classes of the views that it hears of. */
struct Hook : LyrMetaClass::FactoryHook {
    std::vector<std::string> created;
    std::vector<std::string> destroyed;
    void objectCreated(LyrClass* object) override { created.emplace_back(object->getMetaClass().getClassName()); }
    void objectDestroyed(LyrClass* object) override { destroyed.emplace_back(object->getMetaClass().getClassName()); }
};

struct CameraHook : LyrObject::RoleHook {
    int entered = 0;
    int left = 0;
    bool enterRoleHook(const LyrObjectLink&) override { return ++entered > 0; }
    void leaveRoleHook(const LyrObjectLink&) override { ++left; }
};

class WorkspaceWidget : private ToolkitApplication, public testing::Test {
protected:
    void SetUp() override {
        LyqApplication::instance();
        LyrMetaClass::addFactoryHook("LyqWorkspaceWidget", &hook);
        LyrObject::RoleManager::addHook(Lyr::Camera, &cameras);
    }
    void TearDown() override {
        LyrMetaClass::removeFactoryHook("LyqWorkspaceWidget", &hook);
        LyrObject::RoleManager::removeHook(Lyr::Camera, &cameras);
    }
    static LyqWorkspaceWidget* make(const char* className) {
        return dynamic_cast<LyqWorkspaceWidget*>(LyrMetaClass::create(className));
    }
    static LyrObject* linked(const LyrObject& view, Lyrenum id) {
        return lyrGetValue(&view, id, LyrObjectLink()).getLink();
    }

    Hook hook;
    CameraHook cameras;
};

}  // namespace

TEST_F(WorkspaceWidget, comes_by_class_name_with_a_camera_of_its_own) {
    const std::unique_ptr<LyqWorkspaceWidget> slice(make("LyqSliceWidget"));
    const std::unique_ptr<LyqWorkspaceWidget> scene(make("LyqSceneWidget"));
    ASSERT_TRUE(slice && scene);
    LyrObject* sliceCamera = linked(*slice, Lyr::SliceCamera);
    LyrObject* sceneCamera = linked(*scene, Lyr::SceneCamera);
    ASSERT_TRUE(sliceCamera && sceneCamera);
    EXPECT_NE(sliceCamera, sceneCamera);
    EXPECT_TRUE(sliceCamera->isRoleActive(Lyr::Camera));
    EXPECT_EQ(sliceCamera->getParentLink().getOwner(), slice.get());
    EXPECT_EQ(slice->getProperty(Lyr::SceneCamera), nullptr);
    EXPECT_EQ(cameras.entered, 2);
}

TEST_F(WorkspaceWidget, is_told_of_to_hooks_whoever_deletes_it) {
    QWidget window;
    LyqWorkspaceWidget* byParent = make("LyqSliceWidget");
    byParent->setParent(&window);
    delete make("LyqSceneWidget");
    EXPECT_EQ(hook.destroyed, std::vector<std::string>{"LyqSceneWidget"});
    delete byParent;
    EXPECT_EQ(hook.destroyed.back(), "LyqSliceWidget");
    EXPECT_EQ(hook.created.size(), 2u);
    EXPECT_EQ(hook.destroyed.size(), 2u);
    EXPECT_EQ(cameras.left, 2);
}

TEST_F(WorkspaceWidget, outlives_the_references_to_it) {
    const std::unique_ptr<LyqWorkspaceWidget> view(make("LyqSliceWidget"));
    { const LyrObjectPtr held(view.get()); }
    EXPECT_EQ(LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("LyqWorkspaceWidget")), 1);
    EXPECT_EQ(view->getRefCount(), 1);
}

TEST_F(WorkspaceWidget, has_one_annotation_group_for_each_identifier) {
    const std::unique_ptr<LyqWorkspaceWidget> view(make("LyqSliceWidget"));
    EXPECT_EQ(view->getAnnotationGroup(7), nullptr);
    LyqAnnotationGroup* group = view->addAnnotationGroup(7);
    ASSERT_NE(group, nullptr);
    EXPECT_EQ(view->addAnnotationGroup(7), nullptr);
    EXPECT_EQ(view->getAnnotationGroup(7), group);
    EXPECT_EQ(view->addAnnotationGroup(8, group)->getParentGroup(), group);
}

TEST_F(WorkspaceWidget, cannot_be_copied) {
    const std::unique_ptr<LyqWorkspaceWidget> view(make("LyqSliceWidget"));
    EXPECT_EQ(LyrObject::metaClass().clone(view.get()), nullptr);
}
