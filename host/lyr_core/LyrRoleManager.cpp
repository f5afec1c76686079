#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrRoleManager.h>

#include <algorithm>
#include <map>
#include <mutex>

namespace {

struct Role {
    int count = 0;
    std::vector<std::string> defaultClasses;
    std::vector<LyrObject::RoleHook*> hooks;
    std::unique_ptr<LyrObject::RoleInterface> roleInterface;
};

/** Recursive: hooks may add roles and objects. */
struct Roles {
    std::recursive_mutex mutex;
    std::map<int, Role> map;

    static Roles& instance() {
        static Roles roles;
        return roles;
    }
    Role* find(Lyrenum role) {
        auto found = map.find(role);
        return found != map.end() ? &found->second : nullptr;
    }
    /** A role without users, hooks and classes is forgotten. */
    void tidy(Lyrenum role) {
        const Role* entry = find(role);
        if (entry && entry->count <= 0 && entry->defaultClasses.empty() && entry->hooks.empty() && !entry->roleInterface) {
            map.erase(role);
        }
    }
};

std::vector<LyrObject::RoleHook*> hooksOf(Lyrenum role) {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    const Role* entry = roles.find(role);
    return entry ? entry->hooks : std::vector<LyrObject::RoleHook*>();
}

bool isHooked(Lyrenum role, const LyrObject::RoleHook* hook) {
    const auto hooks = hooksOf(role);
    return std::find(hooks.begin(), hooks.end(), hook) != hooks.end();
}

}  // namespace

LyrObject::RoleHook::~RoleHook() = default;
LyrObject::RoleInterface::~RoleInterface() = default;

bool LyrObject::RoleManager::addRole(Lyrenum role) {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    ++roles.map[role].count;
    return true;
}

bool LyrObject::RoleManager::removeRole(Lyrenum role) {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    Role* entry = roles.find(role);
    if (!entry || entry->count <= 0) {
        return false;
    }
    --entry->count;
    roles.tidy(role);
    return true;
}

bool LyrObject::RoleManager::isRole(Lyrenum role) noexcept {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    const Role* entry = roles.find(role);
    return entry && entry->count > 0;
}

bool LyrObject::RoleManager::addDefaultRole(const LyrMetaClass& meta, Lyrenum role) {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    auto& classes = roles.map[role].defaultClasses;
    if (std::find(classes.begin(), classes.end(), meta.getClassName()) != classes.end()) {
        return false;
    }
    classes.emplace_back(meta.getClassName());
    return true;
}

bool LyrObject::RoleManager::removeDefaultRole(const LyrMetaClass& meta, Lyrenum role) {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    Role* entry = roles.find(role);
    if (!entry || std::erase(entry->defaultClasses, std::string(meta.getClassName())) == 0) {
        return false;
    }
    roles.tidy(role);
    return true;
}

bool LyrObject::RoleManager::addHook(Lyrenum role, RoleHook* hook) {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    if (!hook || isHooked(role, hook)) {
        return false;
    }
    roles.map[role].hooks.push_back(hook);
    return true;
}

bool LyrObject::RoleManager::removeHook(Lyrenum role, RoleHook* hook) noexcept {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    Role* entry = roles.find(role);
    if (!entry || std::erase(entry->hooks, hook) == 0) {
        return false;
    }
    roles.tidy(role);
    return true;
}

bool LyrObject::RoleManager::setRoleInterface(Lyrenum role, std::unique_ptr<RoleInterface> roleInterface) {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    if (!roleInterface && !roles.find(role)) {
        return false;
    }
    roles.map[role].roleInterface = std::move(roleInterface);
    roles.tidy(role);
    return true;
}

LyrObject::RoleInterface* LyrObject::RoleManager::getRoleInterface(Lyrenum role) noexcept {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    const Role* entry = roles.find(role);
    return entry ? entry->roleInterface.get() : nullptr;
}

std::vector<Lyrenum> LyrObject::RoleManager::defaultRoles(const LyrMetaClass& meta) {
    Roles& roles = Roles::instance();
    const std::lock_guard lock(roles.mutex);
    std::vector<Lyrenum> result;
    for (const auto& [role, entry] : roles.map) {
        const bool wanted = std::any_of(entry.defaultClasses.begin(), entry.defaultClasses.end(),
                                        [&](const std::string& name) { return meta.isOfType(name.c_str()); });
        if (wanted) {
            result.emplace_back(role);
        }
    }
    return result;
}

bool LyrObject::RoleManager::enter(Lyrenum role, const LyrObjectLink& object) {
    bool done = true;
    for (RoleHook* hook : hooksOf(role)) {
        done = (!isHooked(role, hook) || hook->enterRoleHook(object)) && done;
    }
    return done;
}

void LyrObject::RoleManager::leave(Lyrenum role, const LyrObjectLink& object) {
    for (RoleHook* hook : hooksOf(role)) {
        if (isHooked(role, hook)) {
            hook->leaveRoleHook(object);
        }
    }
}
