#pragma once

#include <lyr_core/LyrUndoJournal.h>

#include <QUndoCommand>

#include <memory>

/** A finished step of the journal as an entry of the undo history. */
class LyqUndoCommand : public QUndoCommand {
public:
    /** Takes the step once nothing can fail any more. `gesture` is -1 for a step that never merges. */
    LyqUndoCommand(std::unique_ptr<LyrUndoStep>& step, int gesture)
        : QUndoCommand(QString::fromUtf8(step->getName().utf8())), mStep(std::move(step)), mGesture(gesture) {}

    int id() const override { return mGesture; }

    bool mergeWith(const QUndoCommand* other) override {
        // The stack only hands over commands with this one's gesture, which are of this class.
        auto* later = static_cast<const LyqUndoCommand*>(other);
        return mDone && mStep->overlaps(*later->mStep) && mStep->absorb(*later->mStep);
    }

    void undo() override { mDone = mDone && !mStep->undo(); }

    void redo() override { mDone = mDone || mStep->redo(); }

    /** Takes back the step for good: true if the stack is to forget it with its next undo. */
    bool drop() {
        undo();
        setObsolete(!mDone);
        return !mDone;
    }

    /** True while the step's writes are in effect. What the stack says may differ: it redoes what it is given at once,
     *  although the step has happened already, and it knows of no undo that failed. */
    bool isDone() const noexcept { return mDone; }

    const LyrUndoStep& step() const { return *mStep; }

private:
    std::unique_ptr<LyrUndoStep> mStep;
    int mGesture;
    bool mDone = true;
};
