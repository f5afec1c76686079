#pragma once

#include <colortable/LysColortableExport.h>
#include <colortable/viewport/LyrColorLookupTableRenderDriver.h>
#include <lyr_core/LyrObject.h>

#include <memory>

/** Says which legends a view shows: whoever draws with a colour table derives from it and puts an object of the class
 * into the `AnnotationHandlerList` of render objects. The class itself contributes nothing. */
class LYS_COLORTABLE_EXPORT LyrColorLookupTableAnnotationHandler : public LyrObject {
public:
    LyrColorLookupTableAnnotationHandler();
    LyrColorLookupTableAnnotationHandler(const LyrColorLookupTableAnnotationHandler& other);
    LyrColorLookupTableAnnotationHandler& operator=(const LyrColorLookupTableAnnotationHandler& other);
    ~LyrColorLookupTableAnnotationHandler() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    /** Appends one entry for each legend that the view should have, in the order in which they are stacked: annotation
     * and visibility, the driver fills in the centre. Entries of other handlers stay as they are.
     *
     *  An annotation belongs to one container: it stands at one place. Where the handler honours the switches,
     * `visible` is the `Rendering` of the legend's settings and of the container.
     *  @param driver     asks; tells by isObjectTypeRendered() what the view shows
     *  @param sceneNode  the root of what the view shows
     *  @param container  the view's owner of annotations; null if it has none: then nothing that is appended is shown
     *  @param since      when the view was last updated
     *  @return true if anything that the legends show (table, sections, settings, the handler's own input) is changed
     *          later than `since`: the view is then drawn anew even if its entries are the same */
    virtual bool update(LyrColorLookupTableRenderDriver* driver, const LyrSceneGraph::SceneGraphObjectNode* sceneNode,
                        LyrValueList<LyrColorLookupTableRenderDriver::Entry>& entries, LyrObject* container,
                        LyrTimestamp since);

private:
    struct Private;
    void build();

    std::unique_ptr<Private> d;
};
