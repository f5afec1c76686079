#include <lyr_core/LyrMetaClass.h>
#include <lyr_opengl/LyrRenderPlugin.h>

const LyrMetaClass& LyrRenderPlugin::metaClass() {
    static const LyrMetaClass meta("LyrRenderPlugin", sizeof(LyrRenderPlugin), &LyrObject::metaClass(), nullptr,
                                   "lyr_opengl", 0, nullptr, 0, 0, 0, true);
    return meta;
}

const LyrMetaClass& LyrRenderPlugin::getMetaClass() const {
    return metaClass();
}
