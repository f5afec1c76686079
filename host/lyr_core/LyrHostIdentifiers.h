#pragma once

#include <lyr_core/Lyrenum.h>

/** First number of the host's block of identifiers. */
inline constexpr int LYR_HOST_BLOCK = 204800000;

/** The host's identifiers: X(constant and registered name, offset in the host's block). Offsets below 1000 are promises
 * to plug-ins and files; those from 1000 on are the host's own choice. */
#define LYR_HOST_IDENTIFIERS(X) \
    X(Angle, 22)                \
    X(Bottom, 54)               \
    X(Camera, 59)               \
    X(Center, 61)               \
    X(Constant, 85)             \
    X(DotsPerInch, 114)         \
    X(DriverInit, 120)          \
    X(DocumentScope, 161)       \
    X(Gradient, 165)            \
    X(Left, 206)                \
    X(Length, 208)              \
    X(TransientScope, 226)      \
    X(Object, 266)              \
    X(RenderedObjectList, 281)  \
    X(Position, 294)            \
    X(PropertyHasChanged, 299)  \
    X(RenderPlugin, 330)        \
    X(Rendering, 335)           \
    X(Right, 353)               \
    X(Size, 387)                \
    X(Top, 423)                 \
    X(Type, 427)                \
    X(Alignment, 1001)          \
    X(Area, 1002)               \
    X(Color, 1003)              \
    X(DefaultPreset, 1004)      \
    X(Description, 1005)        \
    X(DisplayUnitList, 1006)    \
    X(InstalledPreset, 1007)    \
    X(NameTemplate, 1008)       \
    X(Number, 1009)             \
    X(Quantity, 1010)           \
    X(ResetToDefaults, 1011)    \
    X(SceneCamera, 1012)        \
    X(SliceCamera, 1013)        \
    X(UserPreset, 1014)         \
    X(Volume, 1015)             \
    X(Workspace, 1016)          \
    X(WorkspaceWidget, 1017)    \
    X(CrossPosition, 1018)      \
    X(SceneMin, 1019)           \
    X(SceneMax, 1020)           \
    X(SceneStep, 1021)          \
    X(LayerList, 1022)          \
    X(Opacity, 1023)

/** Names whose numbers the host fixes, but which other modules register and export as well. */
#define LYR_HOST_NAMES(X) \
    X(Percent, 1100)      \
    X(Degree, 1101)

namespace Lyr {

#define LYR_DEFINE_IDENTIFIER(name, offset) inline constexpr Lyrenum name{LYR_HOST_BLOCK + (offset)};
LYR_HOST_IDENTIFIERS(LYR_DEFINE_IDENTIFIER)
#undef LYR_DEFINE_IDENTIFIER

// Error codes: a block of their own, -204800000 and up.
inline constexpr Lyrenum Failed{-204799999};             ///< 0xF3CB0001: an operation failed
inline constexpr Lyrenum UnknownIdentifier{-204799998};  ///< a name that is not registered
inline constexpr Lyrenum ReadOnly{-204799997};           ///< a write to something that cannot be written
inline constexpr Lyrenum InvalidParameters{-204799996};  ///< 0xF3CB0004: refused parameters
inline constexpr Lyrenum WrongType{-204799995};          ///< 0xF3CB0005: an object of the wrong type
inline constexpr Lyrenum AllocationFailed{-204799994};   ///< 0xF3CB0006: memory could not be had
inline constexpr Lyrenum AlreadyRegistered{-204799993};  ///< a class or property that is there already
inline constexpr Lyrenum Locked{-204799992};             ///< a list that is being read
inline constexpr Lyrenum Success{1};                     ///< what an operation reports when it went well

static_assert(int(Failed) == static_cast<int>(0xF3CB0001u));
static_assert(int(InvalidParameters) == static_cast<int>(0xF3CB0004u));
static_assert(int(WrongType) == static_cast<int>(0xF3CB0005u));
static_assert(int(AllocationFailed) == static_cast<int>(0xF3CB0006u));
static_assert(int(DocumentScope) == 0x0C3500A1 && int(DocumentScope) == 204800161);
static_assert(int(PropertyHasChanged) == 0x0C35012B && int(PropertyHasChanged) == 204800299);
static_assert(int(Length) == 0x0C3500D0 && int(Length) == 204800208);
static_assert(int(Angle) == 0x0C350016 && int(TransientScope) == 0x0C3500E2 && int(Object) == 0x0C35010A);
static_assert(int(Left) == 0x0C3500CE && int(Right) == 0x0C350161 && int(Bottom) == 0x0C350036);
static_assert(int(Top) == 0x0C3501A7 && int(Center) == 0x0C35003D && int(Position) == 0x0C350126);
static_assert(int(Size) == 0x0C350183 && int(DotsPerInch) == 0x0C350072 && int(Camera) == 0x0C35003B);
static_assert(int(RenderedObjectList) == 0x0C350119 && int(DriverInit) == 0x0C350078);
static_assert(int(RenderPlugin) == 0x0C35014A && int(Rendering) == 0x0C35014F);
static_assert(int(Constant) == 204800085 && int(Gradient) == 204800165 && int(Type) == 204800427);

}  // namespace Lyr
