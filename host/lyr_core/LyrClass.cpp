#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrMemory.h>
#include <lyr_core/LyrMetaClass.h>

#include <cstring>

LyrClass::LyrClass(const LyrClass& other) noexcept
    : LyrEmbeddedListNode(other), mFlags(other.mFlags), mProtectedFlags(other.mProtectedFlags), mScope(other.mScope) {}

// Flags and scope belong to the place where an object stands, not to its value: assignment leaves them.
LyrClass& LyrClass::operator=(const LyrClass&) noexcept {
    return *this;
}

LyrClass::~LyrClass() {
    if (isListed()) {
        LyrClassManager::leave(this);
    }
}

const LyrMetaClass& LyrClass::metaClass() {
    static const LyrMetaClass meta("LyrClass", sizeof(LyrClass), nullptr, nullptr, "lyr_core", 0, nullptr, 0, 0, 0,
                                   false);
    return meta;
}

const LyrMetaClass& LyrClass::getMetaClass() const {
    return metaClass();
}

void LyrClass::setProtectedFlags(unsigned int transient, unsigned int added) noexcept {
    mTransientFlags = transient;
    mProtectedFlags |= added;
}

void LyrClass::setFlags(unsigned int set, unsigned int clear) {
    const unsigned int before = mFlags;
    const unsigned int after = (before | set) & ~clear;
    if (after == before) {
        return;
    }
    flagsWillChange(after & ~before, before & ~after);
    mFlags = after;
    flagsHaveChanged(before);
}

bool LyrClass::setFlag(const char* name, bool on) {
    const unsigned int bit = getMetaClass().getFlagBit(name);
    if (bit == 0) {
        return false;
    }
    setFlags(on ? bit : 0, on ? 0 : bit);
    return true;
}

void LyrClass::flagsWillChange(unsigned int, unsigned int) {}
void LyrClass::flagsHaveChanged(unsigned int) {}

void* LyrClass::operator new(std::size_t size) noexcept {
    return lyrMalloc(size);
}
void LyrClass::operator delete(void* memory) noexcept {
    lyrFree(memory);
}

void* LyrPrivatePart::operator new(std::size_t size) noexcept {
    return lyrMalloc(size);
}
void LyrPrivatePart::operator delete(void* memory) noexcept {
    lyrFree(memory);
}

LyrLocalClassFlags::LyrLocalClassFlags(LyrClass* object, unsigned int mask, unsigned int value)
    : mObject(object), mMask(mask), mBefore(object ? object->getFlags(mask) : 0) {
    if (mObject) {
        mObject->setFlags(mask & value, mask & ~value);
    }
}

LyrLocalClassFlags::~LyrLocalClassFlags() {
    if (mObject) {
        mObject->setFlags(mBefore, mMask & ~mBefore);
    }
}
