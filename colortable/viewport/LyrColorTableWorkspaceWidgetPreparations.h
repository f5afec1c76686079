#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrMetaClass.h>

/** Gives every slice and scene view a property `ColorLookupTableAnnotationContainer` with a container of its own, those
 * that are there as well, and takes it away again when the view or this hook goes. Other workspace widgets get nothing.
 */
class LYS_COLORTABLE_EXPORT LyrColorTableWorkspaceWidgetPreparations : public LyrMetaClass::FactoryHook {
public:
    LyrColorTableWorkspaceWidgetPreparations();
    ~LyrColorTableWorkspaceWidgetPreparations() override;

    void objectCreated(LyrClass* object) override;
    void objectDestroyed(LyrClass* object) override;
};
