#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrRoleManager.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace core_test;
using Manager = LyrObject::RoleManager;

namespace {

constexpr Lyrenum ROLE = 7001;
constexpr Lyrenum OTHER = 7002;

using Words = std::vector<std::string>;

class Hook : public LyrObject::RoleHook {
public:
    Hook(Words& words, std::string name) : mWords(words), mName(std::move(name)) {}
    bool enterRoleHook(const LyrObjectLink& object) override {
        mWords.push_back(mName + "+");
        last = object;
        if (onEnter) {
            onEnter(object);
        }
        return answer;
    }
    void leaveRoleHook(const LyrObjectLink& object) override {
        mWords.push_back(mName + "-");
        last = object;
        if (onLeave) {
            onLeave(object);
        }
    }
    bool answer = true;
    LyrObjectLink last;
    std::function<void(const LyrObjectLink&)> onEnter;
    std::function<void(const LyrObjectLink&)> onLeave;

private:
    Words& mWords;
    std::string mName;
};

class LyrRoleManagerTest : public testing::Test {
protected:
    LyrRoleManagerTest() {
        Manager::addRole(ROLE);
        Manager::addRole(OTHER);
    }
    ~LyrRoleManagerTest() override {
        Manager::removeRole(ROLE);
        Manager::removeRole(OTHER);
    }
    Words words;
};

}  // namespace

TEST_F(LyrRoleManagerTest, counts_who_added_a_role) {
    EXPECT_FALSE(Manager::isRole(7003));
    EXPECT_FALSE(Manager::removeRole(7003));
    EXPECT_TRUE(Manager::addRole(7003));
    EXPECT_TRUE(Manager::addRole(7003));
    EXPECT_TRUE(Manager::removeRole(7003));
    EXPECT_TRUE(Manager::isRole(7003));
    EXPECT_TRUE(Manager::removeRole(7003));
    EXPECT_FALSE(Manager::isRole(7003));
    EXPECT_FALSE(Manager::removeRole(7003));
    EXPECT_FALSE(Manager::isRole(7003));
}

TEST_F(LyrRoleManagerTest, an_object_takes_on_a_known_role_once) {
    const Held<> node;
    Hook hook(words, "a");
    Manager::addHook(ROLE, &hook);
    EXPECT_FALSE(node->isRoleActive(ROLE));
    EXPECT_TRUE(node->activateRole(ROLE));
    EXPECT_TRUE(node->isRoleActive(ROLE));
    EXPECT_FALSE(node->isRoleActive(OTHER));
    EXPECT_FALSE(node->activateRole(ROLE));
    EXPECT_FALSE(node->activateRole(7777));
    EXPECT_EQ(words, Words{"a+"});
    EXPECT_EQ(hook.last.getLink(), node.get());
    EXPECT_EQ(hook.last.getOwner(), nullptr);
    EXPECT_EQ(hook.last.getLinkID(), -1);
    EXPECT_TRUE(node->deactivateRole(ROLE));
    EXPECT_FALSE(node->deactivateRole(ROLE));
    EXPECT_EQ(words, (Words{"a+", "a-"}));
}

TEST_F(LyrRoleManagerTest, hooks_are_called_in_the_order_in_which_they_were_added) {
    const Held<> node;
    Hook first(words, "a"), second(words, "b"), elsewhere(words, "c");
    Manager::addHook(ROLE, &first);
    Manager::addHook(ROLE, &second);
    Manager::addHook(OTHER, &elsewhere);
    node->activateRole(ROLE);
    node->deactivateRole(ROLE);
    EXPECT_EQ(words, (Words{"a+", "b+", "a-", "b-"}));
}

TEST_F(LyrRoleManagerTest, adding_a_hook_enters_nothing_by_itself) {
    const Held<> node;
    node->activateRole(ROLE);
    Hook hook(words, "a");
    EXPECT_TRUE(Manager::addHook(ROLE, &hook));
    EXPECT_FALSE(Manager::addHook(ROLE, &hook));
    EXPECT_FALSE(Manager::addHook(ROLE, nullptr));
    EXPECT_EQ(words, Words{});
    EXPECT_TRUE(Manager::removeHook(ROLE, &hook));
    EXPECT_FALSE(Manager::removeHook(ROLE, &hook));
    node->deactivateRole(ROLE);
    EXPECT_EQ(words, Words{});
}

TEST_F(LyrRoleManagerTest, a_hook_that_refuses_does_not_keep_the_object_from_its_role) {
    const Held<> node;
    Hook refusing(words, "a"), second(words, "b");
    refusing.answer = false;
    Manager::addHook(ROLE, &refusing);
    Manager::addHook(ROLE, &second);
    EXPECT_FALSE(node->activateRole(ROLE));
    EXPECT_TRUE(node->isRoleActive(ROLE));
    EXPECT_EQ(words, (Words{"a+", "b+"}));
}

TEST_F(LyrRoleManagerTest, an_object_gives_up_its_roles_while_it_is_still_whole) {
    Hook hook(words, "a");
    Manager::addHook(ROLE, &hook);
    hook.onLeave = [&](const LyrObjectLink& link) {
        words.emplace_back(dynamic_cast<Node*>(link.getLink()) ? "whole" : "remains");
    };
    Held<> node;
    node->onDestroyed = [&] { words.emplace_back("destructor"); };
    node->activateRole(ROLE);
    node->activateRole(OTHER);
    node.drop();
    EXPECT_EQ(words, (Words{"a+", "a-", "whole", "destructor"}));
}

TEST_F(LyrRoleManagerTest, an_object_that_is_not_destroyed_by_the_framework_still_leaves_its_roles) {
    Hook hook(words, "a");
    Manager::addHook(ROLE, &hook);
    {
        Node onTheStack;
        onTheStack.activateRole(ROLE);
    }
    EXPECT_EQ(words, (Words{"a+", "a-"}));
}

TEST_F(LyrRoleManagerTest, a_hook_may_hold_a_new_object_for_a_moment) {
    Hook hook(words, "a");
    const auto hold = [](const LyrObjectLink& link) { const LyrObjectPtr moment(link.getLink()); };
    hook.onEnter = hold;
    hook.onLeave = hold;
    Manager::addHook(ROLE, &hook);
    auto* node = new Node;  // nobody holds it yet
    EXPECT_TRUE(node->activateRole(ROLE));
    EXPECT_EQ(node->getRefCount(), 0);
    EXPECT_TRUE(node->deactivateRole(ROLE));
    node->activateRole(ROLE);
    LyrMetaClass::destruct(node, true);
    EXPECT_EQ(words, (Words{"a+", "a-", "a+", "a-"}));
}

TEST_F(LyrRoleManagerTest, a_hook_that_goes_while_others_are_called_is_not_called) {
    const Held<> node;
    Hook first(words, "a");
    std::optional<Hook> second(std::in_place, words, "b");
    Manager::addHook(ROLE, &first);
    Manager::addHook(ROLE, &*second);
    first.onEnter = [&](const auto&) { second.reset(); };
    EXPECT_TRUE(node->activateRole(ROLE));
    EXPECT_EQ(words, Words{"a+"});
}

TEST_F(LyrRoleManagerTest, a_hook_may_end_the_role_again) {
    const Held<> node;
    Hook first(words, "a"), second(words, "b");
    Manager::addHook(ROLE, &first);
    Manager::addHook(ROLE, &second);
    first.onEnter = [](const LyrObjectLink& link) { link.getLink()->deactivateRole(ROLE); };
    node->activateRole(ROLE);
    EXPECT_FALSE(node->isRoleActive(ROLE));
    EXPECT_EQ(words, (Words{"a+", "a-", "b-"}));
}

TEST_F(LyrRoleManagerTest, a_hook_that_fails_is_reported_and_the_others_are_called) {
    const Held<> node;
    Hook first(words, "a"), second(words, "b");
    Manager::addHook(ROLE, &first);
    Manager::addHook(ROLE, &second);
    first.onEnter = [](const auto&) { throw std::bad_alloc(); };
    Errors errors;
    EXPECT_FALSE(node->activateRole(ROLE));
    EXPECT_EQ(words, (Words{"a+", "b+"}));
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::AllocationFailed});
}

TEST_F(LyrRoleManagerTest, objects_of_a_class_and_of_derived_ones_take_on_its_default_roles_when_asked) {
    EXPECT_TRUE(Manager::addDefaultRole(Node::metaClass(), ROLE));
    EXPECT_FALSE(Manager::addDefaultRole(Node::metaClass(), ROLE));
    EXPECT_TRUE(Manager::addDefaultRole(SpecialNode::metaClass(), OTHER));
    Hook hook(words, "a"), other(words, "b");
    Manager::addHook(ROLE, &hook);
    Manager::addHook(OTHER, &other);
    const Held<> node;
    const Held<SpecialNode> special;
    const Held<LyrObject> plain;
    EXPECT_EQ(words, Words{});
    EXPECT_TRUE(node->prepareRoles());
    EXPECT_TRUE(plain->prepareRoles());
    EXPECT_EQ(words, Words{"a+"});
    EXPECT_TRUE(special->prepareRoles());
    EXPECT_TRUE(special->prepareRoles());
    EXPECT_EQ(words, (Words{"a+", "a+", "b+"}));
    EXPECT_TRUE(special->isRoleActive(ROLE) && special->isRoleActive(OTHER));
    EXPECT_FALSE(plain->isRoleActive(ROLE));
    EXPECT_TRUE(Manager::removeDefaultRole(Node::metaClass(), ROLE));
    EXPECT_FALSE(Manager::removeDefaultRole(Node::metaClass(), ROLE));
    EXPECT_TRUE(Manager::removeDefaultRole(SpecialNode::metaClass(), OTHER));
    const Held<> later;
    EXPECT_TRUE(later->prepareRoles());
    EXPECT_FALSE(later->isRoleActive(ROLE));
}

TEST_F(LyrRoleManagerTest, preparing_roles_tells_of_a_role_that_could_not_be_entered) {
    Manager::addDefaultRole(Node::metaClass(), ROLE);
    Hook refusing(words, "a");
    refusing.answer = false;
    Manager::addHook(ROLE, &refusing);
    const Held<> node;
    EXPECT_FALSE(node->prepareRoles());
    EXPECT_TRUE(node->isRoleActive(ROLE));
    Manager::removeDefaultRole(Node::metaClass(), ROLE);
}

TEST_F(LyrRoleManagerTest, a_copy_has_no_roles) {
    const Held<> node;
    node->activateRole(ROLE);
    const Held<> copied(new Node(*node));
    EXPECT_FALSE(copied->isRoleActive(ROLE));
}

TEST_F(LyrRoleManagerTest, owns_the_interface_of_a_role) {
    struct Interface : LyrObject::RoleInterface {
        Interface(int& ends) : RoleInterface(ROLE), mEnds(ends) {}
        ~Interface() override { ++mEnds; }
        int& mEnds;
    };
    int ends = 0;
    EXPECT_EQ(Manager::getRoleInterface(ROLE), nullptr);
    auto first = std::make_unique<Interface>(ends);
    const auto* expected = first.get();
    EXPECT_TRUE(Manager::setRoleInterface(ROLE, std::move(first)));
    EXPECT_EQ(Manager::getRoleInterface(ROLE), expected);
    EXPECT_EQ(Manager::getRoleInterface(ROLE)->getRole(), ROLE);
    EXPECT_TRUE(Manager::setRoleInterface(ROLE, std::make_unique<Interface>(ends)));
    EXPECT_EQ(ends, 1);
    EXPECT_TRUE(Manager::setRoleInterface(ROLE, nullptr));
    EXPECT_EQ(ends, 2);
    EXPECT_EQ(Manager::getRoleInterface(ROLE), nullptr);
    EXPECT_FALSE(Manager::setRoleInterface(ROLE, nullptr));
    EXPECT_FALSE(Manager::setRoleInterface(7999, nullptr));
}
