#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectIOCPtr.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>

using namespace core_test;

namespace {
void change(Node& node) {
    node.weight.setValue(node.weight.stored() + 1.0f);
}
}  // namespace

TEST(LyrObjectIOCPtr, holds_a_reference_and_sends_messages_to_its_listener) {
    Held<> node;
    Ear ear;
    {
        const LyrObjectIOCPtr handle(&ear, node.get());
        EXPECT_EQ(node->getRefCount(), 2);
        EXPECT_EQ(handle.get(), node.get());
        EXPECT_EQ(handle.getListener(), &ear);
        EXPECT_TRUE(handle);
        EXPECT_TRUE(handle == node.get());
        EXPECT_EQ(handle->getRefCount(), 2);
        change(*node);
    }
    EXPECT_EQ(node->getRefCount(), 1);
    change(*node);
    EXPECT_EQ(ear.heard.size(), 1u);
}

TEST(LyrObjectIOCPtr, listens_to_the_object_that_it_is_given_last) {
    const Held<> first, second;
    Ear ear;
    LyrObjectIOCPtr handle(&ear);
    EXPECT_FALSE(handle);
    handle = first.get();
    handle = second.get();
    EXPECT_EQ(first->getRefCount(), 1);
    change(*first);
    EXPECT_TRUE(ear.heard.empty());
    change(*second);
    EXPECT_EQ(ear.heard.size(), 1u);
    handle = second.get();
    change(*second);
    EXPECT_EQ(ear.heard.size(), 2u);
    handle = nullptr;
    change(*second);
    EXPECT_EQ(ear.heard.size(), 2u);
    EXPECT_EQ(second->getRefCount(), 1);
}

TEST(LyrObjectIOCPtr, may_get_its_listener_later_change_it_and_lose_it) {
    const Held<> node;
    Ear first, second;
    LyrObjectIOCPtr handle(nullptr, node.get());
    change(*node);
    handle.setListener(&first);
    change(*node);
    handle.setListener(&second);
    change(*node);
    handle.setListener(nullptr);
    change(*node);
    EXPECT_EQ(first.heard.size(), 1u);
    EXPECT_EQ(second.heard.size(), 1u);
    EXPECT_EQ(handle.get(), node.get());
}

TEST(LyrObjectIOCPtr, has_no_listener_any_more_when_that_goes_first) {
    const Held<> node, other;
    auto ear = std::make_unique<Ear>();
    LyrObjectIOCPtr handle(ear.get(), node.get());
    LyrObjectIOCPtr waiting(ear.get());
    ear.reset();
    EXPECT_EQ(handle.getListener(), nullptr);
    EXPECT_EQ(waiting.getListener(), nullptr);
    change(*node);
    handle = other.get();
    waiting = other.get();
    change(*other);
    EXPECT_EQ(handle.get(), other.get());
}

TEST(LyrObjectIOCPtr, has_no_object_any_more_when_something_else_destroys_that) {
    Ear ear;
    auto onTheStack = std::make_optional<Node>();
    onTheStack->incRef();
    LyrObjectIOCPtr handle(&ear, &*onTheStack);
    onTheStack.reset();
    EXPECT_EQ(handle.get(), nullptr);
    EXPECT_EQ(handle.getListener(), &ear);
}

TEST(LyrObjectIOCPtr, listens_with_each_of_its_copies) {
    const Held<> node, other;
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, node.get());
    LyrObjectIOCPtr copied(handle);
    EXPECT_EQ(node->getRefCount(), 3);
    change(*node);
    EXPECT_EQ(ear.heard.size(), 2u);
    Ear otherEar;
    LyrObjectIOCPtr assigned(&otherEar, other.get());
    assigned = handle;  // takes the object, keeps its listener
    change(*node);
    EXPECT_EQ(otherEar.heard.size(), 1u);
    EXPECT_EQ(ear.heard.size(), 4u);
}

TEST(LyrObjectIOCPtr, is_consistent_when_the_old_object_goes) {
    Held<> old;
    const Held<> fresh;
    Ear ear;
    LyrObjectIOCPtr handle(&ear, old.get());
    LyrObject* seen = nullptr;
    old->onDestroyed = [&] { seen = handle.get(); };
    old.drop();
    handle = fresh.get();
    EXPECT_EQ(seen, fresh.get());
}

TEST(LyrObjectIOCPtrList, sends_the_messages_of_all_its_objects_to_one_listener) {
    const Held<> first, second, third;
    Ear ear;
    LyrObjectIOCPtrList list;
    EXPECT_EQ(list.size(), 0u);
    EXPECT_TRUE(list.append(first.get()));
    list.setListener(&ear);
    EXPECT_EQ(list.getListener(), &ear);
    EXPECT_TRUE(list.append(second.get()));
    EXPECT_EQ(list.size(), 2u);
    EXPECT_EQ(list.at(0), first.get());
    EXPECT_EQ(list.at(1), second.get());
    EXPECT_EQ(list.at(2), nullptr);
    EXPECT_TRUE(list.contains(first.get()));
    EXPECT_FALSE(list.contains(third.get()));
    EXPECT_EQ(first->getRefCount(), 2);
    change(*first);
    change(*second);
    change(*third);
    EXPECT_EQ(ear.heard.size(), 2u);
    list.clear();
    EXPECT_EQ(list.size(), 0u);
    EXPECT_EQ(first->getRefCount(), 1);
    change(*first);
    EXPECT_EQ(ear.heard.size(), 2u);
}

TEST(LyrObjectIOCPtrList, survives_its_listener) {
    const Held<> node, later;
    auto ear = std::make_unique<Ear>();
    LyrObjectIOCPtrList list;
    list.setListener(ear.get());
    list.append(node.get());
    ear.reset();
    EXPECT_EQ(list.getListener(), nullptr);
    EXPECT_TRUE(list.append(later.get()));
    change(*node);
    change(*later);
}

TEST(LyrObjectIOCPtrList, is_empty_already_when_its_objects_go) {
    LyrObjectIOCPtrList list;
    std::size_t seen = 99;
    auto* node = new Node;
    node->onDestroyed = [&] { seen = list.size(); };
    list.append(node);
    list.clear();
    EXPECT_EQ(seen, 0u);
}
