#pragma once

#include <cstddef>

#include <lyr_core/LyrCoreExport.h>

/** Memory for buffers that change hands between libraries: whoever ends up with one returns it by lyrFree(). All of it
 *  is aligned to 16 bytes. A size of 0 gives a valid pointer to nothing, a failed request gives null. */
LYR_CORE_EXPORT void* lyrMalloc(std::size_t size) noexcept;

/** Changes the size of a buffer and keeps its first bytes; p may be null. On failure the result is null and p stays
 *  valid as it was. A size of 0 does not free. */
LYR_CORE_EXPORT void* lyrRealloc(void* p, std::size_t size) noexcept;

/** Returns a buffer; null does nothing. */
LYR_CORE_EXPORT void lyrFree(void* p) noexcept;

/** Deleter for a std::unique_ptr over memory of lyrMalloc(). It destroys no elements. */
struct LyrFree {
    void operator()(void* p) const noexcept { lyrFree(p); }
};
