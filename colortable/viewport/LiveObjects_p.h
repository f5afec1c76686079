#pragma once

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrScratch.h>

namespace lys::viewport {

/** The live objects of a class and of those derived from it, oldest first, as they are now. None, and an error, when
 * memory ran out; an unknown class has none, silently. */
class LiveObjects {
public:
    explicit LiveObjects(const char* className) noexcept {
        // As many as fit in place are usually all; only where they are not, they are counted.
        const LyrClassManager::SearchPattern pattern(className);
        std::size_t room = IN_PLACE;
        while (mObjects.resize(room)) {
            mCount = static_cast<std::size_t>(
                LyrClassManager::findObjects(mObjects.data(), static_cast<long long>(room), pattern));
            if (mCount < room) {
                return;
            }
            room = static_cast<std::size_t>(LyrClassManager::getObjectCount(pattern)) + 1;
        }
        mCount = 0;
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
    }

    LyrClass** begin() noexcept { return mObjects.data(); }
    LyrClass** end() noexcept { return mObjects.data() + mCount; }
    LyrClass* const* begin() const noexcept { return mObjects.data(); }
    LyrClass* const* end() const noexcept { return mObjects.data() + mCount; }

private:
    static constexpr std::size_t IN_PLACE = 32;

    LyrScratch<LyrClass*, IN_PLACE> mObjects;
    std::size_t mCount = 0;
};

}  // namespace lys::viewport
