#include <lyr_core/LyrSyncLocker.h>

#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(LyrSyncLocker, the_mutex_is_held_until_the_scope_ends) {
    LyrSyncMutex mutex;
    {
        const LyrSyncLocker locker(mutex);
        bool taken = true;
        std::thread([&] { taken = mutex.tryLock(); }).join();
        EXPECT_FALSE(taken);
    }
    EXPECT_TRUE(mutex.tryLock());
    mutex.unlock();
}

TEST(LyrSyncLocker, no_step_of_several_threads_is_lost) {
    LyrSyncMutex mutex;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 5000; ++k) {
                const LyrSyncLocker locker(mutex);
                ++count;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count, 20000);
}

}  // namespace
