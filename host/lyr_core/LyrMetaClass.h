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
    /** Makes, copies and assigns objects of one class. `storage` is null for an object of its own on the heap, else a
     * place of at least the instance size to construct in. Null means that memory ran out. */
    class LYR_CORE_EXPORT Factory {
    public:
        virtual ~Factory();
        virtual LyrClass* create(void* storage) const = 0;
        /** Null if the source is not of this class. */
        virtual LyrClass* createCopy(const LyrClass* from, void* storage) const = 0;
        /** False if either is not of this class, or the copy failed. */
        virtual bool assign(LyrClass* to, const LyrClass* from) const = 0;
        /** False for classes whose objects are no data (widgets, services): files that name them are refused. */
        virtual bool isStorable() const { return true; }
    };

    /** Hears of objects of a class, and of classes derived from it, that the framework creates and destroys: called
     * after the most derived constructor and before the most derived destructor, hooks of the class first, then those
     * of its parents. A hook that is added meanwhile hears of later objects only. */
    class LYR_CORE_EXPORT FactoryHook {
    public:
        FactoryHook() = default;
        FactoryHook(const FactoryHook&) = delete;
        FactoryHook& operator=(const FactoryHook&) = delete;
        /** Removes the hook from all classes. */
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
    /** True if objects of this class may be made from files. */
    bool isStorable() const noexcept { return mFactory && mFactory->isStorable(); }

    bool isOfType(const LyrMetaClass& other) const noexcept;
    bool isOfType(const char* className) const noexcept;

    /** A new object without references; the first handle that takes it owns it. Null, and an error, on failure. */
    LyrClass* create() const;
    /** As above, by class name. An unknown name gives null, silently. */
    static LyrClass* create(const char* className);
    /** A copy of an object of exactly this class or one derived from it, made by the class of the object. Null if the
     * object is not of this class; null, and an error, if it could not be copied. */
    LyrClass* clone(const LyrClass* from) const;
    /** Assigns. Both must be of this class (else false). An object assigned to itself is left alone. */
    bool copy(LyrClass* to, const LyrClass* from) const;
    /** Ends an object: roles, hooks, destructor; frees its memory if asked. Null is allowed. False, and an error, for
     * an object that somebody holds a reference to: it lives on. */
    static bool destruct(LyrClass* object, bool freeMemory);
    /** The first part of destruct(): gives up the object's roles and calls the hooks, once. For objects that something
     * other than the framework deletes, say a widget by its parent: their most derived destructor calls it first. */
    static void prepareDestruction(LyrClass* object) noexcept;

    void applyDefaultFlags(LyrClass* object) const;
    /** The bit of a flag name known to this class, its parents or the host; 0 if unknown. */
    unsigned int getFlagBit(const char* name) const noexcept;

    /** The class registered under a name, null if there is none. */
    static const LyrMetaClass* find(const char* className) noexcept;
    /** How many classes a module has registered. */
    static int moduleClassCount(const char* module) noexcept;

    /** Adds a hook for a class by name (the class need not exist yet). The hook is not called for objects that exist.
     * False if it is there already. */
    static bool addFactoryHook(const char* className, FactoryHook* hook) noexcept;
    static bool removeFactoryHook(const char* className, FactoryHook* hook) noexcept;

private:
    template <class Make>
    LyrClass* make(Make produce) const;
    void callCreationHooks(LyrClass* object) const noexcept;

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
