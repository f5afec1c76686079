#include "lyr_core/TestObjects.h"

#include <gtest/gtest.h>

using namespace core_test;

TEST(Lyrenum, is_no_identifier_unless_given_a_number) {
    EXPECT_EQ(int(Lyrenum()), -1);
    EXPECT_EQ(int(Lyrenum(7)), 7);
    EXPECT_EQ(int(Lyrenum(static_cast<int>(0xF3CB0005u))), -204799995);
}

TEST(Lyrenum, is_compared_by_its_number) {
    EXPECT_TRUE(Lyrenum(0x0C3500A1) == Lyrenum(204800161));
    EXPECT_TRUE(Lyrenum(3) != Lyrenum(4));
    EXPECT_TRUE(Lyr::DocumentScope == 204800161);
}

TEST(Lyrenum, finds_the_numbers_of_the_host_by_name) {
    EXPECT_EQ(Lyrenum("Type", true), 204800427);
    EXPECT_EQ(Lyrenum("Constant", true), 204800085);
    EXPECT_EQ(Lyrenum("PropertyHasChanged", true), 204800299);
    EXPECT_EQ(Lyrenum("Length", true), 204800208);
}

TEST(Lyrenum, tells_the_name_of_a_number) {
    EXPECT_EQ(Lyr::Gradient.getName(), "Gradient");
    EXPECT_EQ(Lyrenum(123456).getName(), "");
    EXPECT_EQ(Lyrenum().getName(), "");
}

TEST(Lyrenum, reports_an_unknown_name_that_must_exist) {
    Errors errors;
    EXPECT_EQ(Lyrenum("core_test.nobody", true), -1);
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::UnknownIdentifier});
    EXPECT_EQ(errors.sources, std::vector<const LyrClass*>{nullptr});
}

TEST(Lyrenum, is_silent_about_an_unknown_name_that_need_not_exist) {
    EXPECT_EQ(Lyrenum("core_test.nobody", false), -1);
    EXPECT_EQ(Lyrenum(nullptr, false), -1);
    EXPECT_EQ(Lyrenum("", false), -1);
}

TEST(LyrIdentifierRegistry, counts_repeated_registrations_and_keeps_the_number) {
    const char* name = "core_test.counted";
    const int number = LyrIdentifierRegistry::registerName(name, MODULE);
    EXPECT_GT(number, 0);
    EXPECT_EQ(LyrIdentifierRegistry::registerName(name, MODULE), number);
    EXPECT_EQ(LyrIdentifierRegistry::registerName(name, "core_test_other"), number);
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount(name), 3);

    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName(name, MODULE));
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName(name, "core_test_other"));
    EXPECT_EQ(LyrIdentifierRegistry::find(name), number);
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName(name, MODULE));
    EXPECT_EQ(LyrIdentifierRegistry::find(name), -1);
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount(name), 0);
    EXPECT_FALSE(LyrIdentifierRegistry::unregisterName(name, MODULE));
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount(name), 0);
}

TEST(LyrIdentifierRegistry, never_gives_a_number_to_another_name) {
    const int first = LyrIdentifierRegistry::registerName("core_test.first", MODULE);
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName("core_test.first", MODULE));
    const int second = LyrIdentifierRegistry::registerName("core_test.second", MODULE);
    EXPECT_NE(first, second);
    // Undo steps and files in memory still hold the number, so its name stays known.
    EXPECT_EQ(LyrIdentifierRegistry::nameOf(first), "core_test.first");
    EXPECT_EQ(LyrIdentifierRegistry::registerName("core_test.first", MODULE), first);
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName("core_test.first", MODULE));
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName("core_test.second", MODULE));
}

TEST(LyrIdentifierRegistry, takes_back_only_what_the_module_has_registered) {
    const char* name = "core_test.theirs";
    LyrIdentifierRegistry::registerName(name, "core_test_other");
    EXPECT_FALSE(LyrIdentifierRegistry::unregisterName(name, MODULE));
    EXPECT_NE(LyrIdentifierRegistry::find(name), -1);
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName(name, "core_test_other"));
    EXPECT_FALSE(LyrIdentifierRegistry::unregisterName("core_test.never", MODULE));
}

TEST(LyrIdentifierRegistry, keeps_a_name_of_the_host_that_a_module_registers_and_takes_back) {
    const int number = LyrIdentifierRegistry::find("Type");
    EXPECT_EQ(LyrIdentifierRegistry::registerName("Type", MODULE), number);
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName("Type", MODULE));
    EXPECT_EQ(LyrIdentifierRegistry::find("Type"), number);
}

TEST(LyrIdentifierRegistry, counts_the_registrations_of_a_module) {
    EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount("core_test_counting"), 0);
    LyrIdentifierRegistry::registerName("core_test.one", "core_test_counting");
    LyrIdentifierRegistry::registerName("core_test.two", "core_test_counting");
    LyrIdentifierRegistry::registerName("core_test.two", "core_test_counting");
    EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount("core_test_counting"), 3);
    LyrIdentifierRegistry::unregisterName("core_test.one", "core_test_counting");
    LyrIdentifierRegistry::unregisterName("core_test.two", "core_test_counting");
    LyrIdentifierRegistry::unregisterName("core_test.two", "core_test_counting");
    EXPECT_EQ(LyrIdentifierRegistry::moduleRegistrationCount("core_test_counting"), 0);
}

TEST(LyrIdentifierRegistry, refuses_names_that_are_none) {
    EXPECT_EQ(LyrIdentifierRegistry::registerName(nullptr, MODULE), -1);
    EXPECT_EQ(LyrIdentifierRegistry::registerName("", MODULE), -1);
    EXPECT_FALSE(LyrIdentifierRegistry::unregisterName(nullptr, MODULE));
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount(nullptr), 0);
}

TEST(LyrIdentifierRegistry, counts_a_module_without_name_as_one) {
    const int number = LyrIdentifierRegistry::registerName("core_test.nobodys", nullptr);
    EXPECT_EQ(LyrIdentifierRegistry::find("core_test.nobodys"), number);
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName("core_test.nobodys", nullptr));
    EXPECT_EQ(LyrIdentifierRegistry::find("core_test.nobodys"), -1);
}

TEST(LyrIdentifierRegistry, has_the_names_of_the_host_whenever_it_is_asked) {
    EXPECT_TRUE(__lyr_enum_init());
    EXPECT_TRUE(__lyr_enum_init());
    EXPECT_EQ(LyrIdentifierRegistry::find("NameTemplate"), int(Lyr::NameTemplate));
    EXPECT_EQ(LyrIdentifierRegistry::registrationCount("NameTemplate"), 1);
}
