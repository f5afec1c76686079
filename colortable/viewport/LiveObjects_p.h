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
        const LyrClassManager::SearchPattern pattern(className);
        const auto count = static_cast<std::size_t>(LyrClassManager::getObjectCount(pattern));
        if (mObjects.resize(count)) {
            mCount = static_cast<std::size_t>(
                LyrClassManager::findObjects(mObjects.data(), static_cast<long long>(count), pattern));
        } else {
            LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        }
    }

    LyrClass** begin() noexcept { return mObjects.data(); }
    LyrClass** end() noexcept { return mObjects.data() + mCount; }
    LyrClass* const* begin() const noexcept { return mObjects.data(); }
    LyrClass* const* end() const noexcept { return mObjects.data() + mCount; }

private:
    LyrScratch<LyrClass*> mObjects;
    std::size_t mCount = 0;
};

}  // namespace lys::viewport
