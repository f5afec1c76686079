#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <cstddef>

/// An array that lies against an unreadable page, with its first or its last entry.
class GuardedArray {
public:
    GuardedArray(size_t count, bool atEnd) {
        const size_t bytes = (count * sizeof(float) + page - 1) / page * page;
        size_ = bytes + 2 * page;
        memory_ = static_cast<char*>(mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        EXPECT_EQ(mprotect(memory_ + page, bytes, PROT_READ | PROT_WRITE), 0);
        data_ = reinterpret_cast<float*>(memory_ + page + (atEnd ? bytes - count * sizeof(float) : 0));
    }
    ~GuardedArray() { munmap(memory_, size_); }
    GuardedArray(const GuardedArray&) = delete;
    GuardedArray& operator=(const GuardedArray&) = delete;

    float* data() const { return data_; }

private:
    static constexpr size_t page = 4096;
    char* memory_;
    size_t size_;
    float* data_;
};
