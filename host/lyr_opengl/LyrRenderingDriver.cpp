#include <lyr_core/LyrMetaClass.h>
#include <lyr_opengl/LyrRenderingDriver.h>

namespace LyrRendering {

Driver::~Driver() = default;

const LyrMetaClass& Driver::metaClass() {
    static const LyrMetaClass meta("LyrRendering::Driver", sizeof(Driver), &LyrClass::metaClass(), nullptr,
                                   "lyr_opengl", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& Driver::getMetaClass() const {
    return metaClass();
}

bool Driver::init() {
    return true;
}

void Driver::cleanup() {}

DeviceRect Driver::getDeviceCoverageRect(long long) {
    return emptyRect();
}

DeviceRect Driver::getDeviceUpdateRect(long long) {
    return emptyRect();
}

unsigned int Driver::getPreviewHint() const {
    return 0;
}

unsigned int Driver::getRequiredFeatures() const {
    return 0;
}

unsigned int Driver::getDriverFeatures() const {
    return 0;
}

void Driver::fillInstructionsHint(void*) const {}

void Driver::installObject(LyrObject*) {}

void Driver::uninstallObject(LyrObject*) {}

bool Driver::renderObject(long long, void*) {
    return true;
}

LyrObject* Driver::selectObject(const LyrVector2<float>&) {
    return nullptr;
}

}  // namespace LyrRendering
