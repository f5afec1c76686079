#include "ScarceContent.h"

#include <lyr_core/LyrWholeWrite.h>

#include <memory>

// Writes of properties with each of their allocations failing in turn: what is done is done and recorded whole, and
// everything else is as before.

using namespace scarce_test;

TEST(ScarceMemory, leaves_single_values_as_they_were) {
    expectWholeWrite(
        0, [](Content& content) { return content.node->weight.setValue(5.0f); },
        [](Values& values, bool) { values.weight = 5.0f; });
    expectWholeWrite(
        1, [](Content& content) { return content.node->title.setValue(OTHER_TEXT); },
        [](Values& values, bool) { values.title = OTHER_TEXT; });
    expectWholeWrite(
        0, [](Content& content) { return content.node->title.resetData(); },
        [](Values& values, bool) { values.title.clear(); });
    // The object that is owned no longer dies, unless the step holds it.
    expectWholeWrite(
        0, [](Content& content) { return content.node->owned.setValue(linkTo(content.other.get())); },
        [](Values& values, bool isRecorded) {
            values.owned = OTHER;
            values.friends = {isRecorded ? OWNED_ONE : NONE};
        });
    const Content source;
    expectWholeWrite(
        5, [&](Content& content) { return content.node->owned.copyValueFrom(source.node->owned); },
        [](Values& values, bool isRecorded) {
            values.owned = NEW;
            values.friends = {isRecorded ? OWNED_ONE : NONE};
        });
}

TEST(ScarceMemory, leaves_lists_as_they_were) {
    const float items[] = {7.0f, 8.0f, 9.0f, 10.0f, 11.0f};
    expectWholeWrite(
        1, [&](Content& content) { return content.node->numbers.initArray(0, 4, items); },
        [](Values& values, bool) {
            values.numbers = {7.0f, 8.0f, 9.0f, 10.0f, 11.0f};
        });
    expectWholeWrite(
        0, [&](Content& content) { return content.node->numbers.setArrayItems(0, 1, items); },
        [](Values& values, bool) {
            values.numbers = {7.0f, 8.0f, 3.0f};
        });
    expectWholeWrite(
        1, [&](Content& content) { return content.node->numbers.insertArrayItems(1, 5, items); },
        [](Values& values, bool) { values.numbers = {1.0f, 7.0f, 8.0f, 9.0f, 10.0f, 11.0f, 2.0f, 3.0f}; });
    expectWholeWrite(
        0, [&](Content& content) { return content.node->numbers.removeArrayItems(0, 1); },
        [](Values& values, bool) { values.numbers = {3.0f}; });
}

TEST(ScarceMemory, leaves_lists_of_links_as_they_were) {
    expectWholeWrite(
        0, [](Content& content) { return setList(content.node->children, {}); },
        [](Values& values, bool) { values.children.clear(); });
    expectWholeWrite(
        1,
        [](Content& content) {
            const LyrObjectLink links[] = {linkTo(content.other.get()), linkTo(nullptr), linkTo(content.other.get())};
            return content.node->children.initArray(0, 2, links);
        },
        [](Values& values, bool) {
            values.children = {OTHER, NONE, OTHER};
        });
    expectWholeWrite(
        1,
        [](Content& content) {
            const LyrObjectLink link = linkTo(content.other.get());
            return content.node->children.setArrayItems(0, 0, &link);
        },
        [](Values& values, bool) {
            values.children = {OTHER, SECOND_CHILD};
        });
    expectWholeWrite(
        1,
        [](Content& content) {
            const LyrObjectLink link = linkTo(content.other.get());
            return content.node->friends.insertArrayItems(0, 0, &link);
        },
        [](Values& values, bool) {
            values.friends = {OTHER, OWNED_ONE};
        });
    expectWholeWrite(
        0, [](Content& content) { return content.node->children.removeArrayItems(1, 1); },
        [](Values& values, bool) { values.children = {FIRST_CHILD}; });
    expectWholeWrite(
        0,
        [](Content& content) {
            return content.node->children.copyValueFrom(content.other->children);  // an empty list
        },
        [](Values& values, bool) { values.children.clear(); });
}

TEST(ScarceMemory, keeps_a_list_when_its_objects_cannot_all_be_copied) {
    struct TwoContents : Content {
        Content source;
    };
    const int failures = scarce::withEachAllocationFailing<TwoContents>(
        [](TwoContents& content) { return content.node->children.copyValueFrom(content.source.node->children); },
        [](TwoContents& content, bool done) {
            Values expected;
            if (done) {
                expected.children = {NEW, NEW + 1};
            }
            EXPECT_EQ(content.values(), expected);
            EXPECT_TRUE(content.source.isUnchanged());
        });
    EXPECT_GT(failures, 20);
}

TEST(ScarceMemory, writes_several_properties_or_none_of_them) {
    expectWholeWrite(
        3,
        [](Content& content) {
            LyrWholeWrite whole;
            const LyrObjectLink link = linkTo(content.other.get());
            const bool done = whole.add(&content.node->title) && whole.add(&content.node->children) &&
                              whole.add(&content.node->numbers) && content.node->title.setValue(OTHER_TEXT) &&
                              content.node->children.initArray(0, 0, &link) && setList(content.node->numbers, {9.0f});
            if (done) {
                whole.keep();
            }
            return done;
        },
        [](Values& values, bool) {
            values.title = OTHER_TEXT;
            values.children = {OTHER};
            values.numbers = {9.0f};
        });
}

TEST(ScarceMemory, gives_no_state_and_no_clone_of_a_property) {
    const auto isUnchanged = [](Content& content, bool) { return content.isUnchanged(); };
    EXPECT_GT(withScarceMemory<Content>(
                  [](Content& content) {
                      const bool complete = content.node->title.takeState() && content.node->numbers.takeState() &&
                                            content.node->children.takeState() && content.node->owned.takeState();
                      return complete || content.node->title.emitError(Lyr::AllocationFailed);
                  },
                  isUnchanged),
              5);
    EXPECT_GT(withScarceMemory<Content>(
                  [](Content& content) {
                      const std::unique_ptr<LyrProperty> numbers(content.node->numbers.clone(1));
                      const std::unique_ptr<LyrProperty> children(numbers ? content.node->children.clone(2) : nullptr);
                      return numbers && children;
                  },
                  isUnchanged),
              5);
}

TEST(ScarceMemory, adds_no_snapshot) {
    const int failures = withScarceMemory<InAction>(
        [](InAction& content) { return LyrUndoJournal::instance().addSnapshot(content.node->title); },
        [](InAction& content, bool done) {
            content.action.end();
            return content.steps.size() == (done ? 1u : 0u);
        });
    EXPECT_GT(failures, 0);
}
