#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObject.h>

LyrAction::~LyrAction() = default;

void LyrAction::check() { ok(1); }
void LyrAction::cleanUp() {}

bool LyrAction::run(LyrObject* object, LyrObject* parameter) {
    if (mObject) {
        LyrError::emitError(LyrError::Message(mObject, Lyr::Failed));  // an action does not run inside itself
        return false;
    }
    mObject = object;
    mParameter = parameter;
    mSucceeded = mFailed = false;
    check();
    if (mSucceeded && !mFailed) {
        mSucceeded = false;
        execute();
    }
    const bool result = mSucceeded && !mFailed;
    cleanUp();
    mObject = nullptr;
    mParameter = nullptr;
    return result;
}

void LyrAction::ok(Lyrenum) { mSucceeded = true; }

void LyrAction::error(Lyrenum code) {
    mFailed = true;
    LyrError::emitError(LyrError::Message(mObject ? static_cast<const LyrClass*>(mObject) : this, code));
}
