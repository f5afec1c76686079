#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrScratch.h>

#include <algorithm>

/** The listeners that a message still has to reach. Lives on the stack of the sending call; connections that end meanwhile
 *  are struck from all deliveries under way. */
class LyrIOC::Delivery {
public:
    Delivery() noexcept : mOuter(sInnermost) { sInnermost = this; }
    ~Delivery() { sInnermost = mOuter; }
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;

    bool collect(const LyrEmbeddedList<LyrIOCConnection, lyr_detail::SenderSide>& listeners, bool ownersOnly) {
        for (LyrIOCConnection* at = listeners.first(); at; at = listeners.next(at)) {
            const bool wanted = at->mListener && (!ownersOnly || at->mKind == LyrIOCConnection::Kind::OwningLink);
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
    LyrScratch<LyrIOCConnection*, 16> mPending;
};

LyrIOC::Delivery* LyrIOC::Delivery::sInnermost = nullptr;

LyrIOCConnection::~LyrIOCConnection() { disconnect(); }

void LyrIOCConnection::connect(LyrIOC* sender, LyrIOC* listener, Kind kind, Lyrenum linkId) noexcept {
    disconnect();
    if (!sender) {
        return;
    }
    mSender = sender;
    mListener = listener;
    mKind = kind;
    mLinkId = linkId;
    sender->mListeners.append(this);
    if (listener) {
        listener->mSources.append(this);
    }
}

void LyrIOCConnection::disconnect() noexcept {
    if (!mSender) {
        return;
    }
    LyrIOC::Delivery::strike(this);
    mSender->mListeners.remove(this);
    if (mListener) {
        mListener->mSources.remove(this);
    }
    mSender = nullptr;
    mListener = nullptr;
}

void LyrIOCConnection::senderDestroyed() {}

LyrIOC::~LyrIOC() { disconnectAll(); }

void LyrIOC::disconnectAll() noexcept {
    while (LyrIOCConnection* outgoing = mListeners.first()) {
        outgoing->disconnect();
        outgoing->senderDestroyed();
    }
    while (LyrIOCConnection* incoming = mSources.first()) {
        // The line to the sender stays for senderDestroyed(): a weak link must still hear of its target's end.
        LyrIOC* sender = incoming->mSender;
        const auto kind = incoming->mKind;
        const Lyrenum linkId = incoming->mLinkId;
        incoming->disconnect();
        incoming->connect(sender, nullptr, kind, linkId);
    }
}

bool LyrIOC::iocCallback(Message&) { return true; }

void LyrIOC::iocBroadcast(Message& message) { deliver(message, false); }

void LyrIOC::deliver(Message& message, bool ownersOnly) {
    if (mListeners.isEmpty()) {
        return;
    }
    Delivery delivery;
    if (!delivery.collect(mListeners, ownersOnly)) {
        LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
        return;
    }
    delivery.run([&](LyrIOCConnection& connection) {
        Message arriving = message;
        arriving.mLinkId = connection.getLinkID();
        connection.getListener()->iocCallback(arriving);
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
