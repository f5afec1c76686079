#include <lyr_core/LyrMemory.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>

#include <gtest/gtest.h>

namespace {

bool isAligned(const void* p) {
    return reinterpret_cast<std::uintptr_t>(p) % 16 == 0;
}

TEST(LyrMemory, every_buffer_is_aligned_to_16_bytes) {
    for (const std::size_t size : {std::size_t(1), std::size_t(7), std::size_t(24), std::size_t(1000001)}) {
        void* p = lyrMalloc(size);
        ASSERT_NE(p, nullptr);
        EXPECT_TRUE(isAligned(p)) << size;
        p = lyrRealloc(p, 3 * size + 5);
        ASSERT_NE(p, nullptr);
        EXPECT_TRUE(isAligned(p)) << size;
        lyrFree(p);
    }
}

TEST(LyrMemory, a_buffer_keeps_its_bytes_when_its_size_changes) {
    auto* p = static_cast<char*>(lyrMalloc(6));
    ASSERT_NE(p, nullptr);
    std::memcpy(p, "abcde", 6);
    p = static_cast<char*>(lyrRealloc(p, 100000));
    ASSERT_NE(p, nullptr);
    EXPECT_STREQ(p, "abcde");
    p = static_cast<char*>(lyrRealloc(p, 3));
    ASSERT_NE(p, nullptr);
    EXPECT_EQ(std::memcmp(p, "abc", 3), 0);
    lyrFree(p);
}

TEST(LyrMemory, a_size_of_zero_gives_a_buffer_that_can_be_freed) {
    void* p = lyrMalloc(0);
    EXPECT_NE(p, nullptr);
    p = lyrRealloc(p, 0);
    EXPECT_NE(p, nullptr);
    lyrFree(p);
}

TEST(LyrMemory, a_null_buffer_can_be_grown_and_freed) {
    void* p = lyrRealloc(nullptr, 16);
    EXPECT_NE(p, nullptr);
    lyrFree(p);
    lyrFree(nullptr);
}

TEST(LyrMemory, an_impossible_size_gives_null_and_leaves_the_old_buffer_alone) {
    // Read at run time, so that the compiler cannot refuse the absurd size itself.
    volatile std::size_t absurd = std::numeric_limits<std::size_t>::max();
    EXPECT_EQ(lyrMalloc(absurd), nullptr);
    auto* p = static_cast<char*>(lyrMalloc(4));
    ASSERT_NE(p, nullptr);
    std::memcpy(p, "abc", 4);
    EXPECT_EQ(lyrRealloc(p, absurd), nullptr);
    EXPECT_STREQ(p, "abc");
    lyrFree(p);
}

TEST(LyrMemory, a_unique_pointer_returns_its_buffer) {
    const std::unique_ptr<float, LyrFree> buffer(static_cast<float*>(lyrMalloc(4 * sizeof(float))));
    ASSERT_NE(buffer, nullptr);
    buffer.get()[3] = 1;
    EXPECT_EQ(buffer.get()[3], 1);
}

}  // namespace
