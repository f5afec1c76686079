#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectLink.h>

#include <gtest/gtest.h>

using namespace core_test;

TEST(LyrObjectLink, is_null_at_first) {
    const LyrObjectLink link;
    EXPECT_TRUE(link.isNull());
    EXPECT_EQ(link.getLink(), nullptr);
    EXPECT_EQ(link.getOwner(), nullptr);
    EXPECT_EQ(link.getLinkID(), -1);
    EXPECT_FALSE(link.linkIsOfType("LyrObject"));
}

TEST(LyrObjectLink, names_a_target_as_seen_from_an_owner) {
    Node target, owner;
    const LyrObjectLink link(&target, &owner, CHILDREN);
    EXPECT_EQ(link.getLink(), &target);
    EXPECT_EQ(link.getOwner(), &owner);
    EXPECT_EQ(link.getLinkID(), CHILDREN);
    EXPECT_FALSE(link.isNull());
    EXPECT_EQ(target.getRefCount(), 0);
}

TEST(LyrObjectLink, knows_the_class_of_its_target) {
    SpecialNode target;
    const LyrObjectLink link = linkTo(&target);
    EXPECT_TRUE(link.linkIsOfType("TestSpecialNode"));
    EXPECT_TRUE(link.linkIsOfType("TestNode"));
    EXPECT_TRUE(link.linkIsOfType("LyrObject"));
    EXPECT_FALSE(link.linkIsOfType("TestNobody"));
    EXPECT_FALSE(link.linkIsOfType(nullptr));
}

TEST(LyrObjectLink, equals_every_link_to_the_same_target) {
    Node one, other;
    EXPECT_TRUE(LyrObjectLink(&one, nullptr, -1) == LyrObjectLink(&one, &other, OWNED));
    EXPECT_FALSE(linkTo(&one) == linkTo(&other));
    EXPECT_TRUE(LyrObjectLink() == linkTo(nullptr));
}
