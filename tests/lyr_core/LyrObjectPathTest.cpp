#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectPath.h>

#include <gtest/gtest.h>

using namespace core_test;

TEST(LyrObjectPath, is_empty_at_first) {
    const LyrObjectPath path;
    EXPECT_EQ(path.getLinkCount(), 0);
    EXPECT_TRUE(path.getLink(0).isNull());
    EXPECT_TRUE(path.getLink(-1).isNull());
}

TEST(LyrObjectPath, resolves_links_from_either_end) {
    const Held<> a, b, c;
    LyrObjectPath path;
    EXPECT_TRUE(path.append(linkTo(a.get())));
    EXPECT_TRUE(path.append(LyrObjectLink(b.get(), a.get(), OWNED)));
    EXPECT_TRUE(path.append(LyrObjectLink(c.get(), b.get(), CHILDREN)));
    EXPECT_EQ(path.getLinkCount(), 3);
    EXPECT_EQ(path.getLink(0).getLink(), a.get());
    EXPECT_EQ(path.getLink(1).getOwner(), a.get());
    EXPECT_EQ(path.getLink(2).getLinkID(), CHILDREN);
    EXPECT_EQ(path.getLink(-1).getLink(), c.get());
    EXPECT_EQ(path.getLink(-3).getLink(), a.get());
    EXPECT_TRUE(path.getLink(3).isNull());
    EXPECT_TRUE(path.getLink(-4).isNull());
}

TEST(LyrObjectPath, keeps_its_objects_alive) {
    bool gone = false;
    Held<> node;
    node->onDestroyed = [&] { gone = true; };
    {
        LyrObjectPath path;
        path.append(linkTo(node.get()));
        node.drop();
        EXPECT_FALSE(gone);
        EXPECT_FALSE(path.getLink(0).isNull());
    }
    EXPECT_TRUE(gone);
}

TEST(LyrObjectPath, leads_from_the_topmost_owner_to_an_object) {
    const Held<> top;
    auto* middle = new Node;
    auto* bottom = new Node;
    top->parented.setValue(linkTo(middle));
    setList(middle->children, {bottom});
    const LyrObjectPath path = LyrObjectPath::toRoot(bottom);
    ASSERT_EQ(path.getLinkCount(), 3);
    EXPECT_EQ(path.getLink(0).getLink(), top.get());
    EXPECT_EQ(path.getLink(0).getOwner(), nullptr);
    EXPECT_EQ(path.getLink(1).getLink(), middle);
    EXPECT_EQ(path.getLink(1).getOwner(), top.get());
    EXPECT_EQ(path.getLink(1).getLinkID(), PARENTED);
    EXPECT_EQ(path.getLink(2).getLink(), bottom);
    EXPECT_EQ(path.getLink(2).getOwner(), middle);
    EXPECT_EQ(path.getLink(2).getLinkID(), CHILDREN);
    EXPECT_EQ(LyrObjectPath::toRoot(nullptr).getLinkCount(), 0);
}

TEST(LyrObjectPath, ends_where_a_ring_of_parents_closes) {
    const Held<> first, second;
    first->parented.setValue(linkTo(second.get()));
    second->parented.setValue(linkTo(first.get()));
    const LyrObjectPath path = LyrObjectPath::toRoot(first.get());
    ASSERT_EQ(path.getLinkCount(), 2);
    EXPECT_EQ(path.getLink(0).getLink(), second.get());
    EXPECT_EQ(path.getLink(1).getLink(), first.get());
    first->parented.resetData();
}
