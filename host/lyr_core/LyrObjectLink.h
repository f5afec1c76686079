#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/Lyrenum.h>

class LyrObject;

/** A target object as seen from an owner through a link identifier. A plain value: it keeps nothing alive, the link
 *  properties and handles do. */
class LYR_CORE_EXPORT LyrObjectLink {
public:
    constexpr LyrObjectLink() noexcept = default;
    constexpr LyrObjectLink(LyrObject* target, LyrObject* owner, Lyrenum linkId) noexcept
        : mTarget(target), mOwner(owner), mLinkId(linkId) {}

    LyrObject* getLink() const noexcept { return mTarget; }
    LyrObject* getOwner() const noexcept { return mOwner; }
    Lyrenum getLinkID() const noexcept { return mLinkId; }
    bool isNull() const noexcept { return mTarget == nullptr; }
    /** True if the target is of the class with this name, or derived from it. */
    bool linkIsOfType(const char* className) const noexcept;

    /** Links are equal when they lead to the same object. */
    friend bool operator==(const LyrObjectLink& a, const LyrObjectLink& b) noexcept { return a.mTarget == b.mTarget; }

private:
    LyrObject* mTarget = nullptr;
    LyrObject* mOwner = nullptr;
    Lyrenum mLinkId;
};
