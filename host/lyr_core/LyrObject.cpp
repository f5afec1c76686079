#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrKeepAlive_p.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrProperty.h>
#include <lyr_core/LyrRoleManager.h>
#include <lyr_core/LyrScratch.h>
#include <lyr_core/LyrSingleValueProperty.h>

#include <algorithm>

/** The naming template: not content, so setting it is never recorded and marks nothing. */
class LyrObject::NameTemplateAttr : public LyrSingleValueOP<LyrSingleValuePropertyIF<const char*>> {
public:
    /** A name is no setting: an object that is reset keeps it. */
    bool resetData() override { return true; }
};

bool LyrObjectLink::linkIsOfType(const char* className) const noexcept {
    return mTarget && mTarget->getMetaClass().isOfType(className);
}

LyrObject::LyrObject() {
    LyrClassManager::enter(this);
}

LyrObject::LyrObject(const LyrObject& other) : LyrClass(other), LyrIOC(other), mUnknownData(other.mUnknownData) {
    if (other.mNameTemplate) {
        setNameTemplate(other.getNameTemplate());
    }
    LyrClassManager::enter(this);
}

LyrObject& LyrObject::operator=(const LyrObject& other) {
    copyFrom(other);
    return *this;
}

LyrObject::~LyrObject() {
    mDying = true;
    LyrClassManager::leave(this);
    giveUpRoles();  // left only if nothing announced the destruction
    disconnectAll();
    while (!mProperties.empty()) {
        removeProperty(mProperties.back()->getPropertyID());
    }
    while (!mActions.empty()) {
        removeAction(mActions.back().id);
    }
}

const LyrMetaClass& LyrObject::metaClass() {
    static const LyrMetaClass meta("LyrObject", sizeof(LyrObject), &LyrClass::metaClass(),
                                   new LyrClassFactory<LyrObject>, "lyr_core", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrObject::getMetaClass() const {
    return metaClass();
}

void LyrObject::incRef() const noexcept {
    mRefCount.fetch_add(1, std::memory_order_relaxed);
}

bool LyrObject::decRef() const noexcept {
    if (mRefCount.fetch_sub(1, std::memory_order_acq_rel) != 1 || mDying) {
        return false;
    }
    LyrMetaClass::destruct(const_cast<LyrObject*>(this), true);
    return true;
}

std::int64_t LyrObject::getRefCount() const noexcept {
    return mRefCount.load(std::memory_order_relaxed);
}

void LyrObject::beginDestruction() {
    mDying = true;
    giveUpRoles();
}

void LyrObject::giveUpRoles() {
    while (!mRoles.empty()) {
        deactivateRole(mRoles.back());
    }
}

LyrTimestamp LyrObject::getModificationTimestamp() const noexcept {
    return mModified;
}

void LyrObject::stampModification() noexcept {
    mModified = LyrTimestamp::getCurrentTimestamp();
}

// Roles

bool LyrObject::prepareRoles() {
    const LyrKeepAlive keepAlive(this);
    LyrScratch<Lyrenum> roles;
    if (!RoleManager::defaultRoles(getMetaClass(), roles)) {
        LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
        return false;
    }
    bool done = true;
    for (const Lyrenum role : roles) {
        done = (isRoleActive(role) || activateRole(role)) && done;
    }
    return done;
}

bool LyrObject::isRoleActive(Lyrenum role) const noexcept {
    return std::find(mRoles.begin(), mRoles.end(), role) != mRoles.end();
}

bool LyrObject::activateRole(Lyrenum role) {
    if (mDying || !RoleManager::isRole(role) || isRoleActive(role)) {
        return false;
    }
    try {
        mRoles.push_back(role);
    } catch (...) {
        LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
        return false;
    }
    const LyrKeepAlive keepAlive(this);
    return RoleManager::enter(role, LyrObjectLink(this, nullptr, -1));
}

bool LyrObject::deactivateRole(Lyrenum role) {
    if (std::erase(mRoles, role) == 0) {
        return false;
    }
    const LyrKeepAlive keepAlive(this);
    RoleManager::leave(role, LyrObjectLink(this, nullptr, -1));
    return true;
}

// Owners and messages

LyrObjectLink LyrObject::getParentLink() const noexcept {
    auto* self = const_cast<LyrObject*>(this);
    const LyrIOCConnection* parent = lastConnection(LyrIOCConnection::Kind::ParentLink);
    // Only link properties make such lines, and what owns a property is an object.
    return parent ? LyrObjectLink(self, static_cast<LyrObject*>(parent->getListener()), parent->getLinkID())
                  : LyrObjectLink(self, nullptr, -1);
}

bool LyrObject::iocCallback(Message& message) {
    if (message.mFromOwned && !mDying) {
        passToOwners(message, this);
    }
    return true;
}

void LyrObject::propertyChanged(const LyrProperty& property) {
    if (mDying) {
        return;
    }
    stampModification();
    Message message(this, Lyr::PropertyHasChanged, property.getPropertyID());
    iocBroadcast(message);
}

// Properties

bool LyrObject::addProperty(Lyrenum id, LyrProperty* property, bool owned) {
    if (id == Lyrenum(-1)) {
        LyrError::emitError(LyrError::Message(this, Lyr::InvalidParameters));
        return false;
    }
    if (!property || property->getObject() || getProperty(id)) {
        LyrError::emitError(LyrError::Message(this, Lyr::AlreadyRegistered));
        return false;
    }
    try {
        // The naming template stays the last, whenever it was set: a copy lists its properties as its original does.
        const bool isNamed = mNameTemplate && mNameTemplate->getObject();
        mProperties.insert(mProperties.end() - (isNamed ? 1 : 0), property);
    } catch (...) {
        mLacksProperty = true;
        LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
        return false;
    }
    property->mOwnedByObject = owned;
    property->setOwner(this, id);
    return true;
}

bool LyrObject::removeProperty(Lyrenum id) {
    auto found = std::find_if(mProperties.begin(), mProperties.end(),
                              [&](const LyrProperty* property) { return property->getPropertyID() == id; });
    if (found == mProperties.end()) {
        return false;
    }
    LyrProperty* property = *found;
    mProperties.erase(found);
    property->setOwner(nullptr, id);
    if (property->mOwnedByObject) {
        property->mOwnedByObject = false;
        delete property;
    }
    return true;
}

LyrProperty* LyrObject::getProperty(Lyrenum id) const noexcept {
    for (LyrProperty* property : mProperties) {
        if (property->getPropertyID() == id) {
            return property;
        }
    }
    return nullptr;
}

std::int64_t LyrObject::getPropertyCount() const noexcept {
    return static_cast<std::int64_t>(mProperties.size());
}

LyrProperty* LyrObject::getPropertyAt(std::int64_t index) const noexcept {
    return index >= 0 && index < getPropertyCount() ? mProperties[static_cast<std::size_t>(index)] : nullptr;
}

bool LyrObject::copyFrom(const LyrObject& other) {
    if (this == &other) {
        return true;
    }
    bool done = other.mNameTemplate ? setNameTemplate(other.getNameTemplate()) : true;
    for (std::size_t i = 0; i < mProperties.size(); ++i) {
        LyrProperty* target = mProperties[i];
        const LyrProperty* source = other.getProperty(target->getPropertyID());
        if (source && source->isStored() && target->isStored()) {
            done = target->copyValueFrom(*source) && done;
        }
    }
    mUnknownData = other.mUnknownData;
    mCopyIncomplete = !done;
    return done;
}

// Actions

bool LyrObject::addAction(Lyrenum id, LyrAction* action) {
    const bool taken = std::any_of(mActions.begin(), mActions.end(), [&](const ActionEntry& e) { return e.id == id; });
    if (!action || action->mOwner || taken) {
        return false;
    }
    try {
        mActions.push_back({id, action});
    } catch (...) {
        LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
        return false;
    }
    action->mActionId = id;
    action->mOwner = this;
    return true;
}

bool LyrObject::removeAction(Lyrenum id) {
    const auto found =
        std::find_if(mActions.begin(), mActions.end(), [&](const ActionEntry& entry) { return entry.id == id; });
    if (found == mActions.end()) {
        return false;
    }
    found->action->mActionId = -1;
    found->action->mOwner = nullptr;
    mActions.erase(found);
    return true;
}

bool LyrObject::runAction(Lyrenum id, LyrObject* parameter) {
    for (const ActionEntry& entry : mActions) {
        if (entry.id == id) {
            return entry.action->run(this, parameter);
        }
    }
    return id == Lyr::ResetToDefaults && resetToDefaults();
}

bool LyrObject::resetToDefaults() {
    bool done = true;
    for (std::size_t i = 0; i < mProperties.size(); ++i) {
        if (mProperties[i]->isStored()) {
            done = mProperties[i]->resetData() && done;
        }
    }
    return done;
}

// Name and unknown data

bool LyrObject::setNameTemplate(const char* name) {
    if (!mNameTemplate) {
        mNameTemplate.reset(new NameTemplateAttr);
        if (!mNameTemplate) {
            LyrError::emitError(LyrError::Message(this, Lyr::AllocationFailed));
            return false;
        }
    }
    const bool added = mNameTemplate->getObject() || addProperty(Lyr::NameTemplate, mNameTemplate.get());
    return added && mNameTemplate->setValue(name);
}

const char* LyrObject::getNameTemplate() const noexcept {
    return mNameTemplate ? mNameTemplate->stored().utf8() : "";
}

const LyrObjectUnknownData* LyrObject::getUnknownData() const noexcept {
    return mUnknownData.get();
}

void LyrObject::setUnknownData(std::shared_ptr<const LyrObjectUnknownData> data) noexcept {
    mUnknownData = std::move(data);
}
