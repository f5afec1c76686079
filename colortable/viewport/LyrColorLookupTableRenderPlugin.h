#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_opengl/LyrRenderPlugin.h>

#include <memory>

class LyrAction;

/** Gives the viewport nodes of LyrColorLookupTableRenderObject their driver: its action Lyr::DriverInit, run with the
 *  node as parameter, puts a LyrColorLookupTableRenderDriver before the node's other drivers. A parameter that is no
 * viewport node is refused with Lyr::WrongType.
 *
 *  A singleton: LyrObjectRefPtr by class name finds it, or makes it. It has no copies. */
class LYS_COLORTABLE_EXPORT LyrColorLookupTableRenderPlugin : public LyrRenderPlugin {
public:
    LyrColorLookupTableRenderPlugin();
    ~LyrColorLookupTableRenderPlugin() override;
    LyrColorLookupTableRenderPlugin(const LyrColorLookupTableRenderPlugin&) = delete;
    LyrColorLookupTableRenderPlugin& operator=(const LyrColorLookupTableRenderPlugin&) = delete;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** The action Lyr::DriverInit, whose name is `ColorLookupTableRenderPlugin`. */
    const LyrAction* getDriverInit() const noexcept;

    /** Makes Lyr::RenderPlugin a role, and the default one of this class, with an interface; once, until it is taken
     * back. For the library's loading and unloading. */
    static bool registerRole();
    static void unregisterRole();

private:
    class DriverInitAction;

    std::unique_ptr<DriverInitAction> mDriverInit;
};
