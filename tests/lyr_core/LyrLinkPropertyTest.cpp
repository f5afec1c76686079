#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectIOCPtr.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

using namespace core_test;
using Targets = std::vector<LyrObject*>;

namespace {

/** Whether an object is gone; the note may outlive its case. */
class Gone {
public:
    operator bool() const { return *mGone; }
    /** An object that notes its end here. */
    Node* noted() const {
        auto* node = new Node;
        node->onDestroyed = [gone = mGone] { *gone = true; };
        return node;
    }

private:
    std::shared_ptr<bool> mGone = std::make_shared<bool>(false);
};

/** Accepts nodes of a special kind only. */
class Choosy : public LyrObjectHardLinkListOP {
public:
    unsigned int checkItems(long long count, const LyrObjectLink* items) const override {
        for (long long i = 0; i < count; ++i) {
            if (!items[i].isNull() && !items[i].linkIsOfType("TestSpecialNode")) {
                return 0;
            }
        }
        return 1;
    }
};

class LyrLinkProperty : public testing::Test {
protected:
    LyrLinkProperty() : handle(&ear, owner.get()) {}
    Held<> owner;
    Ear ear;
    LyrObjectIOCPtr handle;
};

}  // namespace

TEST_F(LyrLinkProperty, links_to_nothing_at_first) {
    LyrObjectLink link(owner.get(), nullptr, -1);
    EXPECT_TRUE(owner->owned.getValue(link));
    EXPECT_TRUE(link.isNull());
    EXPECT_EQ(owner->owned.getTarget(), nullptr);
    EXPECT_TRUE(owner->owned.getResetValue().isNull());
    EXPECT_EQ(owner->owned.getValueType(), LyrValueType::Link);
    EXPECT_EQ(owner->owned.getOwnership(), LyrLinkOwnership::Hard);
    EXPECT_EQ(owner->parented.getOwnership(), LyrLinkOwnership::Parent);
    EXPECT_EQ(owner->softFriend.getOwnership(), LyrLinkOwnership::Soft);
    EXPECT_EQ(owner->children.getOwnership(), LyrLinkOwnership::Parent);
    EXPECT_EQ(owner->shared.getOwnership(), LyrLinkOwnership::Hard);
    EXPECT_EQ(owner->friends.getOwnership(), LyrLinkOwnership::Soft);
}

TEST_F(LyrLinkProperty, shows_its_target_as_seen_from_its_owner) {
    auto* child = new Node;
    EXPECT_TRUE(owner->owned.setValue(linkTo(child)));
    LyrObjectLink link;
    EXPECT_TRUE(owner->owned.getValue(link));
    EXPECT_EQ(link.getLink(), child);
    EXPECT_EQ(link.getOwner(), owner.get());
    EXPECT_EQ(link.getLinkID(), OWNED);
    setList(owner->children, {child});
    EXPECT_EQ(owner->children.view()[0].getOwner(), owner.get());
    EXPECT_EQ(owner->children.view()[0].getLinkID(), CHILDREN);
}

TEST_F(LyrLinkProperty, that_owns_keeps_its_object_alive_and_lets_it_die_when_it_is_replaced) {
    const Gone firstGone;
    const Gone secondGone;
    auto* first = firstGone.noted();
    owner->owned.setValue(linkTo(first));
    EXPECT_EQ(first->getRefCount(), 1);
    EXPECT_TRUE(owner->owned.setValue(linkTo(secondGone.noted())));
    EXPECT_TRUE(firstGone);
    EXPECT_FALSE(secondGone);
    owner->parented.setValue(owner->owned.getTarget() ? linkTo(owner->owned.getTarget()) : LyrObjectLink());
    owner->owned.setValue(LyrObjectLink());
    EXPECT_FALSE(secondGone);
    owner->parented.setValue(LyrObjectLink());
    EXPECT_TRUE(secondGone);
}

TEST_F(LyrLinkProperty, tells_while_the_old_object_still_lives) {
    const Gone gone;
    bool goneWhenTold = true;
    owner->owned.setValue(linkTo(gone.noted()));
    ear.onMessage = [&](auto&) { goneWhenTold = gone; };
    owner->owned.setValue(LyrObjectLink());
    EXPECT_FALSE(goneWhenTold);
    EXPECT_TRUE(gone);
}

TEST_F(LyrLinkProperty, takes_its_objects_along_when_its_owner_dies) {
    const Gone goneOne;
    const Gone goneTwo;
    const Gone goneThree;
    {
        const Held<> brief;
        brief->owned.setValue(linkTo(goneOne.noted()));
        brief->parented.setValue(linkTo(goneTwo.noted()));
        setList(brief->children, {goneThree.noted()});
    }
    EXPECT_TRUE(goneOne && goneTwo && goneThree);
}

TEST_F(LyrLinkProperty, says_nothing_when_it_is_set_to_the_same_object) {
    auto* child = new Node;
    owner->owned.setValue(linkTo(child));
    EXPECT_TRUE(owner->owned.setValue(LyrObjectLink(child, child, 5)));
    EXPECT_EQ(ear.properties(), std::vector<int>{OWNED});
    EXPECT_TRUE(owner->owned.setValue(LyrObjectLink()));
    EXPECT_TRUE(owner->owned.setValue(LyrObjectLink()));
    EXPECT_EQ(ear.heard.size(), 2u);
}

TEST_F(LyrLinkProperty, leaves_a_new_object_alone_when_it_is_refused) {
    const Gone gone;
    auto* child = gone.noted();
    owner->owned.setReadOnly(true);
    owner->children.setReadOnly(true);
    EXPECT_FALSE(owner->owned.setValue(linkTo(child)));
    EXPECT_FALSE(setList(owner->children, {child}));
    EXPECT_FALSE(gone);
    EXPECT_EQ(child->getRefCount(), 0);
    LyrMetaClass::destruct(child, true);
}

TEST_F(LyrLinkProperty, that_owns_nothing_does_not_keep_its_object_alive) {
    const Gone gone;
    Held<> target(gone.noted());
    owner->softFriend.setValue(linkTo(target.get()));
    EXPECT_EQ(target->getRefCount(), 1);
    ear.heard.clear();
    target.drop();
    EXPECT_TRUE(gone);
    EXPECT_EQ(owner->softFriend.getTarget(), nullptr);
    EXPECT_EQ(ear.properties(), std::vector<int>{FRIEND});
}

TEST_F(LyrLinkProperty, that_owns_nothing_may_link_to_an_object_that_nobody_holds) {
    Node onTheStack;
    EXPECT_TRUE(owner->softFriend.setValue(linkTo(&onTheStack)));
    EXPECT_EQ(owner->softFriend.getTarget(), &onTheStack);
    EXPECT_EQ(onTheStack.getRefCount(), 0);
    EXPECT_TRUE(setList(owner->friends, {&onTheStack}));
    owner->friends.resetData();
}

TEST_F(LyrLinkProperty, becomes_null_in_each_place_and_tells_once_when_its_object_dies) {
    Held<> target;
    const Held<> other;
    setList(owner->friends, {target.get(), other.get(), target.get(), nullptr});
    ear.heard.clear();
    const auto stamp = owner->getModificationTimestamp();
    target.drop();
    EXPECT_EQ(targetsOf(owner->friends), (Targets{nullptr, other.get(), nullptr, nullptr}));
    EXPECT_EQ(ear.properties(), std::vector<int>{FRIENDS});
    EXPECT_GT(owner->getModificationTimestamp(), stamp);
}

TEST_F(LyrLinkProperty, becomes_null_even_while_it_is_locked_for_reading) {
    Held<> target;
    setList(owner->friends, {target.get()});
    const LyrObjectLink* items = owner->friends.lockArrayPtr();
    target.drop();
    EXPECT_TRUE(items[0].isNull());
    owner->friends.unlockArrayPtr(items);
}

TEST_F(LyrLinkProperty, may_be_written_by_whoever_hears_of_the_end_of_its_object) {
    Held<> target;
    const Held<> other;
    setList(owner->friends, {target.get(), target.get()});
    owner->softFriend.setValue(linkTo(target.get()));
    ear.onMessage = [&](LyrIOC::Message& message) {
        if (message.getPropertyID() == FRIENDS) {
            ear.onMessage = nullptr;
            setList(owner->friends, {other.get()});
            owner->softFriend.setValue(linkTo(other.get()));
        }
    };
    target.drop();
    EXPECT_EQ(targetsOf(owner->friends), Targets{other.get()});
    EXPECT_EQ(owner->softFriend.getTarget(), other.get());
}

TEST_F(LyrLinkProperty, cannot_be_set_to_an_object_that_is_dying) {
    Held<> target;
    auto* dying = target.get();
    owner->softFriend.setValue(linkTo(dying));
    std::vector<bool> results;
    Errors errors;
    ear.onMessage = [&](LyrIOC::Message& message) {
        if (message.getPropertyID() == FRIEND) {
            results.push_back(owner->softFriend.setValue(linkTo(dying)));
            results.push_back(owner->owned.setValue(linkTo(dying)));
            results.push_back(setList(owner->children, {dying}));
        }
    };
    target.drop();
    EXPECT_EQ(results, (std::vector<bool>{false, false, false}));
    EXPECT_EQ(errors.codes, std::vector<int>(3, Lyr::InvalidParameters));
    EXPECT_EQ(owner->owned.getTarget(), nullptr);
    EXPECT_EQ(owner->children.getArraySize(), 0);
}

TEST_F(LyrLinkProperty, that_owns_forgets_an_object_that_something_else_destroyed) {
    auto onTheStack = std::make_optional<Node>();
    onTheStack->incRef();
    owner->owned.setValue(linkTo(&*onTheStack));
    setList(owner->children, {&*onTheStack});
    ear.heard.clear();
    onTheStack.reset();
    EXPECT_EQ(owner->owned.getTarget(), nullptr);
    EXPECT_EQ(targetsOf(owner->children), Targets{nullptr});
    EXPECT_EQ(ear.properties(), (std::vector<int>{OWNED, CHILDREN}));
}

TEST_F(LyrLinkProperty, takes_a_new_object_from_one_list_to_another_in_either_order) {
    const Held<> second;
    auto* child = new Node;
    setList(owner->children, {child});
    setList(second->children, {child});
    setList(owner->children, {});
    EXPECT_EQ(child->getRefCount(), 1);
    EXPECT_EQ(child->getParentLink().getOwner(), second.get());
}

TEST_F(LyrLinkProperty, is_emptied_or_left_by_a_reset_as_its_reset_mode_says) {
    auto* child = new Node;
    owner->owned.setValue(linkTo(child));
    setList(owner->children, {child});
    EXPECT_EQ(owner->owned.getResetMode(), -1);
    owner->owned.setResetMode(Lyr::Object);
    owner->children.setResetMode(Lyr::Object);
    EXPECT_TRUE(owner->owned.resetData());
    EXPECT_TRUE(owner->children.resetData());
    EXPECT_EQ(owner->owned.getTarget(), child);
    EXPECT_EQ(owner->children.getArraySize(), 1);
    owner->owned.setResetMode(-1);
    owner->children.setResetMode(-1);
    EXPECT_TRUE(owner->owned.resetData());
    EXPECT_EQ(owner->owned.getTarget(), nullptr);
    EXPECT_TRUE(owner->children.resetData());
    EXPECT_EQ(owner->children.getArraySize(), 0);
}

TEST_F(LyrLinkProperty, survives_whoever_destroys_its_owner_while_it_tells) {
    auto brief = std::make_unique<Held<>>();
    const Gone gone;
    Ear listener;
    LyrObjectIOCPtr listening(&listener, brief->get());
    (*brief)->owned.setValue(linkTo(gone.noted()));
    listener.onMessage = [&](auto&) {
        listening = nullptr;
        brief.reset();
    };
    EXPECT_TRUE((*brief)->owned.setValue(linkTo(new Node)));
    EXPECT_TRUE(gone);
}

// Lists

TEST_F(LyrLinkProperty, keeps_links_in_order_nulls_included) {
    auto* a = new Node;
    auto* b = new Node;
    EXPECT_TRUE(setList(owner->children, {a, nullptr, b}));
    EXPECT_EQ(targetsOf(owner->children), (Targets{a, nullptr, b}));
    EXPECT_EQ(ear.properties(), std::vector<int>{CHILDREN});
    long long first = 9;
    long long last = 9;
    EXPECT_TRUE(owner->children.getArrayIndexRange(first, last));
    EXPECT_EQ(first, 0);
    EXPECT_EQ(last, 2);
}

TEST_F(LyrLinkProperty, overwrites_inserts_and_removes_links_each_in_one_write) {
    auto* a = new Node;
    auto* b = new Node;
    auto* c = new Node;
    setList(owner->children, {a, b});
    ear.heard.clear();
    const LyrObjectLink links[] = {linkTo(c), linkTo(nullptr)};
    EXPECT_TRUE(owner->children.insertArrayItems(1, 2, links));
    EXPECT_EQ(targetsOf(owner->children), (Targets{a, c, nullptr, b}));
    EXPECT_TRUE(owner->children.setArrayItems(2, 2, links));
    EXPECT_EQ(targetsOf(owner->children), (Targets{a, c, c, b}));
    EXPECT_TRUE(owner->children.removeArrayItems(0, 1));
    EXPECT_EQ(targetsOf(owner->children), (Targets{c, b}));
    EXPECT_TRUE(owner->children.insertArrayItems(2, 2, links));
    EXPECT_EQ(targetsOf(owner->children), (Targets{c, b, c}));
    EXPECT_EQ(ear.heard.size(), 4u);
    EXPECT_EQ(c->getRefCount(), 2);
}

TEST_F(LyrLinkProperty, refuses_ranges_outside_the_list) {
    auto* a = new Node;
    setList(owner->children, {a});
    ear.heard.clear();
    const LyrObjectLink links[] = {linkTo(a), linkTo(a)};
    LyrObjectLink out[4];
    EXPECT_FALSE(owner->children.setArrayItems(0, 1, links));
    EXPECT_FALSE(owner->children.setArrayItems(-1, 0, links));
    EXPECT_FALSE(owner->children.setArrayItems(0, 0, nullptr));
    EXPECT_FALSE(owner->children.insertArrayItems(2, 2, links));
    EXPECT_FALSE(owner->children.insertArrayItems(0, -1, nullptr));
    EXPECT_FALSE(owner->children.insertArrayItems(0, 0, nullptr));
    EXPECT_FALSE(owner->children.removeArrayItems(0, 1));
    EXPECT_FALSE(owner->children.removeArrayItems(1, 0));
    EXPECT_FALSE(owner->children.initArray(0, -2, links));
    EXPECT_FALSE(owner->children.initArray(0, 0, nullptr));
    EXPECT_FALSE(owner->children.getArrayItems(0, 1, out));
    EXPECT_FALSE(owner->children.getArrayItems(0, 0, nullptr));
    EXPECT_TRUE(owner->children.getArrayItems(0, -1, nullptr));
    EXPECT_TRUE(owner->children.setArrayItems(0, -1, nullptr));
    EXPECT_TRUE(owner->children.getArrayItems(0, 0, out));
    EXPECT_EQ(out[0].getLink(), a);
    EXPECT_TRUE(ear.heard.empty());
}

TEST_F(LyrLinkProperty, takes_links_of_its_own) {
    auto* a = new Node;
    auto* b = new Node;
    setList(owner->children, {a, b});
    EXPECT_TRUE(owner->children.insertArrayItems(0, 1, owner->children.view().data()));
    EXPECT_EQ(targetsOf(owner->children), (Targets{a, b, a, b}));
    EXPECT_TRUE(owner->children.initArray(0, 0, owner->children.view().data() + 1));
    EXPECT_EQ(targetsOf(owner->children), Targets{b});
}

TEST_F(LyrLinkProperty, lets_objects_die_that_leave_the_list) {
    const Gone goneA;
    const Gone goneB;
    auto* a = goneA.noted();
    setList(owner->children, {a, goneB.noted()});
    setList(owner->children, {a});
    EXPECT_FALSE(goneA);
    EXPECT_TRUE(goneB);
    owner->children.removeArrayItems(0, 0);
    EXPECT_TRUE(goneA);
}

TEST_F(LyrLinkProperty, does_not_let_an_object_die_that_only_the_old_list_held) {
    // The new list holds it through an object that the old list lets go.
    const Gone gone;
    auto* inner = gone.noted();
    auto* outer = new Node;
    outer->owned.setValue(linkTo(inner));
    setList(owner->children, {outer});
    EXPECT_TRUE(setList(owner->children, {inner}));
    EXPECT_FALSE(gone);
    EXPECT_EQ(targetsOf(owner->children), Targets{inner});
    owner->owned.setValue(linkTo(inner));
    owner->children.resetData();
    EXPECT_FALSE(gone);
}

TEST_F(LyrLinkProperty, is_refused_whole_by_the_verdict_on_its_items) {
    Choosy choosy;
    const Held<SpecialNode> special;
    const Held<> plain;
    EXPECT_TRUE(setList(choosy, {special.get(), nullptr}));
    EXPECT_FALSE(setList(choosy, {special.get(), plain.get()}));
    const LyrObjectLink link = linkTo(plain.get());
    EXPECT_FALSE(choosy.setArrayItems(1, 1, &link));
    EXPECT_FALSE(choosy.insertArrayItems(0, 0, &link));
    EXPECT_EQ(targetsOf(choosy), (Targets{special.get(), nullptr}));
    EXPECT_TRUE(choosy.removeArrayItems(1, 1));
}

TEST_F(LyrLinkProperty, cannot_be_rewritten_while_it_is_locked_for_reading) {
    auto* a = new Node;
    setList(owner->children, {a});
    const LyrObjectLink* items = owner->children.lockArrayPtr();
    ASSERT_NE(items, nullptr);
    EXPECT_EQ(items[0].getLink(), a);
    {
        Errors errors;
        EXPECT_FALSE(setList(owner->children, {}));
        EXPECT_FALSE(owner->children.removeArrayItems(0, 0));
        const auto state = LyrObjectParentLinkListOP().takeState();
        EXPECT_FALSE(owner->children.restoreState(*state));
        EXPECT_EQ(errors.codes, std::vector<int>(3, Lyr::Locked));
    }
    EXPECT_TRUE(setList(owner->children, {a}));
    owner->children.unlockArrayPtr(nullptr);
    owner->children.unlockArrayPtr(items);
    owner->children.unlockArrayPtr(items);
    EXPECT_TRUE(setList(owner->children, {}));
    EXPECT_EQ(owner->children.lockArrayPtr(), nullptr);
    EXPECT_TRUE(setList(owner->children, {new Node}));
}

TEST_F(LyrLinkProperty, is_cloned_as_a_list_of_the_same_objects_that_owns_nothing) {
    auto* a = new Node;
    setList(owner->children, {a, nullptr});
    const std::unique_ptr<LyrProperty> cloned(owner->children.clone(77));
    ASSERT_TRUE(cloned);
    EXPECT_EQ(cloned->getPropertyID(), 77);
    EXPECT_EQ(cloned->getObject(), nullptr);
    auto* list = dynamic_cast<LyrLinkListOP*>(cloned.get());
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(targetsOf(*list), (Targets{a, nullptr}));
    EXPECT_EQ(list->getOwnership(), LyrLinkOwnership::Soft);
    EXPECT_EQ(a->getParentLink().getOwner(), owner.get());
    EXPECT_EQ(a->getRefCount(), 1);
}

// Copies

TEST_F(LyrLinkProperty, copies_the_object_of_an_owning_link) {
    const Held<> source;
    auto* child = new SpecialNode;
    child->weight.setValue(3.0f);
    source->owned.setValue(linkTo(child));
    EXPECT_TRUE(owner->owned.copyValueFrom(source->owned));
    auto* copied = dynamic_cast<SpecialNode*>(owner->owned.getTarget());
    ASSERT_NE(copied, nullptr);
    EXPECT_NE(copied, child);
    EXPECT_EQ(copied->weight.stored(), 3.0f);
    EXPECT_EQ(copied->getRefCount(), 1);
    source->owned.setValue(LyrObjectLink());
    EXPECT_TRUE(owner->owned.copyValueFrom(source->owned));
    EXPECT_EQ(owner->owned.getTarget(), nullptr);
    EXPECT_FALSE(owner->owned.copyValueFrom(source->weight));
    EXPECT_FALSE(owner->owned.copyValueFrom(source->children));
    EXPECT_TRUE(owner->owned.copyValueFrom(owner->owned));
}

TEST_F(LyrLinkProperty, copies_a_list_in_one_write) {
    const Held<> source;
    setList(source->children, {new Node, nullptr, new SpecialNode});
    EXPECT_TRUE(owner->children.copyValueFrom(source->children));
    ASSERT_EQ(owner->children.getArraySize(), 3);
    EXPECT_NE(owner->children.view()[0].getLink(), source->children.view()[0].getLink());
    EXPECT_TRUE(owner->children.view()[1].isNull());
    EXPECT_TRUE(owner->children.view()[2].linkIsOfType("TestSpecialNode"));
    EXPECT_EQ(ear.properties(), std::vector<int>{CHILDREN});
    EXPECT_EQ(owner->children.view()[0].getLink()->getParentLink().getOwner(), owner.get());
    EXPECT_TRUE(owner->friends.copyValueFrom(source->children));
    EXPECT_EQ(targetsOf(owner->friends), targetsOf(source->children));
    EXPECT_FALSE(owner->children.copyValueFrom(source->owned));
    EXPECT_TRUE(owner->children.copyValueFrom(owner->children));
}

TEST_F(LyrLinkProperty, keeps_what_it_has_when_an_object_cannot_be_copied) {
    class Single : public Node {  // has no factory of its own
    public:
        static const LyrMetaClass& metaClass() {
            static const LyrMetaClass meta("TestUncopied", sizeof(Single), &Node::metaClass(), nullptr, MODULE, 0,
                                           nullptr, 0, 0, 0, false);
            return meta;
        }
        const LyrMetaClass& getMetaClass() const override { return metaClass(); }
    };
    const Held<> source;
    auto* own = new Node;
    source->owned.setValue(linkTo(new Single));
    setList(source->children, {new Node, source->owned.getTarget()});
    owner->owned.setValue(linkTo(own));
    setList(owner->children, {own});
    Errors errors;
    EXPECT_FALSE(owner->owned.copyValueFrom(source->owned));
    EXPECT_FALSE(owner->children.copyValueFrom(source->children));
    EXPECT_EQ(owner->owned.getTarget(), own);
    EXPECT_EQ(targetsOf(owner->children), Targets{own});
    EXPECT_EQ(errors.codes, (std::vector<int>{Lyr::Failed, Lyr::Failed}));
}

TEST_F(LyrLinkProperty, keeps_the_objects_of_a_state_alive_and_brings_the_same_ones_back) {
    const Gone gone;
    auto* child = gone.noted();
    setList(owner->children, {child, nullptr});
    {
        const auto state = owner->children.takeState();
        owner->children.resetData();
        EXPECT_FALSE(gone);
        EXPECT_TRUE(state->holdsObjectsOf(MODULE));
        EXPECT_FALSE(state->holdsObjectsOf("core_test_other"));
        EXPECT_TRUE(owner->children.restoreState(*state));
        EXPECT_EQ(targetsOf(owner->children), (Targets{child, nullptr}));
        EXPECT_EQ(child->getParentLink().getOwner(), owner.get());
    }
    const auto single = owner->owned.takeState();
    owner->owned.setValue(linkTo(child));
    EXPECT_TRUE(owner->owned.restoreState(*single));
    EXPECT_EQ(owner->owned.getTarget(), nullptr);
    EXPECT_TRUE(owner->owned.restoreState(*single));
    EXPECT_EQ(owner->owned.getTarget(), child);
    ear.heard.clear();
    EXPECT_TRUE(owner->owned.restoreState(*owner->owned.takeState()));
    EXPECT_TRUE(owner->children.restoreState(*owner->children.takeState()));
    EXPECT_TRUE(ear.heard.empty());
}

TEST_F(LyrLinkProperty, keeps_in_a_state_alive_what_it_does_not_keep_alive_itself) {
    const Gone gone;
    Held<> target(gone.noted());
    owner->softFriend.setValue(linkTo(target.get()));
    setList(owner->friends, {target.get(), nullptr, target.get()});
    const auto single = owner->softFriend.takeState();
    const auto list = owner->friends.takeState();
    owner->softFriend.setValue(LyrObjectLink());
    setList(owner->friends, {});
    auto* node = target.get();
    EXPECT_EQ(node->getRefCount(), 4);
    EXPECT_TRUE(owner->friends.restoreState(*list));
    EXPECT_TRUE(owner->softFriend.restoreState(*single));
    EXPECT_EQ(node->getRefCount(), 1);
    EXPECT_EQ(targetsOf(owner->friends), (Targets{node, nullptr, node}));
    EXPECT_TRUE(owner->friends.restoreState(*list));
    EXPECT_EQ(owner->friends.getArraySize(), 0);
    target.drop();
    EXPECT_FALSE(gone);
    EXPECT_EQ(owner->softFriend.getTarget(), node);
    ear.heard.clear();
    // Only the state holds it: taken back, it is held by nobody.
    EXPECT_TRUE(owner->friends.restoreState(*list));
    EXPECT_TRUE(gone);
    EXPECT_EQ(targetsOf(owner->friends), (Targets{nullptr, nullptr, nullptr}));
    EXPECT_EQ(owner->softFriend.getTarget(), nullptr);
    EXPECT_EQ(ear.properties().front(), int(FRIENDS));
}

TEST_F(LyrLinkProperty, forgets_in_a_state_an_object_that_something_else_destroyed) {
    auto onTheStack = std::make_optional<Node>();
    onTheStack->incRef();
    owner->owned.setValue(linkTo(&*onTheStack));
    setList(owner->children, {&*onTheStack});
    const auto single = owner->owned.takeState();
    const auto list = owner->children.takeState();
    owner->owned.setValue(LyrObjectLink());
    setList(owner->children, {});
    onTheStack.reset();
    EXPECT_TRUE(owner->owned.restoreState(*single));
    EXPECT_EQ(owner->owned.getTarget(), nullptr);
    EXPECT_TRUE(owner->children.restoreState(*list));
    EXPECT_EQ(targetsOf(owner->children), Targets{nullptr});
}

TEST_F(LyrLinkProperty, may_be_destroyed_before_its_states) {
    const Gone gone;
    std::unique_ptr<LyrProperty::State> state;
    {
        LyrObjectHardLinkListOP list;
        setList(list, {gone.noted()});
        state = list.takeState();
    }
    EXPECT_FALSE(gone);
    state.reset();
    EXPECT_TRUE(gone);
}

TEST_F(LyrLinkProperty, has_a_class_by_whose_name_it_is_created) {
    const struct {
        const char* name;
        LyrLinkOwnership ownership;
    } single[] = {{"LyrObjectHardLinkOP", LyrLinkOwnership::Hard},
                  {"LyrObjectSoftLinkOP", LyrLinkOwnership::Soft},
                  {"LyrObjectParentLinkOP", LyrLinkOwnership::Parent}},
      lists[] = {{"LyrObjectHardLinkListOP", LyrLinkOwnership::Hard},
                 {"LyrObjectSoftLinkListOP", LyrLinkOwnership::Soft},
                 {"LyrObjectParentLinkListOP", LyrLinkOwnership::Parent}};
    for (const auto& entry : single) {
        LyrClass* made = LyrMetaClass::create(entry.name);
        auto* link = dynamic_cast<LyrSingleLinkOP*>(made);
        ASSERT_NE(link, nullptr) << entry.name;
        EXPECT_EQ(link->getOwnership(), entry.ownership);
        EXPECT_STREQ(link->getMetaClass().getClassName(), entry.name);
        LyrMetaClass::destruct(made, true);
    }
    for (const auto& entry : lists) {
        LyrClass* made = LyrMetaClass::create(entry.name);
        auto* list = dynamic_cast<LyrLinkListOP*>(made);
        ASSERT_NE(list, nullptr) << entry.name;
        EXPECT_EQ(list->getOwnership(), entry.ownership);
        LyrMetaClass::destruct(made, true);
    }
    EXPECT_TRUE(LyrObjectParentLinkListOP::metaClass().isOfType("LyrObjectHardLinkListOP"));
}
