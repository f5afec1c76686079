#pragma once

#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrSingleValueProperty.h>

/** Makes a property show a value that lives elsewhere: the value of a property of another object, or whatever refresh()
 *  computes. The property cannot be written; it is refreshed each time it is read. */
template <class T>
class LyrReadOnlyProxyExtensionIF : public LyrSingleValuePropertyExtensionIF<T>, public LyrIOC {
public:
    LyrReadOnlyProxyExtensionIF() { mSource.setListener(this); }

    /** Mirrors a property of another object from now on and listens to that object. Gives the property; null, and `*ok` false
     *  (`ok` may be null), if there is none of this type. */
    LyrProperty* requestProperty(LyrObject* object, Lyrenum id, bool* ok) {
        auto* typed = object ? LyrSingleValuePropertyIF<T>::getInterface(object->getProperty(id)) : nullptr;
        mSource = typed ? object : nullptr;
        mSourceId = id;
        if (ok) {
            *ok = typed != nullptr;
        }
        return typed;
    }

    /** What is mirrored has changed: tells the listeners of the property's owner. */
    void invalidate() {
        if (this->getProperty() && mLocks == 0) {
            this->announceChange();
        }
    }

    /** Stops mirroring; the last value stays. */
    void disconnect() { mSource = nullptr; }

    /** While locked, reads give the last value and nothing is told. */
    void lock() noexcept { ++mLocks; }
    void unlock() noexcept { --mLocks; }

    bool readData(T& value) override {
        if (mLocks == 0) {
            lock();
            T fresh{};
            if (refresh(fresh)) {
                this->storeSilently(fresh);
            }
            unlock();
        }
        return this->readBehind(value);
    }

    bool writeData(const T&) override { return false; }

    bool iocCallback(Message& message) override {
        if (mSource && message.getInitialSender() == mSource.get() && message.getPropertyID() == mSourceId) {
            invalidate();
        }
        return LyrIOC::iocCallback(message);
    }

protected:
    /** Gives the value to show; false keeps the last one. The base reads the mirrored property. */
    virtual bool refresh(T& value) {
        const auto* typed =
            mSource ? LyrSingleValuePropertyIF<T>::getInterfaceConst(mSource->getProperty(mSourceId)) : nullptr;
        return typed && typed->getValue(value);
    }

private:
    LyrObjectIOCPtr mSource;
    Lyrenum mSourceId;
    int mLocks = 0;
};
