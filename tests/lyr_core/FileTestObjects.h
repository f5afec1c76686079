#pragma once

#include <lyr_core/LyrBooleanOP.h>
#include <lyr_core/LyrClassFactory.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrRegisteredEnum.h>

#include <gtest/gtest.h>

#include <string>

/** Classes with a property of every kind, for the tests of object files. */
namespace file_test {

inline Lyrenum id(const char* name) {
    return LyrIdentifierRegistry::registerName(name, "file_test");
}

template <class T>
class Value : public LyrSingleValueOP<LyrSingleValuePropertyIF<T>> {
public:
    explicit Value(const T& value) {
        this->setResetValue(value);
        this->setValue(value);
    }
};

class Flag : public LyrBooleanOP {
public:
    Flag() {
        setResetValue(1);
        setValue(1);
    }
};

template <class T>
class List : public LyrValueArrayOP<LyrValueArrayPropertyIF<T>> {};

/** A list whose floats must be finite in files; starts as [-1, 1]. */
class Positions : public List<float> {
public:
    Positions() {
        const float ends[] = {-1.0f, 1.0f};
        setResetItems(ends);
        resetData();
    }
    bool allowsNonFinite() const override { return false; }
};

/** Accepts values up to 10 only. */
class SmallNumber : public Value<long long> {
public:
    SmallNumber() : Value(0) {}
    unsigned int checkData(const long long& value, bool) const override { return value <= 10 ? 1 : 0; }
};

class Leaf : public LyrObject {
public:
    Leaf() { addAll(); }
    Leaf(const Leaf& other) : LyrObject(other) {
        addAll();
        copyFrom(other);
    }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("FileTestLeaf", sizeof(Leaf), &LyrObject::metaClass(), new LyrClassFactory<Leaf>,
                                       "file_test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

    Value<Lyrenum> type{Lyr::Constant};
    List<LyrValuePair<float>> points;

private:
    void addAll() {
        addProperty(Lyr::Type, &type);
        addProperty(id("FileTestPoints"), &points);
    }
};

/** The list of leaves: two of them by default, made anew on every reset. */
class Leaves : public LyrObjectParentLinkListOP {
public:
    Leaves() { resetData(); }
    bool resetData() override {
        const LyrObjectPtr first(new Leaf);
        const LyrObjectPtr second(new Leaf);
        const LyrObjectLink links[] = {LyrObjectLink(first.get(), nullptr, -1),
                                       LyrObjectLink(second.get(), nullptr, -1)};
        return initArray(0, 1, links);
    }
};

class Sample : public LyrObject {
public:
    Sample() { addAll(); }
    Sample(const Sample& other) : LyrObject(other) {
        addAll();
        copyFrom(other);
    }
    static const LyrMetaClass& metaClass() {
        Leaf::metaClass();
        static const LyrMetaClass meta("FileTestSample", sizeof(Sample), &LyrObject::metaClass(),
                                       new LyrClassFactory<Sample>, "file_test", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

    Positions positions;
    Leaves leaves;
    Value<Lyrenum> quantity{Lyr::Length};
    Value<LyrValuePair<Lyrenum>> finiteMode{LyrValuePair<Lyrenum>(0, 0)};
    Flag autoLabel;
    Value<float> weight{0.5f};
    Value<LyrValuePair<float>> range{LyrValuePair<float>(3.4028235e38f, -3.4028235e38f)};
    Value<long long> count{-7};
    SmallNumber small;
    Value<LyrVector2<float>> offset{LyrVector2<float>(1.0f, 2.0f)};
    Value<LyrVector3<float>> parameters{LyrVector3<float>(0.0f, 0.0f, 0.0f)};
    Value<LyrRGBA<float>> color{LyrRGBA<float>(0.0f, 0.0f, 0.0f, 1.0f)};
    Value<const char*> text{"plain"};
    List<Lyrenum> kinds;
    List<LyrRGBA<float>> colors;
    List<float> numbers;
    List<long long> integers;
    LyrObjectHardLinkOP child;
    LyrObjectSoftLinkOP friendLink;
    Value<float> computed{1.0f};
    Value<float> readOnly{2.0f};
    Value<float> numbered{3.0f};

    static constexpr int NUMBERED = 123456;  ///< an identifier without a name

private:
    void addAll() {
        addProperty(id("FileTestPositionList"), &positions);
        addProperty(id("FileTestLeafList"), &leaves);
        addProperty(Lyr::Quantity, &quantity);
        addProperty(id("FileTestFiniteMode"), &finiteMode);
        addProperty(id("FileTestAutoLabel"), &autoLabel);
        addProperty(id("FileTestWeight"), &weight);
        addProperty(id("FileTestRange"), &range);
        addProperty(id("FileTestCount"), &count);
        addProperty(id("FileTestSmall"), &small);
        addProperty(id("FileTestOffset"), &offset);
        addProperty(id("FileTestParameters"), &parameters);
        addProperty(Lyr::Color, &color);
        addProperty(id("FileTestText"), &text);
        addProperty(id("FileTestKinds"), &kinds);
        addProperty(id("FileTestColors"), &colors);
        addProperty(id("FileTestNumbers"), &numbers);
        addProperty(id("FileTestIntegers"), &integers);
        addProperty(id("FileTestChild"), &child);
        addProperty(id("FileTestFriend"), &friendLink);
        addProperty(id("FileTestComputed"), &computed);
        addProperty(id("FileTestReadOnly"), &readOnly);
        addProperty(NUMBERED, &numbered);
        computed.setComputed(true);
        readOnly.setReadOnly(true);
    }
};

/** A class of another module that derives from a stored class. */
class Derived : public Sample {
public:
    Derived() { addProperty(id("FileTestExtra"), &extra); }
    Derived(const Derived& other) : Sample(other) {
        addProperty(id("FileTestExtra"), &extra);
        copyFrom(other);
    }
    static const LyrMetaClass& metaClass() {
        static const LyrMetaClass meta("FileTestDerived", sizeof(Derived), &Sample::metaClass(),
                                       new LyrClassFactory<Derived>, "file_test_module", 0, nullptr, 0, 0, 0, false);
        return meta;
    }
    const LyrMetaClass& getMetaClass() const override { return metaClass(); }

    Value<float> extra{9.0f};
};

/** Files find classes by their names, so these are registered from the start. */
inline const bool REGISTERED = Derived::metaClass().isCreatable();

/** The default sample, worked out by hand from the rules of the format. */
inline const std::string DEFAULT_TEXT = R"({
  "format": "lyr-object",
  "version": 1,
  "class": "FileTestSample",
  "properties": {
    "FileTestPositionList": [-1, 1],
    "FileTestLeafList": [
      {
        "class": "FileTestLeaf",
        "properties": {
          "Type": "Constant",
          "FileTestPoints": []
        }
      },
      {
        "class": "FileTestLeaf",
        "properties": {
          "Type": "Constant",
          "FileTestPoints": []
        }
      }
    ],
    "Quantity": "Length",
    "FileTestFiniteMode": [0, 0],
    "FileTestAutoLabel": true,
    "FileTestWeight": 0.5,
    "FileTestRange": [3.4028235e+38, -3.4028235e+38],
    "FileTestCount": -7,
    "FileTestSmall": 0,
    "FileTestOffset": [1, 2],
    "FileTestParameters": [0, 0, 0],
    "Color": [0, 0, 0, 1],
    "FileTestText": "plain",
    "FileTestKinds": [],
    "FileTestColors": [],
    "FileTestNumbers": [],
    "FileTestIntegers": [],
    "FileTestChild": null,
    "123456": 3
  }
}
)";

inline std::string textOf(const LyrObject& object) {
    std::string text;
    LyrString message;
    EXPECT_TRUE(LyrObjectFile::write(object, text, &message)) << message.utf8();
    return text;
}

inline std::string replaced(std::string text, const std::string& what, const std::string& by) {
    const auto at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return text.replace(at, what.size(), by);
}

}  // namespace file_test
