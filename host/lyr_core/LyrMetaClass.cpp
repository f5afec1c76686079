#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrKeepAlive_p.h>
#include <lyr_core/LyrLiveClasses_p.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrScratch.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <map>
#include <mutex>
#include <new>

namespace {

using Hook = LyrMetaClass::FactoryHook;

/** Classes and hooks by name. Recursive: a hook may create objects and add hooks. */
struct Registry {
    std::recursive_mutex mutex;
    std::map<std::string, const LyrMetaClass*, std::less<>> classes;
    std::map<std::string, std::vector<Hook*>, std::less<>> hooks;

    /** Never destroyed: static meta classes and objects of any library refer to it. */
    static Registry& instance() {
        alignas(Registry) static std::byte memory[sizeof(Registry)];
        static Registry& registry = *new (memory) Registry;
        return registry;
    }

    /** Calls `visit` with each hook of a class and of those that it derives from, until it answers false. */
    template <class Visit>
    void forEachHook(const LyrMetaClass& meta, Visit visit) {
        const std::lock_guard lock(mutex);
        for (const LyrMetaClass* at = &meta; at; at = at->getParent()) {
            auto found = hooks.find(std::string_view(at->getClassName()));
            if (found == hooks.end()) {
                continue;
            }
            for (Hook* hook : found->second) {
                if (!visit(hook)) {
                    return;
                }
            }
        }
    }
};

/** All meta classes, also those whose name another one has. A lock of its own: it is asked with others held. */
struct LiveClasses {
    std::mutex mutex;
    std::vector<const LyrMetaClass*> all;
    std::atomic<bool> someAreGone{false};

    /** Never destroyed, like the registry. */
    static LiveClasses& instance() {
        alignas(LiveClasses) static std::byte memory[sizeof(LiveClasses)];
        static LiveClasses& classes = *new (memory) LiveClasses;
        return classes;
    }
    void add(const LyrMetaClass* meta) {
        const std::lock_guard lock(mutex);
        all.push_back(meta);
    }
    void remove(const LyrMetaClass* meta) {
        const std::lock_guard lock(mutex);
        std::erase(all, meta);
        someAreGone = true;
    }
};

bool isHooked(const LyrMetaClass& meta, const Hook* wanted) {
    bool found = false;
    Registry::instance().forEachHook(meta, [&](const Hook* hook) {
        found = hook == wanted;
        return !found;
    });
    return found;
}

/** Calls each hook of a class once; one that another hook removed meanwhile is not called. */
template <class Call>
void callHooks(const LyrMetaClass& meta, Call call) noexcept {
    LyrScratch<Hook*> hooks;
    bool complete = true;
    Registry::instance().forEachHook(meta, [&](Hook* hook) {
        const bool known = std::find(hooks.begin(), hooks.end(), hook) != hooks.end();
        complete = known || hooks.append(hook);
        return complete;
    });
    for (Hook* hook : hooks) {
        try {
            if (isHooked(meta, hook)) {
                call(*hook);
            }
        } catch (...) {
            complete = false;
        }
    }
    if (!complete) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
    }
}

constexpr LyrMetaClass::NamedFlag HOST_FLAGS[] = {
    {"CompatibilitySave", LyrFlags::COMPATIBILITY_SAVE},
    {"Document", LyrFlags::DOCUMENT},
    {"Preset", LyrFlags::PRESET},
};

}  // namespace

LyrMetaClass::Factory::~Factory() = default;

LyrMetaClass::FactoryHook::~FactoryHook() {
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    for (auto& entry : registry.hooks) {
        std::erase(entry.second, this);
    }
    std::erase_if(registry.hooks, [](const auto& entry) { return entry.second.empty(); });
}

LyrMetaClass::LyrMetaClass(const char* className, std::size_t instanceSize, const LyrMetaClass* parent,
                           Factory* factory, const char* module, unsigned int classFlags, const NamedFlag* namedFlags,
                           int namedFlagCount, unsigned int defaultSet, unsigned int defaultClear, bool singleton)
    : mInstanceSize(instanceSize),
      mParent(parent),
      mFactory(factory),
      mClassFlags(classFlags),
      mDefaultSet(defaultSet),
      mDefaultClear(defaultClear),
      mSingleton(singleton) {
    Lyrenum result = Lyr::AlreadyRegistered;
    try {
        mClassName = className ? className : "";
        mModule = module ? module : "";
        mNamedFlags.assign(namedFlags, namedFlags + (namedFlags ? namedFlagCount : 0));
        LiveClasses::instance().add(this);
        Registry& registry = Registry::instance();
        const std::lock_guard lock(registry.mutex);
        if (registry.classes.try_emplace(mClassName, this).second) {
            result = Lyr::Success;
        }
    } catch (...) {
        result = Lyr::AllocationFailed;
    }
    if (result != Lyr::Success) {
        LyrError::emitError(LyrError::Message(result));
    }
}

LyrMetaClass::~LyrMetaClass() {
    LiveClasses::instance().remove(this);
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    auto found = registry.classes.find(mClassName);
    if (found != registry.classes.end() && found->second == this) {
        registry.classes.erase(found);
    }
}

bool lyr_live_classes::contains(const LyrMetaClass& meta) noexcept {
    LiveClasses& classes = LiveClasses::instance();
    if (!classes.someAreGone) {
        return true;
    }
    const std::lock_guard lock(classes.mutex);
    const LyrMetaClass* at = &meta;
    while (at && std::find(classes.all.begin(), classes.all.end(), at) != classes.all.end()) {
        at = at->getParent();
    }
    return !at;
}

bool LyrMetaClass::isOfType(const LyrMetaClass& other) const noexcept {
    // The same descriptor is the usual case; a class known by name alone may have another one.
    return this == &other || isOfType(other.getClassName());
}

bool LyrMetaClass::isOfType(const char* className) const noexcept {
    for (const LyrMetaClass* at = this; at && className; at = at->mParent) {
        if (at->mClassName == className) {
            return true;
        }
    }
    return false;
}

/** What every creation does around `produce`, which gives the new object or null. */
template <class Make>
LyrClass* LyrMetaClass::make(Make produce) const {
    if (!mFactory) {
        LyrError::emitError(LyrError::Message(Lyr::Failed));
        return nullptr;
    }
    LyrClass* object = nullptr;
    try {
        object = produce(*mFactory);
    } catch (...) {
        object = nullptr;
    }
    if (!object) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return nullptr;
    }
    LyrClassManager::enter(object);
    callCreationHooks(object);
    return object;
}

void LyrMetaClass::callCreationHooks(LyrClass* object) const noexcept {
    // A hook may hold the object for a moment: that must not be the end of it.
    const LyrKeepAlive keepAlive(dynamic_cast<LyrObject*>(object));
    object->mCreatedHooksRan = true;
    callHooks(*this, [&](FactoryHook& hook) { hook.objectCreated(object); });
}

LyrClass* LyrMetaClass::create() const {
    return make([](const Factory& factory) { return factory.create(nullptr); });
}

LyrClass* LyrMetaClass::create(const char* className) {
    const LyrMetaClass* meta = find(className);
    return meta ? meta->create() : nullptr;
}

LyrClass* LyrMetaClass::clone(const LyrClass* from) const {
    if (!from || !from->getMetaClass().isOfType(*this)) {
        return nullptr;
    }
    return from->getMetaClass().make([&](const Factory& factory) {
        LyrClass* copied = factory.createCopy(from, nullptr);
        const auto* object = dynamic_cast<const LyrObject*>(copied);
        if (object && (object->mCopyIncomplete || object->mLacksProperty)) {
            destruct(copied, true);
            copied = nullptr;
        }
        return copied;
    });
}

bool LyrMetaClass::copy(LyrClass* to, const LyrClass* from) const {
    if (to && to == from) {
        return to->getMetaClass().isOfType(*this);
    }
    try {
        return mFactory && mFactory->assign(to, from);
    } catch (...) {
        LyrError::emitError(LyrError::Message(to, Lyr::AllocationFailed));
        return false;
    }
}

bool LyrMetaClass::destruct(LyrClass* object, bool freeMemory) {
    const auto* asObject = dynamic_cast<const LyrObject*>(object);
    if (asObject && asObject->getRefCount() > 0) {
        LyrError::emitError(LyrError::Message(object, Lyr::Failed));
        return false;
    }
    prepareDestruction(object);
    if (freeMemory) {
        delete object;
    } else if (object) {
        object->~LyrClass();
    }
    return true;
}

void LyrMetaClass::prepareDestruction(LyrClass* object) noexcept {
    if (!object) {
        return;
    }
    if (auto* asObject = dynamic_cast<LyrObject*>(object)) {
        asObject->beginDestruction();
    }
    LyrClassManager::leave(object);
    if (object->mCreatedHooksRan) {
        object->mCreatedHooksRan = false;
        callHooks(object->getMetaClass(), [&](FactoryHook& hook) { hook.objectDestroyed(object); });
    }
}

void LyrMetaClass::applyDefaultFlags(LyrClass* object) const {
    if (object) {
        object->setFlags(mDefaultSet, mDefaultClear);
    }
}

unsigned int LyrMetaClass::getFlagBit(const char* name) const noexcept {
    if (!name) {
        return 0;
    }
    for (const LyrMetaClass* at = this; at; at = at->mParent) {
        for (const NamedFlag& flag : at->mNamedFlags) {
            if (std::strcmp(flag.name, name) == 0) {
                return flag.bit;
            }
        }
    }
    for (const NamedFlag& flag : HOST_FLAGS) {
        if (std::strcmp(flag.name, name) == 0) {
            return flag.bit;
        }
    }
    return 0;
}

const LyrMetaClass* LyrMetaClass::find(const char* className) noexcept {
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    auto found = className ? registry.classes.find(std::string_view(className)) : registry.classes.end();
    return found != registry.classes.end() ? found->second : nullptr;
}

int LyrMetaClass::moduleClassCount(const char* module) noexcept {
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    return static_cast<int>(std::count_if(registry.classes.begin(), registry.classes.end(), [&](const auto& entry) {
        return module && std::strcmp(entry.second->getModule(), module) == 0;
    }));
}

bool LyrMetaClass::addFactoryHook(const char* className, FactoryHook* hook) noexcept {
    if (!className || !hook) {
        return false;
    }
    try {
        Registry& registry = Registry::instance();
        const std::lock_guard lock(registry.mutex);
        auto& hooks = registry.hooks[className];
        if (std::find(hooks.begin(), hooks.end(), hook) != hooks.end()) {
            return false;
        }
        hooks.push_back(hook);
        return true;
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return false;
    }
}

bool LyrMetaClass::removeFactoryHook(const char* className, FactoryHook* hook) noexcept {
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    auto found = className ? registry.hooks.find(std::string_view(className)) : registry.hooks.end();
    if (found == registry.hooks.end() || std::erase(found->second, hook) == 0) {
        return false;
    }
    if (found->second.empty()) {
        registry.hooks.erase(found);
    }
    return true;
}
