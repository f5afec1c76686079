#include "scarce/ScarceMemory.h"

#include <lyr_core/LyrMemory.h>

#include <cstdlib>
#include <new>

// These take the place of the framework's allocator and of the language's in the whole test program, libraries
// included.

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

void* allocateOrThrow(std::size_t size) {
    void* memory = allocate(size);
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

void* operator new(std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size);
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
