#include <lyr_core/LyrEmbeddedList.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

struct First;
struct Second;

struct Item : LyrEmbeddedListNode<Item, First>, LyrEmbeddedListNode<Item, Second> {
    explicit Item(int wanted) : number(wanted) {}
    int number;
};

using FirstList = LyrEmbeddedList<Item, First>;
using SecondList = LyrEmbeddedList<Item, Second>;

template <class Listed>
std::vector<int> numbers(const Listed& list) {
    std::vector<int> result;
    for (const Item* at = list.first(); at; at = list.next(at)) {
        result.push_back(at->number);
    }
    return result;
}

bool isInFirst(const Item& item) {
    return static_cast<const LyrEmbeddedListNode<Item, First>&>(item).isListed();
}
bool isInSecond(const Item& item) {
    return static_cast<const LyrEmbeddedListNode<Item, Second>&>(item).isListed();
}

}  // namespace

TEST(LyrEmbeddedList, is_empty_at_first) {
    const FirstList list;
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.size(), 0u);
    EXPECT_EQ(list.first(), nullptr);
}

TEST(LyrEmbeddedList, keeps_the_order_of_appending) {
    Item a(1), b(2), c(3);
    FirstList list;
    list.append(&a);
    list.append(&b);
    list.append(&c);
    EXPECT_EQ(numbers(list), (std::vector{1, 2, 3}));
    EXPECT_EQ(list.size(), 3u);
    EXPECT_TRUE(isInFirst(b));
}

TEST(LyrEmbeddedList, closes_up_when_an_item_leaves_from_any_place) {
    Item a(1), b(2), c(3), d(4);
    FirstList list;
    for (Item* item : {&a, &b, &c, &d}) {
        list.append(item);
    }
    list.remove(&b);
    EXPECT_EQ(numbers(list), (std::vector{1, 3, 4}));
    list.remove(&a);
    EXPECT_EQ(numbers(list), (std::vector{3, 4}));
    list.remove(&d);
    EXPECT_EQ(numbers(list), (std::vector{3}));
    list.append(&a);
    EXPECT_EQ(numbers(list), (std::vector{3, 1}));
    EXPECT_FALSE(isInFirst(b));
}

TEST(LyrEmbeddedList, loses_an_item_that_is_destroyed) {
    Item a(1), c(3);
    FirstList list;
    list.append(&a);
    {
        Item b(2);
        list.append(&b);
        list.append(&c);
    }
    EXPECT_EQ(numbers(list), (std::vector{1, 3}));
    EXPECT_EQ(list.size(), 2u);
}

TEST(LyrEmbeddedList, lets_its_items_go_when_it_is_destroyed) {
    Item a(1);
    {
        FirstList list;
        list.append(&a);
    }
    EXPECT_FALSE(isInFirst(a));
}

TEST(LyrEmbeddedList, takes_an_item_out_of_the_list_that_it_was_in) {
    Item a(1), b(2);
    FirstList one, other;
    one.append(&a);
    one.append(&b);
    other.append(&a);
    EXPECT_EQ(numbers(one), (std::vector{2}));
    EXPECT_EQ(numbers(other), (std::vector{1}));
}

TEST(LyrEmbeddedList, moves_an_item_that_is_appended_again_to_the_end) {
    Item a(1), b(2);
    FirstList list;
    list.append(&a);
    list.append(&b);
    list.append(&a);
    EXPECT_EQ(numbers(list), (std::vector{2, 1}));
    EXPECT_EQ(list.size(), 2u);
}

TEST(LyrEmbeddedList, removes_nothing_that_is_in_another_list) {
    Item a(1);
    FirstList one, other;
    one.append(&a);
    other.remove(&a);
    EXPECT_EQ(numbers(one), (std::vector{1}));
    EXPECT_EQ(other.size(), 0u);
}

TEST(LyrEmbeddedList, has_one_place_for_each_tag) {
    Item a(1), b(2);
    FirstList first;
    SecondList second;
    first.append(&a);
    first.append(&b);
    second.append(&b);
    second.append(&a);
    first.remove(&a);
    EXPECT_EQ(numbers(first), (std::vector{2}));
    EXPECT_EQ(numbers(second), (std::vector{2, 1}));
    EXPECT_FALSE(isInFirst(a));
    EXPECT_TRUE(isInSecond(a));
}

TEST(LyrEmbeddedList, does_not_take_in_copies_of_its_items) {
    Item a(1), b(2);
    FirstList list;
    list.append(&a);
    const Item copied(a);
    EXPECT_FALSE(isInFirst(copied));
    list.append(&b);
    b = a;
    EXPECT_EQ(numbers(list), (std::vector{1, 1}));
    EXPECT_TRUE(isInFirst(b));
}
