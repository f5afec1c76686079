#pragma once

#include <lyr_core/LyrObject.h>
#include <lyr_opengl/LyrOpenglExport.h>

/** Base of what rendered objects link as `Lyr::RenderPlugin`: its action Lyr::DriverInit, run with a
 *  LyrSceneGraph::ViewportObjectNode as parameter, gives that node a driver.
 *
 *  Render plug-ins are singletons: LyrObjectRefPtr by class name finds the one that is there. */
class LYR_OPENGL_EXPORT LyrRenderPlugin : public LyrObject {
public:
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

protected:
    LyrRenderPlugin() = default;
    LyrRenderPlugin(const LyrRenderPlugin& other) = default;
};
