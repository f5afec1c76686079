#include <lyr_core/LyrStringList.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(LyrStringList, a_new_list_is_empty) {
    const LyrStringList list;
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.size(), 0);
    EXPECT_EQ(list.begin(), list.end());
}

TEST(LyrStringList, appended_strings_keep_their_order) {
    LyrStringList list{"a"};
    list.append("b");
    list.append(LyrStringList{"c", "a"});
    EXPECT_EQ(list, (LyrStringList{"a", "b", "c", "a"}));
    EXPECT_EQ(list.size(), 4);
    EXPECT_EQ(list[2], "c");
    std::string all;
    for (const LyrString& item : list) {
        all += item.utf8();
    }
    EXPECT_EQ(all, "abca");
}

TEST(LyrStringList, a_list_can_be_appended_to_itself) {
    LyrStringList list{"a", "b"};
    list.append(list);
    EXPECT_EQ(list, (LyrStringList{"a", "b", "a", "b"}));
}

TEST(LyrStringList, the_first_equal_string_is_found) {
    const LyrStringList list{"a", "b", "b", ""};
    EXPECT_EQ(list.indexOf("b"), 1);
    EXPECT_EQ(list.indexOf("c"), -1);
    EXPECT_TRUE(list.contains(""));
    EXPECT_FALSE(list.contains(LyrString()));
}

TEST(LyrStringList, an_index_outside_gives_a_null_string) {
    const LyrStringList list{"a"};
    EXPECT_TRUE(list.at(-1).isNull());
    EXPECT_TRUE(list.at(1).isNull());
    EXPECT_EQ(list.at(0), "a");
}

TEST(LyrStringList, a_string_is_removed_only_inside_the_list) {
    LyrStringList list{"a", "b", "c"};
    EXPECT_TRUE(list.remove(1));
    EXPECT_FALSE(list.remove(2));
    EXPECT_FALSE(list.remove(-1));
    EXPECT_EQ(list, (LyrStringList{"a", "c"}));
    list.clear();
    EXPECT_TRUE(list.isEmpty());
}

TEST(LyrStringList, joining_puts_the_separator_between_the_strings) {
    EXPECT_EQ((LyrStringList{"a", "b", "", "c"}).join(", "), "a, b, , c");
    EXPECT_EQ(LyrStringList{"a"}.join(", "), "a");
    EXPECT_EQ(LyrStringList().join(", "), "");
    EXPECT_FALSE(LyrStringList().join(", ").isNull());
}

// The list class of a toolkit, as far as it matters here.
struct ToolkitList {
    using value_type = LyrString;
    std::vector<LyrString> items;
    void append(const LyrString& item) { items.push_back(item); }
};

TEST(LyrStringList, other_lists_are_converted_both_ways) {
    const std::vector<std::string> source{"a", "b"};
    const LyrStringList list = LyrStringList::fromRange(source);
    EXPECT_EQ(list, (LyrStringList{"a", "b"}));
    const auto back = list.toList<ToolkitList>();
    ASSERT_EQ(back.items.size(), 2U);
    EXPECT_EQ(back.items[1], "b");
}

}  // namespace
