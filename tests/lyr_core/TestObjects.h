#pragma once

#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrSingleValueProperty.h>
#include <lyr_core/LyrUndoJournal.h>
#include <lyr_core/LyrValueArrayProperty.h>

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

/** Classes that the tests of the object framework share. */
namespace core_test {

inline constexpr const char* MODULE = "core_test";

// Identifiers of the properties of Node. Their numbers mean nothing to the framework.
inline constexpr Lyrenum WEIGHT = 9001;
inline constexpr Lyrenum TITLE = 9002;
inline constexpr Lyrenum NUMBERS = 9003;
inline constexpr Lyrenum OWNED = 9004;
inline constexpr Lyrenum PARENTED = 9005;
inline constexpr Lyrenum FRIEND = 9006;
inline constexpr Lyrenum CHILDREN = 9007;
inline constexpr Lyrenum SHARED = 9008;
inline constexpr Lyrenum FRIENDS = 9009;
inline constexpr Lyrenum SWITCH = 9010;

template <class T>
using Single = LyrSingleValueOP<LyrSingleValuePropertyIF<T>>;
template <class T>
using List = LyrValueArrayOP<LyrValueArrayPropertyIF<T>>;

/** An object with a property of most kinds, all of them content. */
class Node : public LyrObject {
public:
    Node() { registerProperties(); }
    Node(const Node& other) : LyrObject(other) {
        registerProperties();
        copyFrom(other);
    }
    Node& operator=(const Node& other) {
        copyFrom(other);
        return *this;
    }
    ~Node() override {
        if (onDestroyed) {
            onDestroyed();
        }
    }

    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestNode", sizeof(Node), &LyrObject::metaClass(), new LyrClassFactory<Node>,
                                       MODULE, 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

    bool iocCallback(Message& message) override {
        ++heard;
        lastLink = message.getLinkID();
        lastSender = message.getSender();
        lastInitialSender = message.getInitialSender();
        if (onMessage) {
            onMessage(message);
        }
        return LyrObject::iocCallback(message);
    }

    Single<float> weight;
    Single<const char*> title;
    List<float> numbers;
    LyrObjectHardLinkOP owned;
    LyrObjectParentLinkOP parented;
    LyrObjectSoftLinkOP softFriend;
    LyrObjectParentLinkListOP children;
    LyrObjectHardLinkListOP shared;
    LyrObjectSoftLinkListOP friends;
    LyrBooleanOP onOff;

    int heard = 0;
    Lyrenum lastLink;
    const LyrObject* lastSender = nullptr;
    const LyrObject* lastInitialSender = nullptr;
    std::function<void(Message&)> onMessage;
    std::function<void()> onDestroyed;

private:
    void registerProperties() {
        const struct {
            Lyrenum id;
            LyrProperty* property;
        } properties[] = {
            {WEIGHT, &weight},     {TITLE, &title},       {NUMBERS, &numbers},   {OWNED, &owned},
            {PARENTED, &parented}, {FRIEND, &softFriend}, {CHILDREN, &children}, {SHARED, &shared},
            {FRIENDS, &friends},   {SWITCH, &onOff},
        };
        for (const auto& entry : properties) {
            addProperty(entry.id, entry.property);
            entry.property->setFlags(LyrFlags::DATA, 0);
        }
        setFlags(LyrFlags::DATA, 0);
    }
};

/** Derives from Node, with a meta class of its own. */
class SpecialNode : public Node {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestSpecialNode", sizeof(SpecialNode), &Node::metaClass(),
                                       new LyrClassFactory<SpecialNode>, MODULE, 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

/** The classes are known by name in every test program. */
inline const LyrMetaClass* const REGISTERED[] = {&Node::metaClass(), &SpecialNode::metaClass()};

/** A new object, held. */
template <class T = Node>
class Held {
public:
    Held() : mObject(new T), mHandle(mObject) {}
    explicit Held(T* object) : mObject(object), mHandle(object) {}
    T* operator->() const { return mObject; }
    T& operator*() const { return *mObject; }
    T* get() const { return mObject; }
    /** Drops the reference. */
    void drop() { mHandle = LyrObjectPtr(); }

private:
    T* mObject;
    LyrObjectPtr mHandle;
};

inline LyrObjectLink linkTo(LyrObject* object) {
    return LyrObjectLink(object, nullptr, -1);
}

inline bool setList(LyrLinkListIF& list, std::initializer_list<LyrObject*> objects) {
    std::vector<LyrObjectLink> links;
    for (LyrObject* object : objects) {
        links.push_back(linkTo(object));
    }
    return list.initArray(0, static_cast<long long>(links.size()) - 1, links.data());
}

inline std::vector<LyrObject*> targetsOf(const LyrLinkListOP& list) {
    std::vector<LyrObject*> targets;
    for (const LyrObjectLink& link : list.view()) {
        targets.push_back(link.getLink());
    }
    return targets;
}

inline bool setList(LyrValueArrayPropertyIF<float>& list, std::initializer_list<float> items) {
    return list.initArray(0, static_cast<long long>(items.size()) - 1, items.begin());
}

inline std::vector<float> itemsOf(const List<float>& list) {
    return {list.view().begin(), list.view().end()};
}

/** Notes what it hears. */
class Ear : public LyrIOC {
public:
    struct Heard {
        const LyrObject* sender;
        const LyrObject* initialSender;
        int type;
        int property;
        int link;
    };

    bool iocCallback(Message& message) override {
        heard.push_back({message.getSender(), message.getInitialSender(), message.getMessageType(),
                         message.getPropertyID(), message.getLinkID()});
        if (onMessage) {
            onMessage(message);
        }
        return LyrIOC::iocCallback(message);
    }

    std::vector<int> properties() const {
        std::vector<int> ids;
        for (const Heard& message : heard) {
            ids.push_back(message.property);
        }
        return ids;
    }

    std::vector<Heard> heard;
    std::function<void(Message&)> onMessage;
};

/** Takes the errors that a case expects. */
class Errors : public LyrError::Listener {
public:
    Errors() {
        // Room before memory gets scarce.
        codes.reserve(64);
        sources.reserve(64);
    }
    bool errorEmitted(const LyrError::Message& message) override {
        codes.push_back(message.getCode());
        sources.push_back(message.getSource());
        return true;
    }
    std::vector<int> codes;
    std::vector<const LyrClass*> sources;
};

/** Keeps the finished steps of the journal while it lives. */
class Steps : public LyrUndoJournal::Sink {
public:
    Steps() { LyrUndoJournal::instance().setSink(this); }
    ~Steps() override { LyrUndoJournal::instance().setSink(nullptr); }
    bool stepFinished(std::unique_ptr<LyrUndoStep>& step) override {
        steps.push_back(std::move(step));
        return true;
    }

    std::size_t size() const { return steps.size(); }
    LyrUndoStep& operator[](std::size_t index) { return *steps[index]; }

    std::vector<std::unique_ptr<LyrUndoStep>> steps;
};

/** One action of the journal. */
class Action {
public:
    explicit Action(const char* name = "action") : mToken(LyrUndoJournal::instance().begin(LyrString(name))) {}
    bool end(const char* name = "") { return LyrUndoJournal::instance().end(mToken, LyrString(name)); }
    bool abort() { return LyrUndoJournal::instance().abort(mToken); }
    LyrUndoJournal::Token token() const { return mToken; }

private:
    LyrUndoJournal::Token mToken;
};

}  // namespace core_test
