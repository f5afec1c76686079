#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrObjectUnknownData_p.h>
#include <lyr_core/LyrUndoJournal.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

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

std::shared_ptr<const LyrObjectUnknownData> unknownDataOf(const LyrObject& object) {
    const LyrObjectUnknownData* data = object.getUnknownData();
    return data ? data->weak_from_this().lock() : nullptr;
}

}  // namespace

LyrUndoJournal::Sink::~Sink() = default;

bool LyrUndoStep::swap(Entry& entry) noexcept {
    if (!entry.other) {
        auto present = unknownDataOf(*entry.object);
        entry.object->setUnknownData(std::move(entry.unknown));
        entry.unknown = std::move(present);
        return true;
    }
    LyrProperty* property = entry.object->getProperty(entry.propertyId);
    if (!property) {
        return true;  // taken out of its object since: there is nothing to bring back
    }
    try {
        return property->restoreState(*entry.other);
    } catch (...) {
        return property->emitError(Lyr::AllocationFailed);
    }
}

/** Swaps all entries of a range, or none. */
template <class Iterator>
bool LyrUndoStep::swapAll(Iterator first, Iterator last) noexcept {
    const ReplayScope scope(LyrUndoJournal::instance().mReplays);
    for (Iterator at = first; at != last; ++at) {
        if (!swap(*at)) {
            while (at != first) {
                swap(*--at);
            }
            return false;
        }
    }
    return true;
}

bool LyrUndoStep::undo() noexcept {
    return swapAll(mEntries.rbegin(), mEntries.rend());
}

bool LyrUndoStep::redo() noexcept {
    return swapAll(mEntries.begin(), mEntries.end());
}

bool LyrUndoStep::has(const Entry& wanted) const {
    return std::any_of(mEntries.begin(), mEntries.end(), [&](const Entry& entry) {
        return entry.object == wanted.object && entry.propertyId == wanted.propertyId && !entry.other == !wanted.other;
    });
}

bool LyrUndoStep::overlaps(const LyrUndoStep& other) const {
    return std::any_of(other.mEntries.begin(), other.mEntries.end(), [&](const Entry& entry) { return has(entry); });
}

bool LyrUndoStep::absorb(LyrUndoStep& later) noexcept {
    try {
        mEntries.reserve(mEntries.size() + later.mEntries.size());
        // This step holds the first old value of what both touch already; values in between are never shown again.
        for (Entry& entry : later.mEntries) {
            if (!has(entry)) {
                mEntries.push_back(std::move(entry));
            }
        }
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return false;
    }
    later.mEntries.clear();
    return true;
}

bool LyrUndoStep::holdsObjectsOf(const char* module) const noexcept {
    return module && std::any_of(mEntries.begin(), mEntries.end(), [&](const Entry& entry) {
               return std::strcmp(entry.object->getMetaClass().getModule(), module) == 0 ||
                      (entry.other && entry.other->holdsObjectsOf(module));
           });
}

LyrUndoJournal& LyrUndoJournal::instance() {
    // Never destroyed: static objects of any library may be written until the very end of the process.
    alignas(LyrUndoJournal) static std::byte memory[sizeof(LyrUndoJournal)];
    static LyrUndoJournal& journal = *new (memory) LyrUndoJournal;
    return journal;
}

LyrUndoJournal::Token LyrUndoJournal::begin(const LyrString& name) noexcept {
    try {
        auto fresh = mLevels.empty() ? std::make_unique<LyrUndoStep>() : nullptr;
        mLevels.push_back({mLastToken + 1, name, fresh ? 0 : mStep->mEntries.size()});
        if (fresh) {
            mStep = std::move(fresh);
        }
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

/** Closes an action and those inside it. Gives the step if that was the outermost one. */
std::unique_ptr<LyrUndoStep> LyrUndoJournal::closeFrom(std::size_t level) noexcept {
    std::unique_ptr<LyrUndoStep> step;
    if (level == 0) {
        step = std::move(mStep);
        step->mName = std::move(mLevels.front().name);
    }
    mLevels.erase(mLevels.begin() + static_cast<std::ptrdiff_t>(level), mLevels.end());
    return step;
}

/** False if the step could not be kept: writes that nobody can undo later do not stay. */
bool LyrUndoJournal::handOver(std::unique_ptr<LyrUndoStep> step) noexcept {
    if (!step || step->isEmpty() || !mSink) {
        return true;
    }
    try {
        return mSink->stepFinished(step);
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return !step || !step->undo();
    }
}

bool LyrUndoJournal::end(Token token, const LyrString& name) noexcept {
    const std::size_t level = levelOf(token);
    if (level == mLevels.size()) {
        return false;
    }
    std::unique_ptr<LyrUndoStep> step = closeFrom(level);
    if (step && !name.isEmpty()) {
        try {
            step->mName = name;
        } catch (...) {
            LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        }
    }
    return handOver(std::move(step));
}

bool LyrUndoJournal::abort(Token token) noexcept {
    const std::size_t level = levelOf(token);
    if (level == mLevels.size()) {
        return false;
    }
    const std::size_t firstEntry = mLevels[level].firstEntry;
    std::unique_ptr<LyrUndoStep> step = closeFrom(level);
    if (!step) {
        return rollBack(mStep, firstEntry);
    }
    // Apart from the journal: listeners may open actions of their own while the values come back.
    const bool done = rollBack(step, 0);
    handOver(std::move(step));
    return done;
}

/** Takes back the entries of a step from `firstEntry` on. What cannot be taken back (a list that is being read) stays
 * recorded, so that a later undo brings it back. Listeners may end even the outermost action meanwhile: an entry is out
 * of the step while it is taken back, so that the step always holds the writes that stand. */
bool LyrUndoJournal::rollBack(std::unique_ptr<LyrUndoStep>& step, std::size_t firstEntry) noexcept {
    const ReplayScope scope(mReplays);
    bool done = true;
    for (std::size_t i = step->mEntries.size(); i-- > firstEntry;) {
        const auto place = static_cast<std::ptrdiff_t>(i);
        LyrUndoStep::Entry entry = std::move(step->mEntries[i]);
        step->mEntries.erase(step->mEntries.begin() + place);
        const bool taken = LyrUndoStep::swap(entry);
        done = taken && done;
        if (!step || i > step->mEntries.size()) {
            return done;  // ended, or taken back further, by a listener
        }
        if (!taken) {
            step->mEntries.insert(step->mEntries.begin() + place, std::move(entry));
        }
    }
    return done;
}

bool LyrUndoJournal::addSnapshot(LyrProperty& property) noexcept {
    const LyrObject* owner = property.getObject();
    if (!isRecording() || !owner || owner->isDying() || owner->getRefCount() == 0) {
        return false;
    }
    try {
        std::unique_ptr<LyrProperty::State> before = property.takeState();
        if (!before || !reserve()) {
            return property.emitError(Lyr::AllocationFailed);
        }
        record(property, std::move(before));
        return true;
    } catch (...) {
        return property.emitError(Lyr::AllocationFailed);
    }
}

bool LyrUndoJournal::addSnapshotOfUnknownData(LyrObject& object) noexcept {
    if (!isRecording() || object.isDying() || object.getRefCount() == 0) {
        return false;
    }
    try {
        mStep->mEntries.push_back({LyrObjectPtr(&object), Lyrenum(-1), nullptr, unknownDataOf(object)});
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(&object, Lyr::AllocationFailed));
        return false;
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
    if (!mStep) {
        return;  // the action was ended inside the write
    }
    try {
        mStep->mEntries.push_back({LyrObjectPtr(property.getObject()), property.getPropertyID(), std::move(before)});
    } catch (...) {
        property.emitError(Lyr::AllocationFailed);
    }
}
