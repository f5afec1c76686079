#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include <lyr_core/LyrString.h>

/** A growable list of strings, counted from 0. */
class LyrStringList {
public:
    using value_type = LyrString;
    using const_iterator = std::vector<LyrString>::const_iterator;

    LyrStringList() = default;
    LyrStringList(std::initializer_list<LyrString> items) : mItems(items) {}
    /** A list of the items of any range whose items convert to LyrString, a toolkit's string list for instance. */
    template <class Range>
    static LyrStringList fromRange(const Range& range) {
        LyrStringList list;
        for (const auto& item : range) {
            list.append(LyrString(item));
        }
        return list;
    }
    /** The same strings in another list class that has append() and value_type. */
    template <class List>
    List toList() const {
        List list;
        for (const LyrString& item : mItems) {
            list.append(static_cast<typename List::value_type>(item));
        }
        return list;
    }

    long long size() const { return static_cast<long long>(mItems.size()); }
    bool isEmpty() const { return mItems.empty(); }
    /** The string of an index, a null string outside the list. */
    LyrString at(long long index) const {
        return index >= 0 && index < size() ? mItems[static_cast<std::size_t>(index)] : LyrString();
    }
    LyrString operator[](long long index) const { return at(index); }

    void append(LyrString item) { mItems.push_back(std::move(item)); }
    void append(const LyrStringList& other) {
        const std::vector<LyrString> items = other.mItems;  // other may be this list
        mItems.insert(mItems.end(), items.begin(), items.end());
    }
    /** Removes the string of an index; false outside the list. */
    bool remove(long long index) {
        if (index < 0 || index >= size()) {
            return false;
        }
        mItems.erase(mItems.begin() + index);
        return true;
    }
    void clear() { mItems.clear(); }

    /** The first index of an equal string, −1 when there is none. */
    long long indexOf(const LyrString& item) const {
        const auto found = std::find(mItems.begin(), mItems.end(), item);
        return found == mItems.end() ? -1 : found - mItems.begin();
    }
    bool contains(const LyrString& item) const { return indexOf(item) >= 0; }

    /** All strings in order with the separator between them; an empty string for an empty list. */
    LyrString join(const LyrString& separator) const {
        std::string text;
        for (std::size_t i = 0; i < mItems.size(); ++i) {
            text += i == 0 ? std::string_view() : separator.view();
            text += mItems[i].view();
        }
        return LyrString(std::move(text));
    }

    const_iterator begin() const { return mItems.begin(); }
    const_iterator end() const { return mItems.end(); }

    friend bool operator==(const LyrStringList& a, const LyrStringList& b) = default;

private:
    std::vector<LyrString> mItems;
};
