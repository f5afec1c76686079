#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqLayer.h>

#include <algorithm>
#include <cmath>

LyqLayer::RenderingAttr::RenderingAttr() {
    setResetValue(1);
    storeSilently(1);
}

LyqLayer::OpacityAttr::OpacityAttr() {
    setResetValue(1.0f);
    storeSilently(1.0f);
}

LyqLayer::LyqLayer(LyrObject* object, const char* renderPlugin) {
    addProperty(Lyr::Rendering, &mRendering);
    addProperty(Lyr::Opacity, &mOpacity);
    addProperty(Lyr::RenderPlugin, &mRenderPlugin);
    addProperty(Lyr::Object, &mObject);
    const LyrObjectRefPtr plugin(renderPlugin, Lyr::TransientScope);
    mRenderPlugin.setValue(LyrObjectLink(plugin.get(), nullptr, -1));
    mObject.setValue(LyrObjectLink(object, nullptr, -1));
}

LyqLayer::~LyqLayer() = default;

const LyrMetaClass& LyqLayer::metaClass() {
    static const LyrMetaClass meta("LyqLayer", sizeof(LyqLayer), &LyrObject::metaClass(), nullptr, "lys_core", 0,
                                   nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqLayer::getMetaClass() const {
    return metaClass();
}

bool LyqLayer::readout(const LyrVector3<float>&, Readout&) const {
    return false;
}

bool LyqLayer::isColored() const {
    return false;
}

std::vector<LyqLayer::Content> LyqLayer::contents() const {
    return {};
}

bool LyqLayer::isComplete() const {
    return true;
}

bool LyqLayer::isRendering() const {
    return mRendering.stored() == 1;
}

bool LyqLayer::setRendering(bool on) {
    return mRendering.setValue(on ? 1 : 0);
}

float LyqLayer::getOpacity() const {
    return mOpacity.stored();
}

bool LyqLayer::setOpacity(float opacity) {
    return !std::isnan(opacity) && mOpacity.setValue(std::clamp(opacity, 0.0f, 1.0f));
}
