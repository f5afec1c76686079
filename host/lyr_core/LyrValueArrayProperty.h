#pragma once

#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrPropertyTraits.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <memory>
#include <span>
#include <type_traits>
#include <vector>

/** A property that holds a list of values of type T, indexed from 0. Ranges are given by their first and last index,
 * both inclusive; the empty range is (0, -1). Every operation either happens whole or not at all. */
template <class T>
class LyrValueArrayPropertyIF : public LyrProperty {
public:
    using ValueType = T;

    static LyrValueArrayPropertyIF* getInterface(LyrProperty* property) noexcept {
        const bool fits = property && property->isArray() && property->getValueType() == LyrPropertyTraits<T>::type;
        return fits ? static_cast<LyrValueArrayPropertyIF*>(property) : nullptr;
    }
    static const LyrValueArrayPropertyIF* getInterfaceConst(const LyrProperty* property) noexcept {
        return getInterface(const_cast<LyrProperty*>(property));
    }

    /** The indices of the first and last item; (0, -1) for the empty list. */
    virtual bool getArrayIndexRange(long long& first, long long& last) const = 0;
    /** Copies the items of a range to `out`, room for last - first + 1 items. The range must lie in the list. */
    virtual bool getArrayItems(long long first, long long last, T* out) const = 0;
    /** Overwrites the items of a range, which must lie in the list. */
    virtual bool setArrayItems(long long first, long long last, const T* items) = 0;
    /** Replaces the whole list by last - first + 1 items; (0, -1, null) empties it. */
    virtual bool initArray(long long first, long long last, const T* items) = 0;
    /** Inserts items so that they take the indices first to last. */
    virtual bool insertArrayItems(long long first, long long last, const T* items) = 0;
    virtual bool removeArrayItems(long long first, long long last) = 0;

    /** Direct read access; the list cannot be written until every lock is given back. Null, and no lock, for an empty
     * list. */
    virtual const T* lockArrayPtr() const = 0;
    /** Gives back a lock; null, or a pointer that came from elsewhere, does nothing. */
    virtual void unlockArrayPtr(const T* items) const = 0;

    /** A new property of this type that holds the same items, without owner, its identifier set. The caller owns it;
     * null when memory ran out. */
    virtual LyrProperty* clone(Lyrenum id) const = 0;

    /** The verdict on items that are about to be written: 1 accepts them. */
    virtual unsigned int checkItems(long long /*count*/, const T* /*items*/) const { return 1; }

    /** Whether object files may hold floats in this list that are not finite. */
    virtual bool allowsNonFinite() const { return true; }

    LyrValueType getValueType() const noexcept override { return LyrPropertyTraits<T>::type; }
    bool isArray() const noexcept override { return true; }

    long long getArraySize() const {
        long long first = 0;
        long long last = -1;
        return getArrayIndexRange(first, last) ? last - first + 1 : 0;
    }

protected:
    /** True if (first, last, items) names items to read: a real range with a pointer, or the empty range. */
    static bool isItemRange(long long first, long long last, const T* items) noexcept {
        if (first == 0 && last == -1) {
            return true;
        }
        return first >= 0 && last >= first && last < std::numeric_limits<long long>::max() && items;
    }
};

/** A list kept in the property itself, with its reset value. */
template <class IF>
class LyrValueArrayOP : public IF {
public:
    using T = typename IF::ValueType;
    static_assert(!std::is_pointer_v<T>, "a list keeps its items, it cannot keep what they point to");

    LyrValueArrayOP() = default;

    bool getArrayIndexRange(long long& first, long long& last) const override {
        first = 0;
        last = size() - 1;
        return true;
    }

    bool getArrayItems(long long first, long long last, T* out) const override {
        if (first == 0 && last == -1) {
            return true;
        }
        if (!isInside(first, last) || !out) {
            return false;
        }
        std::copy(mItems.begin() + first, mItems.begin() + last + 1, out);
        return true;
    }

    bool setArrayItems(long long first, long long last, const T* items) override {
        if (first == 0 && last == -1) {
            return !this->isReadOnly();
        }
        if (!isInside(first, last) || !items || !mayWrite(last - first + 1, items)) {
            return false;
        }
        if (isSame(std::span(mItems).subspan(std::size_t(first), std::size_t(last - first + 1)), items)) {
            return true;
        }
        return isUnlocked() && this->write([&] {
            // A copy first: the items may be some of this list's own.
            std::vector<T> fresh(mItems);
            std::copy(items, items + (last - first + 1), fresh.begin() + first);
            mItems.swap(fresh);
            return true;
        });
    }

    bool initArray(long long first, long long last, const T* items) override {
        if (!this->isItemRange(first, last, items) || !mayWrite(last - first + 1, items)) {
            return false;
        }
        const long long count = last - first + 1;
        if (count == size() && isSame(mItems, items)) {
            return true;
        }
        return isUnlocked() && this->write([&] {
            std::vector<T> fresh(items, items + count);
            mItems.swap(fresh);
            return true;
        });
    }

    bool insertArrayItems(long long first, long long last, const T* items) override {
        const bool isRange = last >= first && this->isItemRange(first, last, items);
        if (!isRange || first > size() || !mayWrite(last - first + 1, items)) {
            return false;
        }
        return isUnlocked() && this->write([&] {
            std::vector<T> fresh;
            fresh.reserve(mItems.size() + std::size_t(last - first + 1));
            fresh.assign(mItems.begin(), mItems.begin() + first);
            fresh.insert(fresh.end(), items, items + (last - first + 1));
            fresh.insert(fresh.end(), mItems.begin() + first, mItems.end());
            mItems.swap(fresh);
            return true;
        });
    }

    bool removeArrayItems(long long first, long long last) override {
        if (!isInside(first, last) || !mayWrite(0, nullptr)) {
            return false;
        }
        return isUnlocked() && this->write([&] {
            mItems.erase(mItems.begin() + first, mItems.begin() + last + 1);
            return true;
        });
    }

    const T* lockArrayPtr() const override {
        if (mItems.empty()) {
            return nullptr;
        }
        mLocks.fetch_add(1, std::memory_order_acquire);
        return mItems.data();
    }
    void unlockArrayPtr(const T* items) const override {
        if (items && items == mItems.data() && mLocks.fetch_sub(1, std::memory_order_release) <= 0) {
            mLocks.fetch_add(1, std::memory_order_relaxed);  // it was not locked
        }
    }

    LyrProperty* clone(Lyrenum id) const override {
        try {
            std::unique_ptr<LyrValueArrayOP> copy(new LyrValueArrayOP());
            if (copy) {
                copy->presetPropertyID(id);
                copy->mItems = mItems;
                copy->mResetItems = mResetItems;
                return copy.release();
            }
        } catch (...) {
        }
        this->emitError(Lyr::AllocationFailed);
        return nullptr;
    }

    bool resetData() override {
        return this->initArray(0, static_cast<long long>(mResetItems.size()) - 1, mResetItems.data());
    }
    std::span<const T> getResetItems() const noexcept { return mResetItems; }

    /** The items for reading, without a lock: valid until the next write. */
    std::span<const T> view() const noexcept { return mItems; }

    std::unique_ptr<LyrProperty::State> takeState() const override {
        try {
            return std::make_unique<ListState>(mItems);
        } catch (...) {
            return nullptr;
        }
    }
    bool restoreState(LyrProperty::State& state) override {
        std::vector<T>& items = static_cast<ListState&>(state).items;
        const auto count = static_cast<long long>(items.size());
        if (!mayWrite(count, items.data())) {
            return false;
        }
        if (count == size() && isSame(mItems, items.data())) {
            return true;
        }
        return isUnlocked() && this->write([&] {
            mItems.swap(items);
            return true;
        });
    }

    bool copyValueFrom(const LyrProperty& source) override {
        const auto* typed = IF::getInterfaceConst(&source);
        if (!typed) {
            return false;
        }
        if (typed == this) {
            return true;
        }
        const long long count = typed->getArraySize();
        const T* items = typed->lockArrayPtr();
        const bool done = this->initArray(0, count - 1, items);
        typed->unlockArrayPtr(items);
        return done;
    }

protected:
    bool setResetItems(std::span<const T> items) {
        try {
            mResetItems.assign(items.begin(), items.end());
            return true;
        } catch (...) {
            return this->emitError(Lyr::AllocationFailed);
        }
    }

private:
    struct ListState : LyrProperty::State {
        explicit ListState(const std::vector<T>& stored) : items(stored) {}
        std::vector<T> items;
    };

    long long size() const noexcept { return static_cast<long long>(mItems.size()); }
    bool isInside(long long first, long long last) const noexcept {
        return first >= 0 && last >= first && last < size();
    }
    static bool isSame(std::span<const T> stored, const T* items) noexcept {
        return std::equal(stored.begin(), stored.end(), items,
                          [](const T& a, const T& b) { return LyrPropertyTraits<T>::same(a, b); });
    }
    bool mayWrite(long long count, const T* items) const {
        return !this->isReadOnly() && this->checkItems(count, items) == 1;
    }
    bool isUnlocked() const { return mLocks.load(std::memory_order_acquire) == 0 || this->emitError(Lyr::Locked); }

    std::vector<T> mItems;
    std::vector<T> mResetItems;
    mutable std::atomic<int> mLocks{0};
};
