#pragma once

#include <lyr_core/LyrObject.h>

/** Keeps an object alive for a scope in which others take and drop handles to it. Unlike a handle it leaves a new
 * object, which nobody holds yet, as it was. */
class LyrKeepAlive {
public:
    explicit LyrKeepAlive(LyrObject* object) noexcept : mObject(object), mIsNew(object && object->getRefCount() == 0) {
        if (mObject) {
            mObject->incRef();
        }
    }
    ~LyrKeepAlive() {
        if (mIsNew) {
            mObject->mRefCount.fetch_sub(1, std::memory_order_relaxed);
        } else if (mObject) {
            mObject->decRef();
        }
    }
    LyrKeepAlive(const LyrKeepAlive&) = delete;
    LyrKeepAlive& operator=(const LyrKeepAlive&) = delete;

private:
    LyrObject* mObject;
    bool mIsNew;
};
