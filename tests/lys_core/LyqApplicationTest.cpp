#include <lys_core/ContentObject.h>

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrUndoJournal.h>
#include <lys_core/LyqApplication.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace {

/** Hears the messages of an object. */
struct Listener : LyrIOC {
    explicit Listener(LyrObject& sender) { line.connect(&sender, this, LyrIOCConnection::Kind::Handle, -1); }
    bool iocCallback(Message& message) override {
        properties.push_back(message.getPropertyID());
        if (onMessage) {
            onMessage();
        }
        return true;
    }
    LyrIOCConnection line;
    std::vector<int> properties;
    std::function<void()> onMessage;
};

class LyqApplicationTest : public testing::Test {
protected:
    LyqApplicationTest() : object(*ContentObject::make(handle)) { application.undoStack().clear(); }
    ~LyqApplicationTest() override {
        EXPECT_FALSE(LyrUndoJournal::instance().isOpen()) << "a case left an action open";
        application.gestureEnd();
        application.undoStack().clear();
    }

    /** Sets the value in an action of its own. */
    void step(float value, const QString& name = QStringLiteral("Step")) {
        const LyqApplication::UserActionScope scope(name);
        object.value.setValue(value);
    }
    float value() const { return object.value.stored(); }
    float other() const { return object.other.stored(); }
    int count() { return application.undoStack().count(); }

    LyqApplication& application = LyqApplication::instance();
    LyrObjectPtr handle;
    ContentObject& object;
};

}  // namespace

TEST_F(LyqApplicationTest, an_action_is_one_step_that_undo_takes_back_and_redo_brings_again) {
    const auto token = application.userActionBegin(QStringLiteral("Change both"));
    EXPECT_NE(token, 0);
    object.value.setValue(1.0f);
    object.value.setValue(2.0f);
    object.other.setValue(3.0f);
    ASSERT_TRUE(application.userActionEnd(token));
    ASSERT_EQ(count(), 1);
    EXPECT_EQ(application.undoStack().text(0), QStringLiteral("Change both"));
    ASSERT_TRUE(application.undo());
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(other(), 0.0f);
    ASSERT_TRUE(application.redo());
    EXPECT_EQ(value(), 2.0f);
    EXPECT_EQ(other(), 3.0f);
    EXPECT_FALSE(application.redo());
    ASSERT_TRUE(application.undo());
    EXPECT_FALSE(application.undo());
}

TEST_F(LyqApplicationTest, writes_outside_of_an_action_and_to_side_notes_are_not_recorded) {
    object.value.setValue(5.0f);
    EXPECT_EQ(count(), 0);
    {
        const LyqApplication::UserActionScope scope(QStringLiteral("Note"));
        object.note.setValue(7.0f);
    }
    EXPECT_EQ(count(), 0);
    {
        const LyqApplication::UserActionScope scope(QStringLiteral("Both"));
        object.note.setValue(8.0f);
        object.value.setValue(6.0f);
    }
    ASSERT_TRUE(application.undo());
    EXPECT_EQ(value(), 5.0f);
    EXPECT_EQ(object.note.stored(), 8.0f);
}

TEST_F(LyqApplicationTest, nested_actions_are_parts_of_the_outermost_step) {
    const auto outer = application.userActionBegin(QStringLiteral("Outer"));
    object.value.setValue(1.0f);
    const auto inner = application.userActionBegin(QStringLiteral("Inner"));
    object.value.setValue(2.0f);
    EXPECT_TRUE(application.userActionEnd(inner, QStringLiteral("Inner's end")));
    EXPECT_EQ(count(), 0) << "an inner action is no step of its own";
    object.other.setValue(4.0f);
    EXPECT_TRUE(application.userActionEnd(outer));
    ASSERT_EQ(count(), 1);
    EXPECT_EQ(application.undoStack().text(0), QStringLiteral("Outer"));
    application.undo();
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(other(), 0.0f);
}

TEST_F(LyqApplicationTest, an_inner_action_that_is_aborted_takes_back_its_own_writes_alone) {
    const auto outer = application.userActionBegin(QStringLiteral("Outer"));
    object.value.setValue(1.0f);
    const auto inner = application.userActionBegin(QString());
    object.value.setValue(2.0f);
    object.other.setValue(9.0f);
    const auto innermost = application.userActionBegin(QString());
    object.other.setValue(10.0f);
    EXPECT_TRUE(application.userActionEnd(innermost));
    EXPECT_TRUE(application.userActionAborted(inner));
    EXPECT_EQ(value(), 1.0f);
    EXPECT_EQ(other(), 0.0f);
    object.value.setValue(3.0f);
    EXPECT_TRUE(application.userActionEnd(outer));
    application.undo();
    EXPECT_EQ(value(), 0.0f);
    application.redo();
    EXPECT_EQ(value(), 3.0f);
    EXPECT_EQ(other(), 0.0f);
}

TEST_F(LyqApplicationTest, aborting_the_outermost_action_leaves_no_step) {
    const auto outer = application.userActionBegin(QStringLiteral("Outer"));
    object.value.setValue(1.0f);
    const auto inner = application.userActionBegin(QStringLiteral("Inner"));
    object.other.setValue(1.0f);
    EXPECT_TRUE(application.userActionEnd(inner));
    EXPECT_TRUE(application.userActionAborted(outer));
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(other(), 0.0f);
    EXPECT_EQ(count(), 0);
}

TEST_F(LyqApplicationTest, an_outer_action_that_ends_first_ends_those_inside_it) {
    const auto outer = application.userActionBegin(QStringLiteral("Outer"));
    const auto inner = application.userActionBegin(QStringLiteral("Inner"));
    object.value.setValue(1.0f);
    EXPECT_TRUE(application.userActionEnd(outer));
    EXPECT_EQ(count(), 1);
    EXPECT_FALSE(application.userActionEnd(inner));
    EXPECT_FALSE(application.userActionAborted(inner)) << "it is a finished step already";
    EXPECT_EQ(value(), 1.0f);
    application.undo();
    EXPECT_EQ(value(), 0.0f);
}

TEST_F(LyqApplicationTest, an_outer_action_that_is_aborted_first_takes_those_inside_it_along) {
    const auto outer = application.userActionBegin(QStringLiteral("Outer"));
    const auto inner = application.userActionBegin(QStringLiteral("Inner"));
    object.value.setValue(1.0f);
    EXPECT_TRUE(application.userActionAborted(outer));
    EXPECT_FALSE(application.userActionEnd(inner));
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(count(), 0);
}

TEST_F(LyqApplicationTest, a_token_that_names_no_open_action_does_nothing) {
    EXPECT_FALSE(application.userActionEnd(0));
    EXPECT_FALSE(application.userActionAborted(0));
    const auto token = application.userActionBegin(QStringLiteral("Once"));
    EXPECT_FALSE(application.userActionEnd(token + 1));
    object.value.setValue(1.0f);
    EXPECT_TRUE(application.userActionEnd(token));
    EXPECT_FALSE(application.userActionEnd(token));
    EXPECT_FALSE(application.userActionAborted(token));
    EXPECT_EQ(value(), 1.0f);
    EXPECT_EQ(count(), 1);
}

TEST_F(LyqApplicationTest, an_action_that_recorded_nothing_leaves_no_step_and_keeps_the_redo_history) {
    step(1.0f);
    application.undo();
    {
        const LyqApplication::UserActionScope outer(QStringLiteral("Outer"));
        const LyqApplication::UserActionScope inner(QStringLiteral("Inner"));
        object.value.setValue(0.0f);  // what it is already
    }
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(application.undoStack().canRedo());
    ASSERT_TRUE(application.redo());
    EXPECT_EQ(value(), 1.0f);
}

TEST_F(LyqApplicationTest, an_aborted_action_keeps_the_redo_history_and_a_finished_one_ends_it) {
    step(1.0f);
    application.undo();
    {
        LyqApplication::UserActionScope aborted(QStringLiteral("Aborted"));
        object.value.setValue(5.0f);
        aborted.abort();
    }
    EXPECT_TRUE(application.undoStack().canRedo());
    {
        const LyqApplication::UserActionScope outer(QStringLiteral("Outer"));
        LyqApplication::UserActionScope inner(QStringLiteral("Inner"));
        object.value.setValue(5.0f);
        inner.abort();
    }
    EXPECT_TRUE(application.undoStack().canRedo());
    step(2.0f);
    EXPECT_FALSE(application.undoStack().canRedo());
    EXPECT_EQ(count(), 1);
    application.undo();
    EXPECT_EQ(value(), 0.0f);
}

TEST_F(LyqApplicationTest, the_outermost_begin_names_the_step_unless_its_end_gives_a_name) {
    auto token = application.userActionBegin(QStringLiteral("Begun"));
    object.value.setValue(1.0f);
    application.userActionEnd(token, QString());
    token = application.userActionBegin(QStringLiteral("Begun"));
    object.value.setValue(2.0f);
    application.userActionEnd(token, QStringLiteral("Verändert Σ"));
    token = application.userActionBegin(QString());
    object.value.setValue(3.0f);
    application.userActionEnd(token);
    ASSERT_EQ(count(), 3);
    EXPECT_EQ(application.undoStack().text(0), QStringLiteral("Begun"));
    EXPECT_EQ(application.undoStack().text(1), QStringLiteral("Verändert Σ"));
    EXPECT_EQ(application.undoStack().text(2), QString());
}

TEST_F(LyqApplicationTest, steps_of_one_gesture_on_the_same_properties_merge) {
    {
        const LyqApplication::GestureScope drag;
        for (const float place : {1.0f, 2.0f, 3.0f, 4.0f}) {
            step(place, QStringLiteral("Drag"));
        }
    }
    ASSERT_EQ(count(), 1);
    EXPECT_EQ(application.undoStack().text(0), QStringLiteral("Drag"));
    ASSERT_TRUE(application.undo());
    EXPECT_EQ(value(), 0.0f);
    ASSERT_TRUE(application.redo());
    EXPECT_EQ(value(), 4.0f);
    ASSERT_TRUE(application.undo());
    EXPECT_EQ(value(), 0.0f);
}

TEST_F(LyqApplicationTest, steps_of_one_gesture_on_other_properties_or_objects_stay_apart) {
    LyrObjectPtr secondHandle;
    ContentObject& second = *ContentObject::make(secondHandle);
    const LyqApplication::GestureScope drag;
    step(1.0f);
    {
        const LyqApplication::UserActionScope scope(QStringLiteral("Other property"));
        object.other.setValue(1.0f);
    }
    EXPECT_EQ(count(), 2);
    {
        const LyqApplication::UserActionScope scope(QStringLiteral("Other object"));
        second.value.setValue(4.0f);
    }
    EXPECT_EQ(count(), 3);
    while (application.undo()) {
    }
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(other(), 0.0f);
    EXPECT_EQ(second.value.stored(), 0.0f);
}

TEST_F(LyqApplicationTest, steps_of_one_gesture_that_share_a_property_merge_into_one_for_all_properties) {
    const LyqApplication::GestureScope drag;
    step(1.0f);
    {
        const LyqApplication::UserActionScope scope(QStringLiteral("More"));
        object.other.setValue(2.0f);
        object.value.setValue(2.0f);
    }
    {
        const LyqApplication::UserActionScope scope(QStringLiteral("Less"));
        object.other.setValue(3.0f);
    }
    EXPECT_EQ(count(), 1);
    ASSERT_TRUE(application.undo());
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(other(), 0.0f);
    ASSERT_TRUE(application.redo());
    EXPECT_EQ(value(), 2.0f);
    EXPECT_EQ(other(), 3.0f);
}

TEST_F(LyqApplicationTest, a_gesture_that_is_dropped_leaves_no_step_to_undo_or_redo) {
    step(1.0f);
    const int gesture = application.gestureBegin();
    step(2.0f);
    step(3.0f);
    application.gestureEnd();
    EXPECT_FALSE(application.gestureDrop(gesture + 1)) << "not the last step's";
    EXPECT_EQ(value(), 3.0f);
    EXPECT_TRUE(application.gestureDrop(gesture));
    EXPECT_EQ(value(), 1.0f);
    EXPECT_EQ(count(), 1);
    EXPECT_FALSE(application.gestureDrop(gesture)) << "it is gone";
    EXPECT_FALSE(application.redo());
    EXPECT_TRUE(application.undo());
    EXPECT_EQ(value(), 0.0f);
}

TEST_F(LyqApplicationTest, steps_of_two_gestures_or_of_none_stay_apart) {
    step(1.0f);
    step(2.0f);
    EXPECT_EQ(count(), 2);
    application.gestureBegin();
    step(3.0f);
    application.gestureBegin();
    step(4.0f);
    application.gestureEnd();
    step(5.0f);
    EXPECT_EQ(count(), 5);
    application.undo();
    application.undo();
    EXPECT_EQ(value(), 3.0f);
}

TEST_F(LyqApplicationTest, a_step_does_not_merge_into_the_one_that_was_saved) {
    const LyqApplication::GestureScope drag;
    step(1.0f);
    application.undoStack().setClean();
    step(2.0f);
    ASSERT_EQ(count(), 2);
    EXPECT_FALSE(application.undoStack().isClean());
    application.undo();
    EXPECT_TRUE(application.undoStack().isClean());
    EXPECT_EQ(value(), 1.0f);
}

TEST_F(LyqApplicationTest, a_gesture_keeps_nothing_of_the_values_in_between) {
    const auto linkTo = [&](LyrObject* target) {
        const LyqApplication::UserActionScope scope(QStringLiteral("Drag"));
        object.link.setValue(LyrObjectLink(target, nullptr, -1));
    };
    const auto living = [] { return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("LyrObject")); };
    const LyrObjectPtr first(new LyrObject);
    linkTo(first.get());
    const auto before = living();
    {
        const LyqApplication::GestureScope drag;
        for (int i = 0; i < 20; ++i) {
            const LyrObjectPtr passing(new LyrObject);
            linkTo(passing.get());
        }
    }
    EXPECT_EQ(living(), before + 1);
    const LyrObject* last = object.link.getTarget();
    application.undo();
    EXPECT_EQ(object.link.getTarget(), first.get());
    application.redo();
    EXPECT_EQ(object.link.getTarget(), last);
}

TEST_F(LyqApplicationTest, undo_and_redo_are_refused_while_an_action_is_open) {
    step(1.0f);
    step(2.0f);
    application.undo();
    {
        const LyqApplication::UserActionScope open(QStringLiteral("Open"));
        EXPECT_FALSE(application.undo());
        EXPECT_FALSE(application.redo());
        EXPECT_EQ(value(), 1.0f);
    }
    EXPECT_TRUE(application.redo());
    EXPECT_EQ(value(), 2.0f);
}

TEST_F(LyqApplicationTest, undo_is_refused_from_within_an_undo) {
    step(1.0f);
    step(2.0f);
    Listener listener(object);
    bool nested = true;
    listener.onMessage = [&] { nested = application.undo(); };
    EXPECT_TRUE(application.undo());
    EXPECT_FALSE(nested);
    EXPECT_EQ(value(), 1.0f);
    EXPECT_EQ(application.undoStack().index(), 1);
}

TEST_F(LyqApplicationTest, undo_sends_messages_and_stamps_like_any_write) {
    step(1.0f);
    Listener listener(object);
    const LyrTimestamp before = LyrTimestamp::getCurrentTimestamp();
    application.undo();
    EXPECT_EQ(listener.properties, std::vector<int>{ContentObject::VALUE});
    const LyrTimestamp undone = object.getModificationTimestamp();
    EXPECT_GT(undone, before);
    application.redo();
    EXPECT_EQ(listener.properties, (std::vector<int>{ContentObject::VALUE, ContentObject::VALUE}));
    EXPECT_GT(object.getModificationTimestamp(), undone);
}

TEST_F(LyqApplicationTest, an_abort_sends_messages_and_stamps_like_any_write) {
    const auto token = application.userActionBegin(QString());
    object.value.setValue(1.0f);
    Listener listener(object);
    const LyrTimestamp before = object.getModificationTimestamp();
    application.userActionAborted(token);
    EXPECT_EQ(listener.properties, std::vector<int>{ContentObject::VALUE});
    EXPECT_GT(object.getModificationTimestamp(), before);
}

TEST_F(LyqApplicationTest, writes_and_actions_of_listeners_during_an_undo_leave_no_step) {
    step(1.0f);
    Listener listener(object);
    listener.onMessage = [&] {
        listener.onMessage = nullptr;
        const LyqApplication::UserActionScope scope(QStringLiteral("Answer"));
        object.other.setValue(other() + 1.0f);
    };
    EXPECT_TRUE(application.undo());
    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(application.undoStack().canRedo());
}

TEST_F(LyqApplicationTest, writes_that_listeners_answer_with_belong_to_the_action) {
    Listener listener(object);
    listener.onMessage = [&] {
        listener.onMessage = nullptr;
        object.other.setValue(8.0f);
    };
    step(1.0f);
    EXPECT_EQ(count(), 1);
    application.undo();
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(other(), 0.0f);
}

TEST_F(LyqApplicationTest, a_step_that_cannot_be_undone_whole_is_not_undone_at_all) {
    const float items[] = {1.0f, 2.0f};
    {
        const LyqApplication::UserActionScope scope(QStringLiteral("Three writes"));
        object.other.setValue(1.0f);
        object.list.initArray(0, 1, items);
        object.value.setValue(1.0f);
    }
    struct Quiet : LyrError::Listener {
        bool errorEmitted(const LyrError::Message&) override { return true; }
    } quiet;
    const float* reading = object.list.lockArrayPtr();
    EXPECT_FALSE(application.undo());
    EXPECT_EQ(value(), 1.0f);
    EXPECT_EQ(other(), 1.0f);
    EXPECT_TRUE(application.undoStack().canUndo());
    object.list.unlockArrayPtr(reading);
    EXPECT_TRUE(application.undo());
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(object.list.view().size(), 0u);
    EXPECT_TRUE(application.redo());
    EXPECT_EQ(object.list.view().size(), 2u);
    object.list.setReadOnly(true);
    EXPECT_FALSE(application.undo());
    EXPECT_EQ(other(), 1.0f);
    object.list.setReadOnly(false);
    EXPECT_TRUE(application.undo());
    object.list.setReadOnly(true);
    EXPECT_FALSE(application.redo());
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(other(), 0.0f);
    object.list.setReadOnly(false);
    EXPECT_TRUE(application.redo());
    EXPECT_EQ(value(), 1.0f);
}

TEST_F(LyqApplicationTest, what_an_abort_cannot_take_back_stays_a_step) {
    const float item = 1.0f;
    const auto token = application.userActionBegin(QStringLiteral("Held"));
    object.value.setValue(1.0f);
    object.list.initArray(0, 0, &item);
    object.list.setReadOnly(true);
    EXPECT_FALSE(application.userActionAborted(token));
    object.list.setReadOnly(false);
    EXPECT_EQ(value(), 0.0f);
    EXPECT_EQ(object.list.view().size(), 1u);
    ASSERT_EQ(count(), 1);
    EXPECT_TRUE(application.undo());
    EXPECT_EQ(object.list.view().size(), 0u);
}

TEST_F(LyqApplicationTest, a_property_that_is_gone_does_not_stand_in_the_way_of_undo) {
    step(1.0f);
    {
        const LyqApplication::UserActionScope scope(QStringLiteral("Both"));
        object.other.setValue(2.0f);
        object.value.setValue(2.0f);
    }
    object.removeProperty(ContentObject::OTHER);
    EXPECT_TRUE(application.undo());
    EXPECT_EQ(value(), 1.0f);
    EXPECT_TRUE(application.undo());
    EXPECT_EQ(value(), 0.0f);
}

TEST_F(LyqApplicationTest, the_history_keeps_its_objects_alive) {
    {
        LyrObjectPtr temporary;
        ContentObject& passing = *ContentObject::make(temporary);
        const LyqApplication::UserActionScope scope(QStringLiteral("Passing"));
        passing.value.setValue(1.0f);
    }
    EXPECT_TRUE(application.historyHoldsObjectsOf("lyr_core"));
    EXPECT_FALSE(application.historyHoldsObjectsOf("lys_colortable"));
    EXPECT_TRUE(application.undo());
    EXPECT_TRUE(application.historyHoldsObjectsOf("lyr_core"));
    application.undoStack().clear();
    EXPECT_FALSE(application.historyHoldsObjectsOf("lyr_core"));
}

TEST_F(LyqApplicationTest, a_snapshot_makes_a_side_note_part_of_a_step) {
    EXPECT_FALSE(LyrUndoJournal::instance().addSnapshot(object.note)) << "no action is open";
    {
        const LyqApplication::UserActionScope scope(QStringLiteral("Whole object"));
        EXPECT_TRUE(LyrUndoJournal::instance().addSnapshot(object.note));
        object.note.setValue(3.0f);
        object.value.setValue(1.0f);
    }
    application.undo();
    EXPECT_EQ(object.note.stored(), 0.0f);
    application.redo();
    EXPECT_EQ(object.note.stored(), 3.0f);
}

TEST_F(LyqApplicationTest, a_scope_that_was_aborted_ends_nothing_else) {
    const LyqApplication::UserActionScope outer(QStringLiteral("Outer"));
    {
        LyqApplication::UserActionScope inner(QStringLiteral("Inner"));
        object.value.setValue(1.0f);
        inner.abort();
        EXPECT_EQ(value(), 0.0f);
    }
    EXPECT_EQ(LyrUndoJournal::instance().getDepth(), 1);
}
