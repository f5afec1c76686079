#pragma once

#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrObjectPtr.h>

/** One link of a link property: the reference, the line to the owner and the parent link. A slot is filled first (it then
 *  only holds its reference) and takes effect with activate(). */
class LyrLinkSlot : public LyrIOCConnection {
public:
    LyrLinkSlot(LyrProperty& property, LyrLinkOwnership ownership, LyrObject* target) noexcept
        : mProperty(property), mOwnership(ownership), mTarget(target), mHold(isOwning() ? target : nullptr) {}

    ~LyrLinkSlot() override { deactivate(); }

    static void* operator new(std::size_t size) noexcept { return LyrPrivatePart::operator new(size); }
    static void operator delete(void* memory) noexcept { LyrPrivatePart::operator delete(memory); }

    LyrObject* target() const noexcept { return mTarget; }

    void activate() noexcept {
        LyrObject* owner = mProperty.getObject();
        if (!mTarget) {
            return;
        }
        connect(mTarget, owner, isOwning() ? Kind::OwningLink : Kind::SoftLink, mProperty.getPropertyID());
        if (mOwnership == LyrLinkOwnership::Parent && owner) {
            mTarget->setParentLink(owner, mProperty.getPropertyID());
            mStandsAsParent = owner;
        }
    }

    void deactivate() noexcept {
        disconnect();
        if (!mStandsAsParent) {
            return;
        }
        // Only if the parent is still this one: the object may have moved to another list meanwhile.
        const LyrObjectLink parent = mTarget->getParentLink();
        if (parent.getOwner() == mStandsAsParent && parent.getLinkID() == mProperty.getPropertyID()) {
            mTarget->setParentLink(nullptr, -1);
        }
        mStandsAsParent = nullptr;
    }

protected:
    void senderDestroyed() override;

private:
    bool isOwning() const noexcept { return mOwnership != LyrLinkOwnership::Soft; }

    LyrProperty& mProperty;
    LyrLinkOwnership mOwnership;
    LyrObject* mTarget;
    LyrObjectPtr mHold;
    LyrObject* mStandsAsParent = nullptr;
};
