#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrKeepAlive_p.h>
#include <lyr_core/LyrObject.h>

LyrAction::~LyrAction() {
    if (mOwner) {
        mOwner->removeAction(mActionId);
    }
}

void LyrAction::check() {
    ok(1);
}
void LyrAction::cleanUp() {}

/** One step of a run; what it throws (memory ran out) is a failure. */
template <class Step>
void LyrAction::attempt(Step step) {
    try {
        step();
    } catch (...) {
        error(Lyr::AllocationFailed);
    }
}

bool LyrAction::run(LyrObject* object, LyrObject* parameter) {
    if (mRunning) {
        LyrError::emitError(LyrError::Message(mObject, Lyr::Failed));  // an action does not run inside itself
        return false;
    }
    // The action is a member of its object: it must not die while it runs.
    const LyrKeepAlive objectAlive(object);
    const LyrKeepAlive parameterAlive(parameter);
    mRunning = true;
    mObject = object;
    mParameter = parameter;
    mSucceeded = mFailed = false;
    attempt([&] { check(); });
    if (mSucceeded && !mFailed) {
        mSucceeded = false;
        attempt([&] { execute(); });
    }
    const bool result = mSucceeded && !mFailed;
    attempt([&] { cleanUp(); });
    mObject = nullptr;
    mParameter = nullptr;
    mRunning = false;
    return result;
}

void LyrAction::ok(Lyrenum result) {
    mSucceeded = true;
    mResult = result;
}

void LyrAction::error(Lyrenum code) {
    mFailed = true;
    mResult = code;
    LyrError::emitError(LyrError::Message(mObject ? static_cast<const LyrClass*>(mObject) : this, code));
}
