#pragma once

/** Makes allocations of this thread fail while it lives: the n-th from now on, counted from 0, and perhaps all after
 * it. */
class ScarceMemory {
public:
    enum class Failing { Once, ForGood };

    explicit ScarceMemory(long long failing, Failing how = Failing::Once) noexcept;
    ~ScarceMemory();
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;

    /** True once the allocation has failed. */
    bool hasFailed() const noexcept;
};
