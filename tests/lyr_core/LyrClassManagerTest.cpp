#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrRoleManager.h>

#include <gtest/gtest.h>

#include <vector>

using namespace core_test;
using Pattern = LyrClassManager::SearchPattern;

namespace {

class Widget : public LyrClass {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("TestWidget", sizeof(Widget), &LyrClass::metaClass(),
                                       new LyrClassFactory<Widget>, MODULE, 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

std::vector<LyrClass*> find(const Pattern& pattern, std::size_t capacity = 100) {
    std::vector<LyrClass*> found(capacity);
    found.resize(static_cast<std::size_t>(
        LyrClassManager::findObjects(found.data(), static_cast<long long>(capacity), pattern)));
    return found;
}

}  // namespace

TEST(LyrClassManager, finds_the_objects_of_a_class_and_of_derived_classes_oldest_first) {
    const Held<> first;
    const Held<SpecialNode> second;
    const Node third;
    EXPECT_EQ(find(Pattern("TestNode")),
              (std::vector<LyrClass*>{first.get(), second.get(), const_cast<Node*>(&third)}));
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern("TestNode")), 3);
    EXPECT_EQ(find(Pattern("TestSpecialNode")), std::vector<LyrClass*>{second.get()});
}

TEST(LyrClassManager, leaves_out_derived_classes_when_asked_for_the_exact_one) {
    const Held<> first;
    const Held<SpecialNode> second;
    EXPECT_EQ(find(Pattern("TestNode", true)), std::vector<LyrClass*>{first.get()});
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern("TestNode", true)), 1);
}

TEST(LyrClassManager, finds_all_objects_of_a_module) {
    const Held<> first;
    const Held<SpecialNode> second;
    const LyrObject host;
    EXPECT_EQ(find(Pattern::ofModule(MODULE)), (std::vector<LyrClass*>{first.get(), second.get()}));
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern::ofModule("core_test_nobody")), 0);
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern::ofModule(nullptr)), 0);
}

TEST(LyrClassManager, finds_nothing_silently_for_an_unknown_class) {
    const Held<> node;
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern("TestNobody")), 0);
    EXPECT_TRUE(find(Pattern("TestNobody")).empty());
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern(nullptr)), 0);
}

TEST(LyrClassManager, fills_no_more_than_there_is_room_for) {
    const Held<> first, second, third;
    EXPECT_EQ(find(Pattern("TestNode"), 2), (std::vector<LyrClass*>{first.get(), second.get()}));
    LyrClass* untouched = first.get();
    EXPECT_EQ(LyrClassManager::findObjects(&untouched, 0, Pattern("TestNode")), 0);
    EXPECT_EQ(LyrClassManager::findObjects(&untouched, -1, Pattern("TestNode")), 0);
    EXPECT_EQ(LyrClassManager::findObjects(nullptr, 5, Pattern("TestNode")), 0);
    EXPECT_EQ(untouched, first.get());
}

TEST(LyrClassManager, forgets_objects_that_die) {
    Held<> node;
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern("TestNode")), 1);
    node.drop();
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern("TestNode")), 0);
}

TEST(LyrClassManager, does_not_find_an_object_whose_end_has_begun) {
    struct Hook : LyrMetaClass::FactoryHook {
        long long found = -1;
        void objectCreated(LyrClass*) override {}
        void objectDestroyed(LyrClass*) override { found = LyrClassManager::getObjectCount(Pattern("TestNode")); }
    } hook;
    LyrMetaClass::addFactoryHook("TestNode", &hook);
    { const LyrObjectRefPtr node("TestNode", 1); }
    EXPECT_EQ(hook.found, 0);
}

TEST(LyrClassManager, finds_what_a_meta_class_made_of_a_class_that_is_no_LyrObject) {
    LyrClass* made = Widget::metaClass().create();
    EXPECT_EQ(find(Pattern("TestWidget")), std::vector<LyrClass*>{made});
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern("LyrObject")), 0);
    LyrMetaClass::destruct(made, true);
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern("TestWidget")), 0);

    LyrClass* deleted = Widget::metaClass().create();
    delete deleted;
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern("TestWidget")), 0);
}

TEST(LyrClassManager, does_not_list_members_of_objects) {
    const Held<> node;
    EXPECT_EQ(LyrClassManager::getObjectCount(Pattern("LyrProperty")), 0);
}
