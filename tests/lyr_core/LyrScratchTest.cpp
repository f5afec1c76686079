#include <lyr_core/LyrScratch.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

TEST(LyrScratch, is_empty_at_first) {
    LyrScratch<float> scratch;
    EXPECT_TRUE(scratch.isEmpty());
    EXPECT_EQ(scratch.size(), 0u);
    EXPECT_EQ(scratch.begin(), scratch.end());
}

TEST(LyrScratch, holds_a_kibibyte_inside_itself) {
    LyrScratch<float> scratch;
    const auto* inside = reinterpret_cast<const unsigned char*>(&scratch);
    for (int i = 0; i < 256; ++i) {
        ASSERT_TRUE(scratch.append(float(i)));
    }
    const auto* items = reinterpret_cast<const unsigned char*>(scratch.data());
    EXPECT_TRUE(items >= inside && items < inside + sizeof(scratch));
    ASSERT_TRUE(scratch.append(256.0f));
    items = reinterpret_cast<const unsigned char*>(scratch.data());
    EXPECT_FALSE(items >= inside && items < inside + sizeof(scratch));
}

TEST(LyrScratch, keeps_its_items_while_it_grows) {
    LyrScratch<int, 2> scratch;
    for (int i = 0; i < 10000; ++i) {
        ASSERT_TRUE(scratch.append(i));
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(scratch.data()) % 16, 0u);
    }
    ASSERT_EQ(scratch.size(), 10000u);
    for (int i = 0; i < 10000; ++i) {
        ASSERT_EQ(scratch[std::size_t(i)], i);
    }
}

TEST(LyrScratch, appends_an_item_of_its_own) {
    LyrScratch<int, 1> scratch;
    ASSERT_TRUE(scratch.append(5));
    for (int i = 0; i < 2000; ++i) {
        ASSERT_TRUE(scratch.append(scratch[0]));
    }
    EXPECT_EQ(scratch[2000], 5);
}

TEST(LyrScratch, is_resized_to_any_count) {
    LyrScratch<int, 4> scratch;
    ASSERT_TRUE(scratch.append(1));
    ASSERT_TRUE(scratch.resize(1000));
    EXPECT_EQ(scratch.size(), 1000u);
    EXPECT_EQ(scratch[0], 1);
    ASSERT_TRUE(scratch.resize(0));
    EXPECT_TRUE(scratch.isEmpty());
}

TEST(LyrScratch, refuses_sizes_that_no_memory_holds_and_stays_as_it_was) {
    LyrScratch<int, 4> scratch;
    ASSERT_TRUE(scratch.append(3));
    for (const std::size_t count :
         {std::numeric_limits<std::size_t>::max(), std::numeric_limits<std::size_t>::max() / 4,
          std::numeric_limits<std::size_t>::max() / 8}) {
        EXPECT_FALSE(scratch.reserve(count));
        EXPECT_FALSE(scratch.resize(count));
    }
    ASSERT_EQ(scratch.size(), 1u);
    EXPECT_EQ(scratch[0], 3);
}

TEST(LyrScratch, works_with_items_larger_than_its_steps) {
    struct Large {
        unsigned char bytes[3000];
    };
    LyrScratch<Large, 1> scratch;
    for (int i = 0; i < 5; ++i) {
        Large item{};
        item.bytes[2999] = static_cast<unsigned char>(i);
        ASSERT_TRUE(scratch.append(item));
    }
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(scratch[std::size_t(i)].bytes[2999], i);
    }
}
