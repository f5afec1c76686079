#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrPropertyPtr.h>

#include <gtest/gtest.h>

#include <vector>

using namespace core_test;

TEST(LyrSingleValueOPPtr, finds_a_property_of_its_type_by_identifier) {
    const Held<> node;
    const LyrSingleValueOPPtr<LyrSingleValuePropertyIF<float>> weight(node.get(), WEIGHT);
    ASSERT_TRUE(weight);
    EXPECT_EQ(weight.get(), &node->weight);
    EXPECT_TRUE(weight->setValue(2.0f));
    EXPECT_EQ(node->weight.stored(), 2.0f);
}

TEST(LyrSingleValueOPPtr, is_null_where_there_is_no_such_property) {
    const Held<> node;
    EXPECT_FALSE(LyrSingleValueOPPtr<LyrSingleValuePropertyIF<float>>(node.get(), TITLE));
    EXPECT_FALSE(LyrSingleValueOPPtr<LyrSingleValuePropertyIF<float>>(node.get(), NUMBERS));
    EXPECT_FALSE(LyrSingleValueOPPtr<LyrSingleValuePropertyIF<float>>(node.get(), 12345));
    EXPECT_FALSE(LyrSingleValueOPPtr<LyrSingleValuePropertyIF<float>>(nullptr, WEIGHT));
}

TEST(LyrValueArrayOPPtr, finds_a_list_of_its_type_by_identifier) {
    const Held<> node;
    const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>> numbers(node.get(), NUMBERS);
    ASSERT_TRUE(numbers);
    EXPECT_EQ(numbers.get(), &node->numbers);
    EXPECT_FALSE(LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>>(node.get(), WEIGHT));
    EXPECT_FALSE(LyrValueArrayOPPtr<LyrValueArrayPropertyIF<Lyrenum>>(node.get(), NUMBERS));
    EXPECT_TRUE(LyrValueArrayOPPtr<LyrValueArrayPropertyIF<LyrObjectLink>>(node.get(), CHILDREN));
    EXPECT_FALSE(LyrValueArrayOPPtr<LyrValueArrayPropertyIF<float>>(nullptr, NUMBERS));
}

TEST(LyrPropertyPtr, reads_and_writes_values_by_identifier) {
    const Held<> node;
    EXPECT_TRUE(lyrSetValue(node.get(), WEIGHT, 2.0f));
    EXPECT_EQ(lyrGetValue(node.get(), WEIGHT, -1.0f), 2.0f);
    EXPECT_EQ(lyrGetValue(node.get(), TITLE, -1.0f), -1.0f);
    EXPECT_EQ(lyrGetValue<float>(nullptr, WEIGHT, -1.0f), -1.0f);
    EXPECT_FALSE(lyrSetValue(node.get(), TITLE, 2.0f));
    EXPECT_FALSE(lyrSetValue<float>(nullptr, WEIGHT, 2.0f));
    EXPECT_TRUE(lyrSetValue<Lyrenum>(node.get(), SWITCH, 1));
    EXPECT_FALSE(lyrSetValue<Lyrenum>(node.get(), SWITCH, 2));
}

TEST(LyrValueArrayOPCache, reads_a_list_whole_and_writes_it_back_whole) {
    const Held<> node;
    setList(node->numbers, {1.0f, 2.0f});
    LyrValueArrayOPCache<float> cache;
    EXPECT_TRUE(cache.load(node.get(), NUMBERS));
    EXPECT_EQ(cache.items(), (std::vector{1.0f, 2.0f}));
    cache.items().push_back(3.0f);
    cache.items()[0] = 0.0f;
    EXPECT_TRUE(cache.store(node.get(), NUMBERS));
    EXPECT_EQ(itemsOf(node->numbers), (std::vector{0.0f, 2.0f, 3.0f}));
    cache.items().clear();
    EXPECT_TRUE(cache.store(node.get(), NUMBERS));
    EXPECT_EQ(node->numbers.getArraySize(), 0);
    EXPECT_TRUE(cache.load(node.get(), NUMBERS));
    EXPECT_TRUE(cache.items().empty());
}

TEST(LyrValueArrayOPCache, is_empty_where_there_is_no_such_list) {
    const Held<> node;
    LyrValueArrayOPCache<float> cache;
    setList(node->numbers, {1.0f});
    cache.load(node.get(), NUMBERS);
    EXPECT_FALSE(cache.load(node.get(), WEIGHT));
    EXPECT_TRUE(cache.items().empty());
    EXPECT_FALSE(cache.load(nullptr, NUMBERS));
    EXPECT_FALSE(cache.store(node.get(), WEIGHT));
    EXPECT_FALSE(cache.store(nullptr, NUMBERS));
}
