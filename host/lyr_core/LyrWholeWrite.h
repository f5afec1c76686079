#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrProperty.h>
#include <lyr_core/LyrUndoJournal.h>

#include <memory>
#include <vector>

/** Writes of several properties that happen all or not at all: the properties that it was given are as before when it
 * ends without having been kept. Taking back needs no memory, inside a user action or outside of one. The properties
 * have to outlive it. */
class LYR_CORE_EXPORT LyrWholeWrite {
public:
    LyrWholeWrite() noexcept;
    ~LyrWholeWrite();
    LyrWholeWrite(const LyrWholeWrite&) = delete;
    LyrWholeWrite& operator=(const LyrWholeWrite&) = delete;

    /** Remembers the present value of a property that is about to be written. False for null; false, and an error, when
     * memory ran out: nothing is to be written then. */
    bool add(LyrProperty* property) noexcept;

    /** All went well: the writes stay. */
    void keep() noexcept;

private:
    struct Entry {
        LyrProperty* property;
        std::unique_ptr<LyrProperty::State> before;
    };
    std::vector<Entry> mEntries;
    LyrUndoJournal::Token mToken = 0;  ///< an inner action: recorded writes are taken back by the journal
    bool mIsOpen = true;
};
