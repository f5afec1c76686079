#pragma once

#include <mutex>

/** Lets one thread at a time pass. It is not recursive: the thread that holds it must not lock it again. */
class LyrSyncMutex {
public:
    LyrSyncMutex() = default;
    LyrSyncMutex(const LyrSyncMutex&) = delete;
    LyrSyncMutex& operator=(const LyrSyncMutex&) = delete;

    /** Waits until the mutex is free and takes it. */
    void lock() { mMutex.lock(); }
    /** Takes the mutex if it is free; returns whether it did. */
    bool tryLock() { return mMutex.try_lock(); }
    /** Gives the mutex back; only the thread that took it may. */
    void unlock() { mMutex.unlock(); }

private:
    std::mutex mMutex;
};
