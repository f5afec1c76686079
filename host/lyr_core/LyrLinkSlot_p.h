#pragma once

#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>

#include <utility>

/** One link of a link property: the reference and the line to the owner. It takes effect with activate(); parked in a
 * state it keeps its target alive, also where the property does not. */
class LyrLinkSlot : public LyrIOCConnection {
public:
    LyrLinkSlot(LyrProperty& property, LyrLinkOwnership ownership, LyrObject* target) noexcept
        : mProperty(property), mOwnership(ownership), mTarget(target) {
        if (mTarget && isOwning()) {
            mTarget->incRef();
        }
    }

    ~LyrLinkSlot() override {
        disconnect();
        if (mTarget && (isOwning() || mWasParked)) {
            mTarget->decRef();
        }
    }

    static void* operator new(std::size_t size) noexcept { return LyrPrivatePart::operator new(size); }
    static void operator delete(void* memory) noexcept { LyrPrivatePart::operator delete(memory); }

    LyrObject* target() const noexcept { return mTarget; }

    /** Connects the target to the property's owner, as it is now. */
    void activate() noexcept { connect(mTarget, mProperty.getObject(), lineKind(), mProperty.getPropertyID()); }

    /** Puts the link aside for a state. Should the target be destroyed all the same, the link is null afterwards. */
    void park() noexcept {
        if (mTarget && !isOwning() && !mWasParked) {
            mTarget->incRef();
            mWasParked = true;
        }
        connect(mTarget, nullptr, Kind::Handle, -1);
    }

    /** Drops the reference that only parking added; the target may die of it. */
    void dropParkedReference() noexcept {
        if (std::exchange(mWasParked, false) && mTarget) {
            mTarget->decRef();
        }
    }

protected:
    void senderDestroyed() override;

private:
    bool isOwning() const noexcept { return mOwnership != LyrLinkOwnership::Soft; }
    Kind lineKind() const noexcept {
        switch (mOwnership) {
            case LyrLinkOwnership::Hard:
                return Kind::OwningLink;
            case LyrLinkOwnership::Parent:
                return Kind::ParentLink;
            default:
                return Kind::SoftLink;
        }
    }

    LyrProperty& mProperty;
    LyrLinkOwnership mOwnership;
    bool mWasParked = false;
    LyrObject* mTarget;
};
