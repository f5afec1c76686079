#include <lyr_core/LyrTimestamp.h>

#include <algorithm>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(LyrTimestamp, a_default_timestamp_is_null_and_lies_before_every_other) {
    const LyrTimestamp null;
    const LyrTimestamp now = LyrTimestamp::getCurrentTimestamp();
    EXPECT_TRUE(null.isNull());
    EXPECT_FALSE(now.isNull());
    EXPECT_TRUE(now > null);
    EXPECT_TRUE(null < now);
    EXPECT_FALSE(null > LyrTimestamp());
    EXPECT_TRUE(null == LyrTimestamp());
}

TEST(LyrTimestamp, a_later_event_has_a_greater_timestamp) {
    const LyrTimestamp first = LyrTimestamp::getCurrentTimestamp();
    const LyrTimestamp second = LyrTimestamp::getCurrentTimestamp();
    EXPECT_TRUE(second > first);
    EXPECT_TRUE(first <= second);
    EXPECT_TRUE(first != second);
    const LyrTimestamp copy = first;
    EXPECT_TRUE(copy == first && copy >= first);
}

TEST(LyrTimestamp, events_of_several_threads_never_share_a_timestamp) {
    constexpr std::size_t threadCount = 4, eventCount = 2000;
    std::vector<std::vector<LyrTimestamp>> stamps(threadCount);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads.emplace_back([&mine = stamps[i]] {
            for (std::size_t k = 0; k < eventCount; ++k) {
                mine.push_back(LyrTimestamp::getCurrentTimestamp());
            }
        });
    }
    std::vector<LyrTimestamp> all;
    for (std::size_t i = 0; i < threadCount; ++i) {
        threads[i].join();
        EXPECT_TRUE(std::is_sorted(stamps[i].begin(), stamps[i].end()));
        all.insert(all.end(), stamps[i].begin(), stamps[i].end());
    }
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
    EXPECT_EQ(all.size(), threadCount * eventCount);
}

}  // namespace
