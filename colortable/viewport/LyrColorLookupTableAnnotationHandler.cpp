#include <colortable/ColortableIdentifiers.h>
#include <colortable/viewport/LyrColorLookupTableAnnotationHandler.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>

/** Nothing yet. It is there so that members can come later without a change of the size that clients derive from. */
struct LyrColorLookupTableAnnotationHandler::Private : LyrPrivatePart {};

LyrColorLookupTableAnnotationHandler::LyrColorLookupTableAnnotationHandler() {
    build();
}

LyrColorLookupTableAnnotationHandler::LyrColorLookupTableAnnotationHandler(
    const LyrColorLookupTableAnnotationHandler& other)
    : LyrObject(other) {
    build();
}

LyrColorLookupTableAnnotationHandler& LyrColorLookupTableAnnotationHandler::operator=(
    const LyrColorLookupTableAnnotationHandler& other) {
    LyrObject::operator=(other);
    return *this;
}

LyrColorLookupTableAnnotationHandler::~LyrColorLookupTableAnnotationHandler() = default;

void LyrColorLookupTableAnnotationHandler::build() {
    setProtectedFlags(0, 0x110100);
    d.reset(new Private);
    if (!d) {
        LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
    }
    metaClass().applyDefaultFlags(this);
}

const LyrMetaClass& LyrColorLookupTableAnnotationHandler::metaClass() {
    static const LyrMetaClass meta("LyrColorLookupTableAnnotationHandler", sizeof(LyrColorLookupTableAnnotationHandler),
                                   &LyrObject::metaClass(), new LyrClassFactory<LyrColorLookupTableAnnotationHandler>,
                                   LYS_COLORTABLE_MODULE, 0, nullptr, 0, 0, 0, LyrObject::metaClass().isSingleton());
    return meta;
}

const LyrMetaClass& LyrColorLookupTableAnnotationHandler::getMetaClass() const {
    return metaClass();
}

bool LyrColorLookupTableAnnotationHandler::update(LyrColorLookupTableRenderDriver*,
                                                  const LyrSceneGraph::SceneGraphObjectNode*,
                                                  LyrValueList<LyrColorLookupTableRenderDriver::Entry>&, LyrObject*,
                                                  LyrTimestamp) {
    return false;
}
