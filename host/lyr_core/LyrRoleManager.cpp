#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrRoleManager.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <mutex>
#include <new>
#include <string>
#include <vector>

namespace {

using Hook = LyrObject::RoleHook;

struct Role {
    int count = 0;
    std::vector<std::string> defaultClasses;
    std::vector<Hook*> hooks;
    std::unique_ptr<LyrObject::RoleInterface> roleInterface;

    bool isUnused() const { return count <= 0 && defaultClasses.empty() && hooks.empty() && !roleInterface; }
};

/** Recursive: hooks may add roles and objects. */
struct Roles {
    std::recursive_mutex mutex;
    std::map<int, Role> map;

    /** Never destroyed: objects of any library give up their roles when they go. */
    static Roles& instance() {
        alignas(Roles) static std::byte memory[sizeof(Roles)];
        static Roles& roles = *new (memory) Roles;
        return roles;
    }
    Role* find(Lyrenum role) {
        auto found = map.find(role);
        return found != map.end() ? &found->second : nullptr;
    }
    /** A role without users, hooks and classes is forgotten. */
    void tidy(Lyrenum role) {
        const Role* entry = find(role);
        if (entry && entry->isUnused()) {
            map.erase(role);
        }
    }
};

enum class Missing { Make, Refuse };

/** Changes the entry of a role. False if it is missing and not to be made; false, and an error, when memory ran out. */
template <class Change>
bool changeRole(Lyrenum role, Missing missing, Change change) noexcept {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    bool done = false;
    try {
        Role* entry = missing == Missing::Make ? &roles.map[role] : roles.find(role);
        done = entry && change(*entry);
    } catch (...) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
    }
    roles.tidy(role);
    return done;
}

/** Appends what is not there yet. */
template <class Item>
bool appendNew(std::vector<Item>& items, const Item& item) {
    if (std::find(items.begin(), items.end(), item) != items.end()) {
        return false;
    }
    items.push_back(item);
    return true;
}

bool isHooked(Lyrenum role, const Hook* hook) {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    const Role* entry = roles.find(role);
    return entry && std::find(entry->hooks.begin(), entry->hooks.end(), hook) != entry->hooks.end();
}

/** Calls each hook of a role; one that another hook removed meanwhile is not called. False if memory ran out. */
template <class Call>
bool callHooks(Lyrenum role, Call call) noexcept {
    LyrScratch<Hook*> hooks;
    bool complete = true;
    {
        Roles& roles = Roles::instance();
        const std::lock_guard lock(roles.mutex);
        if (const Role* entry = roles.find(role)) {
            complete =
                std::all_of(entry->hooks.begin(), entry->hooks.end(), [&](Hook* hook) { return hooks.append(hook); });
        }
    }
    for (Hook* hook : hooks) {
        try {
            if (isHooked(role, hook)) {
                call(*hook);
            }
        } catch (...) {
            complete = false;
        }
    }
    if (!complete) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
    }
    return complete;
}

}  // namespace

LyrObject::RoleHook::~RoleHook() {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    for (auto& entry : roles.map) {
        std::erase(entry.second.hooks, this);
    }
    std::erase_if(roles.map, [](const auto& entry) { return entry.second.isUnused(); });
}

LyrObject::RoleInterface::~RoleInterface() = default;

bool LyrObject::RoleManager::addRole(Lyrenum role) noexcept {
    return changeRole(role, Missing::Make, [](Role& entry) { return ++entry.count > 0; });
}

bool LyrObject::RoleManager::removeRole(Lyrenum role) noexcept {
    return changeRole(role, Missing::Refuse, [](Role& entry) { return entry.count > 0 && entry.count-- > 0; });
}

bool LyrObject::RoleManager::isRole(Lyrenum role) noexcept {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    const Role* entry = roles.find(role);
    return entry && entry->count > 0;
}

bool LyrObject::RoleManager::addDefaultRole(const LyrMetaClass& meta, Lyrenum role) noexcept {
    return changeRole(role, Missing::Make,
                      [&](Role& entry) { return appendNew(entry.defaultClasses, std::string(meta.getClassName())); });
}

bool LyrObject::RoleManager::removeDefaultRole(const LyrMetaClass& meta, Lyrenum role) noexcept {
    return changeRole(role, Missing::Refuse, [&](Role& entry) {
        return std::erase_if(entry.defaultClasses, [&](const auto& name) { return name == meta.getClassName(); }) > 0;
    });
}

bool LyrObject::RoleManager::addHook(Lyrenum role, RoleHook* hook) noexcept {
    return hook && changeRole(role, Missing::Make, [&](Role& entry) { return appendNew(entry.hooks, hook); });
}

bool LyrObject::RoleManager::removeHook(Lyrenum role, RoleHook* hook) noexcept {
    return changeRole(role, Missing::Refuse, [&](Role& entry) { return std::erase(entry.hooks, hook) > 0; });
}

bool LyrObject::RoleManager::setRoleInterface(Lyrenum role, std::unique_ptr<RoleInterface> roleInterface) noexcept {
    return changeRole(role, roleInterface ? Missing::Make : Missing::Refuse, [&](Role& entry) {
        const bool changes = roleInterface || entry.roleInterface;
        entry.roleInterface = std::move(roleInterface);
        return changes;
    });
}

LyrObject::RoleInterface* LyrObject::RoleManager::getRoleInterface(Lyrenum role) noexcept {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    const Role* entry = roles.find(role);
    return entry ? entry->roleInterface.get() : nullptr;
}

bool LyrObject::RoleManager::defaultRoles(const LyrMetaClass& meta, LyrScratch<Lyrenum>& roles) noexcept {
    Roles& known = Roles::instance();
    const std::lock_guard lock(known.mutex);
    return std::all_of(known.map.begin(), known.map.end(), [&](const auto& item) {
        const auto& classes = item.second.defaultClasses;
        const bool wanted = std::any_of(classes.begin(), classes.end(),
                                        [&](const std::string& name) { return meta.isOfType(name.c_str()); });
        return !wanted || roles.append(Lyrenum(item.first));
    });
}

bool LyrObject::RoleManager::enter(Lyrenum role, const LyrObjectLink& object) noexcept {
    bool done = true;
    const bool complete = callHooks(role, [&](RoleHook& hook) {
        // A hook before may have ended the role again.
        done = (!object.getLink()->isRoleActive(role) || hook.enterRoleHook(object)) && done;
    });
    return complete && done;
}

void LyrObject::RoleManager::leave(Lyrenum role, const LyrObjectLink& object) noexcept {
    callHooks(role, [&](RoleHook& hook) { hook.leaveRoleHook(object); });
}
