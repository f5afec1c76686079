#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lys_core/LyqAnnotationGroup.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <algorithm>

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
    try {
        mGroups.reserve(mGroups.size() + 1);
        mGroups.push_back(new LyqAnnotationGroup(id, parentGroup, this));
        return mGroups.back();
    } catch (...) {
        LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
        return nullptr;
    }
}
