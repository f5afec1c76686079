#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrColoredLayer.h>
#include <analysis/LyrLayerAnnotationHandler.h>
#include <colortable/ColortableIdentifiers.h>
#include <colortable/model/LyrColorLookupTable.h>
#include <colortable/viewport/LyqColorLookupTableAnnotation.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrVector2.h>
#include <lyr_opengl/LyrSceneGraphObjectNode.h>

#include <algorithm>

namespace {

using LyrSceneGraph::SceneGraphObjectNode;
using Entry = LyrColorLookupTableRenderDriver::Entry;

/** The coloured layers that are rendered below a node, in the order of the tree. */
void collectLayers(const SceneGraphObjectNode& node, std::vector<LyrColoredLayer*>& out) {
    if (node.getRenderingStateIdentifier() == 0) {
        return;
    }
    if (auto* layer = dynamic_cast<LyrColoredLayer*>(node.getObject())) {
        out.push_back(layer);
    }
    for (std::int64_t i = 0; i < node.getChildCount(); ++i) {
        if (const SceneGraphObjectNode* child = node.getChild(i)) {
            collectLayers(*child, out);
        }
    }
}

bool isOn(const LyrObject* object) {
    return lyrGetValue<Lyrenum>(object, Lyr::Rendering, 1) == 1;
}

}  // namespace

LyrLayerAnnotationHandler::~LyrLayerAnnotationHandler() = default;

const LyrMetaClass& LyrLayerAnnotationHandler::metaClass() {
    static const LyrMetaClass meta("LyrLayerAnnotationHandler", sizeof(LyrLayerAnnotationHandler),
                                   &LyrColorLookupTableAnnotationHandler::metaClass(),
                                   new LyrClassFactory<LyrLayerAnnotationHandler>, LYS_ANALYSIS_MODULE, 0, nullptr, 0,
                                   0, 0, false);
    return meta;
}

const LyrMetaClass& LyrLayerAnnotationHandler::getMetaClass() const {
    return metaClass();
}

/** The annotation that shows the layer's table in the container, a new one if there is none. */
LyrObjectPtr LyrLayerAnnotationHandler::annotationFor(const LyrColoredLayer& layer, const LyrObject& container,
                                                      std::vector<Legend>& shown) const {
    const LyrObject* table = layer.table();
    const auto found = std::find_if(mLegends.begin(), mLegends.end(), [&](const Legend& legend) {
        return legend.table == table && legend.container == &container;
    });
    const bool known = found != mLegends.end();
    const LyrObjectPtr annotation =
        known ? found->annotation : LyrObjectRefPtr("LyqColorLookupTableAnnotation", Lyr::TransientScope);
    if (annotation) {
        shown.push_back({table, &container, annotation});
    }
    return annotation;
}

bool LyrLayerAnnotationHandler::update(LyrColorLookupTableRenderDriver*, const SceneGraphObjectNode* sceneNode,
                                       LyrValueList<Entry>& entries, LyrObject* container, LyrTimestamp since) {
    std::vector<LyrColoredLayer*> layers;
    if (sceneNode && container) {
        collectLayers(*sceneNode, layers);
    }
    bool changed = container && container->getModificationTimestamp() > since;
    std::vector<Legend> shown;
    for (const LyrColoredLayer* layer : layers) {
        LyrObject* table = layer->table();
        const LyrObjectPtr annotation = table ? annotationFor(*layer, *container, shown) : LyrObjectPtr();
        if (!annotation) {
            continue;
        }
        LyrObject* settings = layer->renderSettings();
        lyrSetValue(annotation.get(), Lyr::Object, LyrObjectLink(table, nullptr, -1));
        lyrSetValue(annotation.get(), Lyr::ColorLookupTableRenderSettings, LyrObjectLink(settings, nullptr, -1));
        // The root of what the view shows stands for its camera.
        lyrSetValue(annotation.get(), Lyr::DotsPerInch,
                    lyrGetValue(sceneNode->getObject(), Lyr::DotsPerInch, LyrVector2<float>()));
        Entry entry;
        entry.annotation = annotation;
        entry.visible = isOn(settings) && isOn(container);
        entries.append(entry);
        changed = changed || layer->getTableTimestamp() > since || layer->getSettingsTimestamp() > since;
    }
    mLegends = std::move(shown);
    return changed;
}
