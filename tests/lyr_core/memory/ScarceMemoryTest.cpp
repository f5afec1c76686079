#include "ScarceContent.h"

#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrObjectPath.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrRegisteredEnum.h>
#include <lyr_core/LyrRoleManager.h>

// Names, classes, objects, roles, actions and messages with each of their allocations failing in turn, once and for
// good: nothing is thrown, a failure is reported and answered by false, and everything is as it was before.

using namespace scarce_test;
using Manager = LyrObject::RoleManager;

namespace {

struct Nothing {};

/** Whether a copy of the node of Content has all of its values. */
bool isLike(const Node& copy) {
    return copy.weight.stored() == 1.0f && copy.title.stored() == LyrString(LONG_TEXT) &&
           itemsOf(copy.numbers) == Values().numbers && copy.children.getArraySize() == 2 &&
           copy.friends.getArraySize() == 1 && copy.owned.getTarget() != nullptr;
}

}  // namespace

TEST(ScarceMemory, leaves_names_as_they_were) {
    const int known = LyrIdentifierRegistry::registerName(LONG_NAME, MODULE);
    const int failures = withScarceMemory<Nothing>(
        [](Nothing&) {
            const char* other = "another module, with a longer name";
            return LyrIdentifierRegistry::registerName(LONG_NAME, other) != -1 &&
                   LyrIdentifierRegistry::unregisterName(LONG_NAME, other);
        },
        [&](Nothing&, bool) { return LyrIdentifierRegistry::registrationCount(LONG_NAME) == 1; });
    EXPECT_GT(failures, 0);
    EXPECT_EQ(LyrIdentifierRegistry::find(LONG_NAME), known);
    LyrIdentifierRegistry::unregisterName(LONG_NAME, MODULE);
}

TEST(ScarceMemory, takes_no_number_and_no_name_from_the_next_one) {
    struct Names {
        Names() : name(LONG_NAME + std::to_string(++count())), next(name + "next") {}
        ~Names() {
            LyrIdentifierRegistry::unregisterName(next.c_str(), MODULE);
            LyrIdentifierRegistry::unregisterName(name.c_str(), MODULE);
        }
        static int& count() {
            static int names = 0;
            return names;
        }
        std::string name;
        std::string next;
        int number = -1;
    };
    const int failures = withScarceMemory<Names>(
        [](Names& names) {
            names.number = LyrIdentifierRegistry::registerName(names.name.c_str(), MODULE);
            return names.number != -1;
        },
        [](Names& names, bool) {
            const int following = LyrIdentifierRegistry::registerName(names.next.c_str(), MODULE);
            EXPECT_NE(following, names.number);
            EXPECT_EQ(LyrIdentifierRegistry::nameOf(following), names.next);
            return LyrIdentifierRegistry::find(names.name.c_str()) == names.number;
        });
    EXPECT_GT(failures, 2);
}

TEST(ScarceMemory, takes_back_names_without_needing_any) {
    LyrIdentifierRegistry::registerName(LONG_NAME, MODULE);
    const ScarceMemory scarce(0, Failing::ForGood);
    EXPECT_TRUE(LyrIdentifierRegistry::unregisterName(LONG_NAME, MODULE));
    EXPECT_EQ(LyrIdentifierRegistry::find(LONG_NAME), -1);
    EXPECT_FALSE(scarce.hasFailed());
}

TEST(ScarceMemory, makes_a_registration_that_is_none) {
    const int failures = withScarceMemory<Nothing>(
        [](Nothing&) {
            const LyrRegisteredEnum registered(LONG_NAME, false,
                                               "a module with a name that is longer than a short string");
            return registered.get() != -1;
        },
        [](Nothing&, bool) { return LyrIdentifierRegistry::find(LONG_NAME) == -1; });
    EXPECT_GT(failures, 0);
}

TEST(ScarceMemory, gives_no_name_for_a_number) {
    const int number = LyrIdentifierRegistry::registerName(LONG_NAME, MODULE);
    const int failures =
        withScarceMemory<Nothing>([&](Nothing&) { return Lyrenum(number).getName() == LONG_NAME; }, ALWAYS);
    EXPECT_GT(failures, 0);
    LyrIdentifierRegistry::unregisterName(LONG_NAME, MODULE);
}

TEST(ScarceMemory, makes_a_class_that_is_not_known_by_name) {
    const char* name = "TestClassWithANameThatIsLongerThanAShortString";
    const int failures = withScarceMemory<Nothing>(
        [&](Nothing&) {
            const LyrMetaClass meta(name, 1, &LyrObject::metaClass(), nullptr, LONG_TEXT, 0, nullptr, 0, 0, 0, false);
            return LyrMetaClass::find(name) == &meta;
        },
        [&](Nothing&, bool) { return LyrMetaClass::find(name) == nullptr; });
    EXPECT_GT(failures, 0);
}

TEST(ScarceMemory, makes_no_object_and_leaves_none_behind) {
    const auto nodes = [] { return LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("TestNode")); };
    EXPECT_GT(withScarceMemory<Nothing>([](Nothing&) { return bool(LyrObjectRefPtr("TestNode", 1)); },
                                        [&](Nothing&, bool) { return nodes() == 0; }),
              0);
    EXPECT_GT(withScarceMemory<Content>(
                  [](Content& content) {
                      LyrClass* cloned = LyrObject::metaClass().clone(content.node.get());
                      const bool made = cloned != nullptr;
                      LyrMetaClass::destruct(cloned, true);
                      return made;
                  },
                  [&](Content& content, bool) { return nodes() == 5 && content.isUnchanged(); }),
              0);
}

TEST(ScarceMemory, gives_clones_that_are_complete_or_none) {
    struct Cloning : Content {
        ~Cloning() { LyrMetaClass::destruct(clone, true); }
        LyrClass* clone = nullptr;
    };
    const int failures = withScarceMemory<Cloning>(
        [](Cloning& content) {
            content.clone = Node::metaClass().clone(content.node.get());
            return content.clone != nullptr;
        },
        [](Cloning& content, bool done) { return !done || isLike(*static_cast<Node*>(content.clone)); });
    EXPECT_GT(failures, 10);
}

TEST(ScarceMemory, says_that_an_assignment_is_not_complete) {
    const auto isComplete = [](Content& content, bool done) { return !done || isLike(*content.other); };
    EXPECT_GT(
        withScarceMemory<Content>([](Content& content) { return content.other->copyFrom(*content.node); }, isComplete),
        10);
    EXPECT_GT(withScarceMemory<Content>(
                  [](Content& content) { return Node::metaClass().copy(content.other.get(), content.node.get()); },
                  isComplete),
              10);
}

TEST(ScarceMemory, leaves_properties_actions_and_names_out_of_an_object) {
    /** Has as many properties as its lists have room for. */
    struct Full : Content {
        Full() {
            for (int i = 0; i < 6; ++i) {
                node->addProperty(8002 + i, &more[i]);
            }
        }
        Single<float> more[6];
    };
    struct WithProperty : Full {
        Single<float> property;
    };
    EXPECT_GT(withScarceMemory<WithProperty>(
                  [](WithProperty& content) { return content.node->addProperty(8001, &content.property); },
                  [](WithProperty& content, bool done) {
                      return content.node->getProperty(8001) == (done ? &content.property : nullptr) &&
                             content.values().propertyCount == (done ? 17 : 16);
                  }),
              0);
    class Doing : public LyrActionAttr {
    public:
        Doing() : LyrActionAttr(0, 0) {}
        void execute() override { ok(1); }
    };
    struct WithAction : Full {
        Doing action;
    };
    EXPECT_GT(withScarceMemory<WithAction>(
                  [](WithAction& content) { return content.node->addAction(8001, &content.action); },
                  [](WithAction& content, bool done) { return content.node->runAction(8001) == done; }),
              0);
    EXPECT_GT(withScarceMemory<Content>(
                  [](Content& content) { return content.node->setNameTemplate(LONG_TEXT); },
                  [](Content& content, bool done) { return content.values().nameTemplate == (done ? LONG_TEXT : ""); }),
              0);
}

TEST(ScarceMemory, leaves_hooks_as_they_were) {
    struct Factory : LyrMetaClass::FactoryHook {
        void objectCreated(LyrClass*) override { ++created; }
        void objectDestroyed(LyrClass*) override {}
        int created = 0;
    };
    EXPECT_GT(
        withScarceMemory<Factory>([](Factory& hook) { return LyrMetaClass::addFactoryHook("TestSpecialNode", &hook); },
                                  [](Factory& hook, bool done) {
                                      const LyrObjectRefPtr made("TestSpecialNode", 1);
                                      return hook.created == (done ? 1 : 0);
                                  }),
        0);
    struct Role : LyrObject::RoleHook {
        Role() { Manager::addRole(8101); }
        ~Role() override { Manager::removeRole(8101); }
        bool enterRoleHook(const LyrObjectLink&) override {
            ++entered;
            return true;
        }
        void leaveRoleHook(const LyrObjectLink&) override {}
        int entered = 0;
    };
    EXPECT_GT(withScarceMemory<Role>([](Role& hook) { return Manager::addHook(8101, &hook); },
                                     [](Role& hook, bool done) {
                                         const Held<> node;
                                         return node->activateRole(8101) && hook.entered == (done ? 1 : 0);
                                     }),
              0);
}

TEST(ScarceMemory, leaves_roles_as_they_were) {
    EXPECT_GT(withScarceMemory<Nothing>([](Nothing&) { return Manager::addRole(8101) && Manager::removeRole(8101); },
                                        [](Nothing&, bool) { return !Manager::isRole(8101); }),
              0);
    EXPECT_GT(withScarceMemory<Nothing>(
                  [](Nothing&) {
                      return Manager::addDefaultRole(SpecialNode::metaClass(), 8101) &&
                             Manager::removeDefaultRole(SpecialNode::metaClass(), 8101);
                  },
                  [](Nothing&, bool) { return !Manager::removeDefaultRole(SpecialNode::metaClass(), 8101); }),
              0);
    const auto isActive = [](Content& content, bool done) { return content.node->isRoleActive(8101) == done; };
    Manager::addRole(8101);
    Manager::addDefaultRole(Node::metaClass(), 8101);
    EXPECT_GT(withScarceMemory<Content>([](Content& content) { return content.node->activateRole(8101); }, isActive),
              0);
    EXPECT_GT(withScarceMemory<Content>([](Content& content) { return content.node->prepareRoles(); }, isActive), 0);
    Manager::removeDefaultRole(Node::metaClass(), 8101);
    Manager::removeRole(8101);
}

TEST(ScarceMemory, opens_no_action) {
    EXPECT_GT(withScarceMemory<Nothing>(
                  [](Nothing&) {
                      auto& journal = LyrUndoJournal::instance();
                      const auto token = journal.begin(LyrString());
                      return token != 0 && journal.end(token);
                  },
                  [](Nothing&, bool) { return !LyrUndoJournal::instance().isOpen(); }),
              1);
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
    const Values after = content.values();
    {
        const ScarceMemory scarce(0, Failing::ForGood);
        EXPECT_TRUE(steps[0].undo());
        EXPECT_FALSE(scarce.hasFailed());
    }
    EXPECT_EQ(content.values(), Values());
    {
        const ScarceMemory scarce(0, Failing::ForGood);
        EXPECT_TRUE(steps[0].redo());
        EXPECT_TRUE(steps[0].undo());
        EXPECT_TRUE(steps[0].redo());
        EXPECT_FALSE(scarce.hasFailed());
    }
    EXPECT_EQ(content.values(), after);
    steps[0].undo();
    Action aborted;
    change();
    {
        const ScarceMemory scarce(0, Failing::ForGood);
        EXPECT_TRUE(aborted.abort());
        EXPECT_FALSE(scarce.hasFailed());
    }
    EXPECT_EQ(content.values(), Values());
    Action outer;
    Action inner;
    change();
    {
        const ScarceMemory scarce(0, Failing::ForGood);
        EXPECT_TRUE(inner.abort());
        EXPECT_FALSE(scarce.hasFailed());
    }
    EXPECT_EQ(content.values(), Values());
    outer.end();
}

TEST(ScarceMemory, leaves_handles_paths_and_caches_empty) {
    EXPECT_GT(withScarceMemory<Content>(
                  [](Content& content) {
                      LyrObjectIOCPtrList list;
                      return list.append(content.node.get());
                  },
                  [](Content& content, bool) { return content.node->getRefCount() == 1; }),
              0);
    EXPECT_GT(withScarceMemory<Content>(
                  [](Content& content) {
                      return LyrObjectPath::toRoot(content.node->children.view()[0].getLink()).getLinkCount() == 2;
                  },
                  [](Content& content, bool) { return content.isUnchanged(); }),
              0);
    struct Cached : Content {
        LyrValueArrayOPCache<float> cache;
    };
    EXPECT_GT(withScarceMemory<Cached>([](Cached& content) { return content.cache.load(content.node.get(), NUMBERS); },
                                       [](Cached& content, bool done) {
                                           return content.cache.items() ==
                                                  (done ? Values().numbers : std::vector<float>());
                                       }),
              0);
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
