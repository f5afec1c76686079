#include <lyr_core/LyrSyncMutex.h>

#include <thread>

#include <gtest/gtest.h>

namespace {

bool canBeTakenElsewhere(LyrSyncMutex& mutex) {
    bool taken = false;
    std::thread([&] {
        taken = mutex.tryLock();
        if (taken) {
            mutex.unlock();
        }
    }).join();
    return taken;
}

TEST(LyrSyncMutex, a_held_mutex_cannot_be_taken_by_another_thread) {
    LyrSyncMutex mutex;
    EXPECT_TRUE(canBeTakenElsewhere(mutex));
    mutex.lock();
    EXPECT_FALSE(canBeTakenElsewhere(mutex));
    mutex.unlock();
    EXPECT_TRUE(mutex.tryLock());
    EXPECT_FALSE(canBeTakenElsewhere(mutex));
    mutex.unlock();
    EXPECT_TRUE(canBeTakenElsewhere(mutex));
}

}  // namespace
