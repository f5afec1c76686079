#include <lyr_core/LyrMemory.h>

#include <cstdint>
#include <cstdlib>

// What malloc returns is aligned for every fundamental type, which covers the promised 16 bytes here.
static_assert(alignof(std::max_align_t) >= 16);

namespace {
// No object may be larger; asking the allocator for more is a mistake that some checkers abort on.
bool isPossible(std::size_t size) {
    return size <= static_cast<std::size_t>(PTRDIFF_MAX);
}
}  // namespace

void* lyrMalloc(std::size_t size) noexcept {
    return isPossible(size) ? std::malloc(size == 0 ? 1 : size) : nullptr;
}

void* lyrRealloc(void* p, std::size_t size) noexcept {
    return isPossible(size) ? std::realloc(p, size == 0 ? 1 : size) : nullptr;
}

void lyrFree(void* p) noexcept {
    std::free(p);
}
