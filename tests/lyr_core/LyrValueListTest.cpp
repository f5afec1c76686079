#include <lyr_core/LyrValueList.h>

#include <limits>
#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

LyrValueList<int> listOf(std::initializer_list<int> values) {
    LyrValueList<int> list;
    for (const int value : values) {
        EXPECT_TRUE(list.append(value));
    }
    return list;
}

TEST(LyrValueList, a_new_list_is_empty_and_grows_by_sixteen) {
    LyrValueList<float> list;
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.size(), 0);
    EXPECT_EQ(list.getGranularity(), 16);
    EXPECT_TRUE(list.append(1));
    EXPECT_EQ(list.size(), 1);
    EXPECT_EQ(list.capacity(), 16);
}

TEST(LyrValueList, the_room_grows_in_multiples_of_the_granularity) {
    LyrValueList<int> list(10);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(list.append(i));
        ASSERT_EQ(list.capacity() % 10, 0);
    }
    EXPECT_EQ(list.size(), 1000);
    EXPECT_EQ(list[999], 999);
    EXPECT_EQ(LyrValueList<int>(0).getGranularity(), 1);
    EXPECT_EQ(LyrValueList<int>(-3).getGranularity(), 1);
}

TEST(LyrValueList, values_are_inserted_before_an_index) {
    LyrValueList<int> list = listOf({1, 3});
    EXPECT_TRUE(list.insert(1, 2));
    EXPECT_TRUE(list.insert(0, 0));
    EXPECT_TRUE(list.insert(4, 4));
    EXPECT_FALSE(list.insert(6, 9));
    EXPECT_FALSE(list.insert(-1, 9));
    EXPECT_EQ(list, listOf({0, 1, 2, 3, 4}));
}

TEST(LyrValueList, a_value_of_the_list_itself_can_be_appended_while_the_list_grows) {
    LyrValueList<std::string> list(1);
    ASSERT_TRUE(list.append("a text that is too long to be kept in place"));
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(list.append(list[0]));
    }
    EXPECT_EQ(list[100], "a text that is too long to be kept in place");
}

TEST(LyrValueList, values_are_removed_only_inside_the_list) {
    LyrValueList<int> list = listOf({0, 1, 2, 3, 4});
    EXPECT_TRUE(list.remove(0));
    EXPECT_TRUE(list.remove(1, 2));
    EXPECT_EQ(list, listOf({1, 4}));
    EXPECT_FALSE(list.remove(2));
    EXPECT_FALSE(list.remove(3, 0));
    EXPECT_FALSE(list.remove(-1));
    EXPECT_FALSE(list.remove(1, 2));
    EXPECT_FALSE(list.remove(0, -1));
    EXPECT_FALSE(list.remove(1, std::numeric_limits<long long>::max()));
    EXPECT_TRUE(list.remove(2, 0));
    EXPECT_EQ(list, listOf({1, 4}));
}

TEST(LyrValueList, clearing_keeps_the_room) {
    LyrValueList<int> list = listOf({1, 2, 3});
    list.clear();
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.capacity(), 16);
}

TEST(LyrValueList, swapped_lists_exchange_values_and_granularity) {
    LyrValueList<int> a = listOf({1, 2});
    LyrValueList<int> b(3);
    const int* const storage = a.data();
    a.swap(b);
    EXPECT_TRUE(a.isEmpty());
    EXPECT_EQ(a.getGranularity(), 3);
    EXPECT_EQ(b, listOf({1, 2}));
    EXPECT_EQ(b.getGranularity(), 16);
    EXPECT_EQ(b.data(), storage);
    swap(a, b);
    EXPECT_EQ(a.data(), storage);
}

TEST(LyrValueList, values_are_reached_by_index_and_in_order) {
    LyrValueList<int> list = listOf({1, 2, 3});
    list[1] = 7;
    int sum = 0;
    for (const int value : list) {
        sum = 10 * sum + value;
    }
    EXPECT_EQ(sum, 173);
    for (int& value : list) {
        value = -value;
    }
    EXPECT_EQ(list, listOf({-1, -7, -3}));
    EXPECT_EQ(list.indexOf(-7), 1);
    EXPECT_EQ(list.indexOf(7), -1);
    EXPECT_EQ(list.end() - list.begin(), 3);
}

TEST(LyrValueList, lists_are_equal_by_their_values) {
    EXPECT_TRUE(listOf({1, 2}) == listOf({1, 2}));
    EXPECT_FALSE(listOf({1, 2}) == listOf({1}));
    EXPECT_FALSE(listOf({1, 2}) == listOf({2, 1}));
    EXPECT_TRUE(LyrValueList<int>(2) == LyrValueList<int>(5));
}

TEST(LyrValueList, removed_values_are_destroyed) {
    const auto value = std::make_shared<int>(1);
    LyrValueList<std::shared_ptr<int>> list;
    EXPECT_TRUE(list.append(value));
    EXPECT_TRUE(list.append(value));
    EXPECT_EQ(value.use_count(), 3);
    EXPECT_TRUE(list.remove(0));
    EXPECT_EQ(value.use_count(), 2);
    list.clear();
    EXPECT_EQ(value.use_count(), 1);
}

TEST(LyrValueList, memory_that_cannot_be_had_leaves_the_list_as_it_was) {
    // One block of this granularity is more than any list may hold.
    LyrValueList<double> list(std::numeric_limits<long long>::max());
    EXPECT_FALSE(list.append(1));
    EXPECT_TRUE(list.isEmpty());
}

}  // namespace
