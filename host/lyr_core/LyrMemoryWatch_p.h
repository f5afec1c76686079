#pragma once

#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>

/** Notes whether memory ran out while it lives, as far as that is reported. */
class LyrMemoryWatch : public LyrError::Listener {
public:
    bool errorEmitted(const LyrError::Message& message) override {
        mFailed = mFailed || message.getCode() == Lyr::AllocationFailed;
        return false;
    }
    bool hasFailed() const noexcept { return mFailed; }

private:
    bool mFailed = false;
};
