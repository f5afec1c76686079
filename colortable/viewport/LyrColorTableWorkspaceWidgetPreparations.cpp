#include <colortable/ColortableIdentifiers.h>
#include <colortable/viewport/LiveObjects_p.h>
#include <colortable/viewport/LyrColorTableWorkspaceWidgetPreparations.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>

namespace {

constexpr const char* WORKSPACE_WIDGET = "LyqWorkspaceWidget";

/** Not the class of the render objects, which is spelled "LyrColorLookupTableRenderObject": no object has this one. It
 * has to stay so. With the other name, what cameras still have in their lists would be destroyed. */
constexpr const char* LEFT_BEHIND = "LyrColorTableLookupTableRenderObject";

/** The object, if it is a view that shows legends. */
LyrObject* asView(LyrClass* object) {
    const LyrMetaClass& meta = object->getMetaClass();
    const bool isView = meta.isOfType("LyqSliceWidget") || meta.isOfType("LyqSceneWidget");
    return isView ? dynamic_cast<LyrObject*>(object) : nullptr;
}

/** Adds the property that owns the view's container. */
void addContainerProperty(LyrObject& view) {
    LyrClass* made = LyrMetaClass::create("LyrObjectParentLinkOP");
    auto* property = dynamic_cast<LyrSingleLinkOP*>(made);
    if (property && view.addProperty(Lyr::ColorLookupTableAnnotationContainer, property, true)) {
        property->setResetMode(Lyr::Object);
    } else {
        LyrMetaClass::destruct(made, true);
    }
}

}  // namespace

LyrColorTableWorkspaceWidgetPreparations::LyrColorTableWorkspaceWidgetPreparations() {
    LyrMetaClass::addFactoryHook(WORKSPACE_WIDGET, this);
    for (LyrClass* object : lys::viewport::LiveObjects(WORKSPACE_WIDGET)) {
        LyrColorTableWorkspaceWidgetPreparations::objectCreated(object);
    }
}

LyrColorTableWorkspaceWidgetPreparations::~LyrColorTableWorkspaceWidgetPreparations() {
    LyrMetaClass::removeFactoryHook(WORKSPACE_WIDGET, this);
    for (LyrClass* at : lys::viewport::LiveObjects(WORKSPACE_WIDGET)) {
        if (auto* object = dynamic_cast<LyrObject*>(at)) {
            object->removeProperty(Lyr::ColorLookupTableAnnotationContainer);
        } else {
            LyrError::emitError(LyrError::Message(at, Lyr::WrongType));
        }
    }
    for (LyrClass* at : lys::viewport::LiveObjects(LEFT_BEHIND)) {
        LyrMetaClass::destruct(at, true);
    }
}

void LyrColorTableWorkspaceWidgetPreparations::objectCreated(LyrClass* object) {
    LyrObject* view = asView(object);
    if (!view) {
        return;
    }
    if (!view->getProperty(Lyr::ColorLookupTableAnnotationContainer)) {
        addContainerProperty(*view);
    }
    if (view->getProperty(Lyr::ColorLookupTableAnnotationContainer)) {
        const LyrObjectRefPtr container("LyrColorLookupTableAnnotationContainer", Lyr::TransientScope);
        lyrSetValue(view, Lyr::ColorLookupTableAnnotationContainer, LyrObjectLink(container.get(), nullptr, -1));
    }
}

void LyrColorTableWorkspaceWidgetPreparations::objectDestroyed(LyrClass* object) {
    if (LyrObject* view = asView(object)) {
        view->removeProperty(Lyr::ColorLookupTableAnnotationContainer);
    }
}
