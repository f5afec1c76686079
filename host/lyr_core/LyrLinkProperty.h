#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_core/LyrValueArrayProperty.h>

#include <memory>
#include <vector>

class LyrLinkSlot;

/** What a link property does with the objects in it. */
enum class LyrLinkOwnership {
    Soft,   ///< does not keep them alive; a link becomes null when its object dies
    Hard,   ///< keeps them alive
    Parent  ///< keeps them alive, and its owner stands as their parent
};

using LyrSingleLinkIF = LyrSingleValuePropertyIF<LyrObjectLink>;
using LyrLinkListIF = LyrValueArrayPropertyIF<LyrObjectLink>;

/** A link to one object. Messages of the object reach the owner with the property's identifier as link identifier.
 * Copying an owning link (hard, parent) copies its object; copying a soft one copies the reference. The link of an
 * object that is destroyed becomes null, which is told like a write; an object whose destruction has begun cannot be
 * linked any more. */
class LYR_CORE_EXPORT LyrSingleLinkOP : public LyrSingleLinkIF {
public:
    ~LyrSingleLinkOP() override;

    LyrLinkOwnership getOwnership() const noexcept { return mOwnership; }
    /** The linked object, null if there is none. */
    LyrObject* getTarget() const noexcept;

    /** With Lyr::Object a reset leaves the link as it is; without it (-1) a reset empties it. */
    void setResetMode(Lyrenum mode) noexcept { mResetMode = mode; }
    Lyrenum getResetMode() const noexcept { return mResetMode; }

    /** The null link: a default object is built anew on every reset, never kept. */
    LyrObjectLink getResetValue() const override { return {}; }
    bool resetData() override;
    std::unique_ptr<State> takeState() const override;
    bool restoreState(State& state) override;
    bool copyValueFrom(const LyrProperty& source) override;

protected:
    explicit LyrSingleLinkOP(LyrLinkOwnership ownership) noexcept;
    bool readStored(LyrObjectLink& out) const override;
    bool writeStored(const LyrObjectLink& value) override;
    bool storeSilently(const LyrObjectLink& value) override;
    void ownerChanged() override;

private:
    friend class LyrLinkSlot;
    bool exchangeSlot(LyrObject* target, std::unique_ptr<LyrLinkSlot>& retired);

    std::unique_ptr<LyrLinkSlot> mSlot;
    LyrLinkOwnership mOwnership;
    Lyrenum mResetMode;
};

class LYR_CORE_EXPORT LyrObjectHardLinkOP : public LyrSingleLinkOP {
public:
    LyrObjectHardLinkOP() noexcept : LyrSingleLinkOP(LyrLinkOwnership::Hard) {}
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
};

class LYR_CORE_EXPORT LyrObjectSoftLinkOP : public LyrSingleLinkOP {
public:
    LyrObjectSoftLinkOP() noexcept : LyrSingleLinkOP(LyrLinkOwnership::Soft) {}
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
};

/** An owning link whose owner stands as parent of the object: the object's way back. */
class LYR_CORE_EXPORT LyrObjectParentLinkOP : public LyrSingleLinkOP {
public:
    LyrObjectParentLinkOP() noexcept : LyrSingleLinkOP(LyrLinkOwnership::Parent) {}
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
};

/** A list of links, with the rules of LyrSingleLinkOP for each. */
class LYR_CORE_EXPORT LyrLinkListOP : public LyrLinkListIF {
public:
    ~LyrLinkListOP() override;

    LyrLinkOwnership getOwnership() const noexcept { return mOwnership; }
    void setResetMode(Lyrenum mode) noexcept { mResetMode = mode; }
    Lyrenum getResetMode() const noexcept { return mResetMode; }

    bool getArrayIndexRange(long long& first, long long& last) const override;
    bool getArrayItems(long long first, long long last, LyrObjectLink* out) const override;
    bool setArrayItems(long long first, long long last, const LyrObjectLink* items) override;
    bool initArray(long long first, long long last, const LyrObjectLink* items) override;
    bool insertArrayItems(long long first, long long last, const LyrObjectLink* items) override;
    bool removeArrayItems(long long first, long long last) override;
    const LyrObjectLink* lockArrayPtr() const override;
    void unlockArrayPtr(const LyrObjectLink* items) const override;
    /** The clone is a soft list of the same objects. */
    LyrProperty* clone(Lyrenum id) const override;

    /** The links for reading, without a lock: valid until the next write. */
    std::span<const LyrObjectLink> view() const noexcept { return mLinks; }

    bool resetData() override;
    std::unique_ptr<State> takeState() const override;
    bool restoreState(State& state) override;
    bool copyValueFrom(const LyrProperty& source) override;

protected:
    explicit LyrLinkListOP(LyrLinkOwnership ownership) noexcept;
    void ownerChanged() override;

private:
    friend class LyrLinkSlot;
    using Slots = std::vector<std::unique_ptr<LyrLinkSlot>>;
    bool isInside(long long first, long long last) const noexcept;
    bool mayWrite(long long count, const LyrObjectLink* items) const;
    bool replaceAll(const std::vector<LyrObject*>& wanted);
    /** A listed object went by itself: its links become null. */
    void forget(const LyrObject* gone);
    std::vector<LyrObject*> targets() const;

    Slots mSlots;
    std::vector<LyrObjectLink> mLinks;
    mutable std::atomic<int> mLocks{0};
    LyrLinkOwnership mOwnership;
    Lyrenum mResetMode;
};

class LYR_CORE_EXPORT LyrObjectHardLinkListOP : public LyrLinkListOP {
public:
    LyrObjectHardLinkListOP() noexcept : LyrLinkListOP(LyrLinkOwnership::Hard) {}
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

protected:
    explicit LyrObjectHardLinkListOP(LyrLinkOwnership ownership) noexcept : LyrLinkListOP(ownership) {}
};

class LYR_CORE_EXPORT LyrObjectSoftLinkListOP : public LyrLinkListOP {
public:
    LyrObjectSoftLinkListOP() noexcept : LyrLinkListOP(LyrLinkOwnership::Soft) {}
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
};

/** An owning list whose owner stands as parent of each listed object. */
class LYR_CORE_EXPORT LyrObjectParentLinkListOP : public LyrObjectHardLinkListOP {
public:
    LyrObjectParentLinkListOP() noexcept : LyrObjectHardLinkListOP(LyrLinkOwnership::Parent) {}
    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;
};
