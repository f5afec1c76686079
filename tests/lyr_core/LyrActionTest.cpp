#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrAction.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

using namespace core_test;

namespace {

constexpr Lyrenum PAINT = 6001;

class Scripted : public LyrActionAttr {
public:
    Scripted() : LyrActionAttr(0, 0) {}
    void check() override {
        step("check", onCheck, [&] { LyrActionAttr::check(); });
    }
    void execute() override {
        step("execute", onExecute, [&] { ok(1); });
    }
    void cleanUp() override {
        step("cleanUp", onCleanUp, [] {});
    }

    using LyrAction::error;
    using LyrAction::ok;
    std::vector<std::string> words;
    std::function<void()> onCheck, onExecute, onCleanUp;

private:
    template <class Default>
    void step(const char* name, const std::function<void()>& own, Default otherwise) {
        words.emplace_back(name);
        own ? own() : otherwise();
    }
};

using Words = std::vector<std::string>;

class LyrActionTest : public testing::Test {
protected:
    LyrActionTest() { node->addAction(PAINT, &action); }
    Scripted action;
    Held<> node;
};

}  // namespace

TEST_F(LyrActionTest, runs_its_three_steps_in_order_and_succeeds) {
    EXPECT_TRUE(node->runAction(PAINT));
    EXPECT_EQ(action.words, (Words{"check", "execute", "cleanUp"}));
    EXPECT_EQ(action.getResult(), 1);
}

TEST_F(LyrActionTest, knows_its_object_and_parameter_during_the_run_only) {
    const Held<> parameter;
    LyrObject* object = nullptr;
    LyrObject* given = nullptr;
    action.onExecute = [&] {
        object = action.getObject();
        given = action.getParameter();
        action.ok(1);
    };
    EXPECT_EQ(action.getObject(), nullptr);
    EXPECT_TRUE(node->runAction(PAINT, parameter.get()));
    EXPECT_EQ(object, node.get());
    EXPECT_EQ(given, parameter.get());
    EXPECT_EQ(action.getObject(), nullptr);
    EXPECT_EQ(action.getParameter(), nullptr);
    EXPECT_EQ(action.getActionID(), PAINT);
}

TEST_F(LyrActionTest, is_not_executed_when_the_check_failed_but_cleaned_up) {
    action.onCheck = [&] { action.error(Lyr::WrongType); };
    Errors errors;
    EXPECT_FALSE(node->runAction(PAINT));
    EXPECT_EQ(action.words, (Words{"check", "cleanUp"}));
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::WrongType});
    EXPECT_EQ(errors.sources, std::vector<const LyrClass*>{node.get()});
    EXPECT_EQ(action.getResult(), Lyr::WrongType);
}

TEST_F(LyrActionTest, fails_by_an_error_even_if_it_also_reports_success) {
    Errors errors;
    action.onExecute = [&] {
        action.error(Lyr::InvalidParameters);
        action.ok(1);
    };
    EXPECT_FALSE(node->runAction(PAINT));
    EXPECT_EQ(action.words, (Words{"check", "execute", "cleanUp"}));
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::InvalidParameters});
}

TEST_F(LyrActionTest, fails_when_a_step_reports_nothing) {
    action.onExecute = [] {};
    EXPECT_FALSE(node->runAction(PAINT));
    action.onExecute = nullptr;
    action.onCheck = [] {};
    EXPECT_FALSE(node->runAction(PAINT));
    action.onCheck = nullptr;
    EXPECT_TRUE(node->runAction(PAINT));
}

TEST_F(LyrActionTest, forgets_the_failure_of_the_run_before) {
    {
        Errors errors;
        action.onExecute = [&] { action.error(Lyr::Failed); };
        EXPECT_FALSE(node->runAction(PAINT));
    }
    action.onExecute = nullptr;
    EXPECT_TRUE(node->runAction(PAINT));
}

TEST_F(LyrActionTest, does_not_run_inside_itself) {
    Errors errors;
    bool inner = true;
    action.onExecute = [&] {
        inner = node->runAction(PAINT);
        action.ok(1);
    };
    EXPECT_TRUE(node->runAction(PAINT));
    EXPECT_FALSE(inner);
    EXPECT_EQ(action.words, (Words{"check", "execute", "cleanUp"}));
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::Failed});
}

TEST_F(LyrActionTest, turns_a_failed_allocation_into_an_error) {
    Errors errors;
    action.onExecute = [] { throw std::bad_alloc(); };
    EXPECT_FALSE(node->runAction(PAINT));
    EXPECT_EQ(action.words, (Words{"check", "execute", "cleanUp"}));
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::AllocationFailed});
}

TEST_F(LyrActionTest, keeps_its_object_alive_until_the_run_is_over) {
    bool destroyed = false;
    bool destroyedInside = true;
    node->onDestroyed = [&] { destroyed = true; };
    action.onExecute = [&] {
        node.drop();
        destroyedInside = destroyed;
        action.ok(1);
    };
    EXPECT_TRUE(node->runAction(PAINT));
    EXPECT_FALSE(destroyedInside);
    EXPECT_TRUE(destroyed);
}

TEST_F(LyrActionTest, leaves_a_new_object_as_new_as_it_was) {
    auto* fresh = new Node;
    Scripted own;
    fresh->addAction(PAINT, &own);
    own.onExecute = [&] {
        const LyrObjectPtr moment(own.getObject());
        own.ok(1);
    };
    EXPECT_TRUE(fresh->runAction(PAINT));
    EXPECT_EQ(fresh->getRefCount(), 0);
    LyrMetaClass::destruct(fresh, true);
}

TEST_F(LyrActionTest, is_found_by_identifier) {
    EXPECT_FALSE(node->runAction(6002));
    EXPECT_TRUE(node->removeAction(PAINT));
    EXPECT_FALSE(node->removeAction(PAINT));
    EXPECT_FALSE(node->runAction(PAINT));
    EXPECT_EQ(action.getActionID(), -1);
    EXPECT_EQ(action.words, Words{});
}

TEST_F(LyrActionTest, is_added_once_to_one_object) {
    Scripted other;
    const Held<> elsewhere;
    EXPECT_FALSE(node->addAction(PAINT, &other));
    EXPECT_FALSE(node->addAction(6002, &action));
    EXPECT_FALSE(elsewhere->addAction(PAINT, &action));
    EXPECT_FALSE(node->addAction(6003, nullptr));
    EXPECT_TRUE(node->addAction(6002, &other));
    EXPECT_EQ(other.getActionID(), 6002);
}

TEST_F(LyrActionTest, leaves_its_object_when_it_is_destroyed) {
    {
        Scripted brief;
        node->addAction(6002, &brief);
        EXPECT_TRUE(node->runAction(6002));
    }
    EXPECT_FALSE(node->runAction(6002));
}

TEST_F(LyrActionTest, survives_its_object) {
    node.drop();
    EXPECT_EQ(action.getActionID(), -1);
    const Held<> other;
    EXPECT_TRUE(other->addAction(PAINT, &action));
    EXPECT_TRUE(other->runAction(PAINT));
    other->removeAction(PAINT);
}

TEST_F(LyrActionTest, runs_without_an_object_too) {
    EXPECT_TRUE(action.run(nullptr, nullptr));
    Errors errors;
    action.onExecute = [&] { action.error(Lyr::InvalidParameters); };
    EXPECT_FALSE(action.run(nullptr, nullptr));
    EXPECT_EQ(errors.sources, std::vector<const LyrClass*>{&action});
}

TEST(LyrActionAttr, has_the_flags_that_it_is_declared_with) {
    class Declared : public LyrActionAttr {
    public:
        Declared() : LyrActionAttr(0x30000000, 0x10000000) {}
        void execute() override { ok(1); }
    };
    const Declared action;
    EXPECT_EQ(action.getFlags(), 0x20000000u);
}

TEST(LyrActionName, is_given_by_the_class_or_missing) {
    class Named : public LyrActionAttr {
    public:
        Named() : LyrActionAttr(0, 0, 6100) {}
        void execute() override { ok(1); }
    };
    const Named named;
    EXPECT_EQ(named.getName(), Lyrenum(6100));
    EXPECT_EQ(Scripted().getName(), Lyrenum(-1));
}
