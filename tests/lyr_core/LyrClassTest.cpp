#include "lyr_core/TestObjects.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace core_test;

namespace {

constexpr LyrMetaClass::NamedFlag NAMED[] = {{"Loud", 0x1}, {"Quiet", 0x6}};

/** Notes its flag hooks. */
class Flagged : public LyrClass {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestFlagged", sizeof(Flagged), &LyrClass::metaClass(), nullptr, MODULE, 0,
                                       NAMED, 2, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

    std::vector<std::pair<unsigned int, unsigned int>> will;
    std::vector<unsigned int> have;

protected:
    void flagsWillChange(unsigned int set, unsigned int clear) override { will.emplace_back(set, clear); }
    void flagsHaveChanged(unsigned int before) override { have.push_back(before); }
};

class DerivedFlagged : public Flagged {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestDerivedFlagged", sizeof(DerivedFlagged), &Flagged::metaClass(), nullptr,
                                       MODULE, 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

}  // namespace

TEST(LyrClass, starts_without_flags_and_scope) {
    const LyrClass object;
    EXPECT_EQ(object.getFlags(), 0u);
    EXPECT_EQ(object.getProtectedFlags(), 0u);
    EXPECT_EQ(object.getScope(), -1);
    EXPECT_STREQ(object.getMetaClass().getClassName(), "LyrClass");
}

TEST(LyrClass, replaces_its_transient_bits_and_gathers_its_protected_ones) {
    LyrClass object;
    object.setProtectedFlags(0, 0x110100);
    object.setProtectedFlags(16, 0);
    EXPECT_EQ(object.getProtectedFlags(), 0x110110u);
    object.setProtectedFlags(0, 0);
    EXPECT_EQ(object.getProtectedFlags(), 0x110100u);
    object.setProtectedFlags(1, 0x2);
    EXPECT_EQ(object.getProtectedFlags(), 0x110103u);
    EXPECT_EQ(object.getFlags(), 0u);
}

TEST(LyrClass, sets_flags_then_clears_flags) {
    LyrClass object;
    object.setFlags(0x30000000, 0);
    EXPECT_EQ(object.getFlags(), 0x30000000u);
    object.setFlags(0x1, 0x10000000);
    EXPECT_EQ(object.getFlags(), 0x20000001u);
    object.setFlags(0x2, 0x2);
    EXPECT_EQ(object.getFlags(), 0x20000001u);
    EXPECT_EQ(object.getFlags(0x30000000), 0x20000000u);
}

TEST(LyrClass, calls_its_flag_hooks_with_what_really_changes) {
    Flagged object;
    object.setFlags(0x3, 0);
    object.setFlags(0x6, 0x1);
    object.setFlags(0x2, 0x8);  // no change
    EXPECT_EQ(object.will, (std::vector<std::pair<unsigned int, unsigned int>>{{0x3, 0}, {0x4, 0x1}}));
    EXPECT_EQ(object.have, (std::vector<unsigned int>{0, 0x3}));
}

TEST(LyrClass, knows_the_flags_that_the_host_names) {
    LyrClass object;
    EXPECT_TRUE(object.setFlag("CompatibilitySave", true));
    EXPECT_EQ(object.getFlags(), 0x04000000u);
    EXPECT_TRUE(object.setFlag("Preset", true));
    EXPECT_TRUE(object.setFlag("Document", true));
    EXPECT_TRUE(object.setFlag("CompatibilitySave", false));
    EXPECT_EQ(object.getFlags(), 0x30000000u);
    EXPECT_FALSE(object.setFlag("Nobody", true));
    EXPECT_FALSE(object.setFlag(nullptr, true));
    EXPECT_EQ(object.getFlags(), 0x30000000u);
}

TEST(LyrClass, knows_the_flags_that_its_class_and_its_parents_name) {
    DerivedFlagged object;
    EXPECT_TRUE(object.setFlag("Quiet", true));
    EXPECT_EQ(object.getFlags(), 0x6u);
    EXPECT_TRUE(object.setFlag("Loud", true));
    EXPECT_TRUE(object.setFlag("Quiet", false));
    EXPECT_EQ(object.getFlags(), 0x1u);
    LyrClass plain;
    EXPECT_FALSE(plain.setFlag("Loud", true));
}

TEST(LyrClass, passes_flags_and_scope_to_a_copy_but_no_transient_bits) {
    LyrClass object;
    object.setFlags(0x5, 0);
    object.setScope(7);
    object.setProtectedFlags(16, 0x100);
    const LyrClass copied(object);
    EXPECT_EQ(copied.getFlags(), 0x5u);
    EXPECT_EQ(copied.getScope(), 7);
    EXPECT_EQ(copied.getProtectedFlags(), 0x100u);
}

TEST(LyrClass, keeps_its_own_flags_and_scope_when_assigned_to) {
    LyrClass object, other;
    object.setFlags(0x5, 0);
    object.setScope(7);
    other.setFlags(0x2, 0);
    other.setScope(8);
    other = object;
    EXPECT_EQ(other.getFlags(), 0x2u);
    EXPECT_EQ(other.getScope(), 8);
}

TEST(LyrLocalClassFlags, hold_the_bits_of_a_mask_for_a_scope) {
    LyrClass object;
    object.setFlags(0x30000000, 0);
    {
        const LyrLocalClassFlags held(&object, 0x10000000, 0);
        EXPECT_EQ(object.getFlags(), 0x20000000u);
        {
            const LyrLocalClassFlags inner(&object, 0x10000003, 0x1);
            EXPECT_EQ(object.getFlags(), 0x20000001u);
        }
        EXPECT_EQ(object.getFlags(), 0x20000000u);
    }
    EXPECT_EQ(object.getFlags(), 0x30000000u);
}

TEST(LyrLocalClassFlags, restore_only_the_bits_of_their_mask) {
    LyrClass object;
    object.setFlags(0x8, 0);
    {
        const LyrLocalClassFlags held(&object, 0x3, 0xFF);
        EXPECT_EQ(object.getFlags(), 0xBu);
        object.setFlags(0x40, 0x8);
        object.setFlags(0, 0x1);
    }
    EXPECT_EQ(object.getFlags(), 0x40u);
}

TEST(LyrLocalClassFlags, do_nothing_to_no_object) {
    const LyrLocalClassFlags held(nullptr, 0x10000000, 0);
    SUCCEED();
}

TEST(LyrClassMember, is_created_and_deleted_on_the_heap) {
    auto* member = new LyrClassMember;
    ASSERT_NE(member, nullptr);
    member->setFlags(1, 0);
    delete member;
}

TEST(LyrPrivatePart, is_zero_or_more_bytes_from_the_host) {
    struct Part : LyrPrivatePart {
        int numbers[100] = {};
    };
    const std::unique_ptr<Part> part(new Part);
    ASSERT_TRUE(part);
    EXPECT_EQ(part->numbers[99], 0);
}
