#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_opengl/LyrCamera.h>
#include <lys_core/LyqAnnotationGroup.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <algorithm>

namespace {

/** Makes views; they cannot be copied. */
template <class View>
class ViewFactory : public LyrMetaClass::Factory {
public:
    LyrClass* create(void* storage) const override { return storage ? new (storage) View() : new View(); }
    LyrClass* createCopy(const LyrClass*, void*) const override { return nullptr; }
    bool assign(LyrClass*, const LyrClass*) const override { return false; }
};

}  // namespace

LyqWorkspaceWidget::LyqWorkspaceWidget() {
    incRef();
}

LyqWorkspaceWidget::~LyqWorkspaceWidget() = default;

const LyrMetaClass& LyqWorkspaceWidget::metaClass() {
    static const LyrMetaClass meta("LyqWorkspaceWidget", sizeof(LyqWorkspaceWidget), &LyrObject::metaClass(), nullptr,
                                   "lys_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqWorkspaceWidget::getMetaClass() const {
    return metaClass();
}

LyqAnnotationGroup* LyqWorkspaceWidget::getAnnotationGroup(Lyrenum id) const {
    const auto found = std::find_if(mGroups.begin(), mGroups.end(),
                                    [&](const LyqAnnotationGroup* group) { return group->getID() == id; });
    return found != mGroups.end() ? *found : nullptr;
}

LyqAnnotationGroup* LyqWorkspaceWidget::addAnnotationGroup(Lyrenum id, LyqAnnotationGroup* parentGroup) {
    if (getAnnotationGroup(id)) {
        return nullptr;
    }
    mGroups.push_back(new LyqAnnotationGroup(id, parentGroup, this));
    return mGroups.back();
}

LyqCameraWidget::LyqCameraWidget(Lyrenum cameraProperty) {
    addProperty(cameraProperty, &mCamera);
    const LyrObjectPtr made(new LyrCamera);
    mCamera.setValue(LyrObjectLink(made.get(), nullptr, -1));
    made->prepareRoles();
}

LyqSliceWidget::LyqSliceWidget() : LyqCameraWidget(Lyr::SliceCamera) {}

// Whoever deletes a view, hooks hear of it while it is still whole.
LyqSliceWidget::~LyqSliceWidget() {
    LyrMetaClass::prepareDestruction(this);
}

const LyrMetaClass& LyqSliceWidget::metaClass() {
    static const LyrMetaClass meta("LyqSliceWidget", sizeof(LyqSliceWidget), &LyqWorkspaceWidget::metaClass(),
                                   new ViewFactory<LyqSliceWidget>, "lys_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqSliceWidget::getMetaClass() const {
    return metaClass();
}

LyqSceneWidget::LyqSceneWidget() : LyqCameraWidget(Lyr::SceneCamera) {}

LyqSceneWidget::~LyqSceneWidget() {
    LyrMetaClass::prepareDestruction(this);
}

const LyrMetaClass& LyqSceneWidget::metaClass() {
    static const LyrMetaClass meta("LyqSceneWidget", sizeof(LyqSceneWidget), &LyqWorkspaceWidget::metaClass(),
                                   new ViewFactory<LyqSceneWidget>, "lys_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqSceneWidget::getMetaClass() const {
    return metaClass();
}
