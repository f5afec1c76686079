#pragma once

#include <colortable/ColortableIdentifiers.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrLinkProperty.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrPropertyPtr.h>

#include <gtest/gtest.h>

#include <array>
#include <cfloat>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

// Every stored property of every class that is kept in files, found by asking the objects, so that a property that is
// added later is tested without a line here: set to a value that is not its default, saved, loaded, compared.

namespace everyproperty {

/** Values of each type; those that a property refuses, or already has, are passed over. */
template <class T>
std::vector<T> candidates();

template <>
inline std::vector<Lyrenum> candidates() {
    return {Lyr::Bottom,  Lyr::Top, Lyr::Right, Lyr::Left, Lyr::HueCycle, Lyr::Continue, Lyr::Area,
            Lyr::Percent, 1,        0,          2,         123456789};
}
template <>
inline std::vector<LyrValuePair<Lyrenum>> candidates() {
    return {{1, 2}, {2, 1}, {0, 1}};
}
template <>
inline std::vector<float> candidates() {
    return {FLT_TRUE_MIN, -0.0F, 0.1F, 0.25F, 1.0F, 3.0F};
}
template <>
inline std::vector<LyrValuePair<float>> candidates() {
    return {{-1e-45F, 16777217.0F}, {0.1F, 0.3F}, {1.0F, 2.0F}};
}
template <>
inline std::vector<long long> candidates() {
    return {std::numeric_limits<long long>::min(), 9007199254740993, 77, 1};
}
template <>
inline std::vector<LyrVector2<float>> candidates() {
    return {{0.1F, -0.0F}, {1.0F, FLT_MAX}};
}
template <>
inline std::vector<LyrVector3<float>> candidates() {
    return {{0.1F, -0.0F, FLT_MIN}};
}
template <>
inline std::vector<LyrRGBA<float>> candidates() {
    return {{0.1F, 0.2F, 0.3F, 0.4F}, {-0.0F, 1e-30F, 2.0F, 0.0F}};
}
template <>
inline std::vector<const char*> candidates() {
    return {"\"quoted\" \\ \n\t\x01 \xc3\xa4 \xe2\x82\xac \xf0\x9f\x8c\x88 {%l}", "plain"};
}

template <class T>
bool sameBits(const T& a, const T& b) {
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}
template <>
inline bool sameBits(const char* const& a, const char* const& b) {
    return std::string(a ? a : "(null)") == (b ? b : "(null)");
}

template <class Call>
bool visitType(LyrValueType type, Call call) {
    switch (type) {
        case LyrValueType::Enum:
        case LyrValueType::Boolean:
            return call(Lyrenum());
        case LyrValueType::EnumPair:
            return call(LyrValuePair<Lyrenum>());
        case LyrValueType::Float:
            return call(float());
        case LyrValueType::FloatPair:
            return call(LyrValuePair<float>());
        case LyrValueType::Int64:
            return call(static_cast<long long>(0));
        case LyrValueType::Vector2:
            return call(LyrVector2<float>());
        case LyrValueType::Vector3:
            return call(LyrVector3<float>());
        case LyrValueType::Color:
            return call(LyrRGBA<float>());
        case LyrValueType::String:
            return call(static_cast<const char*>(nullptr));
        case LyrValueType::Link:
            break;
    }
    return false;
}

inline bool changeAll(LyrObject& object);

template <class T>
inline bool changeSingle(LyrProperty& property) {
    auto* typed = LyrSingleValuePropertyIF<T>::getInterface(&property);
    for (const T& value : candidates<T>()) {
        if (typed && !sameBits(value, typed->getResetValue()) && typed->setValue(value)) {
            return true;
        }
    }
    return false;
}

template <class T>
inline bool changeList(LyrProperty& property) {
    if constexpr (std::is_pointer_v<T>) {
        return false;
    } else {
        auto* typed = LyrValueArrayPropertyIF<T>::getInterface(&property);
        const std::vector<T> items = candidates<T>();
        return typed && typed->initArray(0, static_cast<long long>(items.size()) - 1, items.data());
    }
}

/** Links, or fills a list with, new objects that differ from new ones in everything. */
inline bool changeLinks(LyrProperty& property) {
    for (const char* target : {"LyrColorLookupTable::Section", "LyrColorLookupTable"}) {
        std::array<LyrObjectRefPtr, 2> targets{LyrObjectRefPtr(target, Lyr::DocumentScope),
                                               LyrObjectRefPtr(target, Lyr::DocumentScope)};
        const LyrObjectLink links[] = {{targets[0].get(), nullptr, -1}, {targets[1].get(), nullptr, -1}};
        auto* list = LyrLinkListIF::getInterface(&property);
        auto* single = LyrSingleLinkIF::getInterface(&property);
        if (targets[0] && changeAll(*targets[0].get()) &&
            ((list && list->initArray(0, 1, links)) || (single && single->setValue(links[0])))) {
            return true;
        }
    }
    return false;
}

inline bool change(LyrProperty& property) {
    if (property.getValueType() == LyrValueType::Link) {
        return changeLinks(property);
    }
    return visitType(property.getValueType(), [&](auto sample) {
        using T = decltype(sample);
        return property.isArray() ? changeList<T>(property) : changeSingle<T>(property);
    });
}

inline bool changeAll(LyrObject& object) {
    bool all = true;
    for (std::int64_t i = 0; i < object.getPropertyCount(); ++i) {
        LyrProperty& property = *object.getPropertyAt(i);
        const bool done = !property.isStored() || change(property);
        EXPECT_TRUE(done) << "nothing here changes " << property.getPropertyID().getName();
        all = all && done;
    }
    return all;
}

inline void expectSame(const LyrObject& object, const LyrObject& expected);

template <class T>
bool isSameValue(const LyrProperty& property, const LyrProperty& expected) {
    if constexpr (!std::is_pointer_v<T>) {
        if (property.isArray()) {
            const auto* list = LyrValueArrayPropertyIF<T>::getInterfaceConst(&property);
            const auto* other = LyrValueArrayPropertyIF<T>::getInterfaceConst(&expected);
            std::vector<T> items(static_cast<std::size_t>(list->getArraySize()));
            std::vector<T> wanted(static_cast<std::size_t>(other->getArraySize()));
            return list->getArrayItems(0, list->getArraySize() - 1, items.data()) &&
                   other->getArrayItems(0, other->getArraySize() - 1, wanted.data()) && items.size() == wanted.size() &&
                   (items.empty() || std::memcmp(items.data(), wanted.data(), items.size() * sizeof(T)) == 0);
        }
    }
    T value{};
    T wanted{};
    return LyrSingleValuePropertyIF<T>::getInterfaceConst(&property)->getValue(value) &&
           LyrSingleValuePropertyIF<T>::getInterfaceConst(&expected)->getValue(wanted) && sameBits(value, wanted);
}

/** The same data, in objects of their own where the property owns them. */
inline void expectSameLink(const LyrObjectLink& link, const LyrObjectLink& wanted, bool owned) {
    ASSERT_TRUE(link.getLink() && wanted.getLink());
    EXPECT_TRUE(!owned || link.getLink() != wanted.getLink());
    expectSame(*link.getLink(), *wanted.getLink());
}

inline void expectSameLinks(const LyrProperty& property, const LyrProperty& expected) {
    LyrObjectLink link;
    LyrObjectLink wanted;
    if (!expected.isArray()) {
        ASSERT_TRUE(LyrSingleLinkIF::getInterfaceConst(&property)->getValue(link) &&
                    LyrSingleLinkIF::getInterfaceConst(&expected)->getValue(wanted));
        // There is one plug-in of a kind: a copy links the same.
        const bool shared =
            dynamic_cast<const LyrObjectSoftLinkOP*>(&expected) || expected.getPropertyID() == Lyr::RenderPlugin;
        return expectSameLink(link, wanted, !shared);
    }
    const auto* list = LyrLinkListIF::getInterfaceConst(&property);
    const auto* other = LyrLinkListIF::getInterfaceConst(&expected);
    ASSERT_TRUE(list && other);
    ASSERT_EQ(list->getArraySize(), other->getArraySize());
    for (long long i = 0; i < list->getArraySize(); ++i) {
        ASSERT_TRUE(list->getArrayItems(i, i, &link) && other->getArrayItems(i, i, &wanted));
        expectSameLink(link, wanted, !dynamic_cast<const LyrObjectSoftLinkListOP*>(&expected));
    }
}

inline void expectSame(const LyrObject& object, const LyrObject& expected) {
    EXPECT_STREQ(object.getNameTemplate(), expected.getNameTemplate());
    ASSERT_EQ(object.getPropertyCount(), expected.getPropertyCount());
    for (std::int64_t i = 0; i < expected.getPropertyCount(); ++i) {
        const LyrProperty& property = *object.getPropertyAt(i);
        const LyrProperty& wanted = *expected.getPropertyAt(i);
        SCOPED_TRACE(wanted.getPropertyID().getName());
        if (!wanted.isStored()) {
            continue;
        }
        if (wanted.getValueType() == LyrValueType::Link) {
            expectSameLinks(property, wanted);
        } else {
            EXPECT_TRUE(visitType(wanted.getValueType(),
                                  [&](auto sample) { return isSameValue<decltype(sample)>(property, wanted); }));
        }
    }
}

}  // namespace everyproperty

class EveryProperty : public testing::TestWithParam<const char*> {};

TEST_P(EveryProperty, is_the_same_after_saving_and_loading) {
    const LyrObjectRefPtr object(GetParam(), Lyr::DocumentScope);
    ASSERT_TRUE(object);
    ASSERT_TRUE(everyproperty::changeAll(*object.get()));
    object.get()->setNameTemplate("a \"name\" \xc3\xa4");
    std::string text;
    ASSERT_TRUE(LyrObjectFile::write(*object.get(), text));

    LyrObjectPtr loaded;
    LyrObjectFile::Report report;
    ASSERT_TRUE(LyrObjectFile::read(text, loaded, report)) << report.message.utf8();
    EXPECT_TRUE(report.missing.empty());
    EXPECT_TRUE(report.warnings.empty());
    everyproperty::expectSame(*loaded, *object.get());

    const LyrObjectRefPtr other(GetParam(), Lyr::DocumentScope);
    ASSERT_TRUE(LyrObjectFile::readInto(text, *other.get(), report)) << report.message.utf8();
    everyproperty::expectSame(*other.get(), *object.get());
    std::string again;
    ASSERT_TRUE(LyrObjectFile::write(*other.get(), again));
    EXPECT_EQ(again, text);
}

TEST_P(EveryProperty, is_the_same_in_a_copy_and_has_its_default_again_after_a_reset) {
    const LyrObjectRefPtr object(GetParam(), Lyr::DocumentScope);
    const LyrObjectRefPtr fresh(GetParam(), Lyr::DocumentScope);
    std::string defaults;
    ASSERT_TRUE(LyrObjectFile::write(*fresh.get(), defaults));
    ASSERT_TRUE(everyproperty::changeAll(*object.get()));
    ASSERT_TRUE(fresh.get()->copyFrom(*object.get()));
    everyproperty::expectSame(*fresh.get(), *object.get());

    for (std::int64_t i = 0; i < object.get()->getPropertyCount(); ++i) {
        LyrProperty& property = *object.get()->getPropertyAt(i);
        EXPECT_TRUE(!property.isStored() || property.resetData()) << property.getPropertyID().getName();
        auto* list = dynamic_cast<LyrLinkListOP*>(&property);
        if (list && list->getResetMode() == Lyr::Object) {
            EXPECT_EQ(list->getArraySize(), 2) << "what such a property links stays when it is reset";
            EXPECT_TRUE(list->initArray(0, -1, nullptr));
        }
    }
    std::string text;
    ASSERT_TRUE(LyrObjectFile::write(*object.get(), text));
    EXPECT_EQ(text, defaults);
}

TEST_P(EveryProperty, stands_in_the_file_by_its_registered_name) {
    const LyrObjectRefPtr object(GetParam(), Lyr::DocumentScope);
    std::string text;
    ASSERT_TRUE(LyrObjectFile::write(*object.get(), text));
    std::size_t at = 0;
    for (std::int64_t i = 0; i < object.get()->getPropertyCount(); ++i) {
        const LyrProperty& property = *object.get()->getPropertyAt(i);
        if (property.isStored()) {
            at = text.find("\n    \"" + std::string(property.getPropertyID().getName()) + "\": ", at);
            EXPECT_NE(at, std::string::npos) << property.getPropertyID().getName();
        }
    }
}

/** The name of a class as a part of a test's name. */
inline std::string nameOfClass(const testing::TestParamInfo<const char*>& given) {
    std::string name = given.param;
    std::erase(name, ':');
    return name;
}
