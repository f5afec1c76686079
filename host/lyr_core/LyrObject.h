#pragma once

#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectLink.h>
#include <lyr_core/LyrTimestamp.h>
#include <lyr_core/Lyrenum.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

class LyrAction;
class LyrProperty;
class LyrObjectUnknownData;

/** An object of the host's object graph: reference counted, with properties, actions and roles.
 *
 *  A new object has no references; the first handle or owning link that takes it keeps it alive, and it dies with the
 * last. An object on the stack, or a member, must outlive every handle: give it a reference of its own with incRef().
 */
class LYR_CORE_EXPORT LyrObject : public LyrClass, public LyrIOC {
public:
    class RoleHook;
    class RoleInterface;
    class RoleManager;

    LyrObject();
    /** Copies flags, scope and naming template; derived classes copy their property values with copyFrom(). */
    LyrObject(const LyrObject& other);
    LyrObject& operator=(const LyrObject& other);
    ~LyrObject() override;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    void incRef() const noexcept;
    /** Drops one reference. Returns true if the object died. */
    bool decRef() const noexcept;
    std::int64_t getRefCount() const noexcept;
    /** True once its destruction has begun: nothing can link to it any more. */
    bool isDying() const noexcept { return mDying; }

    /** The time of the last change of one of this object's own properties. */
    LyrTimestamp getModificationTimestamp() const noexcept;
    /** Stamps the object as modified now. */
    void stampModification() noexcept;

    /** Takes on the default roles of the object's class that it has not. */
    bool prepareRoles();
    bool isRoleActive(Lyrenum role) const noexcept;
    /** Enters a role: its hooks hear of it. False if the role is unknown or active already, and if a hook could not set
     *  something up (the object has the role all the same). An object gives up its roles when it is destroyed. */
    bool activateRole(Lyrenum role);
    bool deactivateRole(Lyrenum role);

    /** This object as seen from the owner that stands as its parent; a null owner if it has none. Of several owners it
     * is the one whose parent link was written last. */
    LyrObjectLink getParentLink() const noexcept;

    /** Adds a property under an identifier; from then on its changes are told and stamped. With `owned` the object
     * deletes it in the end. False, and an error, if the identifier or the property is taken, or the identifier is -1.
     */
    bool addProperty(Lyrenum id, LyrProperty* property, bool owned = false);
    /** Takes a property out (and deletes an owned one). */
    bool removeProperty(Lyrenum id);
    /** The property with an identifier, null if there is none. */
    LyrProperty* getProperty(Lyrenum id) const noexcept;
    std::int64_t getPropertyCount() const noexcept;
    /** Properties in the order of registration. */
    LyrProperty* getPropertyAt(std::int64_t index) const noexcept;

    /** Adds an action under an identifier; the action leaves by itself when it is destroyed. False if either is taken.
     */
    bool addAction(Lyrenum id, LyrAction* action);
    bool removeAction(Lyrenum id);
    /** The action entry: runs the action with this identifier. Returns its success; an unknown one fails. */
    bool runAction(Lyrenum id, LyrObject* parameter = nullptr);
    /** Applies the default of every stored property: what the action Lyr::ResetToDefaults does unless a class brings
     * its own. */
    bool resetToDefaults();

    /** Sets the naming template: the property Lyr::NameTemplate, which exists once it has been set. */
    bool setNameTemplate(const char* name);
    /** The naming template, empty if it was never set. */
    const char* getNameTemplate() const noexcept;

    /** Takes over every property value of another object that is neither computed nor read-only, in this object's
     * order, and its naming template. Properties that either lacks are left alone. True if every value could be copied;
     * an object whose copy constructor could not is given up by LyrMetaClass::clone(). */
    virtual bool copyFrom(const LyrObject& other);

protected:
    /** For a copyFrom() that cannot even begin: the object is no complete copy. Returns false. */
    bool failCopy() noexcept {
        mCopyIncomplete = true;
        return false;
    }

public:
    /** Passes property changes of owned objects on to the owners of this one. */
    bool iocCallback(Message& message) override;

    /** What a file held about this object that this version does not know; null if there is nothing. */
    const LyrObjectUnknownData* getUnknownData() const noexcept;
    void setUnknownData(std::shared_ptr<const LyrObjectUnknownData> data) noexcept;

private:
    friend class LyrKeepAlive;
    friend class LyrMetaClass;
    friend class LyrProperty;
    class NameTemplateAttr;

    void beginDestruction();
    void giveUpRoles();
    void propertyChanged(const LyrProperty& property);

    struct ActionEntry {
        Lyrenum id;
        LyrAction* action;
    };

    mutable std::atomic<std::int64_t> mRefCount{0};
    std::atomic<bool> mDying{false};
    bool mLacksProperty = false;
    bool mCopyIncomplete = false;
    LyrTimestamp mModified;
    std::vector<LyrProperty*> mProperties;
    std::vector<ActionEntry> mActions;
    std::vector<Lyrenum> mRoles;
    std::unique_ptr<NameTemplateAttr> mNameTemplate;
    std::shared_ptr<const LyrObjectUnknownData> mUnknownData;
};
