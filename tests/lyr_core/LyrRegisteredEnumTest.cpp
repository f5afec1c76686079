#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrRegisteredEnum.h>

#include <gtest/gtest.h>

#include <optional>

using namespace core_test;

TEST(LyrRegisteredEnum, registers_a_name_for_its_lifetime) {
    int number = -1;
    {
        const LyrRegisteredEnum registered("core_test.scoped", false, MODULE);
        number = registered.get();
        EXPECT_GT(number, 0);
        EXPECT_EQ(Lyrenum("core_test.scoped", true), number);
        EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount(MODULE), 1);
    }
    EXPECT_EQ(Lyrenum("core_test.scoped", false), -1);
    EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount(MODULE), 0);
    const LyrRegisteredEnum again("core_test.scoped", false, MODULE);
    EXPECT_EQ(again.get(), number);
}

TEST(LyrRegisteredEnum, leaves_the_name_to_a_second_registration) {
    std::optional<LyrRegisteredEnum> first(std::in_place, "core_test.twice", false, MODULE);
    std::optional<LyrRegisteredEnum> second(std::in_place, "core_test.twice", false, MODULE);
    EXPECT_EQ(first->get(), second->get());
    const int number = first->get();
    first.reset();
    EXPECT_EQ(Lyrenum("core_test.twice", true), number);
    second.reset();
    EXPECT_EQ(Lyrenum("core_test.twice", false), -1);
}

TEST(LyrRegisteredEnum, keeps_a_permanent_name) {
    { const LyrRegisteredEnum permanent("core_test.permanent", true, MODULE); }
    EXPECT_NE(Lyrenum("core_test.permanent", true), -1);
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName("core_test.permanent", MODULE));
}

TEST(LyrRegisteredEnum, is_no_identifier_without_a_name) {
    const LyrRegisteredEnum nothing(nullptr, false, MODULE);
    const LyrRegisteredEnum empty("", false, nullptr);
    EXPECT_EQ(nothing.get(), -1);
    EXPECT_EQ(empty.get(), -1);
}
