#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectPtr.h>

#include <cstddef>
#include <list>

/** Holds a reference to an object and has its messages sent to a listener. The listener may go first: the line then ends. */
class LYR_CORE_EXPORT LyrObjectIOCPtr {
public:
    explicit LyrObjectIOCPtr(LyrIOC* listener = nullptr, LyrObject* object = nullptr) noexcept;
    LyrObjectIOCPtr(const LyrObjectIOCPtr& other) noexcept;
    LyrObjectIOCPtr& operator=(const LyrObjectIOCPtr& other) noexcept;
    LyrObjectIOCPtr& operator=(LyrObject* object) noexcept;

    void setListener(LyrIOC* listener) noexcept;
    LyrIOC* getListener() const noexcept { return mListener; }

    LyrObject* get() const noexcept { return mObject.get(); }
    LyrObject* operator->() const noexcept { return mObject.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(mObject); }
    friend bool operator==(const LyrObjectIOCPtr& a, const LyrObject* b) noexcept { return a.get() == b; }

private:
    void reconnect() noexcept;

    LyrIOC* mListener = nullptr;
    LyrObjectPtr mObject;
    LyrIOCConnection mLine;
};

/** A list of objects whose messages all go to one listener. */
class LYR_CORE_EXPORT LyrObjectIOCPtrList {
public:
    void setListener(LyrIOC* listener) noexcept;
    /** May throw std::bad_alloc. */
    void append(LyrObject* object);
    void clear() noexcept { mItems.clear(); }
    std::size_t size() const noexcept { return mItems.size(); }
    LyrObject* at(std::size_t index) const noexcept;
    bool contains(const LyrObject* object) const noexcept;

private:
    LyrIOC* mListener = nullptr;
    std::list<LyrObjectIOCPtr> mItems;
};
