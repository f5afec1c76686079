#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrRoleManager.h>
#include <lyr_opengl/LyrCamera.h>

namespace {

/** The camera role stays known for the life of the process: hooks of modules come and go. */
bool registerRole() {
    return LyrObject::RoleManager::addRole(Lyr::Camera) &&
           LyrObject::RoleManager::addDefaultRole(LyrCamera::metaClass(), Lyr::Camera);
}

/** Object files may name the class before there is a camera. */
[[maybe_unused]] const LyrMetaClass& sKnown = LyrCamera::metaClass();

}  // namespace

LyrCamera::LyrCamera() {
    build();
}

LyrCamera::LyrCamera(const LyrCamera& other) : LyrObject(other) {
    build();
    copyFrom(other);
}

void LyrCamera::build() {
    [[maybe_unused]] static const bool known = registerRole();
    mRenderedObjects.setComputed(true);
    addProperty(Lyr::RenderedObjectList, &mRenderedObjects);
    addProperty(Lyr::DotsPerInch, &mDotsPerInch);
}

const LyrMetaClass& LyrCamera::metaClass() {
    static const LyrMetaClass meta("LyrCamera", sizeof(LyrCamera), &LyrObject::metaClass(),
                                   new LyrClassFactory<LyrCamera>, "lyr_opengl", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrCamera::getMetaClass() const {
    return metaClass();
}
