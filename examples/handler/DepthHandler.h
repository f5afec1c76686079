#pragma once

#include <colortable/viewport/LyrColorLookupTableAnnotationHandler.h>
#include <lyr_core/LyrObjectPtr.h>

/** Name of this module: in its note, its classes and its clean-up. */
inline constexpr const char* MODULE_NAME = "example_handler";

/** Shows the legend of one table in one view. */
class DepthHandler : public LyrColorLookupTableAnnotationHandler {
public:
    DepthHandler(LyrObject* table, LyrObject* settings);

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    bool update(LyrColorLookupTableRenderDriver* driver, const LyrSceneGraph::SceneGraphObjectNode* sceneNode,
                LyrValueList<LyrColorLookupTableRenderDriver::Entry>& entries, LyrObject* container,
                LyrTimestamp since) override;

private:
    bool makeAnnotation();

    LyrObjectPtr mTable;
    LyrObjectPtr mSettings;
    LyrObjectPtr mAnnotation;
};
