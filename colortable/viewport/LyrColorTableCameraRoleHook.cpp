#include <colortable/viewport/LiveObjects_p.h>
#include <colortable/viewport/LyrColorTableCameraRoleHook.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <vector>

namespace {

constexpr const char* RENDER_OBJECT = "LyrColorLookupTableRenderObject";

/** Every object that is a camera now. Not all of them, and an error, when memory ran out. */
class Cameras {
public:
    Cameras() noexcept {
        for (LyrClass* at : lys::viewport::LiveObjects("LyrObject")) {
            auto* object = dynamic_cast<LyrObject*>(at);
            if (!object) {
                LyrError::emitError(LyrError::Message(at, Lyr::WrongType));
            } else if (object->isRoleActive(Lyr::Camera)) {
                take(object);
            }
        }
    }

    auto begin() const { return mObjects.begin(); }
    auto end() const { return mObjects.end(); }

private:
    /** Equipping one may have others destroyed, so those that somebody holds are held. One that nobody holds yet would
     * die with our reference. */
    void take(LyrObject* object) noexcept {
        try {
            if (object->getRefCount() > 0) {
                mHeld.emplace_back(object);
            }
            mObjects.push_back(object);
        } catch (...) {
            LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        }
    }

    std::vector<LyrObject*> mObjects;
    std::vector<LyrObjectPtr> mHeld;
};

}  // namespace

LyrColorTableCameraRoleHook::LyrColorTableCameraRoleHook() {
    LyrObject::RoleManager::addHook(Lyr::Camera, this);
    for (LyrObject* camera : Cameras()) {
        LyrColorTableCameraRoleHook::enterRoleHook(LyrObjectLink(camera, nullptr, -1));
    }
}

LyrColorTableCameraRoleHook::~LyrColorTableCameraRoleHook() {
    for (LyrObject* camera : Cameras()) {
        LyrColorTableCameraRoleHook::leaveRoleHook(LyrObjectLink(camera, nullptr, -1));
    }
    LyrObject::RoleManager::removeHook(Lyr::Camera, this);
}

bool LyrColorTableCameraRoleHook::enterRoleHook(const LyrObjectLink& camera) {
    const LyrObjectRefPtr renderObject(RENDER_OBJECT, Lyr::TransientScope);
    if (!renderObject) {
        return false;
    }
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>> rendered(camera.getLink(),
                                                                              Lyr::RenderedObjectList);
    const LyrObjectLink link(renderObject.get(), nullptr, -1);
    if (rendered) {
        const long long end = rendered->getArraySize();
        rendered->insertArrayItems(end, end, &link);
    }
    return true;
}

void LyrColorTableCameraRoleHook::leaveRoleHook(const LyrObjectLink& camera) {
    LyrValueArrayOPCache<LyrObjectLink> rendered;
    if (!rendered.load(camera.getLink(), Lyr::RenderedObjectList)) {
        return;
    }
    std::erase_if(rendered.items(), [](const LyrObjectLink& link) { return link.linkIsOfType(RENDER_OBJECT); });
    rendered.store(camera.getLink(), Lyr::RenderedObjectList);
}
