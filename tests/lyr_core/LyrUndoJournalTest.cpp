#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrObjectIOCPtr.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace core_test;
using Targets = std::vector<LyrObject*>;

namespace {

LyrUndoJournal& journal() {
    return LyrUndoJournal::instance();
}

class LyrUndoJournalTest : public testing::Test {
protected:
    Steps steps;
    Held<> node;
};

}  // namespace

TEST_F(LyrUndoJournalTest, is_closed_at_first) {
    EXPECT_FALSE(journal().isOpen());
    EXPECT_EQ(journal().getDepth(), 0);
    EXPECT_FALSE(journal().isRecording());
    EXPECT_FALSE(journal().isReplaying());
    EXPECT_EQ(journal().getSink(), &steps);
    EXPECT_FALSE(journal().end(0));
    EXPECT_FALSE(journal().abort(0));
    EXPECT_FALSE(journal().addSnapshot(node->weight));
}

TEST_F(LyrUndoJournalTest, makes_one_step_of_one_action) {
    node->weight.setValue(1.0f);
    Action action("change");
    EXPECT_TRUE(journal().isRecording());
    node->weight.setValue(2.0f);
    node->title.setValue("text");
    node->weight.setValue(3.0f);
    EXPECT_EQ(steps.size(), 0u);
    EXPECT_TRUE(action.end());
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].getName(), "change");
    EXPECT_EQ(steps[0].getEntryCount(), 3u);
    EXPECT_FALSE(journal().isOpen());

    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->weight.stored(), 1.0f);
    EXPECT_TRUE(node->title.stored().isNull());
    EXPECT_TRUE(steps[0].redo());
    EXPECT_EQ(node->weight.stored(), 3.0f);
    EXPECT_EQ(node->title.stored(), "text");
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->weight.stored(), 1.0f);
}

TEST_F(LyrUndoJournalTest, leaves_no_step_when_nothing_was_recorded) {
    Action empty;
    EXPECT_TRUE(empty.end());
    Action equal;
    node->weight.setValue(0.0f);
    equal.end();
    Action noContent;
    node->title.setFlags(0, LyrFlags::DOCUMENT);
    node->title.setValue("side note");
    node->setNameTemplate("name");
    noContent.end();
    EXPECT_EQ(steps.size(), 0u);
    EXPECT_EQ(node->title.stored(), "side note");
}

TEST_F(LyrUndoJournalTest, records_nothing_outside_of_actions) {
    node->weight.setValue(1.0f);
    Action action;
    action.end();
    EXPECT_EQ(steps.size(), 0u);
}

TEST_F(LyrUndoJournalTest, records_no_write_that_was_refused) {
    const float* items = nullptr;
    setList(node->numbers, {1.0f});
    Action action;
    items = node->numbers.lockArrayPtr();
    {
        Errors errors;
        EXPECT_FALSE(setList(node->numbers, {2.0f}));
    }
    node->numbers.unlockArrayPtr(items);
    EXPECT_FALSE(node->onOff.setValue(2));
    node->weight.setReadOnly(true);
    EXPECT_FALSE(node->weight.setValue(5.0f));
    action.end();
    EXPECT_EQ(steps.size(), 0u);
}

TEST_F(LyrUndoJournalTest, undoes_writes_in_reverse_order_and_redoes_them_in_order) {
    Action action;
    node->weight.setValue(1.0f);
    node->title.setValue("a");
    setList(node->numbers, {1.0f});
    action.end();
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, node.get());
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(ear.properties(), (std::vector<int>{NUMBERS, TITLE, WEIGHT}));
    ear.heard.clear();
    EXPECT_TRUE(steps[0].redo());
    EXPECT_EQ(ear.properties(), (std::vector<int>{WEIGHT, TITLE, NUMBERS}));
}

TEST_F(LyrUndoJournalTest, stamps_and_tells_an_undo_like_any_write_but_records_nothing) {
    Action action;
    node->weight.setValue(1.0f);
    action.end();
    const auto stamp = node->getModificationTimestamp();
    bool recording = true;
    bool replaying = false;
    Ear ear;
    ear.onMessage = [&](auto&) {
        recording = journal().isRecording();
        replaying = journal().isReplaying();
    };
    const LyrObjectIOCPtr handle(&ear, node.get());
    Action outer;
    EXPECT_TRUE(steps[0].undo());
    outer.end();
    EXPECT_EQ(ear.heard.size(), 1u);
    EXPECT_GT(node->getModificationTimestamp(), stamp);
    EXPECT_FALSE(recording);
    EXPECT_TRUE(replaying);
    EXPECT_FALSE(journal().isReplaying());
    EXPECT_EQ(steps.size(), 1u);
}

TEST_F(LyrUndoJournalTest, makes_nested_actions_parts_of_one_step_with_the_outermost_name) {
    Action outer("outer");
    node->weight.setValue(1.0f);
    Action inner("inner");
    EXPECT_EQ(journal().getDepth(), 2);
    node->weight.setValue(2.0f);
    EXPECT_TRUE(inner.end("inner end"));
    EXPECT_EQ(journal().getDepth(), 1);
    EXPECT_FALSE(inner.end());
    node->weight.setValue(3.0f);
    EXPECT_TRUE(outer.end());
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].getName(), "outer");
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->weight.stored(), 0.0f);
}

TEST_F(LyrUndoJournalTest, takes_the_name_that_the_outermost_end_gives) {
    Action outer("begin");
    node->weight.setValue(1.0f);
    outer.end("end");
    EXPECT_EQ(steps[0].getName(), "end");
    Action unnamed("");
    node->weight.setValue(2.0f);
    unnamed.end();
    EXPECT_TRUE(steps[1].getName().isEmpty());
}

TEST_F(LyrUndoJournalTest, ends_what_is_open_inside_with_an_action) {
    Action outer("outer");
    Action middle("middle");
    Action inner("inner");
    node->weight.setValue(1.0f);
    EXPECT_TRUE(outer.end());
    EXPECT_FALSE(journal().isOpen());
    EXPECT_FALSE(middle.end());
    EXPECT_FALSE(inner.abort());
    EXPECT_EQ(steps.size(), 1u);
}

TEST_F(LyrUndoJournalTest, takes_back_an_aborted_action) {
    node->weight.setValue(1.0f);
    Action action;
    node->weight.setValue(2.0f);
    setList(node->numbers, {1.0f, 2.0f});
    EXPECT_TRUE(action.abort());
    EXPECT_EQ(node->weight.stored(), 1.0f);
    EXPECT_EQ(node->numbers.getArraySize(), 0);
    EXPECT_FALSE(journal().isOpen());
    EXPECT_FALSE(action.abort());
    EXPECT_EQ(steps.size(), 0u);
}

TEST_F(LyrUndoJournalTest, takes_back_an_aborted_part_alone) {
    Action outer;
    node->weight.setValue(1.0f);
    Action inner;
    node->weight.setValue(2.0f);
    node->title.setValue("lost");
    EXPECT_TRUE(inner.abort());
    EXPECT_EQ(node->weight.stored(), 1.0f);
    EXPECT_TRUE(node->title.stored().isNull());
    node->title.setValue("kept");
    EXPECT_TRUE(outer.end());
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].getEntryCount(), 2u);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_TRUE(node->title.stored().isNull());
}

TEST_F(LyrUndoJournalTest, takes_back_ended_parts_with_the_action_around_them) {
    Action outer;
    Action inner;
    node->weight.setValue(2.0f);
    inner.end();
    Action middle;
    Action innermost;
    node->title.setValue("lost");
    EXPECT_TRUE(middle.abort());
    EXPECT_TRUE(node->title.stored().isNull());
    EXPECT_EQ(node->weight.stored(), 2.0f);
    EXPECT_EQ(journal().getDepth(), 1);
    EXPECT_TRUE(outer.abort());
    EXPECT_EQ(node->weight.stored(), 0.0f);
}

TEST_F(LyrUndoJournalTest, leaves_no_step_of_an_action_whose_only_part_was_aborted) {
    Action outer;
    Action inner;
    node->weight.setValue(2.0f);
    inner.abort();
    outer.end();
    EXPECT_EQ(steps.size(), 0u);
}

TEST_F(LyrUndoJournalTest, never_gives_a_token_twice) {
    Action first;
    first.end();
    Action second;
    EXPECT_NE(first.token(), second.token());
    EXPECT_NE(second.token(), 0);
    EXPECT_FALSE(first.end());
    second.end();
}

TEST_F(LyrUndoJournalTest, brings_removed_children_back_as_the_same_objects) {
    bool gone = false;
    auto* child = new Node;
    auto* other = new Node;
    child->onDestroyed = [&] { gone = true; };
    child->weight.setValue(7.0f);
    setList(node->children, {child, other});
    Action action;
    setList(node->children, {other});
    action.end();
    EXPECT_FALSE(gone);
    EXPECT_EQ(child->getParentLink().getOwner(), nullptr);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(targetsOf(node->children), (Targets{child, other}));
    EXPECT_EQ(child->getParentLink().getOwner(), node.get());
    node->heard = 0;
    child->weight.setValue(8.0f);
    EXPECT_EQ(node->heard, 1);
    EXPECT_TRUE(steps[0].redo());
    EXPECT_FALSE(gone);
    steps.steps.clear();
    EXPECT_TRUE(gone);
}

TEST_F(LyrUndoJournalTest, moves_a_child_back_to_its_old_parent_and_forth_again) {
    const Held<> second;
    auto* child = new Node;
    setList(node->children, {child});
    Action action;
    setList(second->children, {child});
    setList(node->children, {});
    action.end();
    EXPECT_EQ(child->getParentLink().getOwner(), second.get());
    for (int round = 0; round < 3; ++round) {
        EXPECT_TRUE(steps[0].undo());
        EXPECT_EQ(targetsOf(node->children), Targets{child});
        EXPECT_EQ(second->children.getArraySize(), 0);
        EXPECT_EQ(child->getParentLink().getOwner(), node.get());
        EXPECT_TRUE(steps[0].redo());
        EXPECT_EQ(targetsOf(second->children), Targets{child});
        EXPECT_EQ(node->children.getArraySize(), 0);
        EXPECT_EQ(child->getParentLink().getOwner(), second.get());
    }
    EXPECT_EQ(child->getRefCount(), 2);  // the list and the step
}

TEST_F(LyrUndoJournalTest, undoes_the_content_of_a_child_and_its_removal_in_one_step) {
    auto* child = new Node;
    setList(node->children, {child});
    Action action;
    child->weight.setValue(5.0f);
    setList(node->children, {});
    action.end();
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(targetsOf(node->children), Targets{child});
    EXPECT_EQ(child->weight.stored(), 0.0f);
}

TEST_F(LyrUndoJournalTest, undoes_links_of_every_kind) {
    auto* a = new Node;
    const Held<> neighbour;
    Action action;
    node->owned.setValue(linkTo(a));
    node->parented.setValue(linkTo(a));
    node->softFriend.setValue(linkTo(neighbour.get()));
    setList(node->shared, {a});
    setList(node->friends, {neighbour.get(), a});
    node->onOff.setValue(1);
    action.end();
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->owned.getTarget(), nullptr);
    EXPECT_EQ(node->parented.getTarget(), nullptr);
    EXPECT_EQ(node->softFriend.getTarget(), nullptr);
    EXPECT_EQ(node->shared.getArraySize(), 0);
    EXPECT_EQ(node->friends.getArraySize(), 0);
    EXPECT_EQ(node->onOff.stored(), 0);
    EXPECT_TRUE(steps[0].redo());
    EXPECT_EQ(node->owned.getTarget(), a);
    EXPECT_EQ(targetsOf(node->friends), (Targets{neighbour.get(), a}));
}

TEST_F(LyrUndoJournalTest, records_nothing_of_the_making_of_objects) {
    node->weight.setValue(4.0f);
    setList(node->children, {new Node});
    Action action;
    const Held<> made;
    EXPECT_TRUE(Node::metaClass().copy(made.get(), node.get()));
    action.end();
    ASSERT_EQ(steps.size(), 1u);
    // The copy's own two values; its child was filled before anybody held it.
    EXPECT_EQ(steps[0].getEntryCount(), 2u);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(made->weight.stored(), 0.0f);
    EXPECT_EQ(made->children.getArraySize(), 0);
}

TEST_F(LyrUndoJournalTest, does_not_touch_objects_that_nobody_holds) {
    Node onTheStack;
    Action action;
    onTheStack.weight.setValue(1.0f);
    EXPECT_FALSE(journal().addSnapshot(onTheStack.weight));
    action.end();
    EXPECT_EQ(steps.size(), 0u);
}

TEST_F(LyrUndoJournalTest, keeps_content_out_while_its_flag_is_held_cleared) {
    Action action;
    {
        const LyrLocalClassFlags filling(node.get(), LyrFlags::DOCUMENT, 0);
        node->weight.setValue(1.0f);
    }
    action.end();
    EXPECT_EQ(steps.size(), 0u);
}

TEST_F(LyrUndoJournalTest, keeps_the_changed_objects_of_a_step_alive) {
    bool gone = false;
    node->onDestroyed = [&] { gone = true; };
    Action action;
    node->weight.setValue(1.0f);
    action.end();
    node.drop();
    EXPECT_FALSE(gone);
    EXPECT_TRUE(steps[0].undo());
    steps.steps.clear();
    EXPECT_TRUE(gone);
}

TEST_F(LyrUndoJournalTest, knows_whose_objects_a_step_keeps) {
    const Held<LyrObject> host;
    Single<float> weight;
    LyrObjectHardLinkOP link;
    for (LyrProperty* property : {static_cast<LyrProperty*>(&weight), static_cast<LyrProperty*>(&link)}) {
        host->addProperty(property == &link ? OWNED : WEIGHT, property);
        property->setFlags(LyrFlags::DATA, 0);
    }
    host->setFlags(LyrFlags::DATA, 0);
    Action plain;
    weight.setValue(1.0f);
    plain.end();
    EXPECT_TRUE(steps[0].holdsObjectsOf("lyr_core"));
    EXPECT_FALSE(steps[0].holdsObjectsOf(MODULE));
    EXPECT_FALSE(steps[0].holdsObjectsOf(nullptr));

    link.setValue(linkTo(new Node));
    Action linked;
    link.setValue(LyrObjectLink());
    linked.end();
    EXPECT_TRUE(steps[1].holdsObjectsOf(MODULE));  // in the old value

    Action own;
    node->weight.setValue(1.0f);
    own.end();
    EXPECT_TRUE(steps[2].holdsObjectsOf(MODULE));
    steps.steps.clear();
    host->removeProperty(WEIGHT);
    host->removeProperty(OWNED);
}

TEST_F(LyrUndoJournalTest, compares_what_two_steps_touch) {
    const auto step = [&](const std::function<void()>& writes) {
        Action action;
        writes();
        action.end();
        return steps.size() - 1;
    };
    const Held<> other;
    const auto a = step([&] { node->weight.setValue(1.0f); });
    const auto b = step([&] {
        node->weight.setValue(2.0f);
        node->weight.setValue(3.0f);
    });
    const auto c = step([&] {
        node->weight.setValue(4.0f);
        node->title.setValue("c");
    });
    const auto d = step([&] { other->weight.setValue(1.0f); });
    const auto e = step([&] { node->title.setValue("e"); });
    EXPECT_TRUE(steps[a].overlaps(steps[b]));
    EXPECT_TRUE(steps[b].overlaps(steps[a]));
    EXPECT_TRUE(steps[a].overlaps(steps[c]));
    EXPECT_TRUE(steps[c].overlaps(steps[a]));
    EXPECT_FALSE(steps[a].overlaps(steps[d])) << "another object";
    EXPECT_FALSE(steps[a].overlaps(steps[e])) << "another property";
}

TEST_F(LyrUndoJournalTest, merges_a_later_step_into_an_earlier_one) {
    for (int i = 1; i <= 3; ++i) {
        Action action;
        node->weight.setValue(float(i));
        node->title.setValue(std::to_string(i).c_str());
        action.end();
    }
    EXPECT_TRUE(steps[0].absorb(steps[1]));
    EXPECT_TRUE(steps[0].absorb(steps[2]));
    EXPECT_TRUE(steps[1].isEmpty());
    EXPECT_EQ(steps[0].getEntryCount(), 2u);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_TRUE(node->title.stored().isNull());
    EXPECT_TRUE(steps[0].redo());
    EXPECT_EQ(node->weight.stored(), 3.0f);
    EXPECT_EQ(node->title.stored(), "3");
}

TEST_F(LyrUndoJournalTest, a_merged_step_keeps_what_only_the_later_one_changed) {
    {
        Action action;
        node->weight.setValue(1.0f);
        action.end();
    }
    {
        Action action;
        node->title.setValue("later");
        node->weight.setValue(2.0f);
        action.end();
    }
    EXPECT_TRUE(steps[0].absorb(steps[1]));
    EXPECT_EQ(steps[0].getEntryCount(), 2u);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_TRUE(node->title.stored().isNull());
    EXPECT_TRUE(steps[0].redo());
    EXPECT_EQ(node->weight.stored(), 2.0f);
    EXPECT_EQ(node->title.stored(), "later");
}

TEST_F(LyrUndoJournalTest, adds_a_snapshot_of_a_side_note_to_the_open_action) {
    node->title.setFlags(0, LyrFlags::DATA);
    node->title.setValue("before");
    Action action;
    EXPECT_TRUE(journal().addSnapshot(node->title));
    node->title.setValue("after");
    action.end();
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->title.stored(), "before");
    EXPECT_TRUE(steps[0].redo());
    EXPECT_EQ(node->title.stored(), "after");
    Single<float> loose;
    Action another;
    EXPECT_FALSE(journal().addSnapshot(loose));
    another.end();
}

TEST_F(LyrUndoJournalTest, adds_no_snapshot_of_an_object_that_nobody_holds_or_that_is_dying) {
    Node loose;
    bool added = true;
    bool addedUnknown = true;
    Action action;
    EXPECT_FALSE(journal().addSnapshot(loose.weight));
    EXPECT_FALSE(journal().addSnapshotOfUnknownData(loose));
    {
        const Held<> dying;
        dying->onDestroyed = [&, object = dying.get()] {
            added = journal().addSnapshot(object->weight);
            addedUnknown = journal().addSnapshotOfUnknownData(*object);
        };
    }
    EXPECT_FALSE(added);
    EXPECT_FALSE(addedUnknown);
    action.end();
    EXPECT_EQ(steps.size(), 0u);
    EXPECT_FALSE(journal().addSnapshotOfUnknownData(*node)) << "no action is open";
}

TEST_F(LyrUndoJournalTest, brings_back_what_a_file_held_beside_the_properties) {
    LyrObjectPtr object;
    LyrObjectFile::Report report;
    Node::metaClass();
    const std::string text =
        R"({"format": "lyr-object", "version": 1, "class": "TestNode", "later": 5, "properties": {}})";
    ASSERT_TRUE(LyrObjectFile::read(text, object, report)) << report.message.utf8();
    const auto holdsLater = [&] {
        std::string written;
        EXPECT_TRUE(LyrObjectFile::write(*object, written, nullptr));
        return written.find("\"later\": 5") != std::string::npos;
    };
    EXPECT_TRUE(holdsLater());
    Action action;
    EXPECT_TRUE(journal().addSnapshotOfUnknownData(*object));
    object->setUnknownData(nullptr);
    action.end();
    EXPECT_FALSE(holdsLater());
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_TRUE(steps[0].holdsObjectsOf(MODULE));
    EXPECT_FALSE(steps[0].holdsObjectsOf("another"));
    EXPECT_TRUE(steps[0].undo());
    EXPECT_TRUE(holdsLater());
    EXPECT_TRUE(steps[0].redo());
    EXPECT_FALSE(holdsLater());
}

TEST_F(LyrUndoJournalTest, records_no_write_inside_which_the_action_ends) {
    class Ending : public Single<float> {
    public:
        bool end(Action& action) {
            return write([&] { return action.end(); });
        }
    } property;
    node->addProperty(9500, &property);
    property.setFlags(LyrFlags::DATA, 0);
    Action action;
    node->weight.setValue(1.0f);
    EXPECT_TRUE(property.end(action));
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].getEntryCount(), 1u);
    EXPECT_FALSE(journal().isOpen());
    node->removeProperty(9500);
}
