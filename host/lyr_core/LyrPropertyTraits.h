#pragma once

#include <lyr_core/LyrObjectLink.h>
#include <lyr_core/LyrProperty.h>
#include <lyr_core/LyrRGBA.h>
#include <lyr_core/LyrSameValue.h>
#include <lyr_core/LyrString.h>
#include <lyr_core/LyrValuePair.h>
#include <lyr_core/LyrVector2.h>
#include <lyr_core/LyrVector3.h>
#include <lyr_core/Lyrenum.h>

/** How a value type is named, stored and compared by properties. */
template <class T, LyrValueType TYPE>
struct LyrPlainPropertyTraits {
    static constexpr LyrValueType type = TYPE;
    using Storage = T;
    static const T& toStorage(const T& value) noexcept { return value; }
    static const T& fromStorage(const T& stored) noexcept { return stored; }
    static bool same(const T& stored, const T& value) noexcept { return lyrSameValue(stored, value); }
};

template <class T>
struct LyrPropertyTraits;

template <>
struct LyrPropertyTraits<Lyrenum> : LyrPlainPropertyTraits<Lyrenum, LyrValueType::Enum> {};
template <>
struct LyrPropertyTraits<LyrValuePair<Lyrenum>>
    : LyrPlainPropertyTraits<LyrValuePair<Lyrenum>, LyrValueType::EnumPair> {};
template <>
struct LyrPropertyTraits<float> : LyrPlainPropertyTraits<float, LyrValueType::Float> {};
template <>
struct LyrPropertyTraits<LyrValuePair<float>> : LyrPlainPropertyTraits<LyrValuePair<float>, LyrValueType::FloatPair> {};
template <>
struct LyrPropertyTraits<long long> : LyrPlainPropertyTraits<long long, LyrValueType::Int64> {};
template <>
struct LyrPropertyTraits<LyrVector2<float>> : LyrPlainPropertyTraits<LyrVector2<float>, LyrValueType::Vector2> {};
template <>
struct LyrPropertyTraits<LyrVector3<float>> : LyrPlainPropertyTraits<LyrVector3<float>, LyrValueType::Vector3> {};
template <>
struct LyrPropertyTraits<LyrRGBA<float>> : LyrPlainPropertyTraits<LyrRGBA<float>, LyrValueType::Color> {};
template <>
struct LyrPropertyTraits<LyrObjectLink> : LyrPlainPropertyTraits<LyrObjectLink, LyrValueType::Link> {};

/** Texts are given as zero-terminated UTF-8 and kept as host strings: a null pointer is the null string. */
template <>
struct LyrPropertyTraits<const char*> {
    static constexpr LyrValueType type = LyrValueType::String;
    using Storage = LyrString;
    static LyrString toStorage(const char* value) { return LyrString::fromUtf8(value); }
    static const char* fromStorage(const LyrString& stored) noexcept {
        return stored.isNull() ? nullptr : stored.utf8();
    }
    static bool same(const LyrString& stored, const char* value) noexcept {
        return lyrSameValue(fromStorage(stored), value);
    }
};

/** The type of the interface through which a property of a value type is read: a boolean is read as an identifier. */
constexpr LyrValueType lyrInterfaceType(LyrValueType type) noexcept {
    return type == LyrValueType::Boolean ? LyrValueType::Enum : type;
}
