#pragma once

#include <lyr_core/LyrJsonValue_p.h>
#include <lyr_core/LyrProperty.h>
#include <lyr_core/LyrRGBA.h>
#include <lyr_core/LyrValuePair.h>
#include <lyr_core/LyrVector2.h>
#include <lyr_core/LyrVector3.h>

#include <array>
#include <string>
#include <type_traits>

// How single values stand in an object file. lyrDecode() leaves the value alone and gives the reason when it cannot
// take one.

LyrJsonValue lyrEncode(float value);
LyrJsonValue lyrEncode(long long value);
/** The name of an identifier, empty if it has none. Throws std::bad_alloc. */
std::string lyrNameOf(Lyrenum value);

LyrJsonValue lyrEncode(Lyrenum value);

bool lyrDecode(const LyrJsonValue& json, float& value, std::string& reason);
bool lyrDecode(const LyrJsonValue& json, long long& value, std::string& reason);
bool lyrDecode(const LyrJsonValue& json, Lyrenum& value, std::string& reason);

/** A value made of several numbers as an array of references to them; any other is one component. */
template <class T>
auto lyrComponents(T& value) {
    return std::array<T*, 1>{&value};
}
template <class T>
auto lyrComponents(LyrValuePair<T>& value) {
    return std::array<T*, 2>{&value.first, &value.second};
}
template <class T>
auto lyrComponents(LyrVector2<T>& value) {
    return std::array<T*, 2>{&value.x, &value.y};
}
template <class T>
auto lyrComponents(LyrVector3<T>& value) {
    return std::array<T*, 3>{&value.x, &value.y, &value.z};
}
template <class T>
auto lyrComponents(LyrRGBA<T>& value) {
    return std::array<T*, 4>{&value.red, &value.green, &value.blue, &value.alpha};
}

/** Calls visitor(std::type_identity<T>()) with the C++ type of the plain value types; false for texts and links. */
template <class Visitor>
bool lyrVisitPlainType(LyrValueType type, Visitor visitor) {
    switch (type) {
        case LyrValueType::Enum:
        case LyrValueType::Boolean:
            return visitor(std::type_identity<Lyrenum>());
        case LyrValueType::EnumPair:
            return visitor(std::type_identity<LyrValuePair<Lyrenum>>());
        case LyrValueType::Float:
            return visitor(std::type_identity<float>());
        case LyrValueType::FloatPair:
            return visitor(std::type_identity<LyrValuePair<float>>());
        case LyrValueType::Int64:
            return visitor(std::type_identity<long long>());
        case LyrValueType::Vector2:
            return visitor(std::type_identity<LyrVector2<float>>());
        case LyrValueType::Vector3:
            return visitor(std::type_identity<LyrVector3<float>>());
        case LyrValueType::Color:
            return visitor(std::type_identity<LyrRGBA<float>>());
        case LyrValueType::String:
        case LyrValueType::Link:
            break;
    }
    return false;
}
