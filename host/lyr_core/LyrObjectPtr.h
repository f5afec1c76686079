#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrObject.h>

#include <utility>

/** Holds a reference to an object: it lives at least as long as the handle. */
class LyrObjectPtr {
public:
    LyrObjectPtr() noexcept = default;
    LyrObjectPtr(LyrObject* object) noexcept : mObject(object) {  // NOLINT(google-explicit-constructor)
        if (mObject) {
            mObject->incRef();
        }
    }
    LyrObjectPtr(const LyrObjectPtr& other) noexcept : LyrObjectPtr(other.mObject) {}
    LyrObjectPtr(LyrObjectPtr&& other) noexcept : mObject(std::exchange(other.mObject, nullptr)) {}
    LyrObjectPtr& operator=(LyrObjectPtr other) noexcept {
        std::swap(mObject, other.mObject);
        return *this;
    }
    ~LyrObjectPtr() {
        if (mObject) {
            mObject->decRef();
        }
    }

    LyrObject* get() const noexcept { return mObject; }
    LyrObject* operator->() const noexcept { return mObject; }
    LyrObject& operator*() const noexcept { return *mObject; }
    explicit operator bool() const noexcept { return mObject != nullptr; }
    friend bool operator==(const LyrObjectPtr& a, const LyrObjectPtr& b) noexcept { return a.mObject == b.mObject; }
    friend bool operator==(const LyrObjectPtr& a, const LyrObject* b) noexcept { return a.mObject == b; }

private:
    LyrObject* mObject = nullptr;
};

/** Makes a new object of a named class in a scope and holds it; of a singleton class, finds the one that is there (of
 * the class itself, else of one derived from it) and leaves its scope. Null when the class is unknown, no LyrObject, or
 * the object could not be made. */
class LYR_CORE_EXPORT LyrObjectRefPtr {
public:
    LyrObjectRefPtr() noexcept = default;
    LyrObjectRefPtr(const char* className, Lyrenum scope) noexcept;

    LyrObject* get() const noexcept { return mObject.get(); }
    LyrObject* operator->() const noexcept { return mObject.get(); }
    explicit operator bool() const noexcept { return static_cast<bool>(mObject); }
    /** Drops the reference: an object that nobody else holds dies. */
    void release() noexcept { mObject = LyrObjectPtr(); }
    operator const LyrObjectPtr&() const noexcept { return mObject; }  // NOLINT(google-explicit-constructor)

private:
    LyrObjectPtr mObject;
};
