#pragma once

#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_core/LyrValueArrayProperty.h>

#include <vector>

/** Finds the property of an object by identifier and gives its typed interface; null if the object is null, or lacks
 * it, or the property is of another type. IF is LyrSingleValuePropertyIF<T> or LyrValueArrayPropertyIF<T>. */
template <class IF>
class LyrPropertyPtr {
public:
    LyrPropertyPtr(const LyrObject* object, Lyrenum id) noexcept
        : mProperty(object ? IF::getInterface(object->getProperty(id)) : nullptr) {}

    IF* get() const noexcept { return mProperty; }
    IF* operator->() const noexcept { return mProperty; }
    explicit operator bool() const noexcept { return mProperty != nullptr; }

private:
    IF* mProperty;
};

template <class IF>
using LyrSingleValueOPPtr = LyrPropertyPtr<IF>;
template <class IF>
using LyrValueArrayOPPtr = LyrPropertyPtr<IF>;

/** Reads a single value by identifier; `fallback` if the object has no such property. */
template <class T>
T lyrGetValue(const LyrObject* object, Lyrenum id, T fallback) {
    const LyrSingleValueOPPtr<LyrSingleValuePropertyIF<T>> property(object, id);
    T value{};
    return property && property->getValue(value) ? value : fallback;
}

/** Writes a single value by identifier. False if the object has no such property, or it refuses. */
template <class T>
bool lyrSetValue(LyrObject* object, Lyrenum id, const T& value) {
    const LyrSingleValueOPPtr<LyrSingleValuePropertyIF<T>> property(object, id);
    return property && property->setValue(value);
}

/** Changes the default of a single value by identifier, and leaves the value. False if the object has no such property,
 * or its default cannot be changed. */
template <class T>
bool lyrSetResetValue(LyrObject* object, Lyrenum id, const T& value) {
    const LyrSingleValueOPPtr<LyrSingleValuePropertyIF<T>> property(object, id);
    return property && property->setResetValue(value);
}

/** The scratch of code that edits lists: reads a whole list, to be changed and written back in one call. */
template <class T>
class LyrValueArrayOPCache {
public:
    /** Reads the list. False, and an empty cache, if the object has no such property or memory ran out. */
    bool load(const LyrObject* object, Lyrenum id) {
        const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<T>> property(object, id);
        mItems.clear();
        if (!property) {
            return false;
        }
        try {
            mItems.resize(static_cast<std::size_t>(property->getArraySize()));
        } catch (...) {
            return property->emitError(Lyr::AllocationFailed);
        }
        return property->getArrayItems(0, static_cast<long long>(mItems.size()) - 1, mItems.data());
    }
    /** Writes the list back whole. */
    bool store(LyrObject* object, Lyrenum id) const {
        const LyrValueArrayOPPtr<LyrValueArrayPropertyIF<T>> property(object, id);
        return property && property->initArray(0, static_cast<long long>(mItems.size()) - 1, mItems.data());
    }

    std::vector<T>& items() noexcept { return mItems; }
    const std::vector<T>& items() const noexcept { return mItems; }

private:
    std::vector<T> mItems;
};
