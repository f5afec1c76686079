#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrWholeWrite.h>

LyrWholeWrite::LyrWholeWrite() noexcept {
    auto& journal = LyrUndoJournal::instance();
    if (journal.isRecording()) {
        mToken = journal.begin(LyrString());
        mIsOpen = mToken != 0;
    }
}

LyrWholeWrite::~LyrWholeWrite() {
    if (!mIsOpen) {
        return;
    }
    if (mToken != 0) {
        LyrUndoJournal::instance().abort(mToken);
    }
    // What was not recorded: the same values again do nothing.
    for (; !mEntries.empty(); mEntries.pop_back()) {
        const Entry& entry = mEntries.back();
        try {
            entry.property->restoreState(*entry.before);
        } catch (...) {
            entry.property->emitError(Lyr::AllocationFailed);  // a listener's: the value is back
        }
    }
}

bool LyrWholeWrite::add(LyrProperty* property) noexcept {
    if (!property || !mIsOpen) {
        return false;
    }
    try {
        mEntries.reserve(mEntries.size() + 1);
        if (auto before = property->takeState()) {
            mEntries.push_back({property, std::move(before)});
            return true;
        }
    } catch (...) {
        // The same as a state that found no memory.
    }
    return property->emitError(Lyr::AllocationFailed);
}

void LyrWholeWrite::keep() noexcept {
    if (mIsOpen && mToken != 0) {
        LyrUndoJournal::instance().end(mToken);
    }
    mIsOpen = false;
    mEntries.clear();
}
