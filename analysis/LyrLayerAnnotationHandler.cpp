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

/** Layers that link the same table share a legend: that of the first one whose settings show it, else of the first. */
std::vector<const LyrColoredLayer*> oneLayerForEachTable(const std::vector<LyrColoredLayer*>& layers) {
    std::vector<const LyrColoredLayer*> chosen;
    for (const LyrColoredLayer* layer : layers) {
        const auto same = std::find_if(chosen.begin(), chosen.end(),
                                       [&](const LyrColoredLayer* other) { return other->table() == layer->table(); });
        if (!layer->table()) {
            continue;
        }
        if (same == chosen.end()) {
            chosen.push_back(layer);
        } else if (!isOn((*same)->renderSettings()) && isOn(layer->renderSettings())) {
            *same = layer;
        }
    }
    return chosen;
}

/** Sets a property unless it has the value already. True if it was another. */
template <class Value>
bool write(LyrObject& object, Lyrenum id, const Value& value, const Value& missing) {
    return !(lyrGetValue(&object, id, missing) == value) && lyrSetValue(&object, id, value);
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

/** The annotation that shows a table in a container, a new one if there is none. */
LyrObjectPtr LyrLayerAnnotationHandler::annotationFor(const LyrObject& table, const LyrObject& container,
                                                      std::vector<Legend>& shown) const {
    const auto found = std::find_if(mLegends.begin(), mLegends.end(), [&](const Legend& legend) {
        return legend.table == &table && legend.container == &container;
    });
    const bool known = found != mLegends.end();
    LyrObjectPtr annotation =
        known ? found->annotation : LyrObjectRefPtr("LyqColorLookupTableAnnotation", Lyr::TransientScope);
    if (annotation) {
        shown.push_back({&table, &container, annotation});
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
    for (const LyrColoredLayer* layer : oneLayerForEachTable(layers)) {
        LyrObject* table = layer->table();
        const LyrObjectPtr annotation = annotationFor(*table, *container, shown);
        if (!annotation) {
            continue;
        }
        LyrObject* settings = layer->renderSettings();
        const LyrObjectLink none;
        changed = write(*annotation, Lyr::Object, LyrObjectLink(table, nullptr, -1), none) || changed;
        changed = write(*annotation, Lyr::ColorLookupTableRenderSettings, LyrObjectLink(settings, nullptr, -1), none) ||
                  changed;
        // The root of what the view shows stands for its camera.
        const LyrVector2<float> missing;
        const LyrVector2<float> resolution = lyrGetValue(sceneNode->getObject(), Lyr::DotsPerInch, missing);
        changed = write(*annotation, Lyr::DotsPerInch, resolution, missing) || changed;
        Entry entry;
        entry.annotation = annotation;
        entry.visible = isOn(settings) && isOn(container);
        entries.append(entry);
        changed = changed || layer->getTableTimestamp() > since || layer->getSettingsTimestamp() > since;
    }
    mLegends = std::move(shown);
    return changed;
}
