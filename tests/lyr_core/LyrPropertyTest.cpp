#include "lyr_core/TestObjects.h"

#include <lyr_core/LyrObjectIOCPtr.h>
#include <lyr_core/LyrProperty.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

using namespace core_test;

namespace {

using Words = std::vector<std::string>;

/** Notes its hooks. */
class Noting : public LyrProperty::Extension {
public:
    explicit Noting(Words& words, std::string name = "") : mWords(words), mName(std::move(name)) {}
    ~Noting() override { mWords.push_back(mName + "end"); }
    void propertyExtensionAddHook(LyrProperty* property) override {
        added = property;
        mWords.push_back(mName + "add");
    }
    void propertyExtensionRemoveHook(LyrProperty* property) override {
        removed = property;
        mWords.push_back(mName + "remove");
    }
    void propertyHasChangedHook() override {
        mWords.push_back(mName + "changed");
        if (onChange) {
            onChange();
        }
    }
    void propertyFlagsWillChange(unsigned int set, unsigned int clear) override {
        mWords.push_back(mName + "will " + std::to_string(set) + " " + std::to_string(clear));
        if (onChange) {
            onChange();
        }
    }
    void propertyFlagsHaveChanged(unsigned int before) override {
        mWords.push_back(mName + "have " + std::to_string(before));
    }

    LyrProperty* added = nullptr;
    LyrProperty* removed = nullptr;
    std::function<void()> onChange;

private:
    Words& mWords;
    std::string mName;
};

/** Doubles what is read and halves what is written. */
class Doubling : public LyrSingleValuePropertyExtensionIF<float> {
public:
    bool readData(float& value) override {
        const bool done = readBehind(value);
        value *= 2.0f;
        return done;
    }
    bool writeData(const float& value) override { return writeBehind(value / 2.0f); }
};

/** Adds one to what is read. */
class Adding : public LyrSingleValuePropertyExtensionIF<float> {
public:
    bool readData(float& value) override {
        const bool done = readBehind(value);
        value += 1.0f;
        return done;
    }
};

class LyrPropertyExtension : public testing::Test {
protected:
    Words words;
    Held<> node;
};

}  // namespace

TEST(LyrProperty, is_stored_unless_it_is_computed_or_read_only) {
    Single<float> property;
    EXPECT_TRUE(property.isStored());
    EXPECT_FALSE(property.isComputed());
    EXPECT_FALSE(property.isReadOnly());
    property.setComputed(true);
    EXPECT_FALSE(property.isStored());
    property.setComputed(false);
    property.setReadOnly(true);
    EXPECT_FALSE(property.isStored());
}

TEST(LyrProperty, refuses_writes_while_it_is_read_only) {
    const Held<> node;
    node->weight.setValue(1.0f);
    node->weight.setReadOnly(true);
    EXPECT_FALSE(node->weight.setValue(2.0f));
    EXPECT_FALSE(node->weight.resetData());
    EXPECT_EQ(node->weight.stored(), 1.0f);
    node->weight.setReadOnly(false);
    EXPECT_TRUE(node->weight.setValue(2.0f));
}

TEST(LyrProperty, tells_nobody_before_it_has_an_owner) {
    Single<float> property;
    EXPECT_TRUE(property.setValue(3.0f));
    EXPECT_EQ(property.stored(), 3.0f);
    EXPECT_EQ(property.getObject(), nullptr);
    EXPECT_EQ(property.getPropertyID(), -1);
    EXPECT_FALSE(property.isRecorded());
}

TEST(LyrProperty, is_recorded_inside_an_action_with_exactly_the_data_flags_of_its_owner) {
    const Steps steps;
    const Held<> node;
    EXPECT_FALSE(node->weight.isRecorded());
    Action action;
    EXPECT_TRUE(node->weight.isRecorded());
    node->weight.setFlags(0, LyrFlags::DOCUMENT);
    EXPECT_FALSE(node->weight.isRecorded());
    node->setFlags(0, LyrFlags::DOCUMENT);
    EXPECT_TRUE(node->weight.isRecorded());
    node->weight.setFlags(0x1, 0);  // other flags do not matter
    EXPECT_TRUE(node->weight.isRecorded());
    node->weight.setFlags(LyrFlags::DOCUMENT, 0);
    EXPECT_FALSE(node->weight.isRecorded());
    node->weight.setFlags(0, LyrFlags::DATA);
    node->setFlags(0, LyrFlags::DATA);
    EXPECT_FALSE(node->weight.isRecorded());
    action.end();
}

TEST(LyrProperty, is_not_recorded_for_an_owner_that_nobody_holds) {
    const Steps steps;
    Action action;
    Node onTheStack;
    EXPECT_FALSE(onTheStack.weight.isRecorded());
    onTheStack.incRef();
    EXPECT_TRUE(onTheStack.weight.isRecorded());
    action.end();
}

TEST(LyrProperty, has_a_meta_class_that_cannot_be_created) {
    EXPECT_STREQ(Single<float>().getMetaClass().getClassName(), "LyrProperty");
    EXPECT_TRUE(LyrProperty::metaClass().isOfType("LyrClass"));
    Errors errors;
    EXPECT_EQ(LyrMetaClass::create("LyrProperty"), nullptr);
}

TEST_F(LyrPropertyExtension, is_told_when_it_is_added_and_removed) {
    Noting extension(words);
    EXPECT_EQ(extension.getProperty(), nullptr);
    EXPECT_TRUE(node->weight.addPropertyExtension(&extension));
    EXPECT_EQ(extension.getProperty(), &node->weight);
    EXPECT_EQ(extension.added, &node->weight);
    EXPECT_FALSE(node->weight.addPropertyExtension(&extension));
    EXPECT_FALSE(node->title.addPropertyExtension(&extension));
    EXPECT_FALSE(node->weight.addPropertyExtension(nullptr));
    EXPECT_TRUE(node->weight.removePropertyExtension(&extension));
    EXPECT_EQ(extension.removed, &node->weight);
    EXPECT_EQ(extension.getProperty(), nullptr);
    EXPECT_FALSE(node->weight.removePropertyExtension(&extension));
    EXPECT_FALSE(node->weight.removePropertyExtension(nullptr));
    EXPECT_EQ(words, (Words{"add", "remove"}));
}

TEST_F(LyrPropertyExtension, hears_of_changes_but_not_of_equal_writes) {
    Noting extension(words);
    node->weight.addPropertyExtension(&extension);
    words.clear();
    node->weight.setValue(1.0f);
    node->weight.setValue(1.0f);
    node->title.setValue("other");
    EXPECT_EQ(words, Words{"changed"});
}

TEST_F(LyrPropertyExtension, hears_before_the_listeners_of_the_owner) {
    Noting extension(words);
    Ear ear;
    ear.onMessage = [&](auto&) { words.emplace_back("message"); };
    const LyrObjectIOCPtr handle(&ear, node.get());
    node->weight.addPropertyExtension(&extension);
    words.clear();
    node->weight.setValue(1.0f);
    EXPECT_EQ(words, (Words{"changed", "message"}));
}

TEST_F(LyrPropertyExtension, hears_of_flags_before_and_after_they_change) {
    Noting extension(words);
    node->weight.addPropertyExtension(&extension);
    words.clear();
    node->weight.setFlags(0x1, LyrFlags::DATA);
    EXPECT_EQ(words, (Words{"will 1 " + std::to_string(LyrFlags::DATA), "have " + std::to_string(LyrFlags::DATA)}));
    words.clear();
    node->weight.setFlags(0x1, LyrFlags::DATA);
    EXPECT_EQ(words, Words{});
}

TEST_F(LyrPropertyExtension, that_came_last_is_the_first) {
    Noting first(words, "a "), second(words, "b ");
    node->weight.addPropertyExtension(&first);
    node->weight.addPropertyExtension(&second);
    EXPECT_EQ(node->weight.firstExtension(), &second);
    EXPECT_EQ(second.nextExtension(), &first);
    EXPECT_EQ(first.nextExtension(), nullptr);
    words.clear();
    node->weight.setValue(1.0f);
    EXPECT_EQ(words, (Words{"b changed", "a changed"}));
}

TEST_F(LyrPropertyExtension, is_deleted_with_its_place_only_if_it_wants_to) {
    auto* deleted = new Noting(words, "deleted ");
    Noting kept(words, "kept ");
    deleted->setAutoDelete(true);
    EXPECT_TRUE(deleted->isAutoDelete());
    node->weight.addPropertyExtension(deleted);
    node->weight.addPropertyExtension(&kept);
    words.clear();
    node->weight.removeAllPropertyExtensions();
    EXPECT_EQ(words, (Words{"kept remove", "deleted remove", "deleted end"}));
    EXPECT_EQ(node->weight.firstExtension(), nullptr);
}

TEST_F(LyrPropertyExtension, goes_with_its_property) {
    auto* deleted = new Noting(words, "deleted ");
    deleted->setAutoDelete(true);
    Noting kept(words, "kept ");
    {
        Single<float> property;
        property.addPropertyExtension(deleted);
        property.addPropertyExtension(&kept);
        words.clear();
    }
    EXPECT_EQ(words, (Words{"kept remove", "deleted remove", "deleted end"}));
    EXPECT_EQ(kept.getProperty(), nullptr);
    words.clear();
}

TEST_F(LyrPropertyExtension, leaves_its_property_when_it_is_destroyed) {
    {
        Noting brief(words);
        node->weight.addPropertyExtension(&brief);
    }
    EXPECT_EQ(node->weight.firstExtension(), nullptr);
    EXPECT_TRUE(node->weight.setValue(1.0f));
}

TEST_F(LyrPropertyExtension, may_remove_itself_or_the_next_one_while_it_is_called) {
    Noting last(words, "c "), middle(words, "b "), first(words, "a ");
    for (Noting* extension : {&last, &middle, &first}) {
        node->weight.addPropertyExtension(extension);
    }
    words.clear();
    first.onChange = [&] { node->weight.removePropertyExtension(&first); };
    node->weight.setValue(1.0f);
    EXPECT_EQ(words, (Words{"a changed", "a remove", "b changed", "c changed"}));
    words.clear();
    middle.onChange = [&] { node->weight.removePropertyExtension(&last); };
    node->weight.setFlags(0x1, 0);
    EXPECT_EQ(words, (Words{"b will 1 0", "c remove", "b have 805306368"}));
}

TEST_F(LyrPropertyExtension, that_comes_while_others_are_called_waits_for_the_next_change) {
    Noting first(words, "a "), added(words, "b ");
    node->weight.addPropertyExtension(&first);
    first.onChange = [&] { node->weight.addPropertyExtension(&added); };
    words.clear();
    node->weight.setValue(1.0f);
    EXPECT_EQ(words, (Words{"a changed", "b add"}));
}

TEST_F(LyrPropertyExtension, may_destroy_the_object_while_it_is_called) {
    auto held = std::make_unique<Held<>>();
    Noting second(words, "b "), first(words, "a ");
    (*held)->weight.addPropertyExtension(&second);
    (*held)->weight.addPropertyExtension(&first);
    words.clear();
    first.onChange = [&] { held.reset(); };
    EXPECT_TRUE((*held)->weight.setValue(1.0f));
    EXPECT_EQ(words, (Words{"a changed", "a remove", "b remove"}));
}

TEST_F(LyrPropertyExtension, tells_of_a_change_by_itself) {
    Noting extension(words);
    node->weight.addPropertyExtension(&extension);
    Ear ear;
    const LyrObjectIOCPtr handle(&ear, node.get());
    words.clear();
    extension.announceChange();
    EXPECT_EQ(words, Words{"changed"});
    EXPECT_EQ(ear.properties(), std::vector<int>{WEIGHT});
    node->weight.removePropertyExtension(&extension);
    extension.announceChange();
    EXPECT_EQ(ear.heard.size(), 1u);
}

TEST_F(LyrPropertyExtension, sees_and_replaces_what_is_read_and_written) {
    Doubling doubling;
    node->weight.addPropertyExtension(&doubling);
    EXPECT_TRUE(node->weight.setValue(6.0f));
    EXPECT_EQ(node->weight.stored(), 3.0f);
    float value = 0.0f;
    EXPECT_TRUE(node->weight.getValue(value));
    EXPECT_EQ(value, 6.0f);
    node->weight.removePropertyExtension(&doubling);
    EXPECT_TRUE(node->weight.getValue(value));
    EXPECT_EQ(value, 3.0f);
}

TEST_F(LyrPropertyExtension, passes_to_the_one_behind_it) {
    Adding adding;
    Doubling doubling;
    Noting between(words);
    node->weight.addPropertyExtension(&adding);
    node->weight.addPropertyExtension(&between);
    node->weight.addPropertyExtension(&doubling);
    node->weight.setValue(8.0f);
    EXPECT_EQ(node->weight.stored(), 4.0f);
    float value = 0.0f;
    node->weight.getValue(value);
    EXPECT_EQ(value, (4.0f + 1.0f) * 2.0f);
}

TEST_F(LyrPropertyExtension, of_another_value_type_is_not_asked) {
    Doubling doubling;
    node->title.addPropertyExtension(&doubling);
    EXPECT_TRUE(node->title.setValue("text"));
    const char* text = nullptr;
    EXPECT_TRUE(node->title.getValue(text));
    EXPECT_STREQ(text, "text");
    EXPECT_EQ(doubling.getExtensionValueType(), int(LyrValueType::Float));
    EXPECT_EQ(Noting(words).getExtensionValueType(), -1);
}

TEST_F(LyrPropertyExtension, is_not_asked_to_write_to_a_read_only_property) {
    struct Accepting : LyrSingleValuePropertyExtensionIF<float> {
        int asked = 0;
        bool writeData(const float&) override {
            ++asked;
            return true;
        }
    } accepting;
    node->weight.addPropertyExtension(&accepting);
    node->weight.setReadOnly(true);
    EXPECT_FALSE(node->weight.setValue(1.0f));
    EXPECT_EQ(accepting.asked, 0);
}
