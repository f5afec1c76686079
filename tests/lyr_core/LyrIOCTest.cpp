#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrIOC.h>
#include <lyr_core/LyrObjectIOCPtr.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

using namespace core_test;

namespace {

/** A listener with its handle. */
struct Listening {
    explicit Listening(LyrObject* object) : handle(&ear, object) {}
    Ear ear;
    LyrObjectIOCPtr handle;
};

/** Says "I have changed" for every message of a child, before passing the message on. */
class Relaying : public Node {
public:
    bool iocCallback(Message& message) override {
        if (message.getLinkID() == CHILDREN) {
            Message relayed(this, Lyr::PropertyHasChanged, CHILDREN);
            iocBroadcast(relayed);
        }
        return Node::iocCallback(message);
    }
};

void change(Node& node) {
    node.weight.setValue(node.weight.stored() + 1.0f);
}

using Ids = std::vector<int>;

}  // namespace

TEST(LyrIOCMessage, starts_with_its_sender_as_initial_sender_and_without_link) {
    const Node node;
    const LyrIOC::Message message(&node, Lyr::PropertyHasChanged, WEIGHT);
    EXPECT_EQ(message.getSender(), &node);
    EXPECT_EQ(message.getInitialSender(), &node);
    EXPECT_EQ(message.getMessageType(), 204800299);
    EXPECT_EQ(message.getPropertyID(), WEIGHT);
    EXPECT_EQ(message.getLinkID(), -1);
}

TEST(LyrIOC, tells_the_holder_of_a_handle_of_a_changed_property) {
    const Held<> node;
    Listening one(node.get());
    change(*node);
    ASSERT_EQ(one.ear.heard.size(), 1u);
    EXPECT_EQ(one.ear.heard[0].sender, node.get());
    EXPECT_EQ(one.ear.heard[0].initialSender, node.get());
    EXPECT_EQ(one.ear.heard[0].type, 204800299);
    EXPECT_EQ(one.ear.heard[0].property, WEIGHT);
    EXPECT_EQ(one.ear.heard[0].link, -1);
}

TEST(LyrIOC, tells_listeners_in_the_order_in_which_they_came) {
    const Held<> node;
    std::vector<int> order;
    Listening first(node.get()), second(node.get()), third(node.get());
    first.ear.onMessage = [&](auto&) { order.push_back(1); };
    second.ear.onMessage = [&](auto&) { order.push_back(2); };
    third.ear.onMessage = [&](auto&) { order.push_back(3); };
    change(*node);
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(LyrIOC, tells_an_owner_through_which_of_its_links_the_message_came) {
    const Held<> owner;
    auto* child = new Node;
    owner->owned.setValue(linkTo(child));
    owner->heard = 0;
    change(*child);
    EXPECT_EQ(owner->heard, 1);
    EXPECT_EQ(owner->lastLink, OWNED);
    EXPECT_EQ(owner->lastSender, child);
    EXPECT_EQ(owner->lastInitialSender, child);
}

TEST(LyrIOC, passes_a_message_of_an_owned_object_up_with_its_initial_sender) {
    const Held<> top;
    auto* middle = new Node;
    auto* bottom = new Node;
    top->parented.setValue(linkTo(middle));
    setList(middle->children, {bottom});
    Listening above(top.get()), besides(middle);
    top->heard = middle->heard = 0;
    change(*bottom);
    EXPECT_EQ(middle->heard, 1);
    EXPECT_EQ(middle->lastLink, CHILDREN);
    EXPECT_EQ(top->heard, 1);
    EXPECT_EQ(top->lastLink, PARENTED);
    EXPECT_EQ(top->lastSender, middle);
    EXPECT_EQ(top->lastInitialSender, bottom);
    // What travels up is for owners: whoever listens to an owner hears of the owner's own properties only.
    EXPECT_TRUE(above.ear.heard.empty());
    EXPECT_TRUE(besides.ear.heard.empty());
}

TEST(LyrIOC, does_not_pass_up_what_came_through_a_link_that_owns_nothing) {
    const Held<> top, target;
    auto* middle = new Node;
    top->owned.setValue(linkTo(middle));
    middle->softFriend.setValue(linkTo(target.get()));
    top->heard = middle->heard = 0;
    change(*target);
    EXPECT_EQ(middle->heard, 1);
    EXPECT_EQ(middle->lastLink, FRIEND);
    EXPECT_EQ(top->heard, 0);
}

TEST(LyrIOC, tells_a_relay_and_the_original_in_the_order_of_the_calls) {
    const Held<Relaying> table;
    auto* section = new Node;
    setList(table->children, {section});
    Listening direct(table.get());
    const Held<> owner;
    owner->owned.setValue(linkTo(table.get()));
    std::vector<std::pair<const LyrObject*, int>> heard;
    owner->onMessage = [&](LyrIOC::Message& message) {
        heard.emplace_back(message.getInitialSender(), message.getPropertyID());
    };
    change(*section);
    ASSERT_EQ(direct.ear.heard.size(), 1u);
    EXPECT_EQ(direct.ear.heard[0].initialSender, table.get());
    EXPECT_EQ(direct.ear.heard[0].property, CHILDREN);
    EXPECT_EQ(heard, (std::vector<std::pair<const LyrObject*, int>>{{table.get(), CHILDREN}, {section, WEIGHT}}));
}

TEST(LyrIOC, tells_an_owner_once_of_an_object_that_one_list_holds_twice) {
    const Held<> owner;
    auto* child = new Node;
    setList(owner->shared, {child, nullptr, child});
    owner->heard = 0;
    change(*child);
    EXPECT_EQ(owner->heard, 1);
}

TEST(LyrIOC, tells_an_owner_once_for_each_property_that_links_to_the_object) {
    const Held<> owner;
    auto* child = new Node;
    setList(owner->shared, {child});
    owner->owned.setValue(linkTo(child));
    setList(owner->friends, {child});
    Ids links;
    owner->onMessage = [&](LyrIOC::Message& message) { links.push_back(message.getLinkID()); };
    change(*child);
    EXPECT_EQ(links, (Ids{SHARED, OWNED, FRIENDS}));
}

TEST(LyrIOC, tells_a_listener_with_two_handles_twice) {
    const Held<> node;
    Ear ear;
    const LyrObjectIOCPtr one(&ear, node.get()), two(&ear, node.get());
    change(*node);
    EXPECT_EQ(ear.heard.size(), 2u);
}

TEST(LyrIOC, tells_nobody_of_its_own_children_being_listed_again) {
    const Held<> owner;
    auto* child = new Node;
    setList(owner->children, {child});
    Listening one(owner.get());
    EXPECT_TRUE(setList(owner->children, {child}));
    EXPECT_TRUE(one.ear.heard.empty());
}

TEST(LyrIOC, stops_a_message_that_owners_pass_round_in_a_ring) {
    const Held<> first, second;
    first->owned.setValue(linkTo(second.get()));
    second->owned.setValue(linkTo(first.get()));
    first->heard = second->heard = 0;
    change(*first);
    EXPECT_EQ(second->heard, 1);
    EXPECT_EQ(first->heard, 1);  // the second passes it on to the first, which sent it
    first->owned.resetData();
}

TEST(LyrIOC, stops_a_message_in_an_object_that_owns_itself) {
    const Held<> node;
    node->owned.setValue(linkTo(node.get()));
    node->heard = 0;
    change(*node);
    EXPECT_EQ(node->heard, 1);
    node->owned.resetData();
}

TEST(LyrIOC, cuts_off_and_reports_messages_that_cause_each_other_without_end) {
    const Held<Relaying> table;
    Errors errors;
    EXPECT_TRUE(setList(table->children, {table.get()}));
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::Failed});
    EXPECT_EQ(errors.sources, std::vector<const LyrClass*>{table.get()});
    EXPECT_TRUE(table->weight.setValue(1.0f));
    EXPECT_EQ(errors.codes.size(), 2u);
    EXPECT_GT(table->heard, 0);
    table->children.resetData();
}

TEST(LyrIOC, does_not_call_a_listener_that_left_during_the_delivery) {
    const Held<> node;
    Listening first(node.get()), second(node.get()), third(node.get());
    first.ear.onMessage = [&](auto&) { second.handle.setListener(nullptr); };
    change(*node);
    EXPECT_EQ(second.ear.heard.size(), 0u);
    EXPECT_EQ(third.ear.heard.size(), 1u);
}

TEST(LyrIOC, does_not_call_a_listener_that_came_during_the_delivery) {
    const Held<> node;
    std::optional<Listening> added;
    Listening first(node.get());
    first.ear.onMessage = [&](auto&) {
        if (!added) {
            added.emplace(node.get());
        }
    };
    change(*node);
    EXPECT_TRUE(added->ear.heard.empty());
    change(*node);
    EXPECT_EQ(added->ear.heard.size(), 1u);
}

TEST(LyrIOC, survives_a_listener_that_destroys_another_listener) {
    const Held<> node;
    Listening first(node.get());
    std::optional<Listening> second(std::in_place, node.get());
    Listening third(node.get());
    first.ear.onMessage = [&](auto&) { second.reset(); };
    change(*node);
    EXPECT_EQ(third.ear.heard.size(), 1u);
}

TEST(LyrIOC, survives_a_listener_that_destroys_itself) {
    struct Brief : LyrIOC {
        Brief(LyrObject* object, int& ends) : mEnds(ends), mHandle(this, object) {}
        ~Brief() override { ++mEnds; }
        bool iocCallback(Message&) override {
            delete this;
            return true;
        }
        int& mEnds;
        LyrObjectIOCPtr mHandle;
    };
    const Held<> node;
    int ends = 0;
    new Brief(node.get(), ends);
    Listening second(node.get());
    change(*node);
    change(*node);
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(second.ear.heard.size(), 2u);
}

TEST(LyrIOC, ends_the_delivery_when_a_listener_destroys_the_sender) {
    auto node = std::make_unique<Held<>>();
    bool destroyed = false;
    (*node)->onDestroyed = [&] { destroyed = true; };
    Listening first(node->get());
    Listening second(node->get());
    first.ear.onMessage = [&](auto&) {
        first.handle = nullptr;
        second.handle = nullptr;
        node.reset();
    };
    EXPECT_TRUE((*node)->weight.setValue(1.0f));
    EXPECT_TRUE(destroyed);
    EXPECT_TRUE(second.ear.heard.empty());
}

TEST(LyrIOC, survives_a_child_that_is_removed_and_destroyed_by_its_owner_while_it_tells) {
    const Held<> owner;
    auto* child = new Node;
    bool destroyed = false;
    child->onDestroyed = [&] { destroyed = true; };
    setList(owner->children, {child});
    owner->onMessage = [&](LyrIOC::Message& message) {
        if (message.getLinkID() == CHILDREN) {
            owner->children.initArray(0, -1, nullptr);
        }
    };
    change(*child);
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(owner->children.getArraySize(), 0);
}

TEST(LyrIOC, survives_an_owner_that_is_destroyed_while_its_child_tells) {
    auto owner = std::make_unique<Held<>>();
    const Held<> child;
    (*owner)->owned.setValue(linkTo(child.get()));
    Listening after(child.get());
    bool gone = false;
    bool goneTooEarly = true;
    (*owner)->onDestroyed = [&] { gone = true; };
    (*owner)->onMessage = [&](auto&) {
        owner.reset();
        goneTooEarly = gone;
    };
    change(*child);
    EXPECT_FALSE(owner);
    EXPECT_FALSE(goneTooEarly);
    EXPECT_TRUE(gone);
    EXPECT_EQ(after.ear.heard.size(), 1u);
}

TEST(LyrIOC, tells_of_changes_that_listeners_make_in_between) {
    const Held<> node;
    Listening first(node.get()), second(node.get());
    first.ear.onMessage = [&](LyrIOC::Message& message) {
        if (message.getPropertyID() == WEIGHT) {
            node->title.setValue("heavier");
        }
    };
    change(*node);
    EXPECT_EQ(first.ear.properties(), (Ids{WEIGHT, TITLE}));
    EXPECT_EQ(second.ear.properties(), (Ids{TITLE, WEIGHT}));
}

TEST(LyrIOC, goes_on_after_a_listener_that_fails) {
    const Held<> node;
    Listening first(node.get()), second(node.get());
    first.ear.onMessage = [](auto&) { throw std::bad_alloc(); };
    Errors errors;
    EXPECT_TRUE(node->weight.setValue(1.0f));
    EXPECT_EQ(second.ear.heard.size(), 1u);
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::AllocationFailed});
}

TEST(LyrIOC, sends_messages_of_any_type) {
    const Held<> node;
    Listening one(node.get());
    LyrIOC::Message message(node.get(), 4711, -1);
    node->iocBroadcast(message);
    ASSERT_EQ(one.ear.heard.size(), 1u);
    EXPECT_EQ(one.ear.heard[0].type, 4711);
    EXPECT_EQ(one.ear.heard[0].property, -1);
}

TEST(LyrIOC, may_keep_a_copy_of_a_message_and_send_it_later) {
    const Held<> top;
    auto* child = new Node;
    top->owned.setValue(linkTo(child));
    std::optional<LyrIOC::Message> kept;
    top->onMessage = [&](LyrIOC::Message& message) { kept.emplace(message); };
    change(*child);
    top->onMessage = nullptr;
    ASSERT_TRUE(kept);
    EXPECT_EQ(kept->getInitialSender(), child);
    EXPECT_EQ(kept->getLinkID(), OWNED);
    const Held<> above;
    above->owned.setValue(linkTo(top.get()));
    above->heard = 0;
    top->iocBroadcast(*kept);
    EXPECT_EQ(above->heard, 1);
    EXPECT_EQ(above->lastInitialSender, child);
    EXPECT_EQ(above->lastLink, OWNED);
}

TEST(LyrIOC, gives_a_copy_neither_listeners_nor_senders) {
    const Held<> node;
    Listening one(node.get());
    const Held<> copied(new Node(*node));
    change(*copied);
    EXPECT_TRUE(one.ear.heard.empty());
    const Ear copiedEar(one.ear);
    change(*node);
    EXPECT_TRUE(copiedEar.heard.empty());
    EXPECT_EQ(one.ear.heard.size(), 1u);
}

TEST(LyrIOC, tells_more_listeners_than_fit_into_its_inner_list) {
    const Held<> node;
    std::vector<std::unique_ptr<Listening>> many;
    for (int i = 0; i < 100; ++i) {
        many.push_back(std::make_unique<Listening>(node.get()));
    }
    change(*node);
    for (const auto& one : many) {
        EXPECT_EQ(one->ear.heard.size(), 1u);
    }
}

TEST(LyrIOCConnection, knows_its_two_sides_and_when_they_go) {
    LyrIOCConnection line;
    EXPECT_EQ(line.getSender(), nullptr);
    EXPECT_EQ(line.getListener(), nullptr);
    {
        auto ear = std::make_unique<Ear>();
        Node node;
        line.connect(&node, ear.get(), LyrIOCConnection::Kind::SoftLink, 5);
        EXPECT_EQ(line.getSender(), &node);
        EXPECT_EQ(line.getListener(), ear.get());
        EXPECT_EQ(line.getLinkID(), 5);
        EXPECT_EQ(line.getKind(), LyrIOCConnection::Kind::SoftLink);
        ear.reset();
        EXPECT_EQ(line.getListener(), nullptr);
        EXPECT_EQ(line.getSender(), &node);
        change(node);
    }
    EXPECT_EQ(line.getSender(), nullptr);
}

TEST(LyrIOCConnection, may_wait_for_a_sender) {
    LyrIOCConnection line;
    Ear ear;
    Node node;
    line.connect(nullptr, &ear, LyrIOCConnection::Kind::Handle, -1);
    EXPECT_EQ(line.getListener(), &ear);
    change(node);
    line.connect(&node, &ear, LyrIOCConnection::Kind::Handle, -1);
    change(node);
    EXPECT_EQ(ear.heard.size(), 1u);
    line.disconnect();
    change(node);
    EXPECT_EQ(ear.heard.size(), 1u);
    EXPECT_EQ(line.getListener(), nullptr);
}
