#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/LyrObject.h>

#include <memory>

/** Owns the colour bar annotations of one workspace widget.
 *
 *  `AnnotationList` holds them; only annotations are accepted, null links are allowed. Annotations in the list belong
 * to the widget's group `ColorLookupTableAnnotationGroup`; one that leaves the list is hidden, never deleted while
 * something else holds it. `WorkspaceWidget` is computed: the owner of the container's parent link. `Rendering` is a
 * switch for handlers; the container itself does not read it. */
class LYS_COLORTABLE_EXPORT LyrColorLookupTableAnnotationContainer : public LyrObject {
public:
    LyrColorLookupTableAnnotationContainer();
    LyrColorLookupTableAnnotationContainer(const LyrColorLookupTableAnnotationContainer& other);
    LyrColorLookupTableAnnotationContainer& operator=(const LyrColorLookupTableAnnotationContainer& other);
    ~LyrColorLookupTableAnnotationContainer() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

private:
    struct Private;
    void build();

    std::unique_ptr<Private> d;
};
