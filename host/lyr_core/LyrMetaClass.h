#pragma once

#include <lyr_core/LyrCoreExport.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

class LyrClass;

/** The description of one class: its name, parent, factory and module. One static instance a class, never changed; it
 *  registers its name when constructed and takes it back when destroyed. */
class LYR_CORE_EXPORT LyrMetaClass {
public:
    /** Makes, copies and assigns objects of one class. `storage` is null for an object of its own on the heap, else a place of
     *  at least the instance size to construct in. */
    class LYR_CORE_EXPORT Factory {
    public:
        virtual ~Factory();
        virtual LyrClass* create(void* storage) const = 0;
        /** Null if the source is not of this class. */
        virtual LyrClass* createCopy(const LyrClass* from, void* storage) const = 0;
        /** False if either is not of this class, or the copy failed. */
        virtual bool assign(LyrClass* to, const LyrClass* from) const = 0;
    };

    /** Hears of objects of a class, and of classes derived from it, that the framework creates and destroys: called after the
     *  most derived constructor and before the most derived destructor. */
    class LYR_CORE_EXPORT FactoryHook {
    public:
        virtual ~FactoryHook();
        virtual void objectCreated(LyrClass* object) = 0;
        virtual void objectDestroyed(LyrClass* object) = 0;
    };

    /** A flag that a class names for setFlag(name, on). */
    struct NamedFlag {
        const char* name;
        unsigned int bit;
    };

    /** @param parent     the class derived from, null for the root
     *  @param factory    owned; null for a class that cannot be created by name
     *  @param defaultSet, defaultClear  flags applied by applyDefaultFlags
     *  A name that is taken already is reported as Lyr::AlreadyRegistered and not registered again. */
    LyrMetaClass(const char* className, std::size_t instanceSize, const LyrMetaClass* parent, Factory* factory,
                 const char* module, unsigned int classFlags, const NamedFlag* namedFlags, int namedFlagCount,
                 unsigned int defaultSet, unsigned int defaultClear, bool singleton);
    ~LyrMetaClass();
    LyrMetaClass(const LyrMetaClass&) = delete;
    LyrMetaClass& operator=(const LyrMetaClass&) = delete;

    const char* getClassName() const noexcept { return mClassName.c_str(); }
    const char* getModule() const noexcept { return mModule.c_str(); }
    std::size_t getInstanceSize() const noexcept { return mInstanceSize; }
    const LyrMetaClass* getParent() const noexcept { return mParent; }
    unsigned int getClassFlags() const noexcept { return mClassFlags; }
    bool isSingleton() const noexcept { return mSingleton; }
    /** True if create() can make objects of this class. */
    bool isCreatable() const noexcept { return static_cast<bool>(mFactory); }

    bool isOfType(const LyrMetaClass& other) const noexcept;
    bool isOfType(const char* className) const noexcept;

    /** A new object without references; the first handle that takes it owns it. Null, and an error, on failure. */
    LyrClass* create() const;
    /** As above, by class name. An unknown name gives null, silently. */
    static LyrClass* create(const char* className);
    /** A copy of an object of exactly this class or one derived from it, made by the class of the object. Null on failure. */
    LyrClass* clone(const LyrClass* from) const;
    /** Assigns. Both must be of this class (else false). An object assigned to itself is left alone. */
    bool copy(LyrClass* to, const LyrClass* from) const;
    /** Ends an object: hooks, roles, destructor; frees its memory if asked. Null is allowed. */
    static void destruct(LyrClass* object, bool freeMemory);

    void applyDefaultFlags(LyrClass* object) const;
    /** The bit of a flag name known to this class, its parents or the host; 0 if unknown. */
    unsigned int getFlagBit(const char* name) const noexcept;

    /** The class registered under a name, null if there is none. */
    static const LyrMetaClass* find(const char* className) noexcept;
    /** How many classes a module has registered. */
    static int moduleClassCount(const char* module) noexcept;

    /** Adds a hook for a class by name (the class need not exist yet). The hook is not called for objects that exist. */
    static bool addFactoryHook(const char* className, FactoryHook* hook);
    static bool removeFactoryHook(const char* className, FactoryHook* hook) noexcept;

private:
    LyrClass* finishCreation(LyrClass* object) const;

    std::string mClassName;
    std::string mModule;
    std::size_t mInstanceSize;
    const LyrMetaClass* mParent;
    std::unique_ptr<Factory> mFactory;
    unsigned int mClassFlags;
    std::vector<NamedFlag> mNamedFlags;
    unsigned int mDefaultSet;
    unsigned int mDefaultClear;
    bool mSingleton;
};
