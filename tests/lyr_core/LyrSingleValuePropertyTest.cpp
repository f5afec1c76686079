#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrSingleValueProperty.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

using namespace core_test;

namespace {

constexpr float QUIET_NAN = std::numeric_limits<float>::quiet_NaN();

/** Writes `value` twice into a property that holds something else: told once, then never. */
template <class T>
void expectToldOnce(const T& value) {
    const Held<LyrObject> owner;
    Single<T> property;
    owner->addProperty(1, &property);
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, owner.get());
    EXPECT_TRUE(property.setValue(value));
    EXPECT_EQ(ear.heard.size(), 1u);
    EXPECT_TRUE(property.setValue(value));
    EXPECT_EQ(ear.heard.size(), 1u);
    T read{};
    EXPECT_TRUE(property.getValue(read));
    EXPECT_TRUE(lyrSameValue(read, value));
    owner->removeProperty(1);
}

/** Whether writing `second` over `first` tells. */
template <class T>
bool tells(const T& first, const T& second) {
    const Held<LyrObject> owner;
    Single<T> property;
    owner->addProperty(1, &property);
    property.setValue(first);
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, owner.get());
    EXPECT_TRUE(property.setValue(second));
    owner->removeProperty(1);
    return !ear.heard.empty();
}

/** Accepts what is below a limit, and notes what it was asked. */
class Limited : public Single<float> {
public:
    unsigned int checkData(const float& value, bool forWrite) const override {
        ++asked;
        lastForWrite = forWrite;
        return value < 10.0f ? Single<float>::checkData(value, forWrite) : verdict;
    }
    mutable int asked = 0;
    mutable bool lastForWrite = false;
    unsigned int verdict = 0;
};

}  // namespace

TEST(LyrSingleValueProperty, tells_each_new_value_of_every_type_once) {
    expectToldOnce<Lyrenum>(Lyr::Gradient);
    expectToldOnce<LyrValuePair<Lyrenum>>({0, 1});
    expectToldOnce<float>(0.7f);
    expectToldOnce<LyrValuePair<float>>({-1.0f, 1.0f});
    expectToldOnce<long long>(1LL << 40);
    expectToldOnce<LyrVector2<float>>({1.0f, 2.0f});
    expectToldOnce<LyrVector3<float>>({1.0f, 2.0f, 3.0f});
    expectToldOnce<LyrRGBA<float>>({0.1f, 0.2f, 0.3f, 0.4f});
    expectToldOnce<const char*>("text");
}

TEST(LyrSingleValueProperty, starts_with_the_zero_of_its_type) {
    EXPECT_EQ(Single<float>().stored(), 0.0f);
    EXPECT_EQ(Single<long long>().stored(), 0);
    EXPECT_EQ(Single<Lyrenum>().stored(), -1);
    EXPECT_TRUE(Single<const char*>().stored().isNull());
    EXPECT_EQ(Single<float>().getResetValue(), 0.0f);
}

TEST(LyrSingleValueProperty, takes_every_NaN_for_the_same_value) {
    EXPECT_FALSE(tells(QUIET_NAN, -QUIET_NAN));
    EXPECT_TRUE(tells(0.0f, QUIET_NAN));
    EXPECT_TRUE(tells(QUIET_NAN, 0.0f));
    EXPECT_FALSE(tells<LyrValuePair<float>>({QUIET_NAN, 1.0f}, {QUIET_NAN, 1.0f}));
    EXPECT_TRUE(tells<LyrVector3<float>>({QUIET_NAN, 1.0f, 2.0f}, {QUIET_NAN, 1.0f, 3.0f}));
}

TEST(LyrSingleValueProperty, tells_minus_zero_from_zero) {
    EXPECT_TRUE(tells(0.0f, -0.0f));
    EXPECT_TRUE(tells<LyrVector2<float>>({0.0f, 0.0f}, {0.0f, -0.0f}));
    EXPECT_TRUE(tells<LyrRGBA<float>>({0.0f, 0.0f, 0.0f, 0.0f}, {0.0f, 0.0f, 0.0f, -0.0f}));
    Single<float> property;
    property.setValue(-0.0f);
    EXPECT_TRUE(std::signbit(property.stored()));
}

TEST(LyrSingleValueProperty, keeps_texts_of_its_own) {
    Single<const char*> property;
    std::string text = "first";
    EXPECT_TRUE(property.setValue(text.c_str()));
    text = "other";
    const char* read = nullptr;
    EXPECT_TRUE(property.getValue(read));
    EXPECT_STREQ(read, "first");
}

TEST(LyrSingleValueProperty, tells_a_null_text_from_an_empty_one) {
    EXPECT_TRUE(tells<const char*>("", nullptr));
    EXPECT_TRUE(tells<const char*>(nullptr, ""));
    EXPECT_FALSE(tells<const char*>(nullptr, nullptr));
    EXPECT_FALSE(tells<const char*>("", ""));
    Single<const char*> property;
    const char* read = "something";
    EXPECT_TRUE(property.getValue(read));
    EXPECT_EQ(read, nullptr);
    property.setValue("");
    EXPECT_TRUE(property.getValue(read));
    EXPECT_STREQ(read, "");
}

TEST(LyrSingleValueProperty, can_be_written_with_a_part_of_its_own_text) {
    Single<const char*> property;
    property.setValue("a long enough text, so that it has a buffer of its own");
    const char* read = nullptr;
    property.getValue(read);
    EXPECT_TRUE(property.setValue(read + 2));
    EXPECT_EQ(property.stored(), "long enough text, so that it has a buffer of its own");
}

TEST(LyrSingleValueProperty, goes_back_to_its_reset_value) {
    class Thickness : public Single<long long> {
    public:
        Thickness() {
            setResetValue(12);
            resetData();
        }
    };
    const Held<LyrObject> owner;
    Thickness thickness;
    owner->addProperty(1, &thickness);
    EXPECT_EQ(thickness.stored(), 12);
    EXPECT_EQ(thickness.getResetValue(), 12);
    thickness.setValue(30);
    EXPECT_EQ(thickness.getResetValue(), 12);
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, owner.get());
    EXPECT_TRUE(thickness.resetData());
    EXPECT_EQ(thickness.stored(), 12);
    EXPECT_TRUE(thickness.resetData());
    EXPECT_EQ(ear.heard.size(), 1u);
    owner->removeProperty(1);
}

TEST(LyrSingleValueProperty, asks_for_a_verdict_before_it_writes) {
    const Held<LyrObject> owner;
    Limited property;
    owner->addProperty(1, &property);
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, owner.get());
    EXPECT_TRUE(property.setValue(5.0f));
    EXPECT_EQ(property.asked, 1);
    EXPECT_TRUE(property.lastForWrite);
    EXPECT_FALSE(property.setValue(10.0f));
    EXPECT_EQ(property.stored(), 5.0f);
    EXPECT_EQ(ear.heard.size(), 1u);
    property.verdict = 2;  // only 1 accepts
    EXPECT_FALSE(property.setValue(10.0f));
    property.verdict = 1;
    EXPECT_TRUE(property.setValue(10.0f));
    EXPECT_EQ(property.checkData(3.0f, false), 1u);
    owner->removeProperty(1);
}

TEST(LyrSingleValueProperty, gives_its_interface_for_its_own_type_only) {
    Node node;
    LyrProperty* weight = &node.weight;
    EXPECT_EQ(LyrSingleValuePropertyIF<float>::getInterface(weight), &node.weight);
    EXPECT_EQ(LyrSingleValuePropertyIF<float>::getInterfaceConst(weight), &node.weight);
    EXPECT_EQ(LyrSingleValuePropertyIF<long long>::getInterface(weight), nullptr);
    EXPECT_EQ(LyrSingleValuePropertyIF<float>::getInterface(&node.numbers), nullptr);
    EXPECT_EQ(LyrSingleValuePropertyIF<float>::getInterface(nullptr), nullptr);
    EXPECT_EQ(LyrSingleValuePropertyIF<float>::getInterfaceConst(nullptr), nullptr);
    EXPECT_EQ(LyrSingleValuePropertyIF<Lyrenum>::getInterface(&node.onOff), &node.onOff);
    EXPECT_EQ(LyrSingleValuePropertyIF<LyrObjectLink>::getInterface(&node.owned), &node.owned);
}

TEST(LyrSingleValueProperty, names_the_type_of_its_values) {
    EXPECT_EQ(Single<Lyrenum>().getValueType(), LyrValueType::Enum);
    EXPECT_EQ(Single<LyrValuePair<Lyrenum>>().getValueType(), LyrValueType::EnumPair);
    EXPECT_EQ(Single<float>().getValueType(), LyrValueType::Float);
    EXPECT_EQ(Single<LyrValuePair<float>>().getValueType(), LyrValueType::FloatPair);
    EXPECT_EQ(Single<long long>().getValueType(), LyrValueType::Int64);
    EXPECT_EQ(Single<LyrVector2<float>>().getValueType(), LyrValueType::Vector2);
    EXPECT_EQ(Single<LyrVector3<float>>().getValueType(), LyrValueType::Vector3);
    EXPECT_EQ(Single<LyrRGBA<float>>().getValueType(), LyrValueType::Color);
    EXPECT_EQ(Single<const char*>().getValueType(), LyrValueType::String);
    EXPECT_FALSE(Single<float>().isArray());
}

TEST(LyrSingleValueProperty, takes_over_the_value_of_a_property_of_its_type) {
    Single<float> from, to;
    Single<long long> other;
    from.setValue(2.5f);
    EXPECT_TRUE(to.copyValueFrom(from));
    EXPECT_EQ(to.stored(), 2.5f);
    EXPECT_FALSE(to.copyValueFrom(other));
    EXPECT_TRUE(to.copyValueFrom(to));
    EXPECT_EQ(to.stored(), 2.5f);
    Limited limited;
    from.setValue(11.0f);
    EXPECT_FALSE(limited.copyValueFrom(from));
}

TEST(LyrSingleValueProperty, gives_its_value_out_and_takes_it_back) {
    const Held<LyrObject> owner;
    Single<const char*> property;
    owner->addProperty(1, &property);
    property.setValue("before");
    const auto state = property.takeState();
    ASSERT_TRUE(state);
    EXPECT_FALSE(state->holdsObjectsOf(MODULE));
    property.setValue("after");
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, owner.get());
    EXPECT_TRUE(property.restoreState(*state));
    EXPECT_EQ(property.stored(), "before");
    EXPECT_EQ(ear.heard.size(), 1u);
    EXPECT_TRUE(property.restoreState(*state));  // which holds the other value now
    EXPECT_EQ(property.stored(), "after");
    property.setValue("before");
    ear.heard.clear();
    EXPECT_TRUE(property.restoreState(*property.takeState()));
    EXPECT_TRUE(ear.heard.empty());
    owner->removeProperty(1);
}

TEST(LyrSingleValueProperty, asks_for_a_verdict_before_it_takes_a_value_back) {
    Limited property;
    property.setValue(5.0f);
    const auto state = property.takeState();
    property.setValue(6.0f);
    struct Closed : Limited {
        unsigned int checkData(const float&, bool) const override { return 0; }
    } closed;
    EXPECT_FALSE(closed.restoreState(*state));
    property.setReadOnly(true);
    EXPECT_FALSE(property.restoreState(*state));
    property.setReadOnly(false);
    EXPECT_TRUE(property.restoreState(*state));
    EXPECT_EQ(property.stored(), 5.0f);
}

TEST(LyrSingleValueProperty, may_be_written_again_by_whoever_hears_of_it) {
    const Held<> node;
    Ear ear;
    ear.onMessage = [&](auto&) {
        if (node->weight.stored() < 5.0f) {
            node->weight.setValue(node->weight.stored() + 1.0f);
        }
    };
    const LyrObjectIOCPtr handle(&ear, node.get());
    EXPECT_TRUE(node->weight.setValue(1.0f));
    EXPECT_EQ(node->weight.stored(), 5.0f);
    EXPECT_EQ(ear.heard.size(), 5u);
}
