#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>

namespace {

/** Classes and hooks by name. Recursive: a hook may create objects and add hooks. */
struct Registry {
    std::recursive_mutex mutex;
    std::map<std::string, const LyrMetaClass*, std::less<>> classes;
    std::map<std::string, std::vector<LyrMetaClass::FactoryHook*>, std::less<>> hooks;

    static Registry& instance() {
        static Registry registry;
        return registry;
    }
};

std::vector<LyrMetaClass::FactoryHook*> hooksOf(const LyrMetaClass& meta) {
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    std::vector<LyrMetaClass::FactoryHook*> result;
    for (const LyrMetaClass* at = &meta; at; at = at->getParent()) {
        auto found = registry.hooks.find(std::string_view(at->getClassName()));
        if (found != registry.hooks.end()) {
            result.insert(result.end(), found->second.begin(), found->second.end());
        }
    }
    return result;
}

bool isHooked(const LyrMetaClass& meta, const LyrMetaClass::FactoryHook* hook) {
    const auto hooks = hooksOf(meta);
    return std::find(hooks.begin(), hooks.end(), hook) != hooks.end();
}

/** Calls each hook of a class; one that another hook removed meanwhile is not called. */
template <class Call>
void callHooks(const LyrMetaClass& meta, Call call) {
    for (LyrMetaClass::FactoryHook* hook : hooksOf(meta)) {
        if (isHooked(meta, hook)) {
            call(*hook);
        }
    }
}

constexpr LyrMetaClass::NamedFlag HOST_FLAGS[] = {
    {"CompatibilitySave", LyrFlags::COMPATIBILITY_SAVE},
    {"Document", LyrFlags::DOCUMENT},
    {"Preset", LyrFlags::PRESET},
};

}  // namespace

LyrMetaClass::Factory::~Factory() = default;
LyrMetaClass::FactoryHook::~FactoryHook() = default;

LyrMetaClass::LyrMetaClass(const char* className, std::size_t instanceSize, const LyrMetaClass* parent, Factory* factory,
                           const char* module, unsigned int classFlags, const NamedFlag* namedFlags, int namedFlagCount,
                           unsigned int defaultSet, unsigned int defaultClear, bool singleton)
    : mClassName(className ? className : ""),
      mModule(module ? module : ""),
      mInstanceSize(instanceSize),
      mParent(parent),
      mFactory(factory),
      mClassFlags(classFlags),
      mNamedFlags(namedFlags, namedFlags + (namedFlags ? namedFlagCount : 0)),
      mDefaultSet(defaultSet),
      mDefaultClear(defaultClear),
      mSingleton(singleton) {
    Registry& registry = Registry::instance();
    bool taken = false;
    {
        const std::lock_guard lock(registry.mutex);
        taken = !registry.classes.try_emplace(mClassName, this).second;
    }
    if (taken) {
        LyrError::emitError(LyrError::Message(Lyr::AlreadyRegistered));
    }
}

LyrMetaClass::~LyrMetaClass() {
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    auto found = registry.classes.find(mClassName);
    if (found != registry.classes.end() && found->second == this) {
        registry.classes.erase(found);
    }
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

LyrClass* LyrMetaClass::finishCreation(LyrClass* object) const {
    if (!object) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return nullptr;
    }
    object->mCreatedHooksRan = true;
    callHooks(*this, [&](FactoryHook& hook) { hook.objectCreated(object); });
    return object;
}

LyrClass* LyrMetaClass::create() const {
    if (!mFactory) {
        LyrError::emitError(LyrError::Message(Lyr::Failed));
        return nullptr;
    }
    return finishCreation(mFactory->create(nullptr));
}

LyrClass* LyrMetaClass::create(const char* className) {
    const LyrMetaClass* meta = find(className);
    return meta ? meta->create() : nullptr;
}

LyrClass* LyrMetaClass::clone(const LyrClass* from) const {
    if (!from || !from->getMetaClass().isOfType(*this)) {
        return nullptr;
    }
    const LyrMetaClass& meta = from->getMetaClass();
    LyrClass* copied = meta.mFactory ? meta.mFactory->createCopy(from, nullptr) : nullptr;
    return copied ? meta.finishCreation(copied) : nullptr;
}

bool LyrMetaClass::copy(LyrClass* to, const LyrClass* from) const {
    if (to && to == from) {
        return to->getMetaClass().isOfType(*this);
    }
    return mFactory && mFactory->assign(to, from);
}

void LyrMetaClass::destruct(LyrClass* object, bool freeMemory) {
    if (!object) {
        return;
    }
    auto* asObject = dynamic_cast<LyrObject*>(object);
    if (asObject) {
        asObject->beginDestruction();
    }
    if (object->mCreatedHooksRan) {
        object->mCreatedHooksRan = false;
        callHooks(object->getMetaClass(), [&](FactoryHook& hook) { hook.objectDestroyed(object); });
    }
    if (freeMemory) {
        delete object;
    } else {
        object->~LyrClass();
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

bool LyrMetaClass::addFactoryHook(const char* className, FactoryHook* hook) {
    if (!className || !hook) {
        return false;
    }
    Registry& registry = Registry::instance();
    const std::lock_guard lock(registry.mutex);
    auto& hooks = registry.hooks[className];
    if (std::find(hooks.begin(), hooks.end(), hook) != hooks.end()) {
        return false;
    }
    hooks.push_back(hook);
    return true;
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
