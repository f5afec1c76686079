#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrLinkSlot_p.h>
#include <lyr_core/LyrMetaClass.h>

#include <algorithm>
#include <new>

namespace {

/** A state of links: it keeps the objects, so that undo brings back the same ones. */
struct LinkState : LyrProperty::State {
    std::vector<LyrObjectPtr> targets;
};

/** A copy of a linked object for an owning property. Null, and an error, when it cannot be made. */
LyrObjectPtr copyOf(const LyrObject& source, const LyrProperty& reporter) {
    LyrClass* copied = source.getMetaClass().clone(&source);
    auto* object = dynamic_cast<LyrObject*>(copied);
    if (!object) {
        LyrMetaClass::destruct(copied, true);
        reporter.emitError(Lyr::AllocationFailed);
    }
    return LyrObjectPtr(object);
}

}  // namespace

void LyrLinkSlot::senderDestroyed() {
    if (mOwnership != LyrLinkOwnership::Soft) {
        return;
    }
    const LyrObject* gone = mTarget;
    mTarget = nullptr;
    if (auto* list = dynamic_cast<LyrLinkListOP*>(&mProperty)) {
        for (LyrObjectLink& link : list->mLinks) {
            if (link.getLink() == gone) {
                link = LyrObjectLink(nullptr, link.getOwner(), link.getLinkID());
            }
        }
        list->announceChange();
    } else {
        static_cast<LyrSingleLinkOP&>(mProperty).announceChange();
    }
}

// Single link

LyrSingleLinkOP::LyrSingleLinkOP(LyrLinkOwnership ownership) noexcept : mOwnership(ownership) {}

LyrSingleLinkOP::~LyrSingleLinkOP() = default;

LyrObject* LyrSingleLinkOP::getTarget() const noexcept { return mSlot ? mSlot->target() : nullptr; }

bool LyrSingleLinkOP::resetData() { return mResetMode == Lyr::Object || setValue(LyrObjectLink()); }

std::unique_ptr<LyrProperty::State> LyrSingleLinkOP::takeState() const {
    auto state = std::make_unique<LinkState>();
    state->targets.emplace_back(getTarget());
    return state;
}

bool LyrSingleLinkOP::restoreState(const State& state) {
    const auto& targets = static_cast<const LinkState&>(state).targets;
    return LyrSingleLinkOP::writeStored(LyrObjectLink(targets.front().get(), nullptr, -1));
}

bool LyrSingleLinkOP::copyValueFrom(const LyrProperty& source) {
    LyrObjectLink link;
    const auto* typed = getInterfaceConst(&source);
    if (!typed || typed == this) {
        return typed != nullptr;
    }
    if (!typed->getValue(link)) {
        return false;
    }
    if (mOwnership == LyrLinkOwnership::Soft || link.isNull()) {
        return setValue(link);
    }
    const LyrObjectPtr copied = copyOf(*link.getLink(), *this);
    return copied && setValue(LyrObjectLink(copied.get(), nullptr, -1));
}

bool LyrSingleLinkOP::readStored(LyrObjectLink& out) const {
    out = LyrObjectLink(getTarget(), getObject(), getPropertyID());
    return true;
}

bool LyrSingleLinkOP::writeStored(const LyrObjectLink& value) {
    const LyrObjectPtr keptAlive(value.getLink());
    if (checkData(value, true) != 1) {
        return false;
    }
    if (value.getLink() == getTarget()) {
        return true;
    }
    std::unique_ptr<LyrLinkSlot> retired;
    return write([&] {
        std::unique_ptr<LyrLinkSlot> fresh;
        if (value.getLink()) {
            fresh.reset(new LyrLinkSlot(*this, mOwnership, value.getLink()));
            if (!fresh) {
                return emitError(Lyr::AllocationFailed);
            }
        }
        retired = std::exchange(mSlot, std::move(fresh));
        if (retired) {
            retired->deactivate();
        }
        if (mSlot) {
            mSlot->activate();
        }
        return true;
    });
}

bool LyrSingleLinkOP::storeSilently(const LyrObjectLink& value) {
    std::unique_ptr<LyrLinkSlot> fresh;
    if (value.getLink()) {
        fresh.reset(new LyrLinkSlot(*this, mOwnership, value.getLink()));
        if (!fresh) {
            return emitError(Lyr::AllocationFailed);
        }
        fresh->activate();
    }
    const std::unique_ptr<LyrLinkSlot> retired = std::exchange(mSlot, std::move(fresh));
    return true;
}

void LyrSingleLinkOP::ownerChanged() {
    if (mSlot) {
        mSlot->deactivate();
        mSlot->activate();
    }
}

// List of links

LyrLinkListOP::LyrLinkListOP(LyrLinkOwnership ownership) noexcept : mOwnership(ownership) {}

LyrLinkListOP::~LyrLinkListOP() = default;

bool LyrLinkListOP::getArrayIndexRange(long long& first, long long& last) const {
    first = 0;
    last = static_cast<long long>(mLinks.size()) - 1;
    return true;
}

bool LyrLinkListOP::isInside(long long first, long long last) const noexcept {
    return first >= 0 && last >= first && last < static_cast<long long>(mLinks.size());
}

bool LyrLinkListOP::getArrayItems(long long first, long long last, LyrObjectLink* out) const {
    if (first == 0 && last == -1) {
        return true;
    }
    if (!isInside(first, last) || !out) {
        return false;
    }
    std::copy(mLinks.begin() + first, mLinks.begin() + last + 1, out);
    return true;
}

bool LyrLinkListOP::mayWrite(long long count, const LyrObjectLink* items) const {
    if (isReadOnly() || checkItems(count, items) != 1) {
        return false;
    }
    return mLocks.load(std::memory_order_relaxed) == 0 || emitError(Lyr::Locked);
}

std::vector<LyrObject*> LyrLinkListOP::targets() const {
    std::vector<LyrObject*> result;
    result.reserve(mLinks.size());
    for (const LyrObjectLink& link : mLinks) {
        result.push_back(link.getLink());
    }
    return result;
}

bool LyrLinkListOP::replaceAll(const std::vector<LyrObject*>& wanted) {
    if (wanted == targets()) {
        return true;
    }
    Slots fresh;  // after the write: the retired ones, whose objects die when everything is in place and told
    std::vector<LyrObjectLink> links;
    return write([&] {
        fresh.reserve(wanted.size());
        links.reserve(wanted.size());
        for (LyrObject* target : wanted) {
            fresh.emplace_back(new LyrLinkSlot(*this, mOwnership, target));
            if (!fresh.back()) {
                return emitError(Lyr::AllocationFailed);
            }
            links.emplace_back(target, getObject(), getPropertyID());
        }
        mSlots.swap(fresh);
        mLinks.swap(links);
        for (auto& slot : fresh) {
            slot->deactivate();
        }
        for (auto& slot : mSlots) {
            slot->activate();
        }
        return true;
    });
}

bool LyrLinkListOP::setArrayItems(long long first, long long last, const LyrObjectLink* items) {
    if (first == 0 && last == -1) {
        return !isReadOnly();
    }
    if (!isInside(first, last) || !items || !mayWrite(last - first + 1, items)) {
        return false;
    }
    try {
        auto wanted = targets();
        for (long long i = first; i <= last; ++i) {
            wanted[static_cast<std::size_t>(i)] = items[i - first].getLink();
        }
        return replaceAll(wanted);
    } catch (...) {
        return emitError(Lyr::AllocationFailed);
    }
}

bool LyrLinkListOP::initArray(long long first, long long last, const LyrObjectLink* items) {
    const long long count = last - first + 1;
    if (!isItemRange(first, last, items) || !mayWrite(count, items)) {
        return false;
    }
    try {
        std::vector<LyrObject*> wanted;
        for (long long i = 0; i < count; ++i) {
            wanted.push_back(items[i].getLink());
        }
        return replaceAll(wanted);
    } catch (...) {
        return emitError(Lyr::AllocationFailed);
    }
}

bool LyrLinkListOP::insertArrayItems(long long first, long long last, const LyrObjectLink* items) {
    const long long count = last - first + 1;
    if (first < 0 || count < 1 || first > static_cast<long long>(mLinks.size()) || !items || !mayWrite(count, items)) {
        return false;
    }
    try {
        auto wanted = targets();
        for (long long i = 0; i < count; ++i) {
            wanted.insert(wanted.begin() + first + i, items[i].getLink());
        }
        return replaceAll(wanted);
    } catch (...) {
        return emitError(Lyr::AllocationFailed);
    }
}

bool LyrLinkListOP::removeArrayItems(long long first, long long last) {
    if (!isInside(first, last) || !mayWrite(0, nullptr)) {
        return false;
    }
    try {
        auto wanted = targets();
        wanted.erase(wanted.begin() + first, wanted.begin() + last + 1);
        return replaceAll(wanted);
    } catch (...) {
        return emitError(Lyr::AllocationFailed);
    }
}

const LyrObjectLink* LyrLinkListOP::lockArrayPtr() const {
    mLocks.fetch_add(1, std::memory_order_relaxed);
    return mLinks.empty() ? nullptr : mLinks.data();
}

void LyrLinkListOP::unlockArrayPtr(const LyrObjectLink*) const { mLocks.fetch_sub(1, std::memory_order_relaxed); }

LyrProperty* LyrLinkListOP::clone(Lyrenum id) const {
    std::unique_ptr<LyrObjectSoftLinkListOP> copy(new LyrObjectSoftLinkListOP());
    if (!copy || !copy->initArray(0, static_cast<long long>(mLinks.size()) - 1, mLinks.data())) {
        emitError(Lyr::AllocationFailed);
        return nullptr;
    }
    copy->presetPropertyID(id);
    return copy.release();
}

bool LyrLinkListOP::resetData() { return mResetMode == Lyr::Object || initArray(0, -1, nullptr); }

std::unique_ptr<LyrProperty::State> LyrLinkListOP::takeState() const {
    auto state = std::make_unique<LinkState>();
    state->targets.reserve(mLinks.size());
    for (const LyrObjectLink& link : mLinks) {
        state->targets.emplace_back(link.getLink());
    }
    return state;
}

bool LyrLinkListOP::restoreState(const State& state) {
    std::vector<LyrObject*> wanted;
    for (const LyrObjectPtr& target : static_cast<const LinkState&>(state).targets) {
        wanted.push_back(target.get());
    }
    return replaceAll(wanted);
}

bool LyrLinkListOP::copyValueFrom(const LyrProperty& source) {
    const auto* typed = getInterfaceConst(&source);
    if (!typed || typed == this) {
        return typed != nullptr;
    }
    try {
        std::vector<LyrObjectLink> links(static_cast<std::size_t>(typed->getArraySize()));
        const long long last = static_cast<long long>(links.size()) - 1;
        if (!typed->getArrayItems(0, last, links.data())) {
            return false;
        }
        std::vector<LyrObjectPtr> copies;
        for (LyrObjectLink& link : links) {
            if (mOwnership == LyrLinkOwnership::Soft || link.isNull()) {
                continue;
            }
            copies.push_back(copyOf(*link.getLink(), *this));
            if (!copies.back()) {
                return false;
            }
            link = LyrObjectLink(copies.back().get(), nullptr, -1);
        }
        return initArray(0, last, links.data());
    } catch (...) {
        return emitError(Lyr::AllocationFailed);
    }
}

void LyrLinkListOP::ownerChanged() {
    for (LyrObjectLink& link : mLinks) {
        link = LyrObjectLink(link.getLink(), getObject(), getPropertyID());
    }
    for (auto& slot : mSlots) {
        slot->deactivate();
        slot->activate();
    }
}
