#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectPtr.h>

#include <gtest/gtest.h>

#include <type_traits>
#include <utility>

using namespace core_test;

namespace {

template <class T>
const LyrMetaClass& singletonClass(const char* name, const LyrMetaClass& parent) {
    static const LyrMetaClass meta(name, sizeof(T), &parent, new LyrClassFactory<T>, MODULE, 0, nullptr, 0, 0, 0, true);
    return meta;
}

class Only : public LyrObject {
public:
    static const LyrMetaClass& metaClass() { return singletonClass<Only>("TestOnly", LyrObject::metaClass()); }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

class DerivedOnly : public Only {
public:
    static const LyrMetaClass& metaClass() { return singletonClass<DerivedOnly>("TestDerivedOnly", Only::metaClass()); }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

class NoObject : public LyrClass {
public:
    NoObject() { ++alive; }
    NoObject(const NoObject& other) : LyrClass(other) { ++alive; }
    NoObject& operator=(const NoObject&) = default;
    ~NoObject() override { --alive; }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestNoObject", sizeof(NoObject), &LyrClass::metaClass(),
                                       new LyrClassFactory<NoObject>, MODULE, 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
    static int alive;
};

int NoObject::alive = 0;

}  // namespace

TEST(LyrObjectPtr, holds_nothing_at_first) {
    const LyrObjectPtr handle;
    EXPECT_EQ(handle.get(), nullptr);
    EXPECT_FALSE(handle);
    EXPECT_TRUE(handle == nullptr);
    EXPECT_FALSE(LyrObjectPtr(nullptr));
}

TEST(LyrObjectPtr, holds_a_reference_for_its_lifetime) {
    bool gone = false;
    auto* node = new Node;
    node->onDestroyed = [&] { gone = true; };
    {
        const LyrObjectPtr handle(node);
        EXPECT_EQ(node->getRefCount(), 1);
        EXPECT_EQ(handle.get(), node);
        EXPECT_EQ(handle->getRefCount(), 1);
        EXPECT_EQ(&*handle, node);
        EXPECT_TRUE(handle);
    }
    EXPECT_TRUE(gone);
}

TEST(LyrObjectPtr, counts_copies_but_not_moves) {
    auto* node = new Node;
    LyrObjectPtr first(node);
    LyrObjectPtr second(first);
    EXPECT_EQ(node->getRefCount(), 2);
    const LyrObjectPtr third(std::move(second));
    EXPECT_EQ(node->getRefCount(), 2);
    EXPECT_FALSE(second);  // NOLINT(bugprone-use-after-move): that is what is asked
    first = third;
    EXPECT_EQ(node->getRefCount(), 2);
    first = LyrObjectPtr();
    EXPECT_EQ(node->getRefCount(), 1);
}

TEST(LyrObjectPtr, may_be_assigned_to_itself_and_to_a_part_of_its_object) {
    LyrObjectPtr handle(new Node);
    auto* outer = static_cast<Node*>(handle.get());
    auto& alias = handle;
    handle = alias;
    EXPECT_EQ(outer->getRefCount(), 1);
    auto* inner = new Node;
    outer->owned.setValue(linkTo(inner));
    handle = outer->owned.getTarget();  // lets the outer object go
    EXPECT_EQ(handle.get(), inner);
    EXPECT_EQ(inner->getRefCount(), 1);
}

TEST(LyrObjectPtr, is_compared_by_its_object) {
    const Held<> one, other;
    const LyrObjectPtr a(one.get()), b(one.get()), c(other.get());
    EXPECT_TRUE(a == b);
    EXPECT_TRUE(a != c);
    EXPECT_TRUE(a == one.get());
    EXPECT_TRUE(c != one.get());
}

TEST(LyrObjectRefPtr, makes_a_new_object_of_a_named_class_in_a_scope) {
    const LyrObjectRefPtr handle("TestSpecialNode", Lyr::DocumentScope);
    ASSERT_TRUE(handle);
    EXPECT_NE(dynamic_cast<SpecialNode*>(handle.get()), nullptr);
    EXPECT_EQ(handle->getScope(), 204800161);
    EXPECT_EQ(handle->getRefCount(), 1);
    const LyrObjectRefPtr another("TestSpecialNode", Lyr::DocumentScope);
    EXPECT_NE(handle.get(), another.get());
}

TEST(LyrObjectRefPtr, is_null_for_an_unknown_class_silently) {
    EXPECT_FALSE(LyrObjectRefPtr("TestNobody", 1));
    EXPECT_FALSE(LyrObjectRefPtr(nullptr, 1));
    EXPECT_FALSE(LyrObjectRefPtr());
}

TEST(LyrObjectRefPtr, is_null_for_a_class_that_makes_no_LyrObject_and_leaves_nothing_behind) {
    NoObject::metaClass();
    EXPECT_FALSE(LyrObjectRefPtr("TestNoObject", 1));
    EXPECT_EQ(NoObject::alive, 0);
}

TEST(LyrObjectRefPtr, lets_the_object_go_when_it_is_released) {
    bool gone = false;
    LyrObjectRefPtr handle("TestNode", 1);
    static_cast<Node*>(handle.get())->onDestroyed = [&] { gone = true; };
    handle.release();
    EXPECT_TRUE(gone);
    EXPECT_FALSE(handle);
    handle.release();
}

TEST(LyrObjectRefPtr, passes_its_object_on_to_other_handles) {
    const LyrObjectRefPtr made("TestNode", 1);
    const LyrObjectPtr handle = made;
    EXPECT_EQ(handle.get(), made.get());
    EXPECT_EQ(handle->getRefCount(), 2);
}

TEST(LyrObjectRefPtr, finds_the_object_of_a_singleton_class_and_leaves_its_scope) {
    Only::metaClass();
    const LyrObjectRefPtr first("TestOnly", 5);
    ASSERT_TRUE(first);
    const LyrObjectRefPtr second("TestOnly", 6);
    EXPECT_EQ(second.get(), first.get());
    EXPECT_EQ(first->getScope(), 5);
    EXPECT_EQ(first->getRefCount(), 2);
}

TEST(LyrObjectRefPtr, makes_a_singleton_anew_when_the_old_one_is_gone) {
    Only::metaClass();
    { const LyrObjectRefPtr first("TestOnly", 5); }
    const LyrObjectRefPtr second("TestOnly", 6);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->getScope(), 6);
}

TEST(LyrObjectRefPtr, prefers_the_singleton_of_the_class_itself_to_one_of_a_derived_class) {
    Only::metaClass();
    DerivedOnly::metaClass();
    const LyrObjectRefPtr derived("TestDerivedOnly", 5);
    const LyrObjectRefPtr base("TestOnly", 5);
    EXPECT_EQ(base.get(), derived.get());  // which is one
    const Held<Only> own;
    EXPECT_EQ(LyrObjectRefPtr("TestOnly", 5).get(), own.get());
    EXPECT_EQ(LyrObjectRefPtr("TestDerivedOnly", 5).get(), derived.get());
}
