#pragma once

#include <lyr_core/LyrMemory.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

/** A scratch list of plain items: up to N inline, then an lyrMalloc buffer that grows in steps of 1 KiB. */
template <class T, std::size_t N = 1024 / sizeof(T)>
class LyrScratch {
    static_assert(std::is_trivially_copyable_v<T> && N > 0);

public:
    LyrScratch() noexcept = default;
    LyrScratch(const LyrScratch&) = delete;
    LyrScratch& operator=(const LyrScratch&) = delete;
    ~LyrScratch() {
        if (mItems != inlineItems()) {
            lyrFree(mItems);
        }
    }

    /** False when memory ran out; the list is then as before. */
    bool append(const T& item) noexcept {
        const T copied = item;  // the item may lie in this list
        if (mSize == mCapacity && !reserve(mSize + 1)) {
            return false;
        }
        new (mItems + mSize++) T(copied);
        return true;
    }

    /** Makes room for `count` items; their contents are open. */
    bool resize(std::size_t count) noexcept {
        if (!reserve(count)) {
            return false;
        }
        mSize = count;
        return true;
    }

    bool reserve(std::size_t count) noexcept {
        if (count <= mCapacity) {
            return true;
        }
        constexpr std::size_t MOST = static_cast<std::size_t>(-1) / 4 / sizeof(T);
        if (count > MOST) {
            return false;
        }
        constexpr std::size_t STEP = sizeof(T) < 1024 ? 1024 / sizeof(T) : 1;
        const std::size_t wanted = ((count > mCapacity * 2 ? count : mCapacity * 2) + STEP - 1) / STEP * STEP;
        auto* grown = static_cast<T*>(lyrMalloc(wanted * sizeof(T)));
        if (!grown) {
            return false;
        }
        std::memcpy(static_cast<void*>(grown), mItems, mSize * sizeof(T));
        if (mItems != inlineItems()) {
            lyrFree(mItems);
        }
        mItems = grown;
        mCapacity = wanted;
        return true;
    }

    T* data() noexcept { return mItems; }
    const T* data() const noexcept { return mItems; }
    std::size_t size() const noexcept { return mSize; }
    bool isEmpty() const noexcept { return mSize == 0; }
    T& operator[](std::size_t index) noexcept { return mItems[index]; }
    const T& operator[](std::size_t index) const noexcept { return mItems[index]; }
    T* begin() noexcept { return mItems; }
    T* end() noexcept { return mItems + mSize; }
    const T* begin() const noexcept { return mItems; }
    const T* end() const noexcept { return mItems + mSize; }

private:
    T* inlineItems() noexcept { return reinterpret_cast<T*>(mInline); }

    alignas(16) unsigned char mInline[N * sizeof(T)];
    T* mItems = inlineItems();
    std::size_t mSize = 0;
    std::size_t mCapacity = N;
};
