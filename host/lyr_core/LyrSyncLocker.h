#pragma once

#include <lyr_core/LyrSyncMutex.h>

/** Holds a mutex for the lifetime of a scope. */
class LyrSyncLocker {
public:
    explicit LyrSyncLocker(LyrSyncMutex& mutex) : mMutex(mutex) { mMutex.lock(); }
    ~LyrSyncLocker() { mMutex.unlock(); }
    LyrSyncLocker(const LyrSyncLocker&) = delete;
    LyrSyncLocker& operator=(const LyrSyncLocker&) = delete;

private:
    LyrSyncMutex& mMutex;
};
