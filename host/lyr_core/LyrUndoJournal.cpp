#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrUndoJournal.h>

#include <algorithm>
#include <cstring>

namespace {

/** Keeps writes from being recorded while it lives. */
class ReplayScope {
public:
    explicit ReplayScope(int& replays) noexcept : mReplays(replays) { ++mReplays; }
    ~ReplayScope() { --mReplays; }
    ReplayScope(const ReplayScope&) = delete;
    ReplayScope& operator=(const ReplayScope&) = delete;

private:
    int& mReplays;
};

}  // namespace

LyrUndoJournal::Sink::~Sink() = default;

bool LyrUndoStep::swap(Entry& entry) {
    LyrProperty* property = entry.object->getProperty(entry.propertyId);
    if (!property) {
        return true;  // taken out of its object since: there is nothing to bring back
    }
    try {
        std::unique_ptr<LyrProperty::State> present = property->takeState();
        if (!present || !property->restoreState(*entry.other)) {
            return false;
        }
        entry.other = std::move(present);
        return true;
    } catch (...) {
        return property->emitError(Lyr::AllocationFailed);
    }
}

bool LyrUndoStep::undo() {
    const ReplayScope scope(LyrUndoJournal::instance().mReplays);
    for (std::size_t i = mEntries.size(); i-- > 0;) {
        if (!swap(mEntries[i])) {
            while (++i < mEntries.size()) {
                swap(mEntries[i]);
            }
            return false;
        }
    }
    return true;
}

bool LyrUndoStep::redo() {
    const ReplayScope scope(LyrUndoJournal::instance().mReplays);
    for (std::size_t i = 0; i < mEntries.size(); ++i) {
        if (!swap(mEntries[i])) {
            while (i-- > 0) {
                swap(mEntries[i]);
            }
            return false;
        }
    }
    return true;
}

bool LyrUndoStep::touchesTheSame(const LyrUndoStep& other) const {
    const auto covers = [](const LyrUndoStep& a, const LyrUndoStep& b) {
        return std::all_of(b.mEntries.begin(), b.mEntries.end(), [&](const Entry& wanted) {
            return std::any_of(a.mEntries.begin(), a.mEntries.end(), [&](const Entry& entry) {
                return entry.object == wanted.object && entry.propertyId == wanted.propertyId;
            });
        });
    };
    return covers(*this, other) && covers(other, *this);
}

void LyrUndoStep::absorb(LyrUndoStep& later) noexcept {
    // The earlier step holds the first old value of each property already; the values in between are never shown again.
    later.mEntries.clear();
}

bool LyrUndoStep::holdsObjectsOf(const char* module) const {
    return std::any_of(mEntries.begin(), mEntries.end(), [&](const Entry& entry) {
        return std::strcmp(entry.object->getMetaClass().getModule(), module) == 0;
    });
}

LyrUndoJournal& LyrUndoJournal::instance() {
    static LyrUndoJournal journal;
    return journal;
}

LyrUndoJournal::Token LyrUndoJournal::begin(const LyrString& name) {
    try {
        if (mLevels.empty()) {
            mStep = std::make_unique<LyrUndoStep>();
        }
        mLevels.push_back({mLastToken + 1, name, mStep->mEntries.size()});
        return ++mLastToken;
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return 0;
    }
}

std::size_t LyrUndoJournal::levelOf(Token token) const noexcept {
    const auto found =
        std::find_if(mLevels.begin(), mLevels.end(), [&](const Level& level) { return level.token == token; });
    return static_cast<std::size_t>(found - mLevels.begin());
}

bool LyrUndoJournal::end(Token token, const LyrString& name) {
    const std::size_t level = levelOf(token);
    if (level == mLevels.size()) {
        return false;
    }
    closeFrom(level, level == 0 && !name.isEmpty() ? name : mLevels.front().name);
    return true;
}

bool LyrUndoJournal::abort(Token token) {
    const std::size_t level = levelOf(token);
    if (level == mLevels.size()) {
        return false;
    }
    const bool done = rollBack(mLevels[level].firstEntry);
    closeFrom(level, mLevels.front().name);
    return done;
}

void LyrUndoJournal::closeFrom(std::size_t level, LyrString stepName) {
    mLevels.erase(mLevels.begin() + static_cast<std::ptrdiff_t>(level), mLevels.end());
    if (!mLevels.empty()) {
        return;
    }
    std::unique_ptr<LyrUndoStep> step = std::move(mStep);
    step->mName = std::move(stepName);
    if (!step->isEmpty() && mSink) {
        mSink->stepFinished(std::move(step));
    }
}

// What cannot be taken back (a list that is being read) stays recorded, so that a later undo brings it back.
bool LyrUndoJournal::rollBack(std::size_t firstEntry) {
    const ReplayScope scope(mReplays);
    auto& entries = mStep->mEntries;
    bool done = true;
    for (std::size_t i = entries.size(); i-- > firstEntry;) {
        if (LyrUndoStep::swap(entries[i])) {
            entries.erase(entries.begin() + static_cast<std::ptrdiff_t>(i));
        } else {
            done = false;
        }
    }
    return done;
}

bool LyrUndoJournal::addSnapshot(LyrProperty& property) {
    try {
        if (!isRecording() || !property.getObject() || !reserve()) {
            return false;
        }
        std::unique_ptr<LyrProperty::State> before = property.takeState();
        if (!before) {
            return property.emitError(Lyr::AllocationFailed);
        }
        record(property, std::move(before));
        return true;
    } catch (...) {
        return property.emitError(Lyr::AllocationFailed);
    }
}

bool LyrUndoJournal::reserve() noexcept {
    try {
        auto& entries = mStep->mEntries;
        if (entries.size() == entries.capacity()) {
            entries.reserve(entries.size() * 2 + 8);
        }
        return true;
    } catch (...) {
        return false;
    }
}

void LyrUndoJournal::record(LyrProperty& property, std::unique_ptr<LyrProperty::State> before) noexcept {
    mStep->mEntries.push_back({LyrObjectPtr(property.getObject()), property.getPropertyID(), std::move(before)});
}
