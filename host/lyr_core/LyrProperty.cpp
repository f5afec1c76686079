#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrProperty.h>
#include <lyr_core/LyrUndoJournal.h>

LyrProperty::State::~State() = default;

LyrProperty::~LyrProperty() {
    removeAllPropertyExtensions();
    if (mOwner) {
        mOwnedByObject = false;
        mOwner->removeProperty(mPropertyId);
    }
}

const LyrMetaClass& LyrProperty::metaClass() {
    static const LyrMetaClass meta("LyrProperty", sizeof(LyrProperty), &LyrClass::metaClass(), nullptr, "lyr_core", 0, nullptr,
                                   0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrProperty::getMetaClass() const { return metaClass(); }

bool LyrProperty::emitError(Lyrenum code) const {
    const LyrClass* source = mOwner;
    LyrError::emitError(LyrError::Message(source ? source : this, code));
    return false;
}

bool LyrProperty::isRecorded() const noexcept {
    if (!mOwner || !LyrUndoJournal::instance().isRecording()) {
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

bool LyrProperty::reportFailedWrite() const noexcept { return emitError(Lyr::AllocationFailed); }

void LyrProperty::announceChange() {
    for (Extension* at = mExtensions; at;) {
        Extension* next = at->mNext;
        at->propertyHasChangedHook();
        at = next;
    }
    if (mOwner) {
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
    for (Extension* at = mExtensions; at; at = at->mNext) {
        at->propertyFlagsWillChange(set, clear);
    }
}

void LyrProperty::flagsHaveChanged(unsigned int before) {
    for (Extension* at = mExtensions; at; at = at->mNext) {
        at->propertyFlagsHaveChanged(before);
    }
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
