#pragma once

#include <colortable/LysColortableExport.h>
#include <lyr_core/Lyrenum.h>

/** The names that this library registers and exports, X(name), in the order of registration. */
#define LYS_COLORTABLE_IDENTIFIERS(X)      \
    X(ColorLookupTable)                    \
    X(SectionList)                         \
    X(PositionList)                        \
    X(ExtensionColorList)                  \
    X(ExtensionEnumList)                   \
    X(PointListRed)                        \
    X(PointListGreen)                      \
    X(PointListBlue)                       \
    X(PointListAlpha)                      \
    X(Full)                                \
    X(Rainbow)                             \
    X(InvertedRainbow)                     \
    X(BlackGreenBlueRed)                   \
    X(Custom)                              \
    X(Continue)                            \
    X(HueCycle)                            \
    X(InvertedHueCycle)                    \
    X(ColorLookupTableRenderSettings)      \
    X(ColorLookupTableAnnotationContainer) \
    X(ColorLookupTableAnnotationGroup)     \
    X(AnnotationHandlerList)               \
    X(OutlineColor)                        \
    X(Font)                                \
    X(HasOutline)                          \
    X(Thickness)                           \
    X(TextPosition)                        \
    X(TextAlignment)                       \
    X(AutoLabel)                           \
    X(AutoScale)                           \
    X(ForceScaleColorLookupTable)          \
    X(FiniteMode)                          \
    X(AbsoluteMode)                        \
    X(ScaleColorLookupTable)               \
    X(CreateSmooth)                        \
    X(CreateStepped)                       \
    X(CreateSphereSegmentStepped)          \
    X(CreationParameters)                  \
    X(CreationType)                        \
    X(ReferenceRange)                      \
    X(MaximumRange)                        \
    X(Percent)

/** Names that single sources of this library use, X(name), not exported. A name that two of them use stands twice. */
#define LYS_COLORTABLE_LOCAL_NAMES(X) \
    X(Degree)                         \
    X(DescriptionTemplate)            \
    X(DescriptionTemplate)            \
    X(AnnotationList)                 \
    X(AnnotationList)                 \
    X(ColorLookupTableRenderPlugin)

/** Module name of this library. */
inline constexpr const char* LYS_COLORTABLE_MODULE = "lys_colortable";

namespace Lyr {
// Numbers are given when the library is loaded: do not read these from static initialisers of other sources.
#define LYS_DECLARE_IDENTIFIER(name) LYS_COLORTABLE_EXPORT extern const Lyrenum name;
LYS_COLORTABLE_IDENTIFIERS(LYS_DECLARE_IDENTIFIER)
#undef LYS_DECLARE_IDENTIFIER
}  // namespace Lyr

/** Registers the names of this library, once; a call that follows a failure tries only the missing ones. True when all
 * are registered. */
LYS_COLORTABLE_EXPORT bool __lyqcolortable_enum_init();  // NOLINT(bugprone-reserved-identifier)
