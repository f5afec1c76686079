#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrEmbeddedList.h>
#include <lyr_core/Lyrenum.h>

class LyrIOC;
class LyrObject;

namespace lyr_detail {
struct SenderSide;
struct ListenerSide;
}  // namespace lyr_detail

/** One line from a sender to a listener. Ends by itself when either of them goes. */
class LYR_CORE_EXPORT LyrIOCConnection : public LyrEmbeddedListNode<LyrIOCConnection, lyr_detail::SenderSide>,
                                         public LyrEmbeddedListNode<LyrIOCConnection, lyr_detail::ListenerSide> {
public:
    enum class Kind {
        Handle,      ///< a handle that its holder listens through
        SoftLink,    ///< a link property that does not own its target
        OwningLink,  ///< a link property that owns its target: the listener is an owner of the sender
        ParentLink   ///< an owning link whose owner stands as the sender's parent
    };

    LyrIOCConnection() noexcept = default;
    LyrIOCConnection(const LyrIOCConnection&) = delete;
    LyrIOCConnection& operator=(const LyrIOCConnection&) = delete;
    virtual ~LyrIOCConnection();

    /** Replaces what was connected before. Either side may be null: without a listener only senderDestroyed() is heard,
     *  without a sender the connection just knows whether its listener is still there. */
    void connect(LyrIOC* sender, LyrIOC* listener, Kind kind, Lyrenum linkId) noexcept;
    void disconnect() noexcept;

    /** Null once the sender is gone. */
    LyrIOC* getSender() const noexcept { return mSender; }
    /** Null once the listener is gone. */
    LyrIOC* getListener() const noexcept { return mListener; }
    Lyrenum getLinkID() const noexcept { return mLinkId; }
    Kind getKind() const noexcept { return mKind; }

protected:
    /** The sender is being destroyed; the connection has left it already. */
    virtual void senderDestroyed();

private:
    friend class LyrIOC;
    void leaveSender() noexcept;
    void leaveListener() noexcept;
    using SenderNode = LyrEmbeddedListNode<LyrIOCConnection, lyr_detail::SenderSide>;
    using ListenerNode = LyrEmbeddedListNode<LyrIOCConnection, lyr_detail::ListenerSide>;

    LyrIOC* mSender = nullptr;
    LyrIOC* mListener = nullptr;
    Kind mKind = Kind::Handle;
    Lyrenum mLinkId;
};

/** Sends and receives messages. Delivery runs over a snapshot of the listeners: one that goes away meanwhile is not
 * called, and the sender may be destroyed inside a callback. To be used from one thread, that of the user interface. */
class LYR_CORE_EXPORT LyrIOC {
public:
    class LYR_CORE_EXPORT Message {
    public:
        /** A new message: its initial sender is its sender. */
        Message(const LyrObject* sender, Lyrenum messageType, Lyrenum propertyOrLinkId) noexcept
            : mSender(sender), mInitialSender(sender), mType(messageType), mPropertyId(propertyOrLinkId) {}
        /** A copy may be kept: it does not refer to the delivery that the original belongs to. */
        Message(const Message& other) noexcept
            : mSender(other.mSender),
              mInitialSender(other.mInitialSender),
              mType(other.mType),
              mPropertyId(other.mPropertyId),
              mLinkId(other.mLinkId),
              mFromOwned(other.mFromOwned) {}
        Message& operator=(const Message& other) noexcept {
            mSender = other.mSender;
            mInitialSender = other.mInitialSender;
            mType = other.mType;
            mPropertyId = other.mPropertyId;
            mLinkId = other.mLinkId;
            mFromOwned = other.mFromOwned;
            mPassedOn = nullptr;
            return *this;
        }

        /** The object that passed the message to this receiver. */
        const LyrObject* getSender() const noexcept { return mSender; }
        /** The object that the message is about. */
        const LyrObject* getInitialSender() const noexcept { return mInitialSender; }
        Lyrenum getMessageType() const noexcept { return mType; }
        Lyrenum getPropertyID() const noexcept { return mPropertyId; }
        /** The link property of the receiver through which the message came, -1 for a handle. */
        Lyrenum getLinkID() const noexcept { return mLinkId; }

    private:
        friend class LyrIOC;
        friend class LyrObject;
        const LyrObject* mSender;
        const LyrObject* mInitialSender;
        Lyrenum mType;
        Lyrenum mPropertyId;
        Lyrenum mLinkId;
        bool mFromOwned = false;             ///< it came through a link that owns its sender
        const Message* mPassedOn = nullptr;  ///< the message that this one passes on, for the detection of rings
    };

    LyrIOC() noexcept = default;
    /** A copy listens to nobody and nobody listens to it. */
    LyrIOC(const LyrIOC&) noexcept {}
    LyrIOC& operator=(const LyrIOC&) noexcept { return *this; }
    virtual ~LyrIOC();

    /** Receives a message. Overrides end by calling the base class's; a receiver that is a LyrObject stays alive until
     * then. */
    virtual bool iocCallback(Message& message);

    /** Sends a message to all listeners: owners (through their links) and holders of handles. Messages that cause each
     * other without end are cut off and reported. */
    void iocBroadcast(Message& message);

protected:
    /** Passes a message that was received on to the owners of this object, its initial sender kept. */
    void passToOwners(const Message& message, const LyrObject* self);
    /** Ends all lines to and from this object. */
    void disconnectAll() noexcept;
    /** The line of a kind to this object's listeners that was made last, null if there is none with a listener. */
    const LyrIOCConnection* lastConnection(LyrIOCConnection::Kind kind) const noexcept;

private:
    friend class LyrIOCConnection;
    class Delivery;
    void deliver(const Message& message, bool ownersOnly) noexcept;

    LyrEmbeddedList<LyrIOCConnection, lyr_detail::SenderSide> mListeners;
    LyrEmbeddedList<LyrIOCConnection, lyr_detail::ListenerSide> mSources;
};
