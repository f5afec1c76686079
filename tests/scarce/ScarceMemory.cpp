#include "scarce/ScarceMemory.h"

#include <lyr_core/LyrMemory.h>

#include <algorithm>
#include <cstdlib>
#include <new>

// These take the place of the framework's allocator and of the language's in the whole test program, libraries
// included: every form of them, as one that is left out would never fail.

namespace {

constexpr long long PLENTY = -1;
thread_local long long sLeft = PLENTY;
thread_local bool sForGood = false;
thread_local bool sFailed = false;

bool mayAllocate() {
    if (sLeft == PLENTY || --sLeft >= 0) {
        return true;
    }
    sLeft = sForGood ? 0 : PLENTY;
    sFailed = true;
    return false;
}

void* allocate(std::size_t size) {
    return mayAllocate() ? std::malloc(size == 0 ? 1 : size) : nullptr;
}

void* allocate(std::size_t size, std::align_val_t alignment) {
    void* memory = nullptr;
    const std::size_t step = std::max(static_cast<std::size_t>(alignment), sizeof(void*));
    return mayAllocate() && posix_memalign(&memory, step, size == 0 ? 1 : size) == 0 ? memory : nullptr;
}

void* orThrow(void* memory) {
    if (!memory) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

ScarceMemory::ScarceMemory(long long failing, Failing how) noexcept {
    sFailed = false;
    sForGood = how == Failing::ForGood;
    sLeft = failing;
}
ScarceMemory::~ScarceMemory() {
    sLeft = PLENTY;
}
bool ScarceMemory::hasFailed() const noexcept {
    return sFailed;
}

void* lyrMalloc(std::size_t size) noexcept {
    return allocate(size);
}
void* lyrRealloc(void* memory, std::size_t size) noexcept {
    return mayAllocate() ? std::realloc(memory, size == 0 ? 1 : size) : nullptr;
}

void* operator new(std::size_t size) {
    return orThrow(allocate(size));
}
void* operator new[](std::size_t size) {
    return orThrow(allocate(size));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return orThrow(allocate(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return orThrow(allocate(size, alignment));
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return allocate(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return allocate(size, alignment);
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t, const std::nothrow_t&) noexcept {
    std::free(memory);
}
