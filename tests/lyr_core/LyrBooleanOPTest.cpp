#include "lyr_core/TestObjects.h"

#include <gtest/gtest.h>

using namespace core_test;

TEST(LyrBooleanOP, is_off_at_first) {
    LyrBooleanOP property;
    EXPECT_EQ(property.stored(), 0);
    EXPECT_EQ(property.getResetValue(), 0);
    property.setValue(1);
    EXPECT_TRUE(property.resetData());
    EXPECT_EQ(property.stored(), 0);
}

TEST(LyrBooleanOP, holds_zero_and_one_and_refuses_every_other_number) {
    LyrBooleanOP property;
    EXPECT_TRUE(property.setValue(1));
    for (const int number : {2, -1, 204800085, -2147483647}) {
        EXPECT_FALSE(property.setValue(number)) << number;
        EXPECT_EQ(property.stored(), 1);
    }
    EXPECT_TRUE(property.setValue(0));
    EXPECT_EQ(property.stored(), 0);
}

TEST(LyrBooleanOP, is_read_as_an_identifier_but_knows_that_it_is_a_boolean) {
    LyrBooleanOP property;
    EXPECT_EQ(property.getValueType(), LyrValueType::Boolean);
    auto* typed = LyrSingleValuePropertyIF<Lyrenum>::getInterface(&property);
    ASSERT_EQ(typed, &property);
    Lyrenum value;
    EXPECT_TRUE(typed->setValue(1));
    EXPECT_TRUE(typed->getValue(value));
    EXPECT_EQ(value, 1);
}

TEST(LyrBooleanOP, takes_over_an_identifier_only_if_it_is_a_boolean) {
    LyrBooleanOP property;
    Single<Lyrenum> number;
    number.setValue(1);
    EXPECT_TRUE(property.copyValueFrom(number));
    EXPECT_EQ(property.stored(), 1);
    number.setValue(2);
    EXPECT_FALSE(property.copyValueFrom(number));
    EXPECT_EQ(property.stored(), 1);
    EXPECT_TRUE(number.copyValueFrom(property));
    EXPECT_EQ(number.stored(), 1);
}

TEST(LyrBooleanOP, may_be_on_by_default) {
    class On : public LyrBooleanOP {
    public:
        On() {
            setResetValue(1);
            resetData();
        }
    };
    On property;
    EXPECT_EQ(property.stored(), 1);
    EXPECT_EQ(property.getResetValue(), 1);
}
