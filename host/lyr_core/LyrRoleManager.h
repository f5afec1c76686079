#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrObjectLink.h>
#include <lyr_core/LyrScratch.h>
#include <lyr_core/Lyrenum.h>

#include <memory>

/** Hears of objects that take on a role and give it up. Adding a hook enters nothing by itself. */
class LYR_CORE_EXPORT LyrObject::RoleHook {
public:
    RoleHook() = default;
    RoleHook(const RoleHook&) = delete;
    RoleHook& operator=(const RoleHook&) = delete;
    /** Removes the hook from all roles; nobody leaves a role by that. */
    virtual ~RoleHook();
    /** An object takes on the role. False: something could not be set up (the object takes on the role all the same).
     */
    virtual bool enterRoleHook(const LyrObjectLink& object) = 0;
    virtual void leaveRoleHook(const LyrObjectLink& object) = 0;
};

/** What a role offers to its users: a base for the interfaces of roles. */
class LYR_CORE_EXPORT LyrObject::RoleInterface {
public:
    explicit RoleInterface(Lyrenum role) noexcept : mRole(role) {}
    virtual ~RoleInterface();
    Lyrenum getRole() const noexcept { return mRole; }

private:
    Lyrenum mRole;
};

/** The roles that objects can take on. What could not be noted because memory ran out is reported, and false. */
class LYR_CORE_EXPORT LyrObject::RoleManager {
public:
    /** Makes a role known; counted, so that several modules may add it. */
    static bool addRole(Lyrenum role) noexcept;
    static bool removeRole(Lyrenum role) noexcept;
    static bool isRole(Lyrenum role) noexcept;

    /** Objects of the class, and of classes derived from it, take on the role in prepareRoles(). False if it is one
     * already. */
    static bool addDefaultRole(const LyrMetaClass& meta, Lyrenum role) noexcept;
    static bool removeDefaultRole(const LyrMetaClass& meta, Lyrenum role) noexcept;

    /** Has a hook called for a role, after those that are there. False if it is there already. */
    static bool addHook(Lyrenum role, RoleHook* hook) noexcept;
    static bool removeHook(Lyrenum role, RoleHook* hook) noexcept;

    /** Sets the interface of a role (null takes it away); the manager owns it. */
    static bool setRoleInterface(Lyrenum role, std::unique_ptr<RoleInterface> roleInterface) noexcept;
    static RoleInterface* getRoleInterface(Lyrenum role) noexcept;

private:
    friend class LyrObject;
    static bool defaultRoles(const LyrMetaClass& meta, LyrScratch<Lyrenum>& roles) noexcept;
    static bool enter(Lyrenum role, const LyrObjectLink& object) noexcept;
    static void leave(Lyrenum role, const LyrObjectLink& object) noexcept;
};
