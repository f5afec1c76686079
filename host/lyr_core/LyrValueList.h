#pragma once

#include <algorithm>
#include <cstddef>
#include <exception>
#include <utility>
#include <vector>

/** A growable list of values, counted from 0. Its room grows in multiples of a granularity. Operations that need memory
 *  return false and leave the list as it was when there is none. */
template <class T>
class LyrValueList {
public:
    using value_type = T;
    using iterator = T*;
    using const_iterator = const T*;

    /** An empty list; a granularity below 1 counts as 1. */
    explicit LyrValueList(long long granularity = 16) : mGranularity(std::max(granularity, 1LL)) {}

    long long size() const { return static_cast<long long>(mItems.size()); }
    bool isEmpty() const { return mItems.empty(); }
    /** Number of values for which there is room without asking for memory. */
    long long capacity() const { return static_cast<long long>(mItems.capacity()); }
    long long getGranularity() const { return mGranularity; }

    /** The value of an index, which must lie in the list. */
    T& operator[](long long index) { return mItems[static_cast<std::size_t>(index)]; }
    const T& operator[](long long index) const { return mItems[static_cast<std::size_t>(index)]; }
    T* data() { return mItems.data(); }
    const T* data() const { return mItems.data(); }

    bool append(T value) { return insert(size(), std::move(value)); }
    /** Puts the value before the one of the index, at the end for index size(); false for any other index. */
    bool insert(long long index, T value) {
        if (index < 0 || index > size() || !growFor(size() + 1)) {
            return false;
        }
        mItems.insert(mItems.begin() + index, std::move(value));
        return true;
    }
    /** Removes count values from the index on; false, with nothing removed, unless all of them lie in the list. */
    bool remove(long long index, long long count = 1) {
        if (index < 0 || count < 0 || index > size() || count > size() - index) {
            return false;
        }
        mItems.erase(mItems.begin() + index, mItems.begin() + index + count);
        return true;
    }
    /** Removes every value and keeps the room. */
    void clear() { mItems.clear(); }
    /** Exchanges values and granularity with another list, without copying a value. */
    void swap(LyrValueList& other) noexcept {
        mItems.swap(other.mItems);
        std::swap(mGranularity, other.mGranularity);
    }

    /** The first index of an equal value, −1 when there is none. */
    long long indexOf(const T& value) const {
        const auto found = std::find(mItems.begin(), mItems.end(), value);
        return found == mItems.end() ? -1 : found - mItems.begin();
    }

    iterator begin() { return mItems.data(); }
    iterator end() { return mItems.data() + mItems.size(); }
    const_iterator begin() const { return mItems.data(); }
    const_iterator end() const { return mItems.data() + mItems.size(); }

    /** Equal values in the same order; the granularity plays no part. */
    friend bool operator==(const LyrValueList& a, const LyrValueList& b) { return a.mItems == b.mItems; }

private:
    // Half as much again at least, so that filling a long list value by value stays linear.
    bool growFor(long long count) {
        if (count <= capacity()) {
            return true;
        }
        const long long wanted = std::max(count, capacity() + capacity() / 2);
        const long long blocks = (wanted - 1) / mGranularity + 1;
        try {
            mItems.reserve(static_cast<std::size_t>(blocks) * static_cast<std::size_t>(mGranularity));
        } catch (const std::exception&) {
            return false;
        }
        return true;
    }

    std::vector<T> mItems;
    long long mGranularity;
};

template <class T>
void swap(LyrValueList<T>& a, LyrValueList<T>& b) noexcept {
    a.swap(b);
}
