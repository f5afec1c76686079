#pragma once

#include <analysis/LysAnalysisExport.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationHandler.h>

#include <vector>

/** Shows the legend of each coloured layer that a view renders: one annotation for each table and container, with the
 * settings of the first layer that links the table and shows its legend. A handler belongs to one view. */
class LYS_ANALYSIS_EXPORT LyrLayerAnnotationHandler : public LyrColorLookupTableAnnotationHandler {
public:
    LyrLayerAnnotationHandler() = default;
    ~LyrLayerAnnotationHandler() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    bool update(LyrColorLookupTableRenderDriver* driver, const LyrSceneGraph::SceneGraphObjectNode* sceneNode,
                LyrValueList<LyrColorLookupTableRenderDriver::Entry>& entries, LyrObject* container,
                LyrTimestamp since) override;

private:
    struct Legend {
        const LyrObject* table;      ///< for comparison only
        const LyrObject* container;  ///< for comparison only
        LyrObjectPtr annotation;
    };

    LyrObjectPtr annotationFor(const LyrObject& table, const LyrObject& container, std::vector<Legend>& shown) const;

    std::vector<Legend> mLegends;
};
