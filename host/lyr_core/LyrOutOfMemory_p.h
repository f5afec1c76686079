#pragma once

#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>

/** What `work` gives; where memory runs out, an empty result and an error. For functions that hand out texts and lists:
 * nothing that is thrown leaves the library. */
template <class Work>
auto lyrOrNothing(Work work) noexcept -> decltype(work()) {
    try {
        return work();
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return {};
    }
}
