#pragma once

#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrSingleValueProperty.h>

/** Makes a property show a value that lives elsewhere: the value of a property of another object, or whatever refresh()
 *  computes. The property cannot be written; it is refreshed each time it is read, and computed while the proxy is
 * attached. The mirrored object is only listened to, not kept alive: it may be the property's own owner. */
template <class T>
class LyrReadOnlyProxyExtensionIF : public LyrSingleValuePropertyExtensionIF<T>, public LyrIOC {
public:
    ~LyrReadOnlyProxyExtensionIF() override {
        if (mTelling) {
            *mTelling = false;
        }
        this->setAutoDelete(false);
        if (this->getProperty()) {
            this->getProperty()->removePropertyExtension(this);
        }
    }

    /** Mirrors a property of an object from now on and listens to that object. Gives the property; null, and `*ok`
     * false (`ok` may be null), if there is none of this type. */
    LyrProperty* requestProperty(LyrObject* object, Lyrenum id, bool* ok) {
        auto* typed = object ? LyrSingleValuePropertyIF<T>::getInterface(object->getProperty(id)) : nullptr;
        mSource = typed ? object : nullptr;
        mSourceId = id;
        mLine.connect(mSource, this, LyrIOCConnection::Kind::Handle, -1);
        if (ok) {
            *ok = typed != nullptr;
        }
        return typed;
    }

    /** Hooks the proxy to another property, after it has left its present one; null: to none. It is not deleted on the
     * way, and auto-delete comes back only where it ends without a property: on a new one it belongs to who moved it.
     * Flagged LyrFlags::COMPATIBILITY_SAVE, it takes the flag "CompatibilitySave" from the old property to the new one.
     * False if the new property cannot be had. */
    bool moveTo(LyrProperty* property) {
        LyrProperty* const old = this->getProperty();
        if (property == old) {
            return true;
        }
        const bool marked = this->getFlags(LyrFlags::COMPATIBILITY_SAVE) != 0;
        const bool autoDelete = this->isAutoDelete();
        this->setAutoDelete(false);
        if (old) {
            old->removePropertyExtension(this);
            if (marked) {
                old->setFlag("CompatibilitySave", false);
            }
        }
        const bool added = property && property->addPropertyExtension(this);
        if (!added) {
            this->setAutoDelete(autoDelete);
        } else if (marked) {
            property->setFlag("CompatibilitySave", true);
        }
        return added || !property;
    }

    /** What is mirrored has changed: tells the listeners of the property's owner. */
    void invalidate() {
        // Proxies that mirror each other must not tell each other for ever.
        if (!this->getProperty() || mLocks > 0 || mTelling) {
            return;
        }
        bool alive = true;
        mTelling = &alive;
        this->announceChange();
        if (alive) {
            mTelling = nullptr;
        }
    }

    /** Stops mirroring; the last value stays. */
    void disconnect() {
        mLine.disconnect();
        mSource = nullptr;
    }

    /** While locked, reads give the last value and nothing is told. */
    void lock() noexcept { ++mLocks; }
    void unlock() noexcept { mLocks -= mLocks > 0; }

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

    void propertyExtensionAddHook(LyrProperty* property) override {
        mWasComputed = property->isComputed();
        property->setComputed(true);
    }
    void propertyExtensionRemoveHook(LyrProperty* property) override { property->setComputed(mWasComputed); }

    bool iocCallback(Message& message) override {
        if (mSource && message.getInitialSender() == mSource && message.getPropertyID() == mSourceId) {
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
    class Line : public LyrIOCConnection {
    public:
        explicit Line(LyrReadOnlyProxyExtensionIF& proxy) noexcept : mProxy(proxy) {}

    protected:
        void senderDestroyed() override { mProxy.mSource = nullptr; }

    private:
        LyrReadOnlyProxyExtensionIF& mProxy;
    };

    LyrObject* mSource = nullptr;
    Line mLine{*this};
    Lyrenum mSourceId;
    int mLocks = 0;
    bool* mTelling = nullptr;  ///< set while telling: where the end of this proxy is noted
    bool mWasComputed = false;
};
