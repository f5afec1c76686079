#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrAction.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrPropertyPtr.h>
#include <lyr_core/LyrTimestamp.h>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace core_test;

namespace {

/** An object whose property is declared before anything registers it. */
class Bare : public LyrObject {};

}  // namespace

TEST(LyrObject, starts_without_references_properties_and_parent) {
    const LyrObject object;
    EXPECT_EQ(object.getRefCount(), 0);
    EXPECT_EQ(object.getPropertyCount(), 0);
    EXPECT_EQ(object.getParentLink().getLink(), &object);
    EXPECT_EQ(object.getParentLink().getOwner(), nullptr);
    EXPECT_EQ(object.getParentLink().getLinkID(), -1);
    EXPECT_TRUE(object.getModificationTimestamp().isNull());
    EXPECT_STREQ(object.getNameTemplate(), "");
    EXPECT_EQ(object.getUnknownData(), nullptr);
    EXPECT_FALSE(object.isDying());
    EXPECT_STREQ(object.getMetaClass().getClassName(), "LyrObject");
}

TEST(LyrObject, dies_with_its_last_reference) {
    bool destroyed = false;
    auto* node = new Node;
    node->onDestroyed = [&] { destroyed = true; };
    node->incRef();
    node->incRef();
    EXPECT_EQ(node->getRefCount(), 2);
    EXPECT_FALSE(node->decRef());
    EXPECT_FALSE(destroyed);
    EXPECT_TRUE(node->decRef());
    EXPECT_TRUE(destroyed);
}

TEST(LyrObject, on_the_stack_lives_on_with_a_reference_of_its_own) {
    Node node;
    node.incRef();
    { const LyrObjectPtr handle(&node); }
    EXPECT_EQ(node.getRefCount(), 1);
}

TEST(LyrObject, is_dying_from_the_first_hook_of_its_end_on) {
    struct Hook : LyrMetaClass::FactoryHook {
        bool dying = false;
        void objectCreated(LyrClass*) override {}
        void objectDestroyed(LyrClass* object) override { dying = static_cast<Node*>(object)->isDying(); }
    } hook;
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    { const LyrObjectRefPtr node("TestNode", 1); }
    EXPECT_TRUE(hook.dying);
}

TEST(LyrObject, stamps_a_change_of_its_own_properties_and_tells_it_afterwards) {
    const Held<> node;
    EXPECT_FALSE(node->getModificationTimestamp() > LyrTimestamp());
    const auto before = LyrTimestamp::getCurrentTimestamp();
    Ear ear;
    LyrTimestamp told;
    ear.onMessage = [&](auto&) { told = node->getModificationTimestamp(); };
    const LyrObjectIOCPtr handle(&ear, node.get());
    node->weight.setValue(1.0f);
    EXPECT_GT(node->getModificationTimestamp(), before);
    EXPECT_EQ(told, node->getModificationTimestamp());
    EXPECT_GT(LyrTimestamp::getCurrentTimestamp(), node->getModificationTimestamp());
}

TEST(LyrObject, stamps_nothing_for_an_equal_write) {
    const Held<> node;
    node->weight.setValue(1.0f);
    const auto stamp = node->getModificationTimestamp();
    EXPECT_TRUE(node->weight.setValue(1.0f));
    EXPECT_EQ(node->getModificationTimestamp(), stamp);
}

TEST(LyrObject, is_not_stamped_by_a_change_of_an_object_that_it_owns) {
    const Held<> owner;
    auto* child = new Node;
    owner->owned.setValue(linkTo(child));
    const auto stamp = owner->getModificationTimestamp();
    child->weight.setValue(2.0f);
    EXPECT_EQ(owner->getModificationTimestamp(), stamp);
    EXPECT_GT(child->getModificationTimestamp(), stamp);
}

TEST(LyrObject, can_be_stamped_by_hand) {
    LyrObject object;
    const auto before = LyrTimestamp::getCurrentTimestamp();
    object.stampModification();
    EXPECT_GT(object.getModificationTimestamp(), before);
}

// Properties

TEST(LyrObject, keeps_properties_in_the_order_of_registration) {
    LyrObject object;
    Single<float> a, b, c;
    EXPECT_TRUE(object.addProperty(30, &a));
    EXPECT_TRUE(object.addProperty(10, &b));
    EXPECT_TRUE(object.addProperty(20, &c));
    EXPECT_EQ(object.getPropertyCount(), 3);
    EXPECT_EQ(object.getPropertyAt(0), &a);
    EXPECT_EQ(object.getPropertyAt(1), &b);
    EXPECT_EQ(object.getPropertyAt(2), &c);
    EXPECT_EQ(object.getPropertyAt(3), nullptr);
    EXPECT_EQ(object.getPropertyAt(-1), nullptr);
    EXPECT_EQ(object.getProperty(10), &b);
    EXPECT_EQ(object.getProperty(11), nullptr);
    EXPECT_EQ(b.getObject(), &object);
    EXPECT_EQ(b.getPropertyID(), 10);
}

TEST(LyrObject, refuses_a_second_property_under_an_identifier_and_a_second_owner) {
    LyrObject object, other;
    Single<float> a, b;
    ASSERT_TRUE(object.addProperty(1, &a));
    Errors errors;
    EXPECT_FALSE(object.addProperty(1, &b));
    EXPECT_FALSE(object.addProperty(2, &a));
    EXPECT_FALSE(other.addProperty(1, &a));
    EXPECT_FALSE(object.addProperty(3, nullptr));
    EXPECT_FALSE(object.addProperty(-1, &b));
    EXPECT_EQ(errors.codes, (std::vector<int>{Lyr::AlreadyRegistered, Lyr::AlreadyRegistered, Lyr::AlreadyRegistered,
                                              Lyr::AlreadyRegistered, Lyr::InvalidParameters}));
    EXPECT_EQ(errors.sources[2], &other);
    EXPECT_EQ(object.getPropertyCount(), 1);
    EXPECT_EQ(b.getObject(), nullptr);
}

TEST(LyrObject, lets_a_property_go_and_take_another_place) {
    LyrObject object, other;
    Single<float> a;
    object.addProperty(1, &a);
    EXPECT_TRUE(object.removeProperty(1));
    EXPECT_FALSE(object.removeProperty(1));
    EXPECT_EQ(object.getProperty(1), nullptr);
    EXPECT_EQ(a.getObject(), nullptr);
    EXPECT_TRUE(other.addProperty(2, &a));
    EXPECT_EQ(a.getObject(), &other);
}

TEST(LyrObject, loses_a_property_that_is_destroyed) {
    LyrObject object;
    {
        Single<float> a;
        object.addProperty(1, &a);
    }
    EXPECT_EQ(object.getPropertyCount(), 0);
    EXPECT_EQ(object.getProperty(1), nullptr);
}

TEST(LyrObject, leaves_the_properties_of_others_behind_when_it_dies) {
    Single<float> a;
    {
        LyrObject object;
        object.addProperty(1, &a);
    }
    EXPECT_EQ(a.getObject(), nullptr);
    EXPECT_TRUE(a.setValue(3.0f));
}

TEST(LyrObject, deletes_the_properties_that_it_owns) {
    struct Counted : Single<float> {
        explicit Counted(int& ends) : mEnds(ends) {}
        ~Counted() override { ++mEnds; }
        int& mEnds;
    };
    int ends = 0;
    {
        LyrObject object;
        object.addProperty(1, new Counted(ends), true);
        object.addProperty(2, new Counted(ends), true);
        object.addProperty(3, new Counted(ends), true);
        EXPECT_TRUE(object.removeProperty(2));
        EXPECT_EQ(ends, 1);
        delete object.getProperty(3);
        EXPECT_EQ(ends, 2);
        EXPECT_EQ(object.getPropertyCount(), 1);
    }
    EXPECT_EQ(ends, 3);
}

TEST(LyrObject, takes_a_property_that_was_created_by_class_name) {
    const Held<Bare> owner;
    auto* link = dynamic_cast<LyrObjectParentLinkOP*>(LyrMetaClass::create("LyrObjectParentLinkOP"));
    ASSERT_NE(link, nullptr);
    ASSERT_TRUE(owner->addProperty(PARENTED, link, true));
    link->setResetMode(Lyr::Object);
    auto* child = new Node;
    EXPECT_TRUE(lyrSetValue(owner.get(), PARENTED, linkTo(child)));
    EXPECT_EQ(child->getParentLink().getOwner(), owner.get());
    bool destroyed = false;
    child->onDestroyed = [&] { destroyed = true; };
    EXPECT_TRUE(owner->removeProperty(PARENTED));
    EXPECT_TRUE(destroyed);
}

// Names

TEST(LyrObject, has_a_naming_template_as_a_property_once_it_is_set) {
    const Held<Bare> object;
    EXPECT_EQ(object->getProperty(Lyr::NameTemplate), nullptr);
    EXPECT_TRUE(object->setNameTemplate("Section1"));
    EXPECT_STREQ(object->getNameTemplate(), "Section1");
    EXPECT_EQ(object->getPropertyCount(), 1);
    EXPECT_STREQ(lyrGetValue<const char*>(object.get(), Lyr::NameTemplate, ""), "Section1");
    EXPECT_EQ(object->getProperty(Lyr::NameTemplate)->getFlags(), 0u);
    EXPECT_TRUE(object->setNameTemplate("Section2"));
    EXPECT_STREQ(object->getNameTemplate(), "Section2");
    EXPECT_EQ(object->getPropertyCount(), 1);
}

TEST(LyrObject, can_be_named_again_after_its_name_was_taken_out) {
    const Held<Bare> object;
    object->setNameTemplate("one");
    EXPECT_TRUE(object->removeProperty(Lyr::NameTemplate));
    EXPECT_TRUE(object->setNameTemplate("two"));
    EXPECT_STREQ(lyrGetValue<const char*>(object.get(), Lyr::NameTemplate, ""), "two");
}

TEST(LyrObject, tells_of_a_new_name_like_of_any_value) {
    const Held<Bare> object;
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, object.get());
    object->setNameTemplate("one");
    object->setNameTemplate("one");
    EXPECT_EQ(ear.properties(), std::vector<int>{Lyr::NameTemplate});
}

// Copies

TEST(LyrObject, copies_values_flags_scope_and_name_into_a_copy) {
    const Held<> source;
    source->weight.setValue(2.5f);
    source->title.setValue("wall");
    setList(source->numbers, {1.0f, 2.0f});
    source->onOff.setValue(1);
    source->setFlags(0x4, 0);
    source->setScope(5);
    source->setNameTemplate("Node1");
    const Held<> copied(new Node(*source));
    EXPECT_EQ(copied->weight.stored(), 2.5f);
    EXPECT_EQ(copied->title.stored(), "wall");
    EXPECT_EQ(itemsOf(copied->numbers), (std::vector{1.0f, 2.0f}));
    EXPECT_EQ(copied->onOff.stored(), 1);
    EXPECT_EQ(copied->getFlags(), 0x30000004u);
    EXPECT_EQ(copied->getScope(), 5);
    EXPECT_STREQ(copied->getNameTemplate(), "Node1");
    EXPECT_EQ(copied->getRefCount(), 0 + 1);
    EXPECT_FALSE(copied->getParentLink().getOwner());
}

TEST(LyrObject, owns_copies_of_owned_objects_in_a_copy_and_the_same_objects_where_it_only_refers) {
    const Held<> source, neighbour;
    auto* owned = new Node;
    auto* child = new SpecialNode;
    owned->weight.setValue(1.0f);
    child->weight.setValue(2.0f);
    child->setScope(8);
    child->setNameTemplate("child");
    source->owned.setValue(linkTo(owned));
    setList(source->children, {child, nullptr});
    source->softFriend.setValue(linkTo(neighbour.get()));
    setList(source->friends, {neighbour.get(), child});

    const Held<> copied(new Node(*source));
    auto* ownedCopy = dynamic_cast<Node*>(copied->owned.getTarget());
    ASSERT_NE(ownedCopy, nullptr);
    EXPECT_NE(ownedCopy, owned);
    EXPECT_EQ(ownedCopy->weight.stored(), 1.0f);
    ASSERT_EQ(copied->children.getArraySize(), 2);
    auto* childCopy = dynamic_cast<SpecialNode*>(copied->children.view()[0].getLink());
    ASSERT_NE(childCopy, nullptr);
    EXPECT_NE(childCopy, child);
    EXPECT_EQ(childCopy->weight.stored(), 2.0f);
    EXPECT_EQ(childCopy->getScope(), 8);
    EXPECT_STREQ(childCopy->getNameTemplate(), "child");
    EXPECT_EQ(childCopy->getParentLink().getOwner(), copied.get());
    EXPECT_EQ(child->getParentLink().getOwner(), source.get());
    EXPECT_TRUE(copied->children.view()[1].isNull());
    EXPECT_EQ(copied->softFriend.getTarget(), neighbour.get());
    EXPECT_EQ(targetsOf(copied->friends), (std::vector<LyrObject*>{neighbour.get(), child}));
}

TEST(LyrObject, takes_over_values_by_assignment_and_keeps_what_the_other_lacks) {
    const Held<> target;
    const Held<Bare> source;
    Single<float> weight;
    source->addProperty(WEIGHT, &weight);
    weight.setValue(9.0f);
    target->title.setValue("kept");
    target->setNameTemplate("kept too");
    EXPECT_TRUE(target->copyFrom(*source));
    EXPECT_EQ(target->weight.stored(), 9.0f);
    EXPECT_EQ(target->title.stored(), "kept");
    EXPECT_STREQ(target->getNameTemplate(), "kept too");
    source->removeProperty(WEIGHT);
}

TEST(LyrObject, assigns_through_the_base_class) {
    const Held<> source, target;
    source->weight.setValue(4.0f);
    static_cast<LyrObject&>(*target) = *source;
    EXPECT_EQ(target->weight.stored(), 4.0f);
}

TEST(LyrObject, is_left_alone_by_an_assignment_to_itself) {
    const Held<> node;
    auto* child = new Node;
    setList(node->children, {child});
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, node.get());
    EXPECT_TRUE(node->copyFrom(*node));
    EXPECT_EQ(targetsOf(node->children), std::vector<LyrObject*>{child});
    EXPECT_TRUE(ear.heard.empty());
}

TEST(LyrObject, neither_copies_computed_nor_read_only_properties) {
    const Held<> source, target;
    source->weight.setValue(1.0f);
    source->title.setValue("new");
    setList(source->numbers, {1.0f});
    source->weight.setComputed(true);
    target->title.setReadOnly(true);
    target->numbers.setComputed(true);
    EXPECT_TRUE(target->copyFrom(*source));
    EXPECT_EQ(target->weight.stored(), 0.0f);
    EXPECT_TRUE(target->title.stored().isNull());
    EXPECT_EQ(target->numbers.getArraySize(), 0);
}

TEST(LyrObject, says_that_a_value_could_not_be_copied_and_copies_the_others) {
    const Held<> source, target;
    const Held<Bare> odd;
    List<float> notSingle;
    Single<const char*> title;
    odd->addProperty(WEIGHT, &notSingle);
    odd->addProperty(TITLE, &title);
    title.setValue("taken");
    EXPECT_FALSE(target->copyFrom(*odd));
    EXPECT_EQ(target->title.stored(), "taken");
    odd->removeProperty(WEIGHT);
    odd->removeProperty(TITLE);
}

TEST(LyrObject, copies_no_further_than_a_ring_of_owners_can_be_followed) {
    const Held<> first, second;
    first->owned.setValue(linkTo(second.get()));
    second->owned.setValue(linkTo(first.get()));
    const auto before = LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("TestNode"));
    {
        Errors errors;
        EXPECT_EQ(Node::metaClass().clone(first.get()), nullptr);
        EXPECT_FALSE(errors.codes.empty());
        EXPECT_EQ(errors.codes.front(), int(Lyr::Failed));
    }
    EXPECT_EQ(LyrClassManager::getObjectCount(LyrClassManager::SearchPattern("TestNode")), before);
    first->owned.resetData();
}

// Defaults

TEST(LyrObject, applies_the_default_of_every_stored_property) {
    class Settings : public Node {
    public:
        Settings() {
            addProperty(8002, &thickness);
            setNameTemplate("Settings1");
        }
        struct Thickness : Single<long long> {
            Thickness() { setResetValue(12); }
        } thickness;
    };
    const Held<Settings> object;
    const auto disturb = [&] {
        object->weight.setValue(1.0f);
        object->thickness.setValue(5);
        setList(object->children, {new Node});
        setList(object->numbers, {1.0f});
    };
    const auto expectDefaults = [&] {
        EXPECT_EQ(object->weight.stored(), 0.0f);
        EXPECT_EQ(object->thickness.stored(), 12);
        EXPECT_EQ(object->children.getArraySize(), 0);
        EXPECT_EQ(object->numbers.getArraySize(), 0);
        EXPECT_STREQ(object->getNameTemplate(), "Settings1");
    };
    disturb();
    EXPECT_TRUE(object->resetToDefaults());
    expectDefaults();
    disturb();
    EXPECT_TRUE(object->runAction(Lyr::ResetToDefaults));
    expectDefaults();
    disturb();
    object->weight.setComputed(true);
    object->thickness.setReadOnly(true);
    EXPECT_TRUE(object->resetToDefaults());
    EXPECT_EQ(object->weight.stored(), 1.0f);
    EXPECT_EQ(object->thickness.stored(), 5);
}

TEST(LyrObject, says_that_a_default_could_not_be_applied_and_applies_the_others) {
    const Held<> object;
    setList(object->numbers, {1.0f});
    object->onOff.setValue(1);
    const float* items = object->numbers.lockArrayPtr();
    Errors errors;
    EXPECT_FALSE(object->resetToDefaults());
    EXPECT_EQ(object->onOff.stored(), 0);
    object->numbers.unlockArrayPtr(items);
}

// Parents

TEST(LyrObject, has_the_owner_of_a_parent_link_as_parent) {
    const Held<> owner;
    auto* child = new Node;
    auto* other = new Node;
    setList(owner->children, {child});
    owner->owned.setValue(linkTo(other));
    const LyrObjectLink link = child->getParentLink();
    EXPECT_EQ(link.getLink(), child);
    EXPECT_EQ(link.getOwner(), owner.get());
    EXPECT_EQ(link.getLinkID(), CHILDREN);
    EXPECT_EQ(other->getParentLink().getOwner(), nullptr);
}

TEST(LyrObject, loses_its_parent_with_the_link_and_with_the_owner) {
    const Held<> child;
    {
        const Held<> owner;
        setList(owner->children, {child.get()});
        EXPECT_EQ(child->getParentLink().getOwner(), owner.get());
        owner->children.initArray(0, -1, nullptr);
        EXPECT_EQ(child->getParentLink().getOwner(), nullptr);
        owner->parented.setValue(linkTo(child.get()));
        EXPECT_EQ(child->getParentLink().getLinkID(), PARENTED);
    }
    EXPECT_EQ(child->getParentLink().getOwner(), nullptr);
    EXPECT_EQ(child->getParentLink().getLinkID(), -1);
}

TEST(LyrObject, keeps_its_new_parent_when_the_old_one_lets_it_go) {
    const Held<> first, second;
    auto* child = new Node;
    setList(first->children, {child});
    setList(second->children, {child});
    EXPECT_EQ(child->getParentLink().getOwner(), second.get());
    setList(first->children, {});
    EXPECT_EQ(child->getParentLink().getOwner(), second.get());
}

TEST(LyrObject, falls_back_to_the_parent_that_still_lists_it) {
    const Held<> first, second;
    auto* child = new Node;
    setList(first->children, {child});
    setList(second->children, {child});
    setList(second->children, {});
    EXPECT_EQ(child->getParentLink().getOwner(), first.get());
    EXPECT_EQ(child->getParentLink().getLinkID(), CHILDREN);
}

TEST(LyrObject, keeps_its_parent_while_one_of_two_places_in_a_list_is_left) {
    const Held<> owner;
    auto* child = new Node;
    setList(owner->children, {child, child});
    owner->children.removeArrayItems(0, 0);
    EXPECT_EQ(child->getParentLink().getOwner(), owner.get());
    EXPECT_EQ(child->getRefCount(), 1);
}

TEST(LyrObject, gets_its_parent_when_the_property_that_lists_it_gets_its_owner) {
    LyrObjectParentLinkListOP list;
    const Held<> child;
    setList(list, {child.get()});
    EXPECT_EQ(child->getParentLink().getOwner(), nullptr);
    const Held<Bare> owner;
    owner->addProperty(17, &list);
    EXPECT_EQ(child->getParentLink().getOwner(), owner.get());
    EXPECT_EQ(child->getParentLink().getLinkID(), 17);
    owner->removeProperty(17);
    EXPECT_EQ(child->getParentLink().getOwner(), nullptr);
}

TEST(LyrObject, keeps_what_a_file_held_beyond_its_properties) {
    LyrObject object;
    object.setUnknownData(nullptr);
    EXPECT_EQ(object.getUnknownData(), nullptr);
}
