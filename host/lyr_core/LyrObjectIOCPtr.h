#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectPtr.h>

#include <cstddef>
#include <list>

/** Holds a reference to an object and has its messages sent to a listener. Either may go first: the handle then has no
 * object, or no listener, any more. */
class LYR_CORE_EXPORT LyrObjectIOCPtr {
public:
    explicit LyrObjectIOCPtr(LyrIOC* listener = nullptr, LyrObject* object = nullptr) noexcept;
    LyrObjectIOCPtr(const LyrObjectIOCPtr& other) noexcept;
    LyrObjectIOCPtr& operator=(const LyrObjectIOCPtr& other) noexcept;
    LyrObjectIOCPtr& operator=(LyrObject* object) noexcept;
    ~LyrObjectIOCPtr();

    void setListener(LyrIOC* listener) noexcept;
    LyrIOC* getListener() const noexcept { return mLine.getListener(); }

    LyrObject* get() const noexcept { return mObject; }
    LyrObject* operator->() const noexcept { return mObject; }
    explicit operator bool() const noexcept { return mObject != nullptr; }
    friend bool operator==(const LyrObjectIOCPtr& a, const LyrObject* b) noexcept { return a.get() == b; }

private:
    class LYR_CORE_EXPORT Line : public LyrIOCConnection {
    public:
        explicit Line(LyrObjectIOCPtr& handle) noexcept : mHandle(handle) {}

    protected:
        void senderDestroyed() override { mHandle.mObject = nullptr; }

    private:
        LyrObjectIOCPtr& mHandle;
    };

    void reconnect(LyrIOC* listener) noexcept;

    LyrObject* mObject = nullptr;
    Line mLine{*this};
};

/** A list of objects whose messages all go to one listener. */
class LYR_CORE_EXPORT LyrObjectIOCPtrList {
public:
    LyrObjectIOCPtrList() noexcept = default;
    LyrObjectIOCPtrList(const LyrObjectIOCPtrList&) = delete;
    LyrObjectIOCPtrList& operator=(const LyrObjectIOCPtrList&) = delete;

    void setListener(LyrIOC* listener) noexcept;
    LyrIOC* getListener() const noexcept { return mListener.getListener(); }
    /** False, and an error, when memory ran out. */
    bool append(LyrObject* object) noexcept;
    void clear() noexcept;
    std::size_t size() const noexcept { return mItems.size(); }
    /** Null outside the list, and for an object that is gone. */
    LyrObject* at(std::size_t index) const noexcept;
    bool contains(const LyrObject* object) const noexcept;

private:
    LyrIOCConnection mListener;  ///< without sender: knows whether the listener is still there
    std::list<LyrObjectIOCPtr> mItems;
};
