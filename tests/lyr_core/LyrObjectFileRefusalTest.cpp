#include <lyr_core/LyrObjectFile.h>

#include <lyr_core/LyrError.h>

#include "FileTestObjects.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

// Objects whose properties do not take part: values that cannot be read, are refused, or have no default any more.

namespace {

using namespace file_test;
using Report = LyrObjectFile::Report;

/** The property that cannot be read, written or reset at present; one of Stubborn's names, or empty. */
std::string sUnreadable;
std::string sUnwritable;
std::string sUnresettable;

bool is(const LyrProperty& property, const std::string& name) {
    return !name.empty() && property.getPropertyID() == id(name.c_str());
}

template <class Base>
class StubbornValue : public Base {
public:
    using T = typename Base::ValueType;
    bool resetData() override { return !is(*this, sUnresettable) && Base::resetData(); }

protected:
    bool readStored(T& out) const override { return !is(*this, sUnreadable) && Base::readStored(out); }
    bool writeStored(const T& value) override { return !is(*this, sUnwritable) && Base::writeStored(value); }
};

template <class Base>
class StubbornList : public Base {
public:
    using T = typename Base::ValueType;
    bool getArrayItems(long long first, long long last, T* out) const override {
        return !is(*this, sUnreadable) && Base::getArrayItems(first, last, out);
    }
    bool initArray(long long first, long long last, const T* items) override {
        return !is(*this, sUnwritable) && Base::initArray(first, last, items);
    }
};

/** A list of a kind that files know as single values only. */
class FlagList : public List<Lyrenum> {
public:
    LyrValueType getValueType() const noexcept override { return LyrValueType::Boolean; }
};

class Flagged : public LyrObject {
public:
    Flagged() { addProperty(id("FileTestFlags"), &flags); }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("FileTestFlagged", sizeof(Flagged), &LyrObject::metaClass(),
                                       new LyrClassFactory<Flagged>, "file_test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

    FlagList flags;
};

/** Objects that have a naming template from the start. */
class Named : public LyrObject {
public:
    Named() { setNameTemplate("born"); }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("FileTestNamed", sizeof(Named), &LyrObject::metaClass(),
                                       new LyrClassFactory<Named>, "file_test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

/** A class that can be made, but not as an object. */
class NoObject : public LyrClass {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("FileTestNoObject", sizeof(NoObject), &LyrClass::metaClass(),
                                       new LyrClassFactory<NoObject>, "file_test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

class Stubborn : public LyrObject {
public:
    Stubborn() { addAll(); }
    Stubborn(const Stubborn& other) : LyrObject(other) {
        addAll();
        copyFrom(other);
    }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("FileTestStubborn", sizeof(Stubborn), &LyrObject::metaClass(),
                                       new LyrClassFactory<Stubborn>, "file_test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

    StubbornValue<LyrSingleValueOP<LyrSingleValuePropertyIF<float>>> number;
    StubbornValue<LyrBooleanOP> flag;
    StubbornValue<LyrSingleValueOP<LyrSingleValuePropertyIF<const char*>>> text;
    StubbornValue<LyrObjectHardLinkOP> child;
    StubbornList<List<long long>> integers;
    StubbornList<LyrObjectHardLinkListOP> children;
    LyrObjectSoftLinkListOP friends;

private:
    void addAll() {
        addProperty(id("FileTestNumber"), &number);
        addProperty(id("FileTestFlag"), &flag);
        addProperty(id("FileTestText"), &text);
        addProperty(id("FileTestChild"), &child);
        addProperty(id("FileTestIntegers"), &integers);
        addProperty(id("FileTestChildren"), &children);
        addProperty(id("FileTestFriends"), &friends);
    }
};

/** One class below another of the same module. */
class Inner : public Sample {
public:
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("FileTestInner", sizeof(Inner), &Sample::metaClass(), new LyrClassFactory<Inner>,
                                       "file_test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }
};

const std::string NAMES[] = {"FileTestNumber", "FileTestFlag",     "FileTestText",
                             "FileTestChild",  "FileTestIntegers", "FileTestChildren"};

const std::string STUBBORN_TEXT = R"({
  "format": "lyr-object",
  "version": 1,
  "class": "FileTestStubborn",
  "properties": {
    "FileTestNumber": 1,
    "FileTestFlag": true,
    "FileTestText": "a",
    "FileTestChild": {"class": "FileTestLeaf", "properties": {}},
    "FileTestIntegers": [1, 2],
    "FileTestChildren": [{"class": "FileTestLeaf", "properties": {}}]
  }
}
)";

class LyrObjectFileRefusal : public testing::Test {
protected:
    LyrObjectFileRefusal() { Stubborn::metaClass(); }
    ~LyrObjectFileRefusal() override {
        sUnreadable.clear();
        sUnwritable.clear();
        sUnresettable.clear();
    }

    /** An object with the values of the text. */
    static LyrObjectPtr filled() {
        LyrObjectPtr object;
        Report report;
        EXPECT_TRUE(LyrObjectFile::read(STUBBORN_TEXT, object, report)) << report.message.utf8();
        return object;
    }

    /** The message for a text that is not read. */
    static std::string messageFor(const std::string& text) {
        LyrObjectPtr object;
        Report report;
        EXPECT_FALSE(LyrObjectFile::read(text, object, report));
        EXPECT_FALSE(object);
        return report.message.utf8();
    }

    static long lineOf(const std::string& name) {
        const auto at = static_cast<std::ptrdiff_t>(STUBBORN_TEXT.find(name));
        return 1 + std::count(STUBBORN_TEXT.begin(), STUBBORN_TEXT.begin() + at, '\n');
    }
};

}  // namespace

TEST_F(LyrObjectFileRefusal, a_value_that_cannot_be_read_is_told_with_its_place_and_nothing_is_written) {
    const LyrObjectPtr object = filled();
    for (const std::string& name : NAMES) {
        sUnreadable = name;
        std::string text = "as before";
        LyrString message;
        EXPECT_FALSE(LyrObjectFile::write(*object, text, &message)) << name;
        EXPECT_EQ(message.utf8(), "properties." + name + ": the value cannot be read");
        EXPECT_EQ(text, "as before");
        EXPECT_FALSE(LyrObjectFile::write(*object, text, nullptr)) << name;
    }
    sUnreadable.clear();
    EXPECT_EQ(textOf(*object).find("cannot"), std::string::npos);
}

TEST_F(LyrObjectFileRefusal, a_value_that_its_property_refuses_is_told_with_line_and_place) {
    for (const std::string& name : NAMES) {
        sUnwritable = name;
        EXPECT_EQ(messageFor(STUBBORN_TEXT),
                  "line " + std::to_string(lineOf(name)) + ", properties." + name + ": the value is not allowed here");
    }
}

TEST_F(LyrObjectFileRefusal, a_default_that_cannot_be_applied_is_told) {
    sUnresettable = "FileTestNumber";
    EXPECT_EQ(messageFor(replaced(STUBBORN_TEXT, "\"FileTestNumber\": 1,", "")),
              "line 5, properties: the default of \"FileTestNumber\" could not be applied");
}

TEST_F(LyrObjectFileRefusal, a_list_of_a_kind_without_lists_is_neither_written_nor_read) {
    const LyrObjectPtr object(new Flagged);
    std::string text;
    LyrString message;
    EXPECT_FALSE(LyrObjectFile::write(*object, text, &message));
    EXPECT_STREQ(message.utf8(), "properties.FileTestFlags: the value cannot be read");
    EXPECT_EQ(messageFor(R"({"format": "lyr-object", "version": 1, "class": "FileTestFlagged",
                             "properties": {"FileTestFlags": [0]}})"),
              "line 2, properties.FileTestFlags: the value is not allowed here");
}

TEST_F(LyrObjectFileRefusal, more_items_or_objects_than_can_be_read_back_are_not_written) {
    const LyrObjectPtr object = filled();
    auto& stubborn = static_cast<Stubborn&>(*object);
    std::string text;
    LyrString message;
    const std::vector<long long> many((1 << 22) + 1, 0);
    ASSERT_TRUE(stubborn.integers.initArray(0, 1 << 22, many.data()));
    EXPECT_FALSE(LyrObjectFile::write(*object, text, &message));
    EXPECT_STREQ(message.utf8(), "properties.FileTestIntegers: more items than a file may hold");
    // Two lists that are long, but not too long, make an object of too many values.
    ASSERT_TRUE(stubborn.integers.initArray(0, (1 << 21) - 1, many.data()));
    List<long long> second;
    ASSERT_TRUE(second.initArray(0, (1 << 21) - 1, many.data()));
    ASSERT_TRUE(stubborn.addProperty(id("FileTestSecond"), &second));
    EXPECT_FALSE(LyrObjectFile::write(*object, text, &message));
    EXPECT_STREQ(message.utf8(), "the object holds more than an object file may");
    ASSERT_TRUE(stubborn.removeProperty(id("FileTestSecond")));
    ASSERT_TRUE(stubborn.integers.initArray(0, -1, nullptr));
    // The object itself, its child, and 99,999 leaves: one too many.
    const LyrObjectPtr leaf(new Leaf);
    const std::vector<LyrObjectLink> links(99999, LyrObjectLink(leaf.get(), nullptr, -1));
    ASSERT_TRUE(stubborn.children.initArray(0, 99998, links.data()));
    EXPECT_FALSE(LyrObjectFile::write(*object, text, &message));
    EXPECT_STREQ(message.utf8(),
                 "properties.FileTestChildren[99998]: more objects, or nested deeper, than a file may hold");
    ASSERT_TRUE(stubborn.children.removeArrayItems(0, 0));
    EXPECT_TRUE(LyrObjectFile::write(*object, text, &message)) << message.utf8();
}

TEST_F(LyrObjectFileRefusal, objects_nested_deeper_than_can_be_read_back_are_not_written) {
    const LyrObjectPtr object(new Stubborn);
    LyrObject* innermost = object.get();
    // Each level of a list of objects takes three levels of the text.
    for (int level = 1; level <= 25; ++level) {
        const LyrObjectPtr child(new Stubborn);
        const LyrObjectLink link(child.get(), nullptr, -1);
        ASSERT_TRUE(static_cast<Stubborn*>(innermost)->children.initArray(0, 0, &link));
        innermost = child.get();
    }
    std::string text;
    LyrString message;
    EXPECT_FALSE(LyrObjectFile::write(*object, text, &message));
    EXPECT_STREQ(message.utf8(), "the objects are nested deeper than an object file may be");
}

TEST_F(LyrObjectFileRefusal, a_text_beyond_64_mib_is_refused_unread) {
    EXPECT_EQ(messageFor(std::string((std::size_t(64) << 20) + 1, ' ')),
              "larger than the 64 MiB that an object file may have");
}

TEST_F(LyrObjectFileRefusal, unknown_lists_of_lists_of_objects_are_written_back_as_they_were) {
    LyrObjectPtr object;
    Report report;
    const std::string text =
        R"({"format": "lyr-object", "version": 1, "class": "FileTestLeaf", "properties": {"Later": [[{"a": 1}], [2]]}})";
    ASSERT_TRUE(LyrObjectFile::read(text, object, report)) << report.message.utf8();
    EXPECT_NE(textOf(*object).find(
                  "\"Later\": [\n      [\n        {\n          \"a\": 1\n        }\n      ],\n      [2]\n    ]"),
              std::string::npos)
        << textOf(*object);
}

TEST_F(LyrObjectFileRefusal, an_object_that_is_born_with_a_naming_template_takes_the_file_s) {
    Named::metaClass();
    const std::string text = R"({"format": "lyr-object", "version": 1, "class": "FileTestNamed", "properties": )";
    LyrObjectPtr object;
    Report report;
    ASSERT_TRUE(LyrObjectFile::read(text + "{}}", object, report)) << report.message.utf8();
    EXPECT_STREQ(object->getNameTemplate(), "born");  // its default
    ASSERT_TRUE(LyrObjectFile::read(text + R"({"NameTemplate": "new"}})", object, report));
    EXPECT_STREQ(object->getNameTemplate(), "new");
}

TEST_F(LyrObjectFileRefusal, paths_through_a_file_or_with_a_zero_are_refused) {
    const TemporaryFolder folder;
    folder.write("a", DEFAULT_TEXT);
    LyrObjectPtr object;
    Report report;
    EXPECT_FALSE(LyrObjectFile::load(folder.file("a/b"), object, report));
    EXPECT_EQ(report.message.utf8(), folder.file("a/b") + ": cannot be opened: Not a directory; check the path");
    EXPECT_FALSE(LyrObjectFile::load(folder.file(std::string("a\0b", 3)), object, report));
    EXPECT_EQ(report.message.utf8(), folder.file("a") + ": the path holds the character 0");
}

TEST_F(LyrObjectFileRefusal, a_naming_template_that_is_no_utf8_is_not_written) {
    const LyrObjectPtr object(new Leaf);
    for (const char* bytes : {"\xff", "\xe2(\xa1"}) {
        object->setNameTemplate(bytes);
        std::string text;
        LyrString message;
        EXPECT_FALSE(LyrObjectFile::write(*object, text, &message));
        EXPECT_STREQ(message.utf8(),
                     "properties.NameTemplate: the text is not valid UTF-8 and cannot be saved; type it anew");
    }
}

TEST_F(LyrObjectFileRefusal, a_naming_template_in_the_file_replaces_the_one_that_is_there) {
    const LyrObjectPtr target(new Leaf);
    const std::string text = R"({"format": "lyr-object", "version": 1, "class": "FileTestLeaf", "properties": )";
    Report report;
    target->setNameTemplate("old");
    EXPECT_TRUE(LyrObjectFile::readInto(text + R"({"NameTemplate": "new"}})", *target, report));
    EXPECT_STREQ(target->getNameTemplate(), "new");
    EXPECT_TRUE(LyrObjectFile::readInto(text + R"({"NameTemplate": null}})", *target, report));
    EXPECT_STREQ(target->getNameTemplate(), "");
}

TEST_F(LyrObjectFileRefusal, what_an_object_has_learnt_since_it_was_read_is_written_once) {
    LyrObjectPtr object;
    Report report;
    const std::string text =
        R"({"format": "lyr-object", "version": 1, "class": "FileTestLeaf", "properties": {"FileTestLater": 7}})";
    ASSERT_TRUE(LyrObjectFile::read(text, object, report)) << report.message.utf8();
    EXPECT_NE(textOf(*object).find("\"FileTestLater\": 7"), std::string::npos);
    Value<long long> later(8);
    ASSERT_TRUE(object->addProperty(id("FileTestLater"), &later));
    EXPECT_NE(textOf(*object).find("\"FileTestLater\": 8"), std::string::npos);
    EXPECT_EQ(textOf(*object).find("\"FileTestLater\": 7"), std::string::npos);
    object->removeProperty(id("FileTestLater"));
}

TEST_F(LyrObjectFileRefusal, a_class_names_the_next_class_of_its_module_as_base) {
    const LyrObjectPtr object(new Inner);
    EXPECT_NE(textOf(*object).find("\"class\": \"FileTestInner\",\n  \"base\": \"FileTestSample\",\n"),
              std::string::npos);
}

TEST_F(LyrObjectFileRefusal, an_object_of_the_root_class_has_no_base) {
    const LyrObjectPtr object(new LyrObject);
    EXPECT_EQ(
        textOf(*object),
        "{\n  \"format\": \"lyr-object\",\n  \"version\": 1,\n  \"class\": \"LyrObject\",\n  \"properties\": {}\n}\n");
}

TEST_F(LyrObjectFileRefusal, headers_and_classes_of_the_wrong_kind_are_refused) {
    const auto with = [](const std::string& what, const std::string& by) { return replaced(STUBBORN_TEXT, what, by); };
    EXPECT_EQ(messageFor(with("\"lyr-object\"", "5")),
              "line 1: this is no object file: there is no \"format\": \"lyr-object\"");
    const std::string unknown =
        "line 4: no object of the class \"NoSuchClass\" can be made; the module that knows it "
        "may not be loaded";
    EXPECT_EQ(messageFor(with("\"FileTestStubborn\"", "\"NoSuchClass\", \"base\": 5")), unknown);
    NoObject::metaClass();
    EXPECT_EQ(messageFor(with("\"FileTestStubborn\"", "\"NoSuchClass\", \"base\": \"FileTestNoObject\"")), unknown);
}

TEST_F(LyrObjectFileRefusal, identifiers_out_of_range_or_with_a_zero_or_long_ones_are_refused_in_a_whole_message) {
    const auto messageOf = [](const std::string& value) {
        return messageFor(R"({"format": "lyr-object", "version": 1, "class": "FileTestLeaf", "properties": {"Type": )" +
                          value + "}}");
    };
    const std::string needed =
        "line 1, properties.Type: an identifier is needed: a registered name, or a whole number "
        "of 32 bits";
    EXPECT_EQ(messageOf("-2147483649"), needed);
    EXPECT_EQ(messageOf("2147483648"), needed);
    const std::string unknown = " is no identifier known here; the module that knows it may not be loaded";
    EXPECT_EQ(messageOf(R"("Constant\u0000")"), "line 1, properties.Type: \"Constant…\"" + unknown);
    const std::string letters(59, 'x');
    EXPECT_EQ(messageOf('"' + letters + "é\""), "line 1, properties.Type: \"" + letters + "…\"" + unknown);
}

TEST_F(LyrObjectFileRefusal, a_newer_file_with_too_many_objects_is_refused_and_not_read_in_part) {
    std::string text =
        R"({"format":"lyr-object","version":2,"class":"FileTestSample","properties":{"FileTestLeafList":[)";
    for (int i = 0; i < 100000; ++i) {
        text += R"({"class":"FileTestLeaf","properties":{}},)";
    }
    EXPECT_EQ(messageFor(text + "null]}}"),
              "line 1, properties.FileTestLeafList[99999]: more objects than a file may hold");
}

TEST_F(LyrObjectFileRefusal, a_file_of_another_format_is_replaced_whatever_its_version) {
    const TemporaryFolder folder;
    folder.write("a", R"({"format": "something else", "version": 9})");
    const LyrObjectPtr object(new Sample);
    Report report;
    EXPECT_TRUE(LyrObjectFile::save(*object, folder.file("a"), report)) << report.message.utf8();
    EXPECT_EQ(folder.read("a"), DEFAULT_TEXT);
}
