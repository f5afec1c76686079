#include "TestObjects.h"

#include <lyr_core/LyrWholeWrite.h>

#include <gtest/gtest.h>

using namespace core_test;

namespace {

/** Writes a number, a list and the owned objects of a node. */
bool change(Node& node, LyrObject* child) {
    return node.weight.setValue(2.0f) && setList(node.numbers, {4.0f, 5.0f}) && setList(node.children, {child});
}

bool addAll(LyrWholeWrite& whole, Node& node) {
    return whole.add(&node.weight) && whole.add(&node.numbers) && whole.add(&node.children);
}

struct Content {
    Content() {
        node->weight.setValue(1.0f);
        setList(node->numbers, {1.0f, 2.0f, 3.0f});
        setList(node->children, {child});
    }
    void expectAsBefore() const {
        EXPECT_EQ(node->weight.stored(), 1.0f);
        EXPECT_EQ(itemsOf(node->numbers), (std::vector{1.0f, 2.0f, 3.0f}));
        EXPECT_EQ(targetsOf(node->children), std::vector<LyrObject*>{child});
        EXPECT_EQ(child->getParentLink().getOwner(), node.get());
    }
    void expectChanged(const LyrObject* fresh) const {
        EXPECT_EQ(node->weight.stored(), 2.0f);
        EXPECT_EQ(itemsOf(node->numbers), (std::vector{4.0f, 5.0f}));
        EXPECT_EQ(targetsOf(node->children).front(), fresh);
    }
    Held<> node;
    Node* child = new Node;
};

}  // namespace

TEST(LyrWholeWrite, writes_that_are_kept_stay) {
    const Content content;
    const Held<> fresh;
    {
        LyrWholeWrite whole;
        ASSERT_TRUE(addAll(whole, *content.node));
        ASSERT_TRUE(change(*content.node, fresh.get()));
        whole.keep();
    }
    content.expectChanged(fresh.get());
}

TEST(LyrWholeWrite, what_is_kept_is_kept_once_and_takes_no_further_properties) {
    const Content content;
    const Held<> fresh;
    Steps steps;
    Action action;
    {
        LyrWholeWrite whole;
        ASSERT_TRUE(addAll(whole, *content.node));
        ASSERT_TRUE(change(*content.node, fresh.get()));
        whole.keep();
        whole.keep();  // ends no action that is not its own
        EXPECT_FALSE(whole.add(&content.node->weight));
    }
    content.expectChanged(fresh.get());
    action.end();
    EXPECT_EQ(steps.size(), 1u);
}

TEST(LyrWholeWrite, writes_that_are_not_kept_are_taken_back_with_the_same_objects) {
    const Content content;
    const Held<> fresh;
    {
        LyrWholeWrite whole;
        ASSERT_TRUE(addAll(whole, *content.node));
        ASSERT_TRUE(change(*content.node, fresh.get()));
    }
    content.expectAsBefore();
}

TEST(LyrWholeWrite, properties_that_it_was_not_given_stay_as_they_were_written) {
    const Content content;
    {
        LyrWholeWrite whole;
        ASSERT_TRUE(whole.add(&content.node->numbers));
        content.node->weight.setValue(7.0f);
        setList(content.node->numbers, {});
    }
    EXPECT_EQ(content.node->weight.stored(), 7.0f);
    EXPECT_EQ(itemsOf(content.node->numbers).size(), 3u);
}

TEST(LyrWholeWrite, inside_an_action_nothing_is_left_in_the_step_of_what_was_taken_back) {
    const Content content;
    const Held<> fresh;
    Steps steps;
    Action action;
    content.node->onOff.setValue(1);
    {
        LyrWholeWrite whole;
        ASSERT_TRUE(addAll(whole, *content.node));
        ASSERT_TRUE(change(*content.node, fresh.get()));
    }
    content.expectAsBefore();
    action.end();
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].getEntryCount(), 1u);
}

TEST(LyrWholeWrite, inside_an_action_writes_that_are_kept_are_parts_of_its_step) {
    const Content content;
    const Held<> fresh;
    Steps steps;
    Action action;
    {
        LyrWholeWrite whole;
        ASSERT_TRUE(addAll(whole, *content.node));
        ASSERT_TRUE(change(*content.node, fresh.get()));
        whole.keep();
    }
    EXPECT_EQ(LyrUndoJournal::instance().getDepth(), 1);
    action.end();
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_TRUE(steps[0].undo());
    content.expectAsBefore();
    EXPECT_TRUE(steps[0].redo());
    content.expectChanged(fresh.get());
}

TEST(LyrWholeWrite, a_property_that_is_not_there_is_refused) {
    LyrWholeWrite whole;
    EXPECT_FALSE(whole.add(nullptr));
}

TEST(LyrWholeWrite, values_that_are_no_content_are_taken_back_inside_an_action_as_well) {
    const Content content;
    content.node->weight.setFlags(0, LyrFlags::DATA);
    Steps steps;
    Action action;
    {
        LyrWholeWrite whole;
        ASSERT_TRUE(whole.add(&content.node->weight));
        content.node->weight.setValue(9.0f);
    }
    EXPECT_EQ(content.node->weight.stored(), 1.0f);
    action.end();
    EXPECT_EQ(steps.size(), 0u);
}
