#include "scarce/EachAllocation.h"

#include <lyr_core/LyrMemory.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <new>

// What the other cases rely on: each way to ask for memory is counted, and fails where it is to.

namespace {

struct Nothing {};

/** More alignment than that of ordinary memory. */
struct alignas(64) Line {
    std::byte bytes[64];
};

/** How many allocations `work`, which reports those that failed, asked for. */
template <class Work>
int failuresOf(Work work) {
    return scarce::withEachAllocationFailing<Nothing>(
        [&](Nothing&) {
            try {
                if (work()) {
                    return true;
                }
            } catch (const std::bad_alloc&) {
                // Reported below, as what came back as null.
            }
            LyrError::emitError(LyrError::Message(1));
            return false;
        },
        [](Nothing&, bool) {});
}

/** Where the memory shows, so that the compiler does not leave out asking for it. */
void* volatile sSeen = nullptr;

/** Returns the memory at once and tells whether there was some. */
template <class T, class Delete>
bool isThere(T* memory, Delete give) {
    sSeen = memory;
    const bool isThere = sSeen != nullptr;
    give(memory);
    return isThere;
}

}  // namespace

TEST(ScarceMemory, lets_every_way_to_ask_for_memory_fail) {
    const auto single = [](auto* memory) { delete memory; };
    const auto list = [](auto* memory) { delete[] memory; };
    EXPECT_EQ(failuresOf([&] { return isThere(new int, single); }), 1);
    EXPECT_EQ(failuresOf([&] { return isThere(new int[3], list); }), 1);
    EXPECT_EQ(failuresOf([&] { return isThere(new (std::nothrow) int, single); }), 1);
    EXPECT_EQ(failuresOf([&] { return isThere(new (std::nothrow) int[3], list); }), 1);
    EXPECT_EQ(failuresOf([&] { return isThere(new Line, single); }), 1);
    EXPECT_EQ(failuresOf([&] { return isThere(new Line[3], list); }), 1);
    EXPECT_EQ(failuresOf([&] { return isThere(new (std::nothrow) Line, single); }), 1);
    EXPECT_EQ(failuresOf([&] { return isThere(new (std::nothrow) Line[3], list); }), 1);
    EXPECT_EQ(failuresOf([&] { return isThere(lyrMalloc(7), lyrFree); }), 1);
    EXPECT_EQ(failuresOf([&] { return isThere(lyrRealloc(nullptr, 7), lyrFree); }), 1);
}

TEST(ScarceMemory, keeps_what_could_not_be_made_larger) {
    void* memory = lyrMalloc(7);
    {
        const ScarceMemory scarce(0);
        EXPECT_EQ(lyrRealloc(memory, 100), nullptr);
        EXPECT_TRUE(scarce.hasFailed());
    }
    memory = lyrRealloc(memory, 100);
    EXPECT_NE(memory, nullptr);
    lyrFree(memory);
}
