#include <colortable/ColortableIdentifiers.h>
#include <colortable/legend/LyqColorLookupTableWidget.h>
#include <colortable/viewport/LegendPlacement.h>
#include <colortable/viewport/LyqColorLookupTableAnnotation.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationHandler.h>
#include <colortable/viewport/LyrColorLookupTableRenderDriver.h>
#include <colortable/viewport/RenderDriver_p.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_opengl/LyrViewportObjectNode.h>
#include <lys_core/LyqApplication.h>
#include <lys_core/LyqWorkspaceWidget.h>

#include <algorithm>
#include <exception>
#include <limits>
#include <vector>

// What happens before a frame: which legends there are, where they stand, and whether the view has to be drawn anew.

using namespace lys::viewport;
using Entry = LyrColorLookupTableRenderDriver::Entry;

namespace {

constexpr float DEFAULT_SIZE = 0.7f;
/** What the coverage is enlarged by, in device coordinates: a neighbouring pixel may be touched by rounding. */
constexpr float COVERAGE_MARGIN = 0.01f;

LyrObject* linkedBy(const LyrObject* object, Lyrenum id) {
    return lyrGetValue(object, id, LyrObjectLink()).getLink();
}

/** The object as a T. Null, and reported, for an object of another class; null for null. */
template <class T>
T* expect(LyrObject* object) {
    T* typed = dynamic_cast<T*>(object);
    if (object && !typed) {
        reportWrongType(object);
    }
    return typed;
}

/** The links of a list property, their objects kept alive: handlers may change the list while it is walked. */
std::vector<LyrObjectPtr> snapshotOf(const LyrObject* object, Lyrenum id) {
    std::vector<LyrObjectPtr> objects;
    LyrValueArrayOPCache<LyrObjectLink> links;
    if (links.load(object, id)) {
        for (const LyrObjectLink& link : links.items()) {
            objects.emplace_back(link.getLink());
        }
    }
    return objects;
}

/** Has the container own what the entries name. An equal list is left alone: each write hides, groups, stamps and
 * tells. Objects that the container does not take would have the whole list refused and are left out. */
void listAnnotations(LyrObject* container, const LyrValueList<Entry>& entries) {
    LyrValueArrayOPCache<LyrObjectLink> present;
    const Lyrenum list("AnnotationList", true);
    if (!present.load(container, list)) {
        return;
    }
    LyrValueArrayOPCache<LyrObjectLink> wanted;
    for (const Entry& entry : entries) {
        LyrObject* object = entry.annotation.get();
        if (!object || dynamic_cast<LyqAnnotation*>(object)) {
            wanted.items().emplace_back(object, nullptr, -1);
        }
    }
    if (wanted.items() != present.items()) {
        wanted.store(container, list);
    }
}

bool isListed(const LyrValueList<Entry>& entries, const Entry& wanted) {
    return std::find(entries.begin(), entries.end(), wanted) != entries.end();
}

/** True if an entry is new or changed. Order and repetition do not count. */
bool differ(const LyrValueList<Entry>& now, const LyrValueList<Entry>& before) {
    return now.size() != before.size() ||
           !std::all_of(now.begin(), now.end(), [&](const Entry& entry) { return isListed(before, entry); });
}

/** What the legend's settings and widget ask for. */
Wish wishOf(const LyqColorLookupTableAnnotation& annotation) {
    const LyrObject* settings = linkedBy(&annotation, Lyr::ColorLookupTableRenderSettings);
    const float size = lyrGetValue(settings, Lyr::Size, DEFAULT_SIZE);
    return {lyrGetValue(settings, Lyr::Position, Lyr::Left), lyrGetValue(settings, Lyr::Alignment, Lyr::Center),
            size == size ? size : DEFAULT_SIZE, annotation.sizeHint(), annotation.minimumSizeHint()};
}

void place(LyqColorLookupTableAnnotation& annotation, const Viewport& viewport, float dotsPerInch) {
    const Place wanted = placeLegend(viewport, dotsPerInch, wishOf(annotation));
    annotation.setFixedSize(wanted.size);
    annotation.setPosition(wanted.position);
    const LyqColorLookupTableWidget* widget = annotation.lookupTableWidget();
    if (widget && widget->needsUpdate()) {
        annotation.updateImage();
    }
}

}  // namespace

bool Entry::operator==(const Entry& other) const {
    return annotation == other.annotation && visible == other.visible &&
           center.isSimilar(other.center, std::numeric_limits<float>::epsilon());
}

LyrColorLookupTableRenderDriver::LyrColorLookupTableRenderDriver(LyrSceneGraph::ViewportObjectNode* node, LyrObject*)
    : mViewportNode(node) {}

LyrColorLookupTableRenderDriver::~LyrColorLookupTableRenderDriver() = default;

bool LyrColorLookupTableRenderDriver::init() {
    if (mViewportNode->getCameraNode()->isSuppressed()) {
        return true;
    }
    try {
        if (updateAnnotationList(getUpdateTimestamp())) {
            mViewportNode->addUpdateFlags(LyrSceneGraph::ViewportObjectNode::OVERLAY_CHANGED);
        }
    } catch (const std::exception&) {
        LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
    }
    return true;
}

void LyrColorLookupTableRenderDriver::cleanup() {}

bool LyrColorLookupTableRenderDriver::updateAnnotationList(LyrTimestamp since) {
    LyrSceneGraph::SceneGraphObjectNode* sceneNode = mViewportNode->getSceneNode();
    const LyrObjectPtr renderObject(mViewportNode->getObject());
    const auto* workspaceWidget = expect<LyqWorkspaceWidget>(linkedBy(renderObject.get(), Lyr::WorkspaceWidget));
    const LyrObjectPtr container(linkedBy(workspaceWidget, Lyr::ColorLookupTableAnnotationContainer));

    const LyrObject* units = linkedBy(&LyqApplication::instance().object(), Lyr::DisplayUnitList);
    bool changed = since.isNull() || (units && units->getModificationTimestamp() > since);
    changed = changed || workspaceWidget != mWorkspaceWidget || !(container == mContainer);
    mWorkspaceWidget = workspaceWidget;
    mContainer = container;

    LyrValueList<Entry> entries;
    for (const LyrObjectPtr& object : snapshotOf(renderObject.get(), Lyr::AnnotationHandlerList)) {
        auto* handler = expect<LyrColorLookupTableAnnotationHandler>(object.get());
        changed = (handler && handler->update(this, sceneNode, entries, container.get(), since)) || changed;
    }
    if (!container) {
        entries.clear();  // nobody would own them
    }
    listAnnotations(container.get(), entries);
    updateEntryList(entries);
    changed = changed || differ(entries, mEntries);
    if (changed) {
        mEntries.swap(entries);
    }
    return changed;
}

bool LyrColorLookupTableRenderDriver::updateEntryList(LyrValueList<Entry>& entries) {
    const Viewport viewport = viewportOf(*mViewportNode);
    const LyrObject* camera = mViewportNode->getCameraNode()->getObject();
    const float dotsPerInch = lyrGetValue(camera, Lyr::DotsPerInch, LyrVector2<float>::ZERO()).x;
    for (Entry& entry : entries) {
        if (auto* legend = expect<LyqColorLookupTableAnnotation>(entry.annotation.get())) {
            legend->setVisible(entry.visible);
            if (entry.visible && isPlausible(viewport)) {
                place(*legend, viewport, dotsPerInch);
            }
        }
        auto* annotation = dynamic_cast<LyqAnnotation*>(entry.annotation.get());
        if (annotation && entry.visible && isPlausible(viewport)) {
            annotation->getImage();  // rendered here if it never was for this size: not while the view is painted
        }
        entry.center = centreOf(annotation ? annotation->frameGeometry() : QRect());
    }
    return true;
}

LyrVector3<float> LyrColorLookupTableRenderDriver::widgetToDevice(const LyrVector3<float>& point) const {
    return lys::viewport::widgetToDevice(point, viewportOf(*mViewportNode));
}

LyrRendering::DeviceRect LyrColorLookupTableRenderDriver::getDeviceCoverageRect(long long pass) {
    LyrRendering::DeviceRect covered = LyrRendering::emptyRect();
    const Viewport viewport = viewportOf(*mViewportNode);
    if (pass != mViewportNode->getOverlayPass(this) || !isPlausible(viewport) || viewport.isEmpty()) {
        return covered;
    }
    for (const Entry& entry : mEntries) {
        const auto* annotation = dynamic_cast<LyqAnnotation*>(entry.annotation.get());
        if (!annotation || !entry.visible) {
            continue;
        }
        for (const LyrVector3<float>& corner : quadCorners(annotation->frameGeometry(), viewport)) {
            const LyrVector2<float> point(corner.x, corner.y);
            covered = LyrRendering::unite(covered, {point, point});
        }
    }
    return LyrRendering::intersect(LyrRendering::enlarge(covered, COVERAGE_MARGIN), LyrRendering::deviceSquare());
}

LyrRendering::DeviceRect LyrColorLookupTableRenderDriver::getDeviceUpdateRect(long long pass) {
    const bool everything = pass == mViewportNode->getOverlayPass(this) && mViewportNode->getUpdateFlags() != 0;
    return everything ? LyrRendering::deviceSquare() : LyrRendering::emptyRect();
}

bool LyrColorLookupTableRenderDriver::isObjectTypeRendered(const LyrSceneGraph::SceneGraphObjectNode& node,
                                                           const char* className) const {
    if (node.getRenderingStateIdentifier() == 0) {
        return false;
    }
    const LyrObject* object = node.getObject();
    bool rendered = object && object->getMetaClass().isOfType(className);
    for (std::int64_t i = 0; !rendered && i < node.getChildCount(); ++i) {
        rendered = isObjectTypeRendered(*node.getChild(i), className);
    }
    return rendered;
}
