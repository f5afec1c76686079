#include "lyr_core/TestObjects.h"

#include <gtest/gtest.h>

using namespace core_test;

TEST(LyrClassFactory, creates_on_the_heap_or_in_a_given_place) {
    const LyrClassFactory<Node> factory;
    LyrClass* onHeap = factory.create(nullptr);
    EXPECT_NE(dynamic_cast<Node*>(onHeap), nullptr);
    LyrMetaClass::destruct(onHeap, true);

    alignas(Node) unsigned char place[sizeof(Node)];
    LyrClass* inPlace = factory.create(place);
    EXPECT_EQ(static_cast<Node*>(inPlace), reinterpret_cast<Node*>(place));
    LyrMetaClass::destruct(inPlace, false);
}

TEST(LyrClassFactory, copies_on_the_heap_or_into_a_given_place) {
    const LyrClassFactory<Node> factory;
    const Held<> source;
    source->weight.setValue(6.0f);
    auto* onHeap = static_cast<Node*>(factory.createCopy(source.get(), nullptr));
    ASSERT_NE(onHeap, nullptr);
    EXPECT_EQ(onHeap->weight.stored(), 6.0f);
    LyrMetaClass::destruct(onHeap, true);

    alignas(Node) unsigned char place[sizeof(Node)];
    auto* inPlace = static_cast<Node*>(factory.createCopy(source.get(), place));
    ASSERT_EQ(inPlace, reinterpret_cast<Node*>(place));
    EXPECT_EQ(inPlace->weight.stored(), 6.0f);
    LyrMetaClass::destruct(inPlace, false);
}

TEST(LyrClassFactory, copies_and_assigns_only_what_is_of_its_class) {
    const LyrClassFactory<SpecialNode> factory;
    const Held<> node;
    const Held<SpecialNode> special;
    EXPECT_EQ(factory.createCopy(node.get(), nullptr), nullptr);
    EXPECT_EQ(factory.createCopy(nullptr, nullptr), nullptr);
    EXPECT_FALSE(factory.assign(node.get(), special.get()));
    EXPECT_FALSE(factory.assign(special.get(), node.get()));
    EXPECT_FALSE(factory.assign(special.get(), nullptr));
    const Held<SpecialNode> other;
    other->weight.setValue(1.5f);
    EXPECT_TRUE(factory.assign(special.get(), other.get()));
    EXPECT_EQ(special->weight.stored(), 1.5f);
}

TEST(LyrClassFactory, tells_whether_an_assignment_took_over_everything) {
    struct Refusing : Single<float> {
        unsigned int checkData(const float& value, bool) const override { return value < 10.0f ? 1 : 0; }
    };
    const LyrClassFactory<LyrObject> factory;
    LyrObject from, to;
    Single<float> large;
    Refusing refusing;
    from.addProperty(WEIGHT, &large);
    to.addProperty(WEIGHT, &refusing);
    large.setValue(5.0f);
    EXPECT_TRUE(factory.assign(&to, &from));
    large.setValue(11.0f);
    EXPECT_FALSE(factory.assign(&to, &from));
    EXPECT_EQ(refusing.stored(), 5.0f);
}

TEST(LyrClassFactory, copies_a_property_by_its_value) {
    const Held<> target;
    LyrObjectSoftLinkOP link;
    link.setValue(linkTo(target.get()));
    LyrClass* copied = LyrObjectSoftLinkOP::metaClass().clone(&link);
    auto* property = dynamic_cast<LyrObjectSoftLinkOP*>(copied);
    ASSERT_NE(property, nullptr);
    EXPECT_EQ(property->getTarget(), target.get());
    LyrMetaClass::destruct(copied, true);
}
