#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectIOCPtr.h>

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <memory>
#include <vector>

using namespace core_test;
using Floats = std::vector<float>;

namespace {

/** Refuses more than three items, and negative ones. */
class Choosy : public List<float> {
public:
    unsigned int checkItems(long long count, const float* items) const override {
        lastCount = count;
        for (long long i = 0; i < count; ++i) {
            if (items[i] < 0.0f) {
                return 0;
            }
        }
        return count <= 3 ? 1 : 0;
    }
    mutable long long lastCount = -1;
};

class Ends : public List<float> {
public:
    Ends() {
        constexpr float ends[] = {-1.0f, 1.0f};
        setResetItems(ends);
        resetData();
    }
};

class LyrValueArrayProperty : public testing::Test {
protected:
    LyrValueArrayProperty() : handle(&ear, node.get()) { setList(list, {1.0f, 2.0f, 3.0f, 4.0f}), ear.heard.clear(); }
    Floats items() const { return itemsOf(list); }

    Held<> node;
    List<float>& list = node->numbers;
    Ear ear;
    LyrObjectIOCPtr handle;
};

}  // namespace

TEST_F(LyrValueArrayProperty, is_empty_at_first) {
    const List<float> fresh;
    long long first = 7;
    long long last = 7;
    EXPECT_TRUE(fresh.getArrayIndexRange(first, last));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(last, -1);
    EXPECT_EQ(fresh.getArraySize(), 0);
    EXPECT_TRUE(fresh.isArray());
    EXPECT_EQ(fresh.getValueType(), LyrValueType::Float);
}

TEST_F(LyrValueArrayProperty, is_replaced_whole_in_one_write) {
    const std::array<float, 3> three{7.0f, 8.0f, 9.0f};
    EXPECT_TRUE(list.initArray(0, 2, three.data()));
    EXPECT_EQ(items(), (Floats{7.0f, 8.0f, 9.0f}));
    EXPECT_EQ(ear.properties(), std::vector<int>{NUMBERS});
    EXPECT_TRUE(list.initArray(0, 0, three.data()));
    EXPECT_EQ(items(), Floats{7.0f});
    EXPECT_EQ(list.getArraySize(), 1);
    EXPECT_TRUE(list.initArray(5, 7, three.data()));  // as many items as the range counts
    EXPECT_EQ(items(), (Floats{7.0f, 8.0f, 9.0f}));
    EXPECT_TRUE(list.initArray(0, -1, nullptr));
    EXPECT_EQ(items(), Floats{});
    EXPECT_EQ(ear.heard.size(), 4u);
}

TEST_F(LyrValueArrayProperty, refuses_a_range_that_is_none) {
    const float item = 1.0f;
    EXPECT_FALSE(list.initArray(0, -2, &item));
    EXPECT_FALSE(list.initArray(1, 0, &item));
    EXPECT_FALSE(list.initArray(-1, 0, &item));
    EXPECT_FALSE(list.initArray(0, 0, nullptr));
    EXPECT_FALSE(list.initArray(0, std::numeric_limits<long long>::max(), &item));
    EXPECT_FALSE(list.insertArrayItems(0, std::numeric_limits<long long>::max(), &item));
    EXPECT_EQ(items(), (Floats{1.0f, 2.0f, 3.0f, 4.0f}));
    EXPECT_TRUE(ear.heard.empty());
}

TEST_F(LyrValueArrayProperty, copies_a_range_of_its_items_out) {
    Floats out(5);
    EXPECT_TRUE(list.getArrayItems(1, 2, out.data()));
    EXPECT_EQ(out, (Floats{2.0f, 3.0f, 0.0f, 0.0f, 0.0f}));
    EXPECT_TRUE(list.getArrayItems(0, 3, out.data()));
    EXPECT_EQ(out, (Floats{1.0f, 2.0f, 3.0f, 4.0f, 0.0f}));
    EXPECT_TRUE(list.getArrayItems(0, -1, nullptr));
    EXPECT_FALSE(list.getArrayItems(0, 4, out.data()));
    EXPECT_FALSE(list.getArrayItems(-1, 1, out.data()));
    EXPECT_FALSE(list.getArrayItems(2, 1, out.data()));
    EXPECT_FALSE(list.getArrayItems(0, 0, nullptr));
}

TEST_F(LyrValueArrayProperty, overwrites_a_range_of_its_items) {
    const std::array<float, 2> two{8.0f, 9.0f};
    EXPECT_TRUE(list.setArrayItems(1, 2, two.data()));
    EXPECT_EQ(items(), (Floats{1.0f, 8.0f, 9.0f, 4.0f}));
    EXPECT_EQ(ear.heard.size(), 1u);
    EXPECT_TRUE(list.setArrayItems(0, -1, nullptr));
    EXPECT_FALSE(list.setArrayItems(3, 4, two.data()));
    EXPECT_FALSE(list.setArrayItems(-1, 0, two.data()));
    EXPECT_FALSE(list.setArrayItems(1, 2, nullptr));
    EXPECT_EQ(items(), (Floats{1.0f, 8.0f, 9.0f, 4.0f}));
    EXPECT_EQ(ear.heard.size(), 1u);
}

TEST_F(LyrValueArrayProperty, takes_items_of_its_own) {
    EXPECT_TRUE(list.setArrayItems(1, 3, list.view().data()));
    EXPECT_EQ(items(), (Floats{1.0f, 1.0f, 2.0f, 3.0f}));
    EXPECT_TRUE(list.insertArrayItems(1, 2, list.view().data() + 2));
    EXPECT_EQ(items(), (Floats{1.0f, 2.0f, 3.0f, 1.0f, 2.0f, 3.0f}));
    EXPECT_TRUE(list.initArray(0, 2, list.view().data() + 3));
    EXPECT_EQ(items(), (Floats{1.0f, 2.0f, 3.0f}));
}

TEST_F(LyrValueArrayProperty, inserts_items_at_any_place) {
    const std::array<float, 2> two{8.0f, 9.0f};
    EXPECT_TRUE(list.insertArrayItems(0, 1, two.data()));
    EXPECT_EQ(items(), (Floats{8.0f, 9.0f, 1.0f, 2.0f, 3.0f, 4.0f}));
    EXPECT_TRUE(list.insertArrayItems(6, 6, two.data()));
    EXPECT_EQ(items(), (Floats{8.0f, 9.0f, 1.0f, 2.0f, 3.0f, 4.0f, 8.0f}));
    EXPECT_TRUE(list.insertArrayItems(1, 1, two.data()));
    EXPECT_EQ(items(), (Floats{8.0f, 8.0f, 9.0f, 1.0f, 2.0f, 3.0f, 4.0f, 8.0f}));
    EXPECT_EQ(ear.heard.size(), 3u);
    EXPECT_FALSE(list.insertArrayItems(9, 9, two.data()));
    EXPECT_FALSE(list.insertArrayItems(-1, 0, two.data()));
    EXPECT_FALSE(list.insertArrayItems(0, -1, nullptr));
    EXPECT_FALSE(list.insertArrayItems(0, 0, nullptr));
    EXPECT_EQ(ear.heard.size(), 3u);
}

TEST_F(LyrValueArrayProperty, removes_a_range_of_its_items) {
    EXPECT_TRUE(list.removeArrayItems(1, 2));
    EXPECT_EQ(items(), (Floats{1.0f, 4.0f}));
    EXPECT_FALSE(list.removeArrayItems(1, 2));
    EXPECT_FALSE(list.removeArrayItems(-1, 0));
    EXPECT_FALSE(list.removeArrayItems(1, 0));
    EXPECT_TRUE(list.removeArrayItems(0, 1));
    EXPECT_EQ(list.getArraySize(), 0);
    EXPECT_EQ(ear.heard.size(), 2u);
}

TEST_F(LyrValueArrayProperty, says_nothing_of_an_equal_write) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const auto stamp = node->getModificationTimestamp();
    EXPECT_TRUE(setList(list, {1.0f, 2.0f, 3.0f, 4.0f}));
    const float two = 2.0f;
    EXPECT_TRUE(list.setArrayItems(1, 1, &two));
    EXPECT_TRUE(ear.heard.empty());
    EXPECT_EQ(node->getModificationTimestamp(), stamp);
    setList(list, {nan});
    ear.heard.clear();
    EXPECT_TRUE(setList(list, {-nan}));
    EXPECT_TRUE(ear.heard.empty());
    setList(list, {0.0f});
    ear.heard.clear();
    EXPECT_TRUE(setList(list, {-0.0f}));
    EXPECT_EQ(ear.heard.size(), 1u);
    EXPECT_TRUE(list.initArray(0, -1, nullptr));
    EXPECT_TRUE(list.initArray(0, -1, nullptr));
    EXPECT_EQ(ear.heard.size(), 2u);
}

TEST_F(LyrValueArrayProperty, tells_a_shorter_list_with_the_same_beginning) {
    EXPECT_TRUE(setList(list, {1.0f, 2.0f}));
    EXPECT_EQ(ear.heard.size(), 1u);
    EXPECT_EQ(items(), (Floats{1.0f, 2.0f}));
}

TEST_F(LyrValueArrayProperty, asks_for_a_verdict_on_the_items_of_every_write) {
    Choosy choosy;
    EXPECT_TRUE(setList(choosy, {1.0f, 2.0f}));
    EXPECT_EQ(choosy.lastCount, 2);
    EXPECT_FALSE(setList(choosy, {1.0f, -2.0f}));
    EXPECT_FALSE(setList(choosy, {1.0f, 2.0f, 3.0f, 4.0f}));
    const float negative = -1.0f;
    EXPECT_FALSE(choosy.setArrayItems(0, 0, &negative));
    EXPECT_FALSE(choosy.insertArrayItems(0, 0, &negative));
    EXPECT_EQ(itemsOf(choosy), (Floats{1.0f, 2.0f}));
    EXPECT_TRUE(choosy.removeArrayItems(0, 0));
    EXPECT_EQ(choosy.lastCount, 0);
    EXPECT_TRUE(choosy.initArray(0, -1, nullptr));
}

TEST_F(LyrValueArrayProperty, refuses_every_write_while_it_is_read_only) {
    const float item = 9.0f;
    list.setReadOnly(true);
    EXPECT_FALSE(setList(list, {5.0f}));
    EXPECT_FALSE(list.setArrayItems(0, 0, &item));
    EXPECT_FALSE(list.setArrayItems(0, -1, nullptr));
    EXPECT_FALSE(list.insertArrayItems(0, 0, &item));
    EXPECT_FALSE(list.removeArrayItems(0, 0));
    EXPECT_FALSE(list.resetData());
    EXPECT_EQ(items(), (Floats{1.0f, 2.0f, 3.0f, 4.0f}));
}

TEST_F(LyrValueArrayProperty, cannot_be_written_while_it_is_locked_for_reading) {
    const float* first = list.lockArrayPtr();
    const float* second = list.lockArrayPtr();
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first[3], 4.0f);
    const float item = 9.0f;
    {
        Errors errors;
        EXPECT_FALSE(setList(list, {5.0f}));
        EXPECT_FALSE(list.setArrayItems(0, 0, &item));
        EXPECT_FALSE(list.insertArrayItems(0, 0, &item));
        list.unlockArrayPtr(first);
        EXPECT_FALSE(list.removeArrayItems(0, 0));
        EXPECT_EQ(errors.codes, std::vector<int>(4, Lyr::Locked));
        EXPECT_EQ(errors.sources[0], node.get());
    }
    EXPECT_TRUE(setList(list, {1.0f, 2.0f, 3.0f, 4.0f}));  // changes nothing
    EXPECT_EQ(first[0], 1.0f);
    list.unlockArrayPtr(second);
    EXPECT_TRUE(setList(list, {5.0f}));
}

TEST_F(LyrValueArrayProperty, gives_back_only_locks_that_were_taken) {
    const float elsewhere = 0.0f;
    const float* items = list.lockArrayPtr();
    list.unlockArrayPtr(nullptr);
    list.unlockArrayPtr(&elsewhere);
    {
        Errors errors;
        EXPECT_FALSE(setList(list, {5.0f}));
    }
    list.unlockArrayPtr(items);
    list.unlockArrayPtr(items);
    EXPECT_TRUE(setList(list, {5.0f}));
    EXPECT_NE(list.lockArrayPtr(), nullptr);
    Errors errors;
    EXPECT_FALSE(setList(list, {6.0f}));
    list.unlockArrayPtr(list.view().data());
}

TEST_F(LyrValueArrayProperty, has_nothing_to_lock_when_it_is_empty) {
    list.initArray(0, -1, nullptr);
    EXPECT_EQ(list.lockArrayPtr(), nullptr);
    EXPECT_TRUE(setList(list, {5.0f}));
}

TEST_F(LyrValueArrayProperty, goes_back_to_its_reset_items) {
    Ends ends;
    EXPECT_EQ(itemsOf(ends), (Floats{-1.0f, 1.0f}));
    setList(ends, {3.0f});
    EXPECT_TRUE(ends.resetData());
    EXPECT_EQ(itemsOf(ends), (Floats{-1.0f, 1.0f}));
    EXPECT_EQ(ends.getResetItems().size(), 2u);
    EXPECT_TRUE(list.resetData());
    EXPECT_EQ(items(), Floats{});
}

TEST_F(LyrValueArrayProperty, is_cloned_without_owner_under_another_identifier) {
    const std::unique_ptr<LyrProperty> cloned(list.clone(77));
    ASSERT_TRUE(cloned);
    auto* typed = LyrValueArrayPropertyIF<float>::getInterface(cloned.get());
    ASSERT_NE(typed, nullptr);
    EXPECT_EQ(typed->getArraySize(), 4);
    float last = 0.0f;
    EXPECT_TRUE(typed->getArrayItems(3, 3, &last));
    EXPECT_EQ(last, 4.0f);
    EXPECT_EQ(cloned->getPropertyID(), 77);
    EXPECT_EQ(cloned->getObject(), nullptr);
    EXPECT_TRUE(setList(*typed, {1.0f}));
    EXPECT_EQ(list.getArraySize(), 4);
}

TEST_F(LyrValueArrayProperty, takes_over_the_items_of_a_list_of_its_type) {
    List<float> other;
    EXPECT_TRUE(other.copyValueFrom(list));
    EXPECT_EQ(itemsOf(other), items());
    EXPECT_TRUE(other.copyValueFrom(other));
    EXPECT_EQ(itemsOf(other), items());
    EXPECT_FALSE(other.copyValueFrom(node->weight));
    EXPECT_FALSE(other.copyValueFrom(List<Lyrenum>()));
    EXPECT_TRUE(other.copyValueFrom(List<float>()));
    EXPECT_EQ(other.getArraySize(), 0);
    EXPECT_TRUE(list.setArrayItems(0, 0, items().data()));  // the source is not left locked
}

TEST_F(LyrValueArrayProperty, gives_its_interface_for_its_own_type_only) {
    EXPECT_EQ(LyrValueArrayPropertyIF<float>::getInterface(&list), &list);
    EXPECT_EQ(LyrValueArrayPropertyIF<float>::getInterfaceConst(&list), &list);
    EXPECT_EQ(LyrValueArrayPropertyIF<Lyrenum>::getInterface(&list), nullptr);
    EXPECT_EQ(LyrValueArrayPropertyIF<float>::getInterface(&node->weight), nullptr);
    EXPECT_EQ(LyrValueArrayPropertyIF<float>::getInterface(nullptr), nullptr);
    EXPECT_EQ(LyrValueArrayPropertyIF<LyrObjectLink>::getInterface(&node->children), &node->children);
}

TEST_F(LyrValueArrayProperty, gives_its_items_out_and_takes_them_back) {
    const auto state = list.takeState();
    ASSERT_TRUE(state);
    setList(list, {5.0f});
    ear.heard.clear();
    EXPECT_TRUE(list.restoreState(*state));
    EXPECT_EQ(items(), (Floats{1.0f, 2.0f, 3.0f, 4.0f}));
    EXPECT_EQ(ear.heard.size(), 1u);
    EXPECT_TRUE(list.restoreState(*state));
    EXPECT_EQ(items(), Floats{5.0f});
    EXPECT_TRUE(list.restoreState(*list.takeState()));
    EXPECT_EQ(ear.heard.size(), 2u);
    list.setReadOnly(true);
    EXPECT_FALSE(list.restoreState(*state));
}

TEST_F(LyrValueArrayProperty, may_be_written_again_by_whoever_hears_of_it) {
    ear.onMessage = [&](auto&) {
        if (list.getArraySize() < 6) {
            const float item = 0.0f;
            list.insertArrayItems(0, 0, &item);
        }
    };
    EXPECT_TRUE(list.removeArrayItems(0, 0));
    EXPECT_EQ(items(), (Floats{0.0f, 0.0f, 0.0f, 2.0f, 3.0f, 4.0f}));
    EXPECT_EQ(ear.heard.size(), 4u);
}

TEST_F(LyrValueArrayProperty, refuses_more_items_than_memory_can_hold_and_stays_as_it_was) {
    Errors errors;
    EXPECT_FALSE(list.initArray(0, std::numeric_limits<long long>::max() - 1, list.view().data()));
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::AllocationFailed});
    EXPECT_EQ(items(), (Floats{1.0f, 2.0f, 3.0f, 4.0f}));
}
