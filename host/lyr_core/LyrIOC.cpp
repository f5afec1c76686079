#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrKeepAlive_p.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrScratch.h>

#include <algorithm>

namespace {

/** Deliveries inside one another. No graph of owners is this deep: what reaches it goes in circles. */
constexpr int DEEPEST_DELIVERY = 400;

bool isOwner(LyrIOCConnection::Kind kind) noexcept {
    return kind == LyrIOCConnection::Kind::OwningLink || kind == LyrIOCConnection::Kind::ParentLink;
}

}  // namespace

/** The listeners that a message still has to reach. Lives on the stack of the sending call; connections that end
 * meanwhile are struck from all deliveries under way. */
class LyrIOC::Delivery {
public:
    Delivery() noexcept : mOuter(sInnermost), mDepth(mOuter ? mOuter->mDepth + 1 : 1) { sInnermost = this; }
    ~Delivery() { sInnermost = mOuter; }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    bool collect(const LyrEmbeddedList<LyrIOCConnection, lyr_detail::SenderSide>& listeners, bool ownersOnly) {
        for (LyrIOCConnection* at = listeners.first(); at; at = listeners.next(at)) {
            const bool wanted = at->mListener && (!ownersOnly || isOwner(at->mKind));
            if (wanted && !isTwin(*at) && !mPending.append(at)) {
                return false;
            }
        }
        return true;
    }

    template <class Call>
    void run(Call call) {
        for (std::size_t i = 0; i < mPending.size(); ++i) {
            if (LyrIOCConnection* connection = mPending[i]) {
                call(*connection);
            }
        }
    }

    bool isTooDeep() const noexcept { return mDepth > DEEPEST_DELIVERY; }

    static void strike(const LyrIOCConnection* ended) noexcept {
        for (Delivery* at = sInnermost; at; at = at->mOuter) {
            std::replace(at->mPending.begin(), at->mPending.end(), const_cast<LyrIOCConnection*>(ended),
                         static_cast<LyrIOCConnection*>(nullptr));
        }
    }

private:
    /** An object listed twice in one list property tells its owner once. */
    bool isTwin(const LyrIOCConnection& candidate) const {
        return candidate.mLinkId != Lyrenum(-1) &&
               std::any_of(mPending.begin(), mPending.end(), [&](const LyrIOCConnection* other) {
                   return other->mListener == candidate.mListener && other->mLinkId == candidate.mLinkId;
               });
    }

    static Delivery* sInnermost;
    Delivery* mOuter;
    int mDepth;
    LyrScratch<LyrIOCConnection*, 16> mPending;
};

LyrIOC::Delivery* LyrIOC::Delivery::sInnermost = nullptr;

LyrIOCConnection::~LyrIOCConnection() {
    disconnect();
}

void LyrIOCConnection::connect(LyrIOC* sender, LyrIOC* listener, Kind kind, Lyrenum linkId) noexcept {
    disconnect();
    mSender = sender;
    mListener = listener;
    mKind = kind;
    mLinkId = linkId;
    if (sender) {
        sender->mListeners.append(this);
    }
    if (listener) {
        listener->mSources.append(this);
    }
}

void LyrIOCConnection::disconnect() noexcept {
    leaveSender();
    leaveListener();
}

void LyrIOCConnection::leaveSender() noexcept {
    if (mSender) {
        LyrIOC::Delivery::strike(this);
        mSender->mListeners.remove(this);
        mSender = nullptr;
    }
}

void LyrIOCConnection::leaveListener() noexcept {
    if (mListener) {
        LyrIOC::Delivery::strike(this);
        mListener->mSources.remove(this);
        mListener = nullptr;
    }
}

void LyrIOCConnection::senderDestroyed() {}

LyrIOC::~LyrIOC() {
    disconnectAll();
}

void LyrIOC::disconnectAll() noexcept {
    while (LyrIOCConnection* outgoing = mListeners.first()) {
        outgoing->leaveSender();
        outgoing->senderDestroyed();
    }
    // The lines to the senders stay: a link without listener must still hear of its target's end.
    while (LyrIOCConnection* incoming = mSources.first()) {
        incoming->leaveListener();
    }
}

const LyrIOCConnection* LyrIOC::lastConnection(LyrIOCConnection::Kind kind) const noexcept {
    const LyrIOCConnection* last = nullptr;
    for (const LyrIOCConnection* at = mListeners.first(); at; at = mListeners.next(at)) {
        if (at->getKind() == kind && at->getListener()) {
            last = at;
        }
    }
    return last;
}

bool LyrIOC::iocCallback(Message&) {
    return true;
}

void LyrIOC::iocBroadcast(Message& message) {
    deliver(message, false);
}

void LyrIOC::deliver(const Message& message, bool ownersOnly) noexcept {
    if (mListeners.isEmpty()) {
        return;
    }
    Delivery delivery;
    if (delivery.isTooDeep()) {
        LyrError::emitError(LyrError::Message(message.getSender(), Lyr::Failed));
        return;
    }
    if (!delivery.collect(mListeners, ownersOnly)) {
        LyrError::emitError(LyrError::Message(message.getSender(), Lyr::AllocationFailed));
        return;
    }
    delivery.run([&](const LyrIOCConnection& connection) {
        Message arriving = message;
        arriving.mPassedOn = message.mPassedOn;
        arriving.mLinkId = connection.getLinkID();
        arriving.mFromOwned = isOwner(connection.getKind());
        LyrIOC* listener = connection.getListener();
        // A receiver may let go of itself, and still has to pass the message to its base class.
        const LyrKeepAlive keepAlive(dynamic_cast<LyrObject*>(listener));
        try {
            listener->iocCallback(arriving);
        } catch (...) {
            // Only memory can run out in a callback; the other listeners still hear.
            LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        }
    });
}

void LyrIOC::passToOwners(const Message& message, const LyrObject* self) {
    for (const Message* at = &message; at; at = at->mPassedOn) {
        if (at->mSender == self) {
            return;  // a ring of owners
        }
    }
    Message passed = message;
    passed.mSender = self;
    passed.mPassedOn = &message;
    deliver(passed, true);
}
