#pragma once

/** Makes one allocation of this thread fail while it lives: the n-th from now on, counted from 0. */
class ScarceMemory {
public:
    explicit ScarceMemory(long long failing) noexcept;
    ~ScarceMemory();
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;

    /** True once the allocation has failed. */
    bool hasFailed() const noexcept;
};
