#include <lyr_core/LyrMetaClass.h>
#include <lys_core/LyqObjectEditorHandler.h>

const LyrMetaClass& LyqObjectEditorHandler::metaClass() {
    static const LyrMetaClass meta("LyqObjectEditorHandler", sizeof(LyqObjectEditorHandler), &LyrClass::metaClass(),
                                   nullptr, "lys_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyqObjectEditorHandler::getMetaClass() const {
    return metaClass();
}

LyqObjectEditorHandler* LyqObjectEditorHandler::create(const char* className) {
    const LyrMetaClass* meta = LyrMetaClass::find(className);
    const bool fits = meta && meta->isCreatable() && meta->isOfType(metaClass());
    return fits ? dynamic_cast<LyqObjectEditorHandler*>(meta->create()) : nullptr;
}
