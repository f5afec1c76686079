#include "lyr_core/TestObjects.h"

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

class LyrUndoJournalListenerTest : public testing::Test {
protected:
    Steps steps;
    Held<> node;
};

}  // namespace
TEST_F(LyrUndoJournalListenerTest, undoes_nothing_when_one_write_cannot_be_undone) {
    setList(node->numbers, {1.0f});
    Action action;
    node->weight.setValue(1.0f);
    setList(node->numbers, {2.0f});
    node->title.setValue("text");
    action.end();
    const float* items = node->numbers.lockArrayPtr();
    {
        Errors errors;
        EXPECT_FALSE(steps[0].undo());
        EXPECT_EQ(errors.codes, std::vector<int>{Lyr::Locked});
    }
    EXPECT_EQ(node->weight.stored(), 1.0f);
    EXPECT_EQ(node->title.stored(), "text");
    node->numbers.unlockArrayPtr(items);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_EQ(itemsOf(node->numbers), std::vector{1.0f});

    items = node->numbers.lockArrayPtr();
    {
        Errors errors;
        EXPECT_FALSE(steps[0].redo());
    }
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_TRUE(node->title.stored().isNull());
    node->numbers.unlockArrayPtr(items);
    EXPECT_TRUE(steps[0].redo());
    EXPECT_EQ(node->title.stored(), "text");
}

TEST_F(LyrUndoJournalListenerTest, keeps_recorded_what_an_abort_could_not_take_back) {
    setList(node->numbers, {1.0f});
    Action action("stuck");
    node->weight.setValue(1.0f);
    setList(node->numbers, {2.0f});
    node->title.setValue("text");
    const float* items = node->numbers.lockArrayPtr();
    {
        Errors errors;
        EXPECT_FALSE(action.abort());
    }
    node->numbers.unlockArrayPtr(items);
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_TRUE(node->title.stored().isNull());
    EXPECT_EQ(itemsOf(node->numbers), std::vector{2.0f});
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].getName(), "stuck");
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(itemsOf(node->numbers), std::vector{1.0f});
}

TEST_F(LyrUndoJournalListenerTest, keeps_in_the_outer_action_what_an_aborted_part_could_not_take_back) {
    setList(node->numbers, {1.0f});
    Action outer;
    node->weight.setValue(1.0f);
    Action inner;
    setList(node->numbers, {2.0f});
    node->weight.setValue(2.0f);
    const float* items = node->numbers.lockArrayPtr();
    {
        Errors errors;
        EXPECT_FALSE(inner.abort());
    }
    node->numbers.unlockArrayPtr(items);
    EXPECT_EQ(node->weight.stored(), 1.0f);
    outer.end();
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].getEntryCount(), 2u);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(itemsOf(node->numbers), std::vector{1.0f});
    EXPECT_EQ(node->weight.stored(), 0.0f);
}

TEST_F(LyrUndoJournalListenerTest, passes_over_a_property_that_its_object_has_lost) {
    auto weight = std::make_unique<Single<float>>();
    node->addProperty(8001, weight.get());
    weight->setFlags(LyrFlags::DATA, 0);
    Action action;
    weight->setValue(1.0f);
    node->weight.setValue(1.0f);
    action.end();
    weight.reset();
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_TRUE(steps[0].redo());
    EXPECT_EQ(node->weight.stored(), 1.0f);
}

TEST_F(LyrUndoJournalListenerTest, lets_listeners_open_and_end_actions_while_values_come_back) {
    Action outer;
    Action inner;
    node->weight.setValue(1.0f);
    node->title.setValue("text");
    Ear ear;
    const Held<> other;
    ear.onMessage = [&](auto&) {
        Action own;
        other->weight.setValue(other->weight.stored() + 1.0f);
        own.end();
    };
    const LyrObjectIOCPtr handle(&ear, node.get());
    EXPECT_TRUE(inner.abort());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_EQ(other->weight.stored(), 2.0f);
    EXPECT_EQ(journal().getDepth(), 1);
    node->weight.setValue(5.0f);
    EXPECT_TRUE(outer.abort());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_EQ(journal().getDepth(), 0);
}

TEST_F(LyrUndoJournalListenerTest, survives_a_listener_that_ends_the_outermost_action_while_values_come_back) {
    Action outer;
    node->onOff.setValue(1);
    Action inner;
    node->weight.setValue(1.0f);
    node->title.setValue("text");
    Ear ear;
    ear.onMessage = [&](auto&) {
        ear.onMessage = nullptr;
        outer.end();
    };
    const LyrObjectIOCPtr handle(&ear, node.get());
    inner.abort();
    EXPECT_FALSE(journal().isOpen());
    ASSERT_EQ(steps.size(), 1u);
    // The title was taken back already; the step holds what still stands.
    EXPECT_TRUE(node->title.stored().isNull());
    EXPECT_EQ(node->weight.stored(), 1.0f);
    EXPECT_EQ(steps[0].getEntryCount(), 2u);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_EQ(node->onOff.stored(), 0);
}

TEST_F(LyrUndoJournalListenerTest, survives_a_listener_that_aborts_the_outermost_action_while_values_come_back) {
    Action outer;
    node->onOff.setValue(1);
    Action inner;
    node->weight.setValue(1.0f);
    node->title.setValue("text");
    Ear ear;
    ear.onMessage = [&](auto&) {
        ear.onMessage = nullptr;
        outer.abort();
    };
    const LyrObjectIOCPtr handle(&ear, node.get());
    inner.abort();
    EXPECT_FALSE(journal().isOpen());
    EXPECT_EQ(steps.size(), 0u);
    EXPECT_TRUE(node->title.stored().isNull());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_EQ(node->onOff.stored(), 0);
}

TEST_F(LyrUndoJournalListenerTest, survives_a_listener_that_takes_back_more_than_is_being_taken_back) {
    Action outer;
    node->onOff.setValue(1);
    Action middle;
    node->weight.setValue(1.0f);
    Action inner;
    node->weight.setValue(2.0f);
    node->title.setValue("text");
    Ear ear;
    ear.onMessage = [&](auto&) {
        ear.onMessage = nullptr;
        middle.abort();
    };
    const LyrObjectIOCPtr handle(&ear, node.get());
    inner.abort();
    EXPECT_EQ(journal().getDepth(), 1);
    EXPECT_TRUE(node->title.stored().isNull());
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_EQ(node->onOff.stored(), 1);
    outer.end();
    ASSERT_EQ(steps.size(), 1u);
    EXPECT_EQ(steps[0].getEntryCount(), 1u);
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(node->onOff.stored(), 0);
}

TEST_F(LyrUndoJournalListenerTest, records_what_listeners_write_to_content) {
    Ear ear;
    const Held<> follower;
    ear.onMessage = [&](auto&) { follower->weight.setValue(node->weight.stored() * 2.0f); };
    const LyrObjectIOCPtr handle(&ear, node.get());
    Action action;
    node->weight.setValue(3.0f);
    action.end();
    EXPECT_EQ(steps[0].getEntryCount(), 2u);
    ear.onMessage = nullptr;
    EXPECT_TRUE(steps[0].undo());
    EXPECT_EQ(follower->weight.stored(), 0.0f);
    EXPECT_EQ(node->weight.stored(), 0.0f);
}

TEST_F(LyrUndoJournalListenerTest, drops_a_step_that_nobody_takes) {
    bool gone = false;
    auto* child = new Node;
    child->onDestroyed = [&] { gone = true; };
    setList(node->children, {child});
    journal().setSink(nullptr);
    Action action;
    setList(node->children, {});
    EXPECT_FALSE(gone);
    EXPECT_TRUE(action.end());
    EXPECT_TRUE(gone);
}

TEST_F(LyrUndoJournalListenerTest, takes_the_writes_back_that_a_failing_sink_does_not_take) {
    struct Failing : LyrUndoJournal::Sink {
        bool stepFinished(std::unique_ptr<LyrUndoStep>&) override { throw std::bad_alloc(); }
    } failing;
    journal().setSink(&failing);
    Action action;
    node->weight.setValue(1.0f);
    Errors errors;
    EXPECT_FALSE(action.end());
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::AllocationFailed});
    EXPECT_EQ(node->weight.stored(), 0.0f);
    EXPECT_FALSE(journal().isOpen());
}

TEST_F(LyrUndoJournalListenerTest, leaves_the_writes_of_a_step_that_a_failing_sink_took_or_that_cannot_be_undone) {
    struct Failing : LyrUndoJournal::Sink {
        bool stepFinished(std::unique_ptr<LyrUndoStep>& step) override {
            if (takes) {
                taken = std::move(step);
            }
            throw std::bad_alloc();
        }
        bool takes = true;
        std::unique_ptr<LyrUndoStep> taken;
    } failing;
    journal().setSink(&failing);
    Errors errors;
    Action first;
    node->weight.setValue(1.0f);
    EXPECT_TRUE(first.end());
    EXPECT_EQ(node->weight.stored(), 1.0f);
    failing.takes = false;
    Action second;
    setList(node->numbers, {1.0f});
    const float* items = node->numbers.lockArrayPtr();
    EXPECT_TRUE(second.end());
    EXPECT_EQ(errors.codes, (std::vector<int>{Lyr::AllocationFailed, Lyr::AllocationFailed, Lyr::Locked}));
    node->numbers.unlockArrayPtr(items);
    EXPECT_EQ(itemsOf(node->numbers), std::vector{1.0f});
}

TEST_F(LyrUndoJournalListenerTest, tells_that_a_sink_did_not_keep_a_step) {
    struct Undoing : LyrUndoJournal::Sink {
        bool stepFinished(std::unique_ptr<LyrUndoStep>& step) override { return !step->undo(); }
    } undoing;
    journal().setSink(&undoing);
    Action action;
    node->weight.setValue(1.0f);
    EXPECT_FALSE(action.end());
    EXPECT_EQ(node->weight.stored(), 0.0f);
}
