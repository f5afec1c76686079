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
        Handle,     ///< a handle that its holder listens through
        SoftLink,   ///< a link property that does not own its target
        OwningLink  ///< a link property that owns its target: the listener is an owner of the sender
    };

    LyrIOCConnection() noexcept = default;
    LyrIOCConnection(const LyrIOCConnection&) = delete;
    LyrIOCConnection& operator=(const LyrIOCConnection&) = delete;
    virtual ~LyrIOCConnection();

    /** Replaces what was connected before. With a null sender nothing is connected; with a null listener only
     *  senderDestroyed() is heard. */
    void connect(LyrIOC* sender, LyrIOC* listener, Kind kind, Lyrenum linkId) noexcept;
    void disconnect() noexcept;

    LyrIOC* getSender() const noexcept { return mSender; }
    LyrIOC* getListener() const noexcept { return mListener; }
    Lyrenum getLinkID() const noexcept { return mLinkId; }
    Kind getKind() const noexcept { return mKind; }

protected:
    /** The sender is being destroyed; the connection has ended already. */
    virtual void senderDestroyed();

private:
    friend class LyrIOC;
    using SenderNode = LyrEmbeddedListNode<LyrIOCConnection, lyr_detail::SenderSide>;
    using ListenerNode = LyrEmbeddedListNode<LyrIOCConnection, lyr_detail::ListenerSide>;

    LyrIOC* mSender = nullptr;
    LyrIOC* mListener = nullptr;
    Kind mKind = Kind::Handle;
    Lyrenum mLinkId;
};

/** Sends and receives messages. Delivery runs over a snapshot of the listeners: one that goes away meanwhile is not called,
 *  and the sender may be destroyed inside a callback. To be used from one thread, that of the user interface. */
class LYR_CORE_EXPORT LyrIOC {
public:
    class LYR_CORE_EXPORT Message {
    public:
        /** A new message: its initial sender is its sender. */
        Message(const LyrObject* sender, Lyrenum messageType, Lyrenum propertyOrLinkId) noexcept
            : mSender(sender), mInitialSender(sender), mType(messageType), mPropertyId(propertyOrLinkId) {}

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
        const Message* mPassedOn = nullptr;  ///< the message that this one passes on, for the detection of rings
    };

    LyrIOC() noexcept = default;
    /** A copy listens to nobody and nobody listens to it. */
    LyrIOC(const LyrIOC&) noexcept {}
    LyrIOC& operator=(const LyrIOC&) noexcept { return *this; }
    virtual ~LyrIOC();

    /** Receives a message. Overrides end by calling the base class's. */
    virtual bool iocCallback(Message& message);

    /** Sends a message to all listeners: owners (through their links) and holders of handles. */
    void iocBroadcast(Message& message);

protected:
    /** Passes a message that was received on to the owners of this object, its initial sender kept. */
    void passToOwners(const Message& message, const LyrObject* self);
    /** Ends all lines to and from this object. */
    void disconnectAll() noexcept;

private:
    friend class LyrIOCConnection;
    class Delivery;
    void deliver(Message& message, bool ownersOnly);

    LyrEmbeddedList<LyrIOCConnection, lyr_detail::SenderSide> mListeners;
    LyrEmbeddedList<LyrIOCConnection, lyr_detail::ListenerSide> mSources;
};
