#pragma once

#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>

/** One link of a link property: the reference and the line to the owner. A slot is filled first (it then only holds its
 *  reference) and takes effect with activate(). */
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
        if (mTarget && isOwning()) {
            mTarget->decRef();
        }
    }

    static void* operator new(std::size_t size) noexcept { return LyrPrivatePart::operator new(size); }
    static void operator delete(void* memory) noexcept { LyrPrivatePart::operator delete(memory); }

    LyrObject* target() const noexcept { return mTarget; }

    /** Connects the target to the property's owner, as it is now. */
    void activate() noexcept {
        disconnect();
        if (mTarget) {
            connect(mTarget, mProperty.getObject(), lineKind(), mProperty.getPropertyID());
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
    LyrObject* mTarget;
};
