#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrEmbeddedList.h>
#include <lyr_core/Lyrenum.h>

#include <cstddef>

class LyrMetaClass;

/** Class flags with a meaning for the host. */
namespace LyrFlags {
inline constexpr unsigned int DOCUMENT = 0x10000000;  ///< data that belongs to the document's content
inline constexpr unsigned int PRESET = 0x20000000;    ///< a change marks documents and presets as modified
inline constexpr unsigned int DATA = DOCUMENT | PRESET;
inline constexpr unsigned int COMPATIBILITY_SAVE = 0x04000000;  ///< named "CompatibilitySave"
}  // namespace LyrFlags

/** Base of everything that lives in the object framework: a class description, flags and a scope.
 *
 *  Memory comes from lyrMalloc: `new` of a framework class gives null when there is none, it does not throw. */
class LYR_CORE_EXPORT LyrClass : public LyrEmbeddedListNode<LyrClass, LyrClass> {
public:
    LyrClass() noexcept = default;
    LyrClass(const LyrClass& other) noexcept;
    LyrClass& operator=(const LyrClass& other) noexcept;
    virtual ~LyrClass();

    static const LyrMetaClass& metaClass();
    virtual const LyrMetaClass& getMetaClass() const;

    /** The first word replaces the transient bits (16 while a default is being applied, 0 after), the second is added
     * to the protected bits. They are kept for inspection; no protected bit carries behaviour. */
    void setProtectedFlags(unsigned int transient, unsigned int added) noexcept;
    unsigned int getProtectedFlags() const noexcept { return mProtectedFlags | mTransientFlags; }

    /** Sets the bits of the first word, then clears those of the second. */
    void setFlags(unsigned int set, unsigned int clear);
    /** Sets or clears the flag with this name (the host's, or one registered by the meta class). False if it is
     * unknown. */
    bool setFlag(const char* name, bool on);
    unsigned int getFlags(unsigned int mask = ~0u) const noexcept { return mFlags & mask; }

    void setScope(Lyrenum scope) noexcept { mScope = scope; }
    Lyrenum getScope() const noexcept { return mScope; }

    static void* operator new(std::size_t size) noexcept;
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* memory) noexcept;
    static void operator delete(void*, void*) noexcept {}

protected:
    /** Called before and after a change of the flags. */
    virtual void flagsWillChange(unsigned int set, unsigned int clear);
    virtual void flagsHaveChanged(unsigned int before);

private:
    friend class LyrMetaClass;
    unsigned int mFlags = 0;
    unsigned int mProtectedFlags = 0;
    unsigned int mTransientFlags = 0;
    Lyrenum mScope;
    bool mCreatedHooksRan = false;
};

/** An object that is a member of another: properties, actions. */
class LYR_CORE_EXPORT LyrClassMember : public LyrClass {
public:
    using LyrClass::LyrClass;
    static void* operator new(std::size_t size) noexcept { return LyrClass::operator new(size); }
    static void* operator new(std::size_t size, void* place) noexcept { return LyrClass::operator new(size, place); }
    static void operator delete(void* memory) noexcept { LyrClass::operator delete(memory); }
    static void operator delete(void* memory, void* place) noexcept { LyrClass::operator delete(memory, place); }
};

/** Base of private parts: memory from lyrMalloc, so that a failed allocation gives null and can be reported. */
class LYR_CORE_EXPORT LyrPrivatePart {
public:
    static void* operator new(std::size_t size) noexcept;
    static void operator delete(void* memory) noexcept;
};

/** Holds some flags of an object at given values while it lives; its destructor restores exactly what they were. */
class LYR_CORE_EXPORT LyrLocalClassFlags {
public:
    /** The bits of `mask` become those of `value`. A null object is allowed and nothing happens. */
    LyrLocalClassFlags(LyrClass* object, unsigned int mask, unsigned int value);
    ~LyrLocalClassFlags();
    LyrLocalClassFlags(const LyrLocalClassFlags&) = delete;
    LyrLocalClassFlags& operator=(const LyrLocalClassFlags&) = delete;

private:
    LyrClass* mObject;
    unsigned int mMask;
    unsigned int mBefore;
};
