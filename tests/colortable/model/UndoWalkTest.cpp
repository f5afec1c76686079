#include "UndoWalkContent.h"
#include "UndoWalkEdits.h"

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lys_core/LyqApplication.h>

#include <QUndoStack>

#include <gtest/gtest.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace undowalk;

/** The numbers of walks and edits: LYS_UNDO_WALKS and LYS_UNDO_EDITS ask for more than a test run has time for. */
int sizeFromEnvironment(const char* name, int usual) {
    const char* text = std::getenv(name);
    int value = usual;
    if (text) {
        std::from_chars(text, text + std::strlen(text), value);
    }
    return value;
}

/** The refused generators report what is expected here. */
struct SilencedRefusals : LyrError::Listener {
    bool errorEmitted(const LyrError::Message& message) override { return message.getCode() == Lyr::InvalidParameters; }
};

using Content = std::vector<TableContent>;

/** One random walk over two tables. `contents` holds the content after each step of the history, as it was read then.
 */
class Walk {
public:
    explicit Walk(std::uint64_t seed) : mEdits(mTables, seed) {
        mStack.clear();
        for (int i = 0; i < 2; ++i) {
            mTables.emplace_back("LyrColorLookupTable", Lyr::DocumentScope);
        }
        mContents.push_back(read());
    }
    ~Walk() { mStack.clear(); }
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;

    void run(int edits) {
        while (mEditCount < edits && !testing::Test::HasFailure()) {
            const std::size_t kind = mEdits.pick(10);
            if (kind < 4) {
                doAction();
            } else if (kind < 5) {
                doGesture();
            } else if (kind < 8) {
                move(false, 1 + mEdits.pick(4));
            } else {
                move(true, 1 + mEdits.pick(4));
            }
        }
        move(false, mContents.size());
        EXPECT_EQ(mStack.index(), 0);
        move(true, mContents.size());
        EXPECT_EQ(mStack.index(), mStack.count());
    }

    int steps() const { return mStepCount; }
    int merges() const { return mMergeCount; }
    int moves() const { return mMoveCount; }
    int aborts() const { return mAbortCount; }

private:
    Content read() const {
        Content content;
        for (const LyrObjectRefPtr& table : mTables) {
            content.push_back(contentOfTable(table.get(), mNumbers));
        }
        return content;
    }

    std::vector<SideNotes> notes() const { return {sideNotesOf(mTables[0].get()), sideNotesOf(mTables[1].get())}; }

    /** Every section knows the table that it is in. */
    void checkParents() const {
        for (const LyrObjectRefPtr& table : mTables) {
            for (const LyrObjectLink& link : listOf<LyrObjectLink>(table.get(), Lyr::SectionList)) {
                ASSERT_EQ(link.getLink()->getParentLink().getOwner(), table.get());
            }
        }
    }

    /** Edits and inner actions inside the one that is open. */
    void fillAction(int depth) {
        const std::size_t count = mEdits.pick(4);
        for (std::size_t i = 0; i < count; ++i) {
            if (depth < 3 && mEdits.chance(30)) {
                doInnerAction(depth + 1);
            } else {
                mEdits.anyEdit();
                ++mEditCount;
            }
        }
    }

    void doInnerAction(int depth) {
        const Content before = read();
        const auto token = mApplication.userActionBegin(QStringLiteral("Inner"));
        fillAction(depth);
        if (mEdits.chance(40)) {
            const auto side = notes();
            ASSERT_TRUE(mApplication.userActionAborted(token));
            ASSERT_TRUE(read() == before) << "an aborted inner action left something";
            ASSERT_TRUE(notes() == side);
            ++mAbortCount;
        } else {
            ASSERT_TRUE(mApplication.userActionEnd(token));
        }
    }

    void doAction() {
        const bool aborted = mEdits.chance(20);
        const int index = mStack.index();
        const int count = mStack.count();
        const auto token = mApplication.userActionBegin(QStringLiteral("Outer"));
        fillAction(0);
        if (!aborted) {
            ASSERT_TRUE(mApplication.userActionEnd(token));
            noteStep(index, count, false);
            return;
        }
        ASSERT_TRUE(mApplication.userActionAborted(token));
        ASSERT_EQ(mStack.index(), index);
        ASSERT_EQ(mStack.count(), count) << "an aborted action is no step and keeps the redo history";
        ASSERT_TRUE(read() == mContents[static_cast<std::size_t>(index)]) << "an aborted action left something";
        checkParents();
        ++mAbortCount;
    }

    /** A drag of a boundary, with another table's now and then, which starts a step of its own. */
    void doGesture() {
        const LyqApplication::GestureScope gesture;
        LyrObject* table = mEdits.anyTable();
        bool first = true;
        for (std::size_t left = 2 + mEdits.pick(5); left > 0; --left) {
            const int index = mStack.index();
            const int count = mStack.count();
            {
                const LyqApplication::UserActionScope scope(QStringLiteral("Drag"));
                mEdits.dragBoundary(mEdits.chance(10) ? mEdits.anyTable() : table);
                ++mEditCount;
            }
            const bool merged = noteStep(index, count, !first);
            first = first && !merged && mStack.index() == index;
        }
    }

    /** Compares the history with what happened. True if the action was merged into the step before. */
    bool noteStep(int indexBefore, int countBefore, bool mayMerge) {
        const auto before = static_cast<std::size_t>(indexBefore);
        Content now = read();
        checkParents();
        const bool changed = now != mContents[before];
        if (mStack.index() == indexBefore + 1) {
            EXPECT_EQ(mStack.count(), indexBefore + 1);
            mContents.resize(before + 1);
            mContents.push_back(std::move(now));
            ++mStepCount;
            return false;
        }
        EXPECT_EQ(mStack.index(), indexBefore);
        if (!changed) {
            EXPECT_TRUE(mStack.count() == countBefore || mayMerge);
            return false;
        }
        EXPECT_TRUE(mayMerge) << "a change was not recorded";
        EXPECT_EQ(mStack.count(), indexBefore);
        mContents.resize(before);
        mContents.push_back(std::move(now));
        ++mMergeCount;
        return true;
    }

    void move(bool forwards, std::size_t times) {
        for (std::size_t i = 0; i < times; ++i) {
            const int index = mStack.index();
            const auto side = notes();
            const bool possible = forwards ? index < mStack.count() : index > 0;
            ASSERT_EQ(forwards ? mApplication.redo() : mApplication.undo(), possible);
            if (!possible) {
                return;
            }
            const int wanted = forwards ? index + 1 : index - 1;
            ASSERT_EQ(mStack.index(), wanted);
            ASSERT_TRUE(read() == mContents[static_cast<std::size_t>(wanted)])
                << (forwards ? "redo" : "undo") << " to " << wanted;
            ASSERT_TRUE(notes() == side) << "side notes are not taken back";
            checkParents();
            ++mMoveCount;
        }
    }

    LyqApplication& mApplication = LyqApplication::instance();
    QUndoStack& mStack = mApplication.undoStack();
    SectionNumbers mNumbers;
    std::vector<LyrObjectRefPtr> mTables;
    RandomEdits mEdits;
    std::vector<Content> mContents;
    int mEditCount = 0;
    int mStepCount = 0;
    int mMergeCount = 0;
    int mMoveCount = 0;
    int mAbortCount = 0;
};

}  // namespace

TEST(UndoWalk, content_equals_what_was_recorded_at_every_step_of_a_random_walk) {
    const SilencedRefusals silenced;
    const int walks = sizeFromEnvironment("LYS_UNDO_WALKS", 200);
    const int edits = sizeFromEnvironment("LYS_UNDO_EDITS", 250);
    long long steps = 0;
    long long merges = 0;
    long long moves = 0;
    long long aborts = 0;
    for (int seed = 1; seed <= walks && !HasFailure(); ++seed) {
        SCOPED_TRACE("walk " + std::to_string(seed));
        Walk walk(static_cast<std::uint64_t>(seed));
        walk.run(edits);
        steps += walk.steps();
        merges += walk.merges();
        moves += walk.moves();
        aborts += walk.aborts();
    }
    EXPECT_EQ(LyrClassManager::getObjectCount(LyrClassManager::SearchPattern::ofModule("lys_colortable")), 0);
    std::printf("%d walks of %d edits: %lld steps, %lld merged, %lld undone or redone, %lld aborted\n", walks, edits,
                steps, merges, moves, aborts);
    // A walk that never does one of these tests nothing of it.
    EXPECT_GT(steps, 0);
    EXPECT_GT(merges, 0);
    EXPECT_GT(moves, 0);
    EXPECT_GT(aborts, 0);
}
