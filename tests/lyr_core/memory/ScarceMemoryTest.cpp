#include "lyr_core/TestObjects.h"
#include "scarce/ScarceMemory.h"

#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrMemory.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrObjectPath.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrRegisteredEnum.h>
#include <lyr_core/LyrRoleManager.h>
#include <lyr_core/LyrWholeWrite.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

// Every operation of the framework with each of its allocations failing in turn, once and for good: nothing is thrown,
// a failure is reported and answered by false, and everything is as it was before.

using namespace core_test;
using Failing = ScarceMemory::Failing;
using Targets = std::vector<LyrObject*>;

namespace {

constexpr const char* LONG_TEXT = "a text that is too long to be kept inside a string itself";
constexpr const char* LONG_NAME = "core_test.a_name_that_is_too_long_to_be_kept_inside_a_string_itself";

/** The content of a node in words. */
std::string describe(const Node& node) {
    std::string text = std::to_string(node.weight.stored()) + "|" + node.title.stored().utf8() + "|" +
                       node.getNameTemplate() + "|" + std::to_string(node.getPropertyCount());
    for (const float item : node.numbers.view()) {
        text.append(" ").append(std::to_string(item));
    }
    for (const LyrLinkListOP* list :
         {static_cast<const LyrLinkListOP*>(&node.children), static_cast<const LyrLinkListOP*>(&node.friends)}) {
        text += "|";
        for (const LyrObject* target : targetsOf(*list)) {
            text.append(" ").append(std::to_string(reinterpret_cast<std::uintptr_t>(target)));
        }
    }
    return text + "|" + std::to_string(reinterpret_cast<std::uintptr_t>(node.owned.getTarget()));
}

/** A node with something in every property. */
struct Content {
    Content() {
        node->weight.setValue(1.0f);
        node->title.setValue(LONG_TEXT);
        setList(node->numbers, {1.0f, 2.0f, 3.0f});
        node->owned.setValue(linkTo(new Node));
        setList(node->children, {new Node, new SpecialNode});
        setList(node->friends, {node->owned.getTarget()});
        before = describe(*node);
    }
    Held<> node;
    Held<> other;
    std::string before;
};

/** Runs `work` on a fresh fixture for every allocation that may fail. `isUnchanged` judges the fixture of a failed run.
 */
template <class Fixture, class Work, class Judge>
void withScarceMemory(Work work, Judge isUnchanged) {
    for (const Failing how : {Failing::Once, Failing::ForGood}) {
        for (int n = 0;; ++n) {
            ASSERT_LT(n, 2000) << "no end";
            Fixture fixture;
            Errors errors;
            bool done = false;
            bool failed = false;
            {
                const ScarceMemory scarce(n, how);
                EXPECT_NO_THROW(done = work(fixture)) << "allocation " << n;
                failed = scarce.hasFailed();
            }
            if (!done) {
                EXPECT_FALSE(errors.codes.empty()) << "allocation " << n << " failed in silence";
                EXPECT_TRUE(isUnchanged(fixture)) << "allocation " << n << " left something behind";
            }
            if (!failed) {
                EXPECT_TRUE(done);
                break;
            }
        }
    }
}

/** For a write to the node of Content, outside of an action and inside one. */
template <class Work>
void expectWholeWrite(Work work) {
    withScarceMemory<Content>([&](Content& content) { return work(content); },
                              [](Content& content) { return describe(*content.node) == content.before; });
    struct InAction : Content {
        Steps steps;
        Action action;
    };
    withScarceMemory<InAction>([&](InAction& content) { return work(content); },
                               [](InAction& content) {
                                   const bool same = describe(*content.node) == content.before;
                                   content.action.end();
                                   return same && content.steps.size() == 0;
                               });
    while (LyrUndoJournal::instance().isOpen()) {
        LyrUndoJournal::instance().setSink(nullptr);
        for (LyrUndoJournal::Token token = 1; LyrUndoJournal::instance().isOpen(); ++token) {
            LyrUndoJournal::instance().end(token);
        }
    }
}

const auto ALWAYS = [](const auto&) { return true; };

struct Nothing {};

}  // namespace

TEST(ScarceMemory, leaves_names_as_they_were) {
    const int known = LyrIdentifierRegistry::registerName(LONG_NAME, MODULE);
    withScarceMemory<Nothing>(
        [](Nothing&) {
            const char* other = "another module, with a longer name";
            return LyrIdentifierRegistry::registerName(LONG_NAME, other) != -1 &&
                   LyrIdentifierRegistry::unregisterName(LONG_NAME, other);
        },
        [&](Nothing&) { return LyrIdentifierRegistry::registrationCount(LONG_NAME) == 1; });
    EXPECT_EQ(LyrIdentifierRegistry::find(LONG_NAME), known);

    int attempt = 0;
    std::string name;
    for (const Failing how : {Failing::Once, Failing::ForGood}) {
        for (bool failed = true; failed;) {
            name = LONG_NAME + std::to_string(++attempt);
            const std::string next = LONG_NAME + std::to_string(attempt) + "next";
            Errors errors;
            int number = -1;
            {
                const ScarceMemory scarce(attempt % 10, how);
                number = LyrIdentifierRegistry::registerName(name.c_str(), MODULE);
                failed = scarce.hasFailed();
            }
            // A registration that failed takes no number and no name from the next one.
            const int following = LyrIdentifierRegistry::registerName(next.c_str(), MODULE);
            EXPECT_NE(following, number);
            EXPECT_EQ(LyrIdentifierRegistry::nameOf(following), next);
            EXPECT_EQ(LyrIdentifierRegistry::find(name.c_str()), number);
            LyrIdentifierRegistry::unregisterName(next.c_str(), MODULE);
            LyrIdentifierRegistry::unregisterName(name.c_str(), MODULE);
        }
    }
    LyrIdentifierRegistry::unregisterName(LONG_NAME, MODULE);
}

TEST(ScarceMemory, takes_back_names_without_needing_any) {
    LyrIdentifierRegistry::registerName(LONG_NAME, MODULE);
    const ScarceMemory scarce(0, Failing::ForGood);
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName(LONG_NAME, MODULE));
    EXPECT_EQ(LyrIdentifierRegistry::find(LONG_NAME), -1);
    EXPECT_FALSE(scarce.hasFailed());
}

TEST(ScarceMemory, makes_a_registration_that_is_none) {
    withScarceMemory<Nothing>(
        [](Nothing&) {
            const LyrRegisteredEnum registered(LONG_NAME, false,
                                               "a module with a name that is longer than a short string");
            return registered.get() != -1;
        },
        [](Nothing&) { return LyrIdentifierRegistry::find(LONG_NAME) == -1; });
    EXPECT_EQ(LyrIdentifierRegistry::find(LONG_NAME), -1);
}

TEST(ScarceMemory, gives_no_name_for_a_number) {
    const int number = LyrIdentifierRegistry::registerName(LONG_NAME, MODULE);
    withScarceMemory<Nothing>([&](Nothing&) { return Lyrenum(number).getName() == LONG_NAME; }, ALWAYS);
    LyrIdentifierRegistry::unregisterName(LONG_NAME, MODULE);
}

TEST(ScarceMemory, makes_a_class_that_is_not_known_by_name) {
    const char* name = "TestClassWithANameThatIsLongerThanAShortString";
    withScarceMemory<Nothing>(
        [&](Nothing&) {
            const LyrMetaClass meta(name, 1, &LyrObject::metaClass(), nullptr, LONG_TEXT, 0, nullptr, 0, 0, 0, false);
            return LyrMetaClass::find(name) == &meta;
        },
        [&](Nothing&) { return LyrMetaClass::find(name) == nullptr; });
    EXPECT_EQ(LyrMetaClass::find(name), nullptr);
}

TEST(ScarceMemory, makes_no_object_and_leaves_none_behind) {
    const auto nodes = [] { return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("TestNode")); };
    withScarceMemory<Nothing>([](Nothing&) { return bool(LyrObjectRefPtr("TestNode", 1)); },
                              [&](Nothing&) { return nodes() == 0; });
    withScarceMemory<Content>(
        [](Content& content) {
            LyrClass* cloned = LyrObject::metaClass().clone(content.node.get());
            const bool made = cloned != nullptr;
            LyrMetaClass::destruct(cloned, true);
            return made;
        },
        [&](Content& content) { return nodes() == 5 && describe(*content.node) == content.before; });
}

TEST(ScarceMemory, gives_clones_that_are_complete_or_none) {
    for (int n = 0;; ++n) {
        const Content content;
        Errors errors;
        LyrClass* cloned = nullptr;
        bool failed = false;
        {
            const ScarceMemory scarce(n);
            cloned = Node::metaClass().clone(content.node.get());
            failed = scarce.hasFailed();
        }
        if (cloned) {
            const auto* node = static_cast<Node*>(cloned);
            EXPECT_EQ(node->title.stored(), LONG_TEXT);
            EXPECT_EQ(itemsOf(node->numbers), (std::vector{1.0f, 2.0f, 3.0f}));
            EXPECT_EQ(node->children.getArraySize(), 2);
            EXPECT_NE(node->owned.getTarget(), nullptr);
        }
        LyrMetaClass::destruct(cloned, true);
        if (!failed) {
            break;
        }
    }
}

TEST(ScarceMemory, says_that_an_assignment_is_not_complete) {
    withScarceMemory<Content>([](Content& content) { return content.other->copyFrom(*content.node); }, ALWAYS);
    withScarceMemory<Content>(
        [](Content& content) { return Node::metaClass().copy(content.other.get(), content.node.get()); }, ALWAYS);
}

TEST(ScarceMemory, leaves_properties_actions_and_names_out_of_an_object) {
    withScarceMemory<Content>(
        [](Content& content) {
            Single<float> property;
            return content.node->addProperty(8001, &property);
        },
        [](Content& content) { return describe(*content.node) == content.before; });
    withScarceMemory<Content>(
        [](Content& content) {
            class Doing : public LyrActionAttr {
            public:
                Doing() : LyrActionAttr(0, 0) {}
                void execute() override { ok(1); }
            } action;
            return content.node->addAction(8001, &action);
        },
        [](Content& content) { return !content.node->runAction(8001); });
    withScarceMemory<Content>([](Content& content) { return content.node->setNameTemplate(LONG_TEXT); },
                              [](Content& content) { return std::string(content.node->getNameTemplate()).empty(); });
}

TEST(ScarceMemory, leaves_hooks_and_roles_as_they_were) {
    struct Factory : LyrMetaClass::FactoryHook {
        void objectCreated(LyrClass*) override {}
        void objectDestroyed(LyrClass*) override {}
    };
    struct Role : LyrObject::RoleHook {
        bool enterRoleHook(const LyrObjectLink&) override { return true; }
        void leaveRoleHook(const LyrObjectLink&) override {}
    };
    using Manager = LyrObject::RoleManager;
    withScarceMemory<Nothing>(
        [](Nothing&) {
            Factory hook;
            return LyrMetaClass::addFactoryHook("TestClassWithANameThatIsLongerThanAShortString", &hook);
        },
        ALWAYS);
    withScarceMemory<Nothing>([](Nothing&) { return Manager::addRole(8101) && Manager::removeRole(8101); },
                              [](Nothing&) { return !Manager::isRole(8101); });
    withScarceMemory<Nothing>(
        [](Nothing&) {
            Role hook;
            return Manager::addHook(8101, &hook);
        },
        ALWAYS);
    withScarceMemory<Nothing>(
        [](Nothing&) {
            return Manager::addDefaultRole(SpecialNode::metaClass(), 8101) &&
                   Manager::removeDefaultRole(SpecialNode::metaClass(), 8101);
        },
        [](Nothing&) { return !Manager::removeDefaultRole(SpecialNode::metaClass(), 8101); });
    Manager::addRole(8101);
    Manager::addDefaultRole(Node::metaClass(), 8101);
    withScarceMemory<Content>([](Content& content) { return content.node->activateRole(8101); },
                              [](Content& content) { return !content.node->isRoleActive(8101); });
    withScarceMemory<Content>([](Content& content) { return content.node->prepareRoles(); },
                              [](Content& content) { return !content.node->isRoleActive(8101); });
    Manager::removeDefaultRole(Node::metaClass(), 8101);
    Manager::removeRole(8101);
}

TEST(ScarceMemory, leaves_single_values_as_they_were) {
    expectWholeWrite([](Content& content) { return content.node->weight.setValue(5.0f); });
    expectWholeWrite(
        [](Content& content) { return content.node->title.setValue("another text that needs memory of its own"); });
    expectWholeWrite([](Content& content) { return content.node->title.resetData(); });
    expectWholeWrite([](Content& content) { return content.node->owned.setValue(linkTo(content.other.get())); });
    expectWholeWrite([](Content& content) { return content.node->owned.copyValueFrom(content.node->owned); });
}

TEST(ScarceMemory, leaves_lists_as_they_were) {
    const float items[] = {7.0f, 8.0f, 9.0f, 10.0f, 11.0f};
    expectWholeWrite([&](Content& content) { return content.node->numbers.initArray(0, 4, items); });
    expectWholeWrite([&](Content& content) { return content.node->numbers.setArrayItems(0, 1, items); });
    expectWholeWrite([&](Content& content) { return content.node->numbers.insertArrayItems(1, 5, items); });
    expectWholeWrite([&](Content& content) { return content.node->numbers.removeArrayItems(0, 1); });
}

TEST(ScarceMemory, leaves_lists_of_links_as_they_were) {
    expectWholeWrite([](Content& content) { return setList(content.node->children, {}); });
    expectWholeWrite([](Content& content) {
        const LyrObjectLink links[] = {linkTo(content.other.get()), linkTo(nullptr), linkTo(content.other.get())};
        return content.node->children.initArray(0, 2, links);
    });
    expectWholeWrite([](Content& content) {
        const LyrObjectLink link = linkTo(content.other.get());
        return content.node->children.setArrayItems(0, 0, &link);
    });
    expectWholeWrite([](Content& content) {
        const LyrObjectLink link = linkTo(content.other.get());
        return content.node->friends.insertArrayItems(0, 0, &link);
    });
    expectWholeWrite([](Content& content) { return content.node->children.removeArrayItems(1, 1); });
    expectWholeWrite([](Content& content) {
        return content.node->children.copyValueFrom(content.other->children);  // an empty list
    });
}

TEST(ScarceMemory, keeps_a_list_when_its_objects_cannot_all_be_copied) {
    struct TwoContents : Content {
        Content source;
    };
    withScarceMemory<TwoContents>(
        [](TwoContents& content) { return content.node->children.copyValueFrom(content.source.node->children); },
        [](TwoContents& content) { return describe(*content.node) == content.before; });
}

TEST(ScarceMemory, gives_no_state_and_no_clone_of_a_property) {
    withScarceMemory<Content>(
        [](Content& content) {
            const bool complete = content.node->title.takeState() && content.node->numbers.takeState() &&
                                  content.node->children.takeState() && content.node->owned.takeState();
            return complete || content.node->title.emitError(Lyr::AllocationFailed);
        },
        [](Content& content) { return describe(*content.node) == content.before; });
    withScarceMemory<Content>(
        [](Content& content) {
            const std::unique_ptr<LyrProperty> numbers(content.node->numbers.clone(1));
            const std::unique_ptr<LyrProperty> children(numbers ? content.node->children.clone(2) : nullptr);
            return numbers && children;
        },
        [](Content& content) { return describe(*content.node) == content.before; });
}

TEST(ScarceMemory, writes_several_properties_or_none_of_them) {
    expectWholeWrite([](Content& content) {
        LyrWholeWrite whole;
        const LyrObjectLink link = linkTo(content.other.get());
        const bool done = whole.add(&content.node->title) && whole.add(&content.node->children) &&
                          whole.add(&content.node->numbers) &&
                          content.node->title.setValue("another text that needs memory of its own") &&
                          content.node->children.initArray(0, 0, &link) && setList(content.node->numbers, {9.0f});
        if (done) {
            whole.keep();
        }
        return done;
    });
}

TEST(ScarceMemory, opens_no_action) {
    withScarceMemory<Nothing>(
        [](Nothing&) {
            auto& journal = LyrUndoJournal::instance();
            const auto token = journal.begin(LyrString());
            return token != 0 && journal.end(token);
        },
        [](Nothing&) { return !LyrUndoJournal::instance().isOpen(); });
}

TEST(ScarceMemory, undoes_redoes_and_aborts_without_needing_any) {
    Content content;
    Steps steps;
    const auto change = [&] {
        content.node->weight.setValue(9.0f);
        content.node->title.setValue("another text that needs memory of its own");
        setList(content.node->numbers, {});
        setList(content.node->children, {});
        setList(content.node->friends, {content.other.get(), content.other.get()});
        content.node->owned.setValue(LyrObjectLink());
    };
    Action action;
    change();
    action.end();
    const std::string after = describe(*content.node);
    {
        const ScarceMemory scarce(0, Failing::ForGood);
        EXPECT_TRUE(steps[0].undo());
        EXPECT_FALSE(scarce.hasFailed());
    }
    EXPECT_EQ(describe(*content.node), content.before);
    {
        const ScarceMemory scarce(0, Failing::ForGood);
        EXPECT_TRUE(steps[0].redo());
        EXPECT_TRUE(steps[0].undo());
        EXPECT_TRUE(steps[0].redo());
        EXPECT_FALSE(scarce.hasFailed());
    }
    EXPECT_EQ(describe(*content.node), after);
    steps[0].undo();
    Action aborted;
    change();
    {
        const ScarceMemory scarce(0, Failing::ForGood);
        EXPECT_TRUE(aborted.abort());
        EXPECT_FALSE(scarce.hasFailed());
    }
    EXPECT_EQ(describe(*content.node), content.before);
    Action outer;
    Action inner;
    change();
    {
        const ScarceMemory scarce(0, Failing::ForGood);
        EXPECT_TRUE(inner.abort());
        EXPECT_FALSE(scarce.hasFailed());
    }
    EXPECT_EQ(describe(*content.node), content.before);
    outer.end();
}

TEST(ScarceMemory, adds_no_snapshot) {
    struct Open : Content {
        ~Open() { action.end(); }
        Steps steps;
        Action action;
    };
    withScarceMemory<Open>([](Open& open) { return LyrUndoJournal::instance().addSnapshot(open.node->title); },
                           [](Open& open) {
                               open.action.end();
                               return open.steps.size() == 0;
                           });
}

TEST(ScarceMemory, leaves_handles_paths_and_caches_empty) {
    withScarceMemory<Content>(
        [](Content& content) {
            LyrObjectIOCPtrList list;
            return list.append(content.node.get());
        },
        [](Content& content) { return content.node->getRefCount() == 1; });
    withScarceMemory<Content>(
        [](Content& content) {
            return LyrObjectPath::toRoot(content.node->children.view()[0].getLink()).getLinkCount() == 2;
        },
        [](Content& content) { return describe(*content.node) == content.before; });
    withScarceMemory<Content>(
        [](Content& content) {
            LyrValueArrayOPCache<float> cache;
            return cache.load(content.node.get(), NUMBERS);
        },
        ALWAYS);
}

TEST(ScarceMemory, reports_that_more_listeners_than_usual_could_not_be_told) {
    const Held<> node;
    Ear ear;
    std::vector<LyrObjectIOCPtr> handles(40, LyrObjectIOCPtr(&ear, node.get()));
    Errors errors;
    {
        const ScarceMemory scarce(0, Failing::ForGood);
        EXPECT_TRUE(node->weight.setValue(1.0f));
        EXPECT_TRUE(scarce.hasFailed());
    }
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::AllocationFailed});
    EXPECT_EQ(node->weight.stored(), 1.0f);
}

TEST(ScarceMemory, does_not_keep_objects_from_telling_and_dying) {
    int left = 0;
    int destroyed = 0;
    struct Factory : LyrMetaClass::FactoryHook {
        explicit Factory(int& count) : mCount(count) {}
        void objectCreated(LyrClass*) override {}
        void objectDestroyed(LyrClass*) override { ++mCount; }
        int& mCount;
    } factoryHook(destroyed);
    struct Role : LyrObject::RoleHook {
        explicit Role(int& count) : mCount(count) {}
        bool enterRoleHook(const LyrObjectLink&) override { return true; }
        void leaveRoleHook(const LyrObjectLink&) override { ++mCount; }
        int& mCount;
    } roleHook(left);
    LyrObject::RoleManager::addRole(8101);
    LyrObject::RoleManager::addHook(8101, &roleHook);
    LyrMetaClass::addFactoryHook("TestNode", &factoryHook);
    const Held<> watcher;
    {
        LyrObjectRefPtr object("TestNode", 1);
        auto* node = static_cast<Node*>(object.get());
        auto content = std::make_unique<Content>();
        setList(node->children, {content->node.get(), new Node});
        content.reset();
        node->activateRole(8101);
        node->setNameTemplate(LONG_TEXT);
        watcher->softFriend.setValue(linkTo(node));
        watcher->heard = 0;
        const ScarceMemory scarce(0, Failing::ForGood);
        node->weight.setValue(3.0f);
        object.release();
        EXPECT_FALSE(scarce.hasFailed());
    }
    EXPECT_EQ(watcher->heard, 1);
    EXPECT_EQ(watcher->softFriend.getTarget(), nullptr);
    EXPECT_EQ(left, 1);
    EXPECT_EQ(destroyed, 1);
    LyrObject::RoleManager::removeRole(8101);
}

TEST(ScarceMemory, does_not_keep_errors_from_being_heard) {
    Errors errors;
    const ScarceMemory scarce(0, Failing::ForGood);
    LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
    EXPECT_FALSE(scarce.hasFailed());
    EXPECT_EQ(errors.codes.size(), 1u);
}
