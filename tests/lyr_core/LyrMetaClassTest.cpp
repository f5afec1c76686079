#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrRoleManager.h>

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace core_test;

namespace {

using Words = std::vector<std::string>;

/** Notes what it hears, with the class that the object is of at that time. */
class Hook : public LyrMetaClass::FactoryHook {
public:
    explicit Hook(Words& words, std::string name = "") : mWords(words), mName(std::move(name)) {}
    void objectCreated(LyrClass* object) override {
        mWords.push_back(mName + "+" + object->getMetaClass().getClassName());
        if (onCreated) {
            onCreated(object);
        }
    }
    void objectDestroyed(LyrClass* object) override {
        mWords.push_back(mName + "-" + object->getMetaClass().getClassName());
        if (onDestroyed) {
            onDestroyed(object);
        }
    }
    std::function<void(LyrClass*)> onCreated;
    std::function<void(LyrClass*)> onDestroyed;

private:
    Words& mWords;
    std::string mName;
};

/** A class that is no LyrObject. */
class Plain : public LyrClass {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestPlain", sizeof(Plain), &LyrClass::metaClass(), new LyrClassFactory<Plain>,
                                       MODULE, 0, nullptr, 0, 0x4, 0x1, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
    int number = 0;
};

/** An object whose copies are never complete: it refuses every text. */
class Stubborn : public Node {
public:
    Stubborn() { addProperty(8000, &refusing); }
    Stubborn(const Stubborn& other) : Node(other) {
        addProperty(8000, &refusing);
        copyFrom(other);
    }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestStubborn", sizeof(Stubborn), &Node::metaClass(),
                                       new LyrClassFactory<Stubborn>, MODULE, 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

private:
    struct Refusing : Single<const char*> {
        unsigned int checkData(const char* const&, bool) const override { return 0; }
    };
    Refusing refusing;
};

class MetaClassTest : public testing::Test {
protected:
    Words words;
};

using LyrMetaClassTest = MetaClassTest;
using LyrMetaClassHooks = MetaClassTest;

}  // namespace

TEST_F(LyrMetaClassTest, tells_what_it_was_made_with) {
    const LyrMetaClass& meta = SpecialNode::metaClass();
    EXPECT_STREQ(meta.getClassName(), "TestSpecialNode");
    EXPECT_STREQ(meta.getModule(), MODULE);
    EXPECT_EQ(meta.getInstanceSize(), sizeof(SpecialNode));
    EXPECT_EQ(meta.getParent(), &Node::metaClass());
    EXPECT_EQ(meta.getClassFlags(), 0u);
    EXPECT_FALSE(meta.isSingleton());
    EXPECT_FALSE(LyrObject::metaClass().isSingleton());
}

TEST_F(LyrMetaClassTest, is_of_the_type_of_itself_and_of_its_ancestors) {
    const LyrMetaClass& meta = SpecialNode::metaClass();
    EXPECT_TRUE(meta.isOfType(meta));
    EXPECT_TRUE(meta.isOfType(Node::metaClass()));
    EXPECT_TRUE(meta.isOfType(LyrObject::metaClass()));
    EXPECT_TRUE(meta.isOfType("TestSpecialNode"));
    EXPECT_TRUE(meta.isOfType("TestNode"));
    EXPECT_TRUE(meta.isOfType("LyrObject"));
    EXPECT_TRUE(meta.isOfType("LyrClass"));
    EXPECT_FALSE(Node::metaClass().isOfType(meta));
    EXPECT_FALSE(meta.isOfType("TestNobody"));
    EXPECT_FALSE(meta.isOfType(static_cast<const char*>(nullptr)));
}

TEST_F(LyrMetaClassTest, is_found_by_name_while_it_lives) {
    EXPECT_EQ(LyrMetaClass::find("TestNode"), &Node::metaClass());
    EXPECT_EQ(LyrMetaClass::find("TestShort"), nullptr);
    EXPECT_EQ(LyrMetaClass::find(nullptr), nullptr);
    {
        const LyrMetaClass brief("TestShort", 0, nullptr, nullptr, "core_test_brief", 0, nullptr, 0, 0, 0, false);
        EXPECT_EQ(LyrMetaClass::find("TestShort"), &brief);
        EXPECT_EQ(LyrMetaClass::moduleClassCount("core_test_brief"), 1);
    }
    EXPECT_EQ(LyrMetaClass::find("TestShort"), nullptr);
    EXPECT_EQ(LyrMetaClass::moduleClassCount("core_test_brief"), 0);
    EXPECT_EQ(LyrMetaClass::moduleClassCount(nullptr), 0);
}

TEST_F(LyrMetaClassTest, reports_a_name_that_is_taken_and_leaves_it_to_the_first) {
    Errors errors;
    {
        const LyrMetaClass second("TestNode", 0, nullptr, nullptr, MODULE, 0, nullptr, 0, 0, 0, false);
        EXPECT_EQ(errors.codes, std::vector<int>{Lyr::AlreadyRegistered});
        EXPECT_EQ(LyrMetaClass::find("TestNode"), &Node::metaClass());
    }
    EXPECT_EQ(LyrMetaClass::find("TestNode"), &Node::metaClass());
}

TEST_F(LyrMetaClassTest, knows_the_classes_of_the_framework_without_being_asked_first) {
    for (const char* name : {"LyrClass", "LyrObject", "LyrProperty", "LyrObjectHardLinkOP", "LyrObjectSoftLinkOP",
                             "LyrObjectParentLinkOP", "LyrObjectHardLinkListOP", "LyrObjectParentLinkListOP"}) {
        EXPECT_NE(LyrMetaClass::find(name), nullptr) << name;
    }
}

TEST_F(LyrMetaClassTest, creates_an_object_that_nobody_holds) {
    LyrClass* made = SpecialNode::metaClass().create();
    auto* node = dynamic_cast<SpecialNode*>(made);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->getRefCount(), 0);
    EXPECT_EQ(&node->getMetaClass(), &SpecialNode::metaClass());
    EXPECT_TRUE(LyrMetaClass::destruct(made, true));
}

TEST_F(LyrMetaClassTest, creates_by_name_and_nothing_silently_for_an_unknown_name) {
    LyrClass* made = LyrMetaClass::create("TestNode");
    EXPECT_NE(dynamic_cast<Node*>(made), nullptr);
    LyrMetaClass::destruct(made, true);
    EXPECT_EQ(LyrMetaClass::create("TestNobody"), nullptr);
    EXPECT_EQ(LyrMetaClass::create(nullptr), nullptr);
}

TEST_F(LyrMetaClassTest, reports_that_a_class_without_factory_cannot_be_created_or_cloned) {
    Errors errors;
    EXPECT_EQ(LyrMetaClass::create("LyrClass"), nullptr);
    const LyrClass object;
    EXPECT_EQ(LyrClass::metaClass().clone(&object), nullptr);
    EXPECT_EQ(errors.codes, (std::vector<int>{Lyr::Failed, Lyr::Failed}));
}

TEST_F(LyrMetaClassTest, clones_into_the_class_of_the_object) {
    const Held<SpecialNode> source;
    source->weight.setValue(3.5f);
    source->setScope(9);
    LyrClass* cloned = LyrObject::metaClass().clone(source.get());
    auto* node = dynamic_cast<SpecialNode*>(cloned);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->weight.stored(), 3.5f);
    EXPECT_EQ(node->getScope(), 9);
    EXPECT_EQ(node->getRefCount(), 0);
    LyrMetaClass::destruct(cloned, true);
}

TEST_F(LyrMetaClassTest, clones_nothing_of_another_class) {
    const Held<> source;
    EXPECT_EQ(SpecialNode::metaClass().clone(source.get()), nullptr);
    EXPECT_EQ(Node::metaClass().clone(nullptr), nullptr);
}

TEST_F(LyrMetaClassTest, gives_up_a_clone_that_could_not_take_over_everything) {
    const Held<Stubborn> source;
    Errors errors;
    EXPECT_EQ(LyrObject::metaClass().clone(source.get()), nullptr);
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::AllocationFailed});
}

TEST_F(LyrMetaClassTest, copies_values_from_object_to_object) {
    const Held<SpecialNode> from;
    const Held<> to;
    from->weight.setValue(2.0f);
    EXPECT_TRUE(Node::metaClass().copy(to.get(), from.get()));
    EXPECT_EQ(to->weight.stored(), 2.0f);
    EXPECT_TRUE(Node::metaClass().copy(to.get(), to.get()));
}

TEST_F(LyrMetaClassTest, refuses_to_copy_what_is_not_of_its_class) {
    const Held<> node;
    const Held<SpecialNode> special;
    EXPECT_FALSE(SpecialNode::metaClass().copy(node.get(), special.get()));
    EXPECT_FALSE(SpecialNode::metaClass().copy(special.get(), node.get()));
    EXPECT_FALSE(SpecialNode::metaClass().copy(node.get(), node.get()));
    EXPECT_FALSE(Node::metaClass().copy(nullptr, node.get()));
    EXPECT_FALSE(Node::metaClass().copy(node.get(), nullptr));
    EXPECT_FALSE(LyrClass::metaClass().copy(node.get(), special.get()));
}

TEST_F(LyrMetaClassTest, refuses_to_destruct_what_somebody_holds) {
    bool destroyed = false;
    Held<> node;
    node->onDestroyed = [&] { destroyed = true; };
    {
        Errors errors;
        EXPECT_FALSE(LyrMetaClass::destruct(node.get(), true));
        EXPECT_EQ(errors.codes, std::vector<int>{Lyr::Failed});
        EXPECT_EQ(errors.sources, std::vector<const LyrClass*>{node.get()});
    }
    EXPECT_FALSE(destroyed);
    node.drop();
    EXPECT_TRUE(destroyed);
}

TEST_F(LyrMetaClassTest, destructs_in_place_without_freeing_the_memory) {
    alignas(Node) unsigned char place[sizeof(Node)];
    bool destroyed = false;
    auto* node = new (place) Node;
    node->onDestroyed = [&] { destroyed = true; };
    EXPECT_TRUE(LyrMetaClass::destruct(node, false));
    EXPECT_TRUE(destroyed);
    EXPECT_TRUE(LyrMetaClass::destruct(nullptr, true));
    EXPECT_TRUE(LyrMetaClass::destruct(nullptr, false));
}

TEST_F(LyrMetaClassTest, applies_its_default_flags) {
    Plain object;
    object.setFlags(0x3, 0);
    Plain::metaClass().applyDefaultFlags(&object);
    EXPECT_EQ(object.getFlags(), 0x6u);
    Plain::metaClass().applyDefaultFlags(nullptr);
}

TEST_F(LyrMetaClassTest, creates_and_clones_objects_of_classes_that_are_no_LyrObject) {
    LyrClass* made = LyrMetaClass::create("TestPlain");
    if (!made) {
        Plain::metaClass();
        made = LyrMetaClass::create("TestPlain");
    }
    auto* plain = dynamic_cast<Plain*>(made);
    ASSERT_NE(plain, nullptr);
    plain->number = 4;
    auto* cloned = dynamic_cast<Plain*>(Plain::metaClass().clone(plain));
    ASSERT_NE(cloned, nullptr);
    EXPECT_EQ(cloned->number, 4);
    plain->number = 5;
    EXPECT_TRUE(Plain::metaClass().copy(cloned, plain));
    EXPECT_EQ(cloned->number, 5);
    LyrMetaClass::destruct(cloned, true);
    LyrMetaClass::destruct(plain, true);
}

TEST_F(LyrMetaClassHooks, are_called_after_the_most_derived_constructor_and_before_the_most_derived_destructor) {
    Hook hook(words);
    ASSERT_TRUE(LyrMetaClass::addFactoryHook("TestSpecialNode", &hook));
    hook.onCreated = [&](LyrClass* object) {
        words.emplace_back(static_cast<SpecialNode*>(object)->weight.getObject() ? "built" : "not built");
    };
    auto* node = static_cast<SpecialNode*>(SpecialNode::metaClass().create());
    node->onDestroyed = [&] { words.emplace_back("destructor"); };
    { const LyrObjectPtr handle(node); }
    EXPECT_EQ(words, (Words{"+TestSpecialNode", "built", "-TestSpecialNode", "destructor"}));
}

TEST_F(LyrMetaClassHooks, of_a_base_class_hear_of_derived_objects_after_those_of_the_class_itself) {
    Hook base(words, "base"), own(words, "own"), root(words, "root");
    LyrMetaClass::addFactoryHook("LyrObject", &root);
    LyrMetaClass::addFactoryHook("TestNode", &base);
    LyrMetaClass::addFactoryHook("TestSpecialNode", &own);
    LyrMetaClass::destruct(LyrMetaClass::create("TestSpecialNode"), true);
    EXPECT_EQ(words, (Words{"own+TestSpecialNode", "base+TestSpecialNode", "root+TestSpecialNode",
                            "own-TestSpecialNode", "base-TestSpecialNode", "root-TestSpecialNode"}));
    words.clear();
    LyrMetaClass::destruct(LyrMetaClass::create("TestNode"), true);
    EXPECT_EQ(words, (Words{"base+TestNode", "root+TestNode", "base-TestNode", "root-TestNode"}));
}

TEST_F(LyrMetaClassHooks, hear_of_clones) {
    const Held<> source;
    Hook hook(words);
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    LyrMetaClass::destruct(Node::metaClass().clone(source.get()), true);
    EXPECT_EQ(words, (Words{"+TestNode", "-TestNode"}));
}

TEST_F(LyrMetaClassHooks, hear_nothing_of_objects_that_the_framework_did_not_create) {
    Hook hook(words);
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    { const Node onTheStack; }
    { const Held<> onTheHeap; }
    EXPECT_EQ(words, Words{});
}

TEST_F(LyrMetaClassHooks, are_not_called_for_objects_that_exist_but_hear_of_their_end) {
    LyrClass* node = LyrMetaClass::create("TestNode");
    Hook hook(words);
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    EXPECT_EQ(words, Words{});
    LyrMetaClass::destruct(node, true);
    EXPECT_EQ(words, Words{"-TestNode"});
}

TEST_F(LyrMetaClassHooks, added_by_a_hook_hear_of_later_objects_only) {
    Hook first(words, "first"), added(words, "added");
    first.onCreated = [&](LyrClass*) { LyrMetaClass::addFactoryHook("TestNode", &added); };
    LyrMetaClass::addFactoryHook("TestNode", &first);
    LyrClass* one = LyrMetaClass::create("TestNode");
    EXPECT_EQ(words, Words{"first+TestNode"});
    words.clear();
    LyrClass* two = LyrMetaClass::create("TestNode");
    EXPECT_EQ(words, (Words{"first+TestNode", "added+TestNode"}));
    LyrMetaClass::destruct(one, true);
    LyrMetaClass::destruct(two, true);
}

TEST_F(LyrMetaClassHooks, removed_by_a_hook_are_not_called) {
    Hook first(words, "first");
    std::optional<Hook> second(std::in_place, words, "second");
    Hook third(words, "third");
    first.onCreated = [&](LyrClass*) { second.reset(); };
    first.onDestroyed = [&](LyrClass*) { LyrMetaClass::removeFactoryHook("TestNode", &third); };
    LyrMetaClass::addFactoryHook("TestNode", &first);
    LyrMetaClass::addFactoryHook("TestNode", &*second);
    LyrMetaClass::addFactoryHook("TestNode", &third);
    LyrMetaClass::destruct(LyrMetaClass::create("TestNode"), true);
    EXPECT_EQ(words, (Words{"first+TestNode", "third+TestNode", "first-TestNode"}));
}

TEST_F(LyrMetaClassHooks, are_added_once_and_removed_once) {
    Hook hook(words);
    EXPECT_TRUE(LyrMetaClass::addFactoryHook("TestNode", &hook));
    EXPECT_FALSE(LyrMetaClass::addFactoryHook("TestNode", &hook));
    EXPECT_FALSE(LyrMetaClass::addFactoryHook(nullptr, &hook));
    EXPECT_FALSE(LyrMetaClass::addFactoryHook("TestNode", nullptr));
    EXPECT_TRUE(LyrMetaClass::removeFactoryHook("TestNode", &hook));
    EXPECT_FALSE(LyrMetaClass::removeFactoryHook("TestNode", &hook));
    EXPECT_FALSE(LyrMetaClass::removeFactoryHook(nullptr, &hook));
    LyrMetaClass::destruct(LyrMetaClass::create("TestNode"), true);
    EXPECT_EQ(words, Words{});
}

TEST_F(LyrMetaClassHooks, of_two_classes_of_one_object_are_called_once) {
    Hook hook(words);
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    LyrMetaClass::addFactoryHook("TestSpecialNode", &hook);
    LyrMetaClass::destruct(LyrMetaClass::create("TestSpecialNode"), true);
    EXPECT_EQ(words, (Words{"+TestSpecialNode", "-TestSpecialNode"}));
}

TEST_F(LyrMetaClassHooks, wait_for_a_class_that_does_not_exist_yet) {
    Hook hook(words);
    EXPECT_TRUE(LyrMetaClass::addFactoryHook("TestLate", &hook));
    const LyrMetaClass late("TestLate", sizeof(LyrClass), nullptr, new LyrClassFactory<LyrClass>, MODULE, 0, nullptr, 0,
                            0, 0, false);
    // The object itself tells the class of its C++ type.
    LyrMetaClass::destruct(LyrMetaClass::create("TestLate"), true);
    EXPECT_EQ(words, Words{"+LyrClass"});
}

TEST_F(LyrMetaClassHooks, may_hold_the_new_object_for_a_moment) {
    Hook hook(words);
    hook.onCreated = [](LyrClass* object) { const LyrObjectPtr moment(static_cast<Node*>(object)); };
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    LyrClass* made = LyrMetaClass::create("TestNode");
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(words, Words{"+TestNode"});
    EXPECT_EQ(static_cast<Node*>(made)->getRefCount(), 0);
    LyrMetaClass::destruct(made, true);
}

TEST_F(LyrMetaClassHooks, may_keep_the_new_object) {
    Hook hook(words);
    LyrObjectPtr kept;
    hook.onCreated = [&](LyrClass* object) { kept = LyrObjectPtr(static_cast<Node*>(object)); };
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    { const LyrObjectRefPtr made("TestNode", 1); }
    EXPECT_EQ(words, Words{"+TestNode"});
    ASSERT_EQ(kept->getRefCount(), 1);
    kept = LyrObjectPtr();
    EXPECT_EQ(words, (Words{"+TestNode", "-TestNode"}));
}

TEST_F(LyrMetaClassHooks, may_hold_a_dying_object_for_a_moment) {
    Hook hook(words);
    bool destroyed = false;
    hook.onDestroyed = [](LyrClass* object) { const LyrObjectPtr moment(static_cast<Node*>(object)); };
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    {
        const LyrObjectRefPtr made("TestNode", 1);
        static_cast<Node*>(made.get())->onDestroyed = [&] { destroyed = true; };
    }
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(words, (Words{"+TestNode", "-TestNode"}));
}

TEST_F(LyrMetaClassHooks, may_create_objects) {
    Hook hook(words);
    LyrObjectPtr other;
    bool isFirst = true;
    hook.onCreated = [&](LyrClass*) {
        if (std::exchange(isFirst, false)) {
            other = LyrObjectPtr(static_cast<Node*>(LyrMetaClass::create("TestSpecialNode")));
        }
    };
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    LyrMetaClass::destruct(LyrMetaClass::create("TestNode"), true);
    EXPECT_EQ(words, (Words{"+TestNode", "+TestSpecialNode", "-TestNode"}));
    other = LyrObjectPtr();
    EXPECT_EQ(words.back(), "-TestSpecialNode");
}

TEST_F(LyrMetaClassHooks, may_fail) {
    Hook first(words, "first"), second(words, "second");
    first.onCreated = [](LyrClass*) { throw std::bad_alloc(); };
    LyrMetaClass::addFactoryHook("TestNode", &first);
    LyrMetaClass::addFactoryHook("TestNode", &second);
    Errors errors;
    LyrClass* made = LyrMetaClass::create("TestNode");
    EXPECT_NE(made, nullptr);
    EXPECT_EQ(words, (Words{"first+TestNode", "second+TestNode"}));
    EXPECT_EQ(errors.codes, std::vector<int>{Lyr::AllocationFailed});
    LyrMetaClass::destruct(made, true);
}

TEST_F(LyrMetaClassHooks, are_called_once_for_an_object_whose_end_is_prepared_by_its_own_destructor) {
    Hook hook(words);
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    auto* node = static_cast<Node*>(LyrMetaClass::create("TestNode"));
    node->onDestroyed = [&] {
        LyrMetaClass::prepareDestruction(node);
        words.emplace_back("prepared");
    };
    delete node;  // as a widget is deleted by its parent
    EXPECT_EQ(words, (Words{"+TestNode", "-TestNode", "prepared"}));
    LyrMetaClass::prepareDestruction(nullptr);
}

TEST_F(LyrMetaClassTest, makes_an_owning_parent_link_by_its_name) {
    LyrClass* made = LyrMetaClass::create("LyrObjectParentLinkOP");
    auto* property = dynamic_cast<LyrObjectParentLinkOP*>(made);
    ASSERT_NE(property, nullptr);
    LyrObject owner;
    owner.incRef();
    LyrObjectPtr target(new LyrObject);
    ASSERT_TRUE(owner.addProperty(Lyr::Object, property, true));
    ASSERT_TRUE(property->setValue(LyrObjectLink(target.get(), nullptr, -1)));
    EXPECT_EQ(target->getParentLink().getOwner(), &owner);
    EXPECT_EQ(target->getRefCount(), 2);
    EXPECT_TRUE(owner.removeProperty(Lyr::Object));
    EXPECT_EQ(target->getParentLink().getOwner(), nullptr);
    EXPECT_EQ(target->getRefCount(), 1);
}
