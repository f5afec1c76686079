#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrProperty.h>
#include <lyr_core/LyrUndoJournal.h>

LyrProperty::State::~State() = default;
bool LyrProperty::State::holdsObjectsOf(const char*) const {
    return false;
}

/** The way of a call along the extensions of a property. Lives on the stack of the call; extensions that leave
 * meanwhile, and the property's own end, are noted in all walks under way. */
class LyrProperty::ExtensionWalk {
public:
    explicit ExtensionWalk(LyrProperty& property) noexcept
        : mOuter(sInnermost), mProperty(&property), mNext(property.mExtensions) {
        sInnermost = this;
    }
    ~ExtensionWalk() { sInnermost = mOuter; }
    ExtensionWalk(const ExtensionWalk&) = delete;
    ExtensionWalk& operator=(const ExtensionWalk&) = delete;

    Extension* next() noexcept {
        Extension* at = mNext;
        mNext = at ? at->mNext : nullptr;
        return at;
    }
    bool isPropertyAlive() const noexcept { return mProperty != nullptr; }

    static void extensionLeaves(const Extension* extension) noexcept {
        for (ExtensionWalk* walk = sInnermost; walk; walk = walk->mOuter) {
            if (walk->mNext == extension) {
                walk->mNext = extension->mNext;
            }
        }
    }
    static void propertyEnds(const LyrProperty* property) noexcept {
        for (ExtensionWalk* walk = sInnermost; walk; walk = walk->mOuter) {
            if (walk->mProperty == property) {
                walk->mProperty = nullptr;
                walk->mNext = nullptr;
            }
        }
    }

private:
    static ExtensionWalk* sInnermost;
    ExtensionWalk* mOuter;
    LyrProperty* mProperty;
    Extension* mNext;
};

LyrProperty::ExtensionWalk* LyrProperty::ExtensionWalk::sInnermost = nullptr;

LyrProperty::~LyrProperty() {
    ExtensionWalk::propertyEnds(this);
    removeAllPropertyExtensions();
    leaveOwner();
}

void LyrProperty::leaveOwner() noexcept {
    if (mOwner) {
        mOwnedByObject = false;
        mOwner->removeProperty(mPropertyId);
    }
}

/** Calls with each extension that was there at the start and still is. False if the property itself went meanwhile. */
template <class Call>
bool LyrProperty::forEachExtension(Call call) {
    ExtensionWalk walk(*this);
    while (Extension* at = walk.next()) {
        call(*at);
    }
    return walk.isPropertyAlive();
}

const LyrMetaClass& LyrProperty::metaClass() {
    static const LyrMetaClass meta("LyrProperty", sizeof(LyrProperty), &LyrClass::metaClass(), nullptr, "lyr_core", 0,
                                   nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrProperty::getMetaClass() const {
    return metaClass();
}

bool LyrProperty::emitError(Lyrenum code) const noexcept {
    const LyrClass* source = mOwner;
    LyrError::emitError(LyrError::Message(source ? source : this, code));
    return false;
}

bool LyrProperty::isRecorded() const noexcept {
    if (!mOwner || !LyrUndoJournal::instance().isRecording() || mOwner->isDying() || mOwner->getRefCount() == 0) {
        return false;
    }
    const unsigned int own = getFlags(LyrFlags::DATA);
    return own != 0 && own == mOwner->getFlags(LyrFlags::DATA);
}

bool LyrProperty::beginWrite(std::unique_ptr<State>& before) {
    if (mReadOnly) {
        return false;
    }
    if (isRecorded()) {
        before = takeState();
        if (!before || !LyrUndoJournal::instance().reserve()) {
            return emitError(Lyr::AllocationFailed);
        }
    }
    return true;
}

void LyrProperty::endWrite(std::unique_ptr<State> before) {
    if (before) {
        LyrUndoJournal::instance().record(*this, std::move(before));
    }
    announceChange();
}

bool LyrProperty::reportFailedWrite() const noexcept {
    return emitError(Lyr::AllocationFailed);
}

void LyrProperty::announceChange() {
    const bool alive = forEachExtension([](Extension& extension) { extension.propertyHasChangedHook(); });
    if (alive && mOwner) {
        mOwner->propertyChanged(*this);
    }
}

bool LyrProperty::addPropertyExtension(Extension* extension) {
    if (!extension || extension->mProperty) {
        return false;
    }
    extension->mProperty = this;
    extension->mNext = mExtensions;
    mExtensions = extension;
    extension->propertyExtensionAddHook(this);
    return true;
}

bool LyrProperty::removePropertyExtension(Extension* extension) {
    for (Extension** at = &mExtensions; *at; at = &(*at)->mNext) {
        if (*at != extension) {
            continue;
        }
        ExtensionWalk::extensionLeaves(extension);
        *at = extension->mNext;
        extension->mNext = nullptr;
        extension->mProperty = nullptr;
        extension->propertyExtensionRemoveHook(this);
        if (extension->mAutoDelete) {
            delete extension;
        }
        return true;
    }
    return false;
}

void LyrProperty::removeAllPropertyExtensions() {
    while (mExtensions) {
        removePropertyExtension(mExtensions);
    }
}

void LyrProperty::flagsWillChange(unsigned int set, unsigned int clear) {
    forEachExtension([&](Extension& extension) { extension.propertyFlagsWillChange(set, clear); });
}

void LyrProperty::flagsHaveChanged(unsigned int before) {
    forEachExtension([&](Extension& extension) { extension.propertyFlagsHaveChanged(before); });
}

void LyrProperty::ownerChanged() {}

void LyrProperty::setOwner(LyrObject* owner, Lyrenum id) {
    mOwner = owner;
    mPropertyId = id;
    ownerChanged();
}

LyrProperty::Extension::~Extension() {
    mAutoDelete = false;
    if (mProperty) {
        mProperty->removePropertyExtension(this);
    }
}

void LyrProperty::Extension::announceChange() {
    if (mProperty) {
        mProperty->announceChange();
    }
}

void LyrProperty::Extension::propertyExtensionAddHook(LyrProperty*) {}
void LyrProperty::Extension::propertyExtensionRemoveHook(LyrProperty*) {}
void LyrProperty::Extension::propertyHasChangedHook() {}
void LyrProperty::Extension::propertyFlagsWillChange(unsigned int, unsigned int) {}
void LyrProperty::Extension::propertyFlagsHaveChanged(unsigned int) {}
