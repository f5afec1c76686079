#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrKeepAlive_p.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrLinkSlot_p.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace {

/** A state of links: it keeps the objects, so that undo brings back the same ones, and all that the property needs to
 * take them back without memory. A single link is a list of one, null for no link. */
struct LinkState : LyrProperty::State {
    std::vector<std::unique_ptr<LyrLinkSlot>> slots;
    std::vector<LyrObjectLink> links;

    static LyrObject* targetOf(const std::unique_ptr<LyrLinkSlot>& slot) noexcept {
        return slot ? slot->target() : nullptr;
    }

    bool holdsObjectsOf(const char* module) const override {
        return std::any_of(slots.begin(), slots.end(), [&](const auto& slot) {
            const LyrObject* target = targetOf(slot);
            return target && std::strcmp(target->getMetaClass().getModule(), module) == 0;
        });
    }

    /** False when memory ran out. */
    bool park(LyrProperty& property, LyrLinkOwnership ownership, LyrObject* target) {
        std::unique_ptr<LyrLinkSlot> slot(new LyrLinkSlot(property, ownership, target));
        if (!slot) {
            return false;
        }
        slot->park();
        slots.push_back(std::move(slot));
        return true;
    }
};

/** Copies inside one another. Content is never this deep: objects that own each other in a ring would be copied without
 * end. */
constexpr int DEEPEST_COPY = 200;

class CopyDepth {
public:
    CopyDepth() noexcept { ++sDepth; }
    ~CopyDepth() { --sDepth; }
    CopyDepth(const CopyDepth&) = delete;
    CopyDepth& operator=(const CopyDepth&) = delete;
    static bool isTooDeep() noexcept { return sDepth > DEEPEST_COPY; }

private:
    static thread_local int sDepth;
};

thread_local int CopyDepth::sDepth = 0;

/** A copy of a linked object for an owning property. Null, and an error, when it cannot be made. */
LyrObjectPtr copyOf(const LyrObject& source, const LyrProperty& reporter) {
    const CopyDepth depth;
    if (CopyDepth::isTooDeep()) {
        reporter.emitError(Lyr::Failed);
        return {};
    }
    return LyrObjectPtr(static_cast<LyrObject*>(source.getMetaClass().clone(&source)));
}

/** An object that is about to go takes no new links. */
bool mayLinkTo(const LyrObject* target) noexcept {
    return !target || !target->isDying();
}

}  // namespace

void LyrLinkSlot::senderDestroyed() {
    const LyrObject* gone = std::exchange(mTarget, nullptr);
    if (getKind() == Kind::Handle) {
        return;  // parked: the property has nothing to do with it
    }
    if (auto* list = dynamic_cast<LyrLinkListOP*>(&mProperty)) {
        list->forget(gone);
    } else {
        static_cast<LyrSingleLinkOP&>(mProperty).announceChange();
    }
}

// Single link

LyrSingleLinkOP::LyrSingleLinkOP(LyrLinkOwnership ownership) noexcept : mOwnership(ownership) {}

// The end of the linked object may be noticed: by then this property must be out of everybody's sight.
LyrSingleLinkOP::~LyrSingleLinkOP() {
    leaveOwner();
    const std::unique_ptr<LyrLinkSlot> retired = std::move(mSlot);
}

LyrObject* LyrSingleLinkOP::getTarget() const noexcept {
    return mSlot ? mSlot->target() : nullptr;
}

bool LyrSingleLinkOP::resetData() {
    return mResetMode == Lyr::Object || setValue(LyrObjectLink());
}

std::unique_ptr<LyrProperty::State> LyrSingleLinkOP::takeState() const {
    try {
        auto state = std::make_unique<LinkState>();
        const bool done = state->park(const_cast<LyrSingleLinkOP&>(*this), mOwnership, getTarget());
        return done ? std::move(state) : nullptr;
    } catch (...) {
        return nullptr;
    }
}

bool LyrSingleLinkOP::restoreState(State& state) {
    std::unique_ptr<LyrLinkSlot>& other = static_cast<LinkState&>(state).slots.front();
    LyrObject* target = LinkState::targetOf(other);
    if (checkData(LyrObjectLink(target, nullptr, -1), true) != 1) {
        return false;
    }
    if (target == getTarget()) {
        return true;
    }
    const LyrKeepAlive keepAlive(getObject());
    const bool done = write([&] {
        mSlot.swap(other);
        if (other) {
            other->park();
        }
        if (mSlot) {
            mSlot->activate();
        }
        return true;
    });
    if (done && mSlot) {
        mSlot->dropParkedReference();
    }
    return done;
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
    if (checkData(value, true) != 1) {
        return false;
    }
    if (value.getLink() == getTarget()) {
        return true;
    }
    if (!mayLinkTo(value.getLink())) {
        return emitError(Lyr::InvalidParameters);
    }
    std::unique_ptr<LyrLinkSlot> retired;  // its object dies when the new link is in place and told
    return write([&] { return exchangeSlot(value.getLink(), retired); });
}

bool LyrSingleLinkOP::storeSilently(const LyrObjectLink& value) {
    std::unique_ptr<LyrLinkSlot> retired;
    return mayLinkTo(value.getLink()) ? exchangeSlot(value.getLink(), retired) : emitError(Lyr::InvalidParameters);
}

bool LyrSingleLinkOP::exchangeSlot(LyrObject* target, std::unique_ptr<LyrLinkSlot>& retired) {
    std::unique_ptr<LyrLinkSlot> fresh;
    if (target) {
        fresh.reset(new LyrLinkSlot(*this, mOwnership, target));
        if (!fresh) {
            return emitError(Lyr::AllocationFailed);
        }
    }
    retired = std::exchange(mSlot, std::move(fresh));
    if (retired) {
        retired->disconnect();
    }
    if (mSlot) {
        mSlot->activate();
    }
    return true;
}

void LyrSingleLinkOP::ownerChanged() {
    if (mSlot) {
        mSlot->activate();
    }
}

// List of links

LyrLinkListOP::LyrLinkListOP(LyrLinkOwnership ownership) noexcept : mOwnership(ownership) {}

LyrLinkListOP::~LyrLinkListOP() {
    leaveOwner();
    mLinks.clear();
    const Slots retired = std::move(mSlots);
}

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
    return !isReadOnly() && checkItems(count, items) == 1;
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
    if (mLocks.load(std::memory_order_acquire) != 0) {
        return emitError(Lyr::Locked);
    }
    if (!std::all_of(wanted.begin(), wanted.end(), mayLinkTo)) {
        return emitError(Lyr::InvalidParameters);
    }
    Slots fresh;  // after the write: the retired ones, whose objects die when everything is in place and told
    return write([&] {
        std::vector<LyrObjectLink> links;
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
            slot->disconnect();
        }
        for (auto& slot : mSlots) {
            slot->activate();
        }
        return true;
    });
}

void LyrLinkListOP::forget(const LyrObject* gone) {
    bool changed = false;
    for (LyrObjectLink& link : mLinks) {
        if (link.getLink() == gone) {
            link = LyrObjectLink(nullptr, link.getOwner(), link.getLinkID());
            changed = true;
        }
    }
    if (changed) {
        announceChange();
    }
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
    if (!isItemRange(first, last, items) || !mayWrite(last - first + 1, items)) {
        return false;
    }
    try {
        const auto count = static_cast<std::size_t>(last - first + 1);
        std::vector<LyrObject*> wanted(count);
        std::transform(items, items + count, wanted.begin(), [](const LyrObjectLink& link) { return link.getLink(); });
        return replaceAll(wanted);
    } catch (...) {
        return emitError(Lyr::AllocationFailed);
    }
}

bool LyrLinkListOP::insertArrayItems(long long first, long long last, const LyrObjectLink* items) {
    const bool isRange = last >= first && isItemRange(first, last, items);
    if (!isRange || first > static_cast<long long>(mLinks.size()) || !mayWrite(last - first + 1, items)) {
        return false;
    }
    try {
        auto wanted = targets();
        const auto place = wanted.insert(wanted.begin() + first, static_cast<std::size_t>(last - first + 1), nullptr);
        std::transform(items, items + (last - first + 1), place,
                       [](const LyrObjectLink& link) { return link.getLink(); });
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
    if (mLinks.empty()) {
        return nullptr;
    }
    mLocks.fetch_add(1, std::memory_order_acquire);
    return mLinks.data();
}

void LyrLinkListOP::unlockArrayPtr(const LyrObjectLink* items) const {
    if (items && items == mLinks.data() && mLocks.fetch_sub(1, std::memory_order_release) <= 0) {
        mLocks.fetch_add(1, std::memory_order_relaxed);  // it was not locked
    }
}

LyrProperty* LyrLinkListOP::clone(Lyrenum id) const {
    std::unique_ptr<LyrObjectSoftLinkListOP> copy(new LyrObjectSoftLinkListOP());
    if (!copy || !copy->initArray(0, static_cast<long long>(mLinks.size()) - 1, mLinks.data())) {
        emitError(Lyr::AllocationFailed);
        return nullptr;
    }
    copy->presetPropertyID(id);
    return copy.release();
}

bool LyrLinkListOP::resetData() {
    return mResetMode == Lyr::Object || initArray(0, -1, nullptr);
}

std::unique_ptr<LyrProperty::State> LyrLinkListOP::takeState() const {
    try {
        auto state = std::make_unique<LinkState>();
        state->links = mLinks;
        state->slots.reserve(mLinks.size());
        for (const LyrObjectLink& link : mLinks) {
            if (!state->park(const_cast<LyrLinkListOP&>(*this), mOwnership, link.getLink())) {
                return nullptr;
            }
        }
        return state;
    } catch (...) {
        return nullptr;
    }
}

bool LyrLinkListOP::restoreState(State& state) {
    // Not a structured binding: some compilers do not let a lambda capture one.
    auto& slots = static_cast<LinkState&>(state).slots;
    auto& links = static_cast<LinkState&>(state).links;
    for (std::size_t i = 0; i < links.size(); ++i) {
        links[i] = LyrObjectLink(slots[i]->target(), getObject(), getPropertyID());
    }
    if (!mayWrite(static_cast<long long>(links.size()), links.data())) {
        return false;
    }
    if (links == mLinks) {
        return true;
    }
    if (mLocks.load(std::memory_order_acquire) != 0) {
        return emitError(Lyr::Locked);
    }
    const LyrKeepAlive keepAlive(getObject());
    const bool done = write([&] {
        mSlots.swap(slots);
        mLinks.swap(links);
        for (auto& slot : slots) {
            slot->park();
        }
        for (auto& slot : mSlots) {
            slot->activate();
        }
        return true;
    });
    // Listeners may have written the list again, and the end of a target may let them do so here.
    for (std::size_t i = 0; done && i < mSlots.size(); ++i) {
        mSlots[i]->dropParkedReference();
    }
    return done;
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
        slot->activate();
    }
}

// Meta classes

namespace {

template <class Link>
const LyrMetaClass& describeLink(const char* name, const LyrMetaClass& parent) {
    static const LyrMetaClass meta(name, sizeof(Link), &parent, new LyrClassFactory<Link>, "lyr_core", 0, nullptr, 0, 0,
                                   0, false);
    return meta;
}

}  // namespace

const LyrMetaClass& LyrObjectHardLinkOP::metaClass() {
    return describeLink<LyrObjectHardLinkOP>("LyrObjectHardLinkOP", LyrProperty::metaClass());
}
const LyrMetaClass& LyrObjectHardLinkOP::getMetaClass() const {
    return metaClass();
}

const LyrMetaClass& LyrObjectSoftLinkOP::metaClass() {
    return describeLink<LyrObjectSoftLinkOP>("LyrObjectSoftLinkOP", LyrProperty::metaClass());
}
const LyrMetaClass& LyrObjectSoftLinkOP::getMetaClass() const {
    return metaClass();
}

const LyrMetaClass& LyrObjectParentLinkOP::metaClass() {
    return describeLink<LyrObjectParentLinkOP>("LyrObjectParentLinkOP", LyrProperty::metaClass());
}
const LyrMetaClass& LyrObjectParentLinkOP::getMetaClass() const {
    return metaClass();
}

const LyrMetaClass& LyrObjectHardLinkListOP::metaClass() {
    return describeLink<LyrObjectHardLinkListOP>("LyrObjectHardLinkListOP", LyrProperty::metaClass());
}
const LyrMetaClass& LyrObjectHardLinkListOP::getMetaClass() const {
    return metaClass();
}

const LyrMetaClass& LyrObjectSoftLinkListOP::metaClass() {
    return describeLink<LyrObjectSoftLinkListOP>("LyrObjectSoftLinkListOP", LyrProperty::metaClass());
}
const LyrMetaClass& LyrObjectSoftLinkListOP::getMetaClass() const {
    return metaClass();
}

const LyrMetaClass& LyrObjectParentLinkListOP::metaClass() {
    return describeLink<LyrObjectParentLinkListOP>("LyrObjectParentLinkListOP", LyrObjectHardLinkListOP::metaClass());
}
const LyrMetaClass& LyrObjectParentLinkListOP::getMetaClass() const {
    return metaClass();
}
