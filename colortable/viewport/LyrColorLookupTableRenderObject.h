#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrObject.h>

#include <memory>

/** Stands for the legends of a view: one in the list of rendered objects of each camera.
 *
 *  Properties: `WorkspaceWidget` (computed: the workspace widget whose camera renders this object, null without one),
 *  `AnnotationHandlerList` (owned: objects of LyrColorLookupTableAnnotationHandler, which say what legends there are),
 *  `RenderPlugin` (what draws; by default the one LyrColorLookupTableRenderPlugin) and `Rendering` (on by default). */
class LYS_COLORTABLE_EXPORT LyrColorLookupTableRenderObject : public LyrObject {
public:
    LyrColorLookupTableRenderObject();
    LyrColorLookupTableRenderObject(const LyrColorLookupTableRenderObject& other);
    LyrColorLookupTableRenderObject& operator=(const LyrColorLookupTableRenderObject& other);
    ~LyrColorLookupTableRenderObject() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

private:
    struct Private;
    void build();

    std::unique_ptr<Private> d;
};
