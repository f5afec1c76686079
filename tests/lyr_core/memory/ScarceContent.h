#pragma once

#include "lyr_core/TestObjects.h"
#include "scarce/EachAllocation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

/** A node whose values are known, and writes to it with each of their allocations failing in turn. */
namespace scarce_test {

using namespace core_test;
using Failing = ScarceMemory::Failing;

inline constexpr const char* LONG_TEXT = "a text that is too long to be kept inside a string itself";
inline constexpr const char* OTHER_TEXT = "another text that needs memory of its own";
inline constexpr const char* LONG_NAME = "core_test.a_name_that_is_too_long_to_be_kept_inside_a_string_itself";

/** The objects of Content by number; whatever a write makes anew counts on from there in the order of Values. */
enum Number { NONE = -1, NODE, OTHER, OWNED_ONE, FIRST_CHILD, SECOND_CHILD, NEW };

/** What the properties of a node hold. */
struct Values {
    float weight = 1.0f;
    std::string title = LONG_TEXT;
    std::vector<float> numbers = {1.0f, 2.0f, 3.0f};
    int owned = OWNED_ONE;
    std::vector<int> children = {FIRST_CHILD, SECOND_CHILD};
    std::vector<int> friends = {OWNED_ONE};
    std::string nameTemplate;
    long long propertyCount = 10;

    friend bool operator==(const Values&, const Values&) = default;
    friend std::ostream& operator<<(std::ostream& out, const Values& values) {
        return out << values.weight << " \"" << values.title << "\" " << testing::PrintToString(values.numbers)
                   << " owns " << values.owned << ", children " << testing::PrintToString(values.children)
                   << ", friends " << testing::PrintToString(values.friends) << ", named \"" << values.nameTemplate
                   << "\", " << values.propertyCount << " properties";
    }
};

/** A node with something in every property. */
struct Content {
    Content() {
        node->weight.setValue(1.0f);
        node->title.setValue(LONG_TEXT);
        setList(node->numbers, {1.0f, 2.0f, 3.0f});
        node->owned.setValue(linkTo(new Node));
        setList(node->children, {new Node, new SpecialNode});
        setList(node->friends, {node->owned.getTarget()});
        const std::vector<LyrObject*> children = targetsOf(node->children);
        known = {node.get(), other.get(), node->owned.getTarget(), children[0], children[1]};
    }
    Values values() const {
        std::vector<const LyrObject*> objects = known;
        const auto numberOf = [&](const LyrObject* object) {
            const auto found = std::find(objects.begin(), objects.end(), object);
            const auto number = static_cast<int>(found - objects.begin());
            if (object && found == objects.end()) {
                objects.push_back(object);
            }
            return object ? number : int(NONE);
        };
        const auto numbersOf = [&](const LyrLinkListOP& list) {
            std::vector<int> numbers;
            for (const LyrObject* target : targetsOf(list)) {
                numbers.push_back(numberOf(target));
            }
            return numbers;
        };
        const LyrString& title = node->title.stored();
        return {node->weight.stored(),     title.isNull() ? "" : title.utf8(),
                itemsOf(node->numbers),    numberOf(node->owned.getTarget()),
                numbersOf(node->children), numbersOf(node->friends),
                node->getNameTemplate(),   node->getPropertyCount()};
    }
    bool isUnchanged() const { return values() == Values(); }

    Held<> node;
    Held<> other;
    std::vector<const LyrObject*> known;
};

/** Content, and an action that the step is expected of. */
struct InAction : Content {
    ~InAction() { action.end(); }
    Steps steps;
    Action action;
};

inline const auto ALWAYS = [](const auto&, bool) { return true; };

/** Runs `work` on a fresh fixture for every allocation that may fail, once and for good. `isRight` judges each fixture
 * and is told whether the work was done. Returns how many allocations failed once each. */
template <class Fixture, class Work, class Judge>
int withScarceMemory(Work work, Judge isRight) {
    return scarce::withEachAllocationFailing<Fixture>(work, [&](Fixture& fixture, bool done) {
        EXPECT_TRUE(isRight(fixture, done)) << (done ? "done, but not as it should be" : "left something behind");
    });
}

/** For a write to the node of Content that changes its values as `change(values, isRecorded)` does: outside of an
 * action, where at least `least` allocations may fail, and inside one, whose step has to bring back what was there. */
template <class Work, class Change>
void expectWholeWrite(int least, Work work, Change change) {
    Values after;
    change(after, false);
    const int outside = scarce::withEachAllocationFailing<Content>(
        work, [&](Content& content, bool done) { EXPECT_EQ(content.values(), done ? after : Values()); });
    EXPECT_GE(outside, least);
    Values recorded;
    change(recorded, true);
    const int inside = scarce::withEachAllocationFailing<InAction>(work, [&](InAction& content, bool done) {
        EXPECT_EQ(content.values(), done ? recorded : Values());
        content.action.end();
        ASSERT_EQ(content.steps.size(), done ? 1u : 0u);
        if (done) {
            EXPECT_TRUE(content.steps[0].undo());
            EXPECT_EQ(content.values(), Values());
        }
    });
    EXPECT_GT(inside, outside) << "what a step holds takes memory";
}

}  // namespace scarce_test
