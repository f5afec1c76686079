#include "DepthHandler.h"

#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectLink.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrVector2.h>
#include <lyr_opengl/LyrSceneGraphObjectNode.h>

#include <algorithm>

namespace {

bool isOn(const LyrObject* object) {
    return lyrGetValue<Lyrenum>(object, Lyr::Rendering, 1) == 1;
}

/** When the table or one of its sections changed last; a section that changes leaves the table's own time as it is. */
LyrTimestamp lastChange(const LyrObject* table) {
    LyrTimestamp latest = table->getModificationTimestamp();
    LyrValueArrayOPCache<LyrObjectLink> sections;
    if (sections.load(table, Lyr::SectionList)) {
        for (const LyrObjectLink& link : sections.items()) {
            if (const LyrObject* section = link.getLink()) {
                latest = std::max(latest, section->getModificationTimestamp());
            }
        }
    }
    return latest;
}

}  // namespace

DepthHandler::DepthHandler(LyrObject* table, LyrObject* settings) : mTable(table), mSettings(settings) {}

const LyrMetaClass& DepthHandler::metaClass() {
    // No factory: the plug-in alone makes objects of this class.
    static const LyrMetaClass meta("ExampleDepthHandler", sizeof(DepthHandler),
                                   &LyrColorLookupTableAnnotationHandler::metaClass(), nullptr, MODULE_NAME, 0, nullptr,
                                   0, 0, 0, false);
    return meta;
}

const LyrMetaClass& DepthHandler::getMetaClass() const {
    return metaClass();
}

/** Makes the legend's annotation on first use, and links it to table and settings. */
bool DepthHandler::makeAnnotation() {
    if (!mAnnotation) {
        mAnnotation = LyrObjectRefPtr("LyqColorLookupTableAnnotation", Lyr::TransientScope);
        lyrSetValue(mAnnotation.get(), Lyr::Object, LyrObjectLink(mTable.get(), nullptr, -1));
        lyrSetValue(mAnnotation.get(), Lyr::ColorLookupTableRenderSettings,
                    LyrObjectLink(mSettings.get(), nullptr, -1));
    }
    return static_cast<bool>(mAnnotation);
}

bool DepthHandler::update(LyrColorLookupTableRenderDriver*, const LyrSceneGraph::SceneGraphObjectNode* sceneNode,
                          LyrValueList<LyrColorLookupTableRenderDriver::Entry>& entries, LyrObject* container,
                          LyrTimestamp since) {
    if (!sceneNode || !container || !makeAnnotation()) {
        return false;
    }
    // The root of what a view shows stands for its camera, which knows the resolution.
    const LyrVector2<float> missing;
    const auto resolution = lyrGetValue(sceneNode->getObject(), Lyr::DotsPerInch, missing);
    if (!(lyrGetValue(mAnnotation.get(), Lyr::DotsPerInch, missing) == resolution)) {
        lyrSetValue(mAnnotation.get(), Lyr::DotsPerInch, resolution);
    }
    LyrColorLookupTableRenderDriver::Entry entry;
    entry.annotation = mAnnotation;
    entry.visible = isOn(mSettings.get()) && isOn(container);
    entries.append(entry);
    return lastChange(mTable.get()) > since || mSettings->getModificationTimestamp() > since;
}
