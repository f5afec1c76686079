#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrProperty.h>
#include <lyr_core/LyrString.h>

#include <cstdint>
#include <memory>
#include <vector>

class LyrObject;
class LyrObjectUnknownData;

/** One undo step: the writes of one outermost action, in their order. */
class LYR_CORE_EXPORT LyrUndoStep {
public:
    LyrUndoStep() = default;
    LyrUndoStep(const LyrUndoStep&) = delete;
    LyrUndoStep& operator=(const LyrUndoStep&) = delete;

    const LyrString& getName() const noexcept { return mName; }
    bool isEmpty() const noexcept { return mEntries.empty(); }
    std::size_t getEntryCount() const noexcept { return mEntries.size(); }

    /** Takes the writes back, the last first. Messages and timestamps are those of ordinary writes; nothing is
     * recorded. A write that fails (a list that is being read, no memory) takes the step back whole: false, and all is
     * as before. */
    bool undo() noexcept;
    /** Does them again, or none of them. */
    bool redo() noexcept;

    /** Whether some property of some object was changed by both. */
    bool overlaps(const LyrUndoStep& other) const;
    /** Takes in the step that followed: undone, this one brings back what was before both. The later one is empty
     *  afterwards. False, and both as they were, when memory ran out. */
    bool absorb(LyrUndoStep& later) noexcept;

    /** True if an object of the module is kept by this step, be it as a changed object or in a link. */
    bool holdsObjectsOf(const char* module) const noexcept;

private:
    friend class LyrUndoJournal;
    struct Entry {
        LyrObjectPtr object;
        Lyrenum propertyId;
        std::unique_ptr<LyrProperty::State> other;  ///< the value that a swap brings back
        /** What a swap brings back if `other` is null: the entry then stands for no property, but for what the object's
         * file held and this version does not know. */
        std::shared_ptr<const LyrObjectUnknownData> unknown = nullptr;
    };
    bool has(const Entry& wanted) const;
    static bool swap(Entry& entry) noexcept;
    template <class Iterator>
    static bool swapAll(Iterator first, Iterator last) noexcept;

    LyrString mName;
    std::vector<Entry> mEntries;
};

/** Records writes to content while an action is open. Actions nest: an inner one that is aborted takes back its own
 * writes alone. What the outermost leaves is handed to the sink as one step; nothing recorded, no step. */
class LYR_CORE_EXPORT LyrUndoJournal {
public:
    /** Receives finished steps. */
    class LYR_CORE_EXPORT Sink {
    public:
        virtual ~Sink();
        /** Takes the step. False, and an error, if it could not be kept and has been undone instead. A sink that throws
         * before it took the step leaves that to the journal. */
        virtual bool stepFinished(std::unique_ptr<LyrUndoStep>& step) = 0;
    };

    /** Names an open action; 0 is none. */
    using Token = std::int64_t;

    static LyrUndoJournal& instance();

    void setSink(Sink* sink) noexcept { mSink = sink; }
    Sink* getSink() const noexcept { return mSink; }

    /** Opens an action inside those that are open. 0, and an error, when memory ran out: its writes then belong to the
     * action outside of it. */
    Token begin(const LyrString& name) noexcept;
    /** Ends an action and all that are open inside it. The step takes the outermost action's name unless `name` here is
     * not empty. False if the token names no open action; false, and an error, if its step could not be kept: its
     * writes have then been taken back. */
    bool end(Token token, const LyrString& name = LyrString()) noexcept;
    /** Takes back what an action, and those inside it, recorded, and ends it. False if the token names no open action,
     * or if something could not be taken back: that stays recorded. */
    bool abort(Token token) noexcept;

    bool isOpen() const noexcept { return !mLevels.empty(); }
    int getDepth() const noexcept { return static_cast<int>(mLevels.size()); }
    /** True while a step is undone or redone, or an action taken back. */
    bool isReplaying() const noexcept { return mReplays != 0; }
    /** True if writes to content are to be recorded now: an action is open and no undo is under way. */
    bool isRecording() const noexcept { return !mLevels.empty() && mReplays == 0; }

    /** Adds the present value of a property to the open action, whatever the property's flags are: for commands whose
     * undo has to restore an object whole. False if no action is open, or nobody holds the property's object. */
    bool addSnapshot(LyrProperty& property) noexcept;
    /** The same for what the file of an object held and this version does not know. */
    bool addSnapshotOfUnknownData(LyrObject& object) noexcept;

    /** Makes room for one more write, so that record() cannot fail. */
    bool reserve() noexcept;
    /** Records a write that has happened. */
    void record(LyrProperty& property, std::unique_ptr<LyrProperty::State> before) noexcept;

private:
    friend class LyrUndoStep;
    struct Level {
        Token token;
        LyrString name;
        std::size_t firstEntry;
    };
    LyrUndoJournal() = default;
    std::size_t levelOf(Token token) const noexcept;
    std::unique_ptr<LyrUndoStep> closeFrom(std::size_t level) noexcept;
    bool handOver(std::unique_ptr<LyrUndoStep> step) noexcept;
    bool rollBack(std::unique_ptr<LyrUndoStep>& step, std::size_t firstEntry) noexcept;

    Sink* mSink = nullptr;
    std::vector<Level> mLevels;
    std::unique_ptr<LyrUndoStep> mStep;
    Token mLastToken = 0;
    int mReplays = 0;
};
