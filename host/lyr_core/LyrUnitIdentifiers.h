#pragma once

#include <lyr_core/LyrHostIdentifiers.h>

/** The identifiers of the units: X(constant and registered name, offset in the host's block). The units "Degree" and
 *  "Percent" have no constant here: plug-ins register these names too, so they are found by name. */
#define LYR_UNIT_IDENTIFIERS(X) \
    X(Millimeter, 1200)         \
    X(Centimeter, 1201)         \
    X(Meter, 1202)              \
    X(Micrometer, 1203)         \
    X(Nanometer, 1204)          \
    X(Inch, 1205)               \
    X(Foot, 1206)               \
    X(Mil, 1207)                \
    X(SquareMillimeter, 1220)   \
    X(SquareCentimeter, 1221)   \
    X(SquareMeter, 1222)        \
    X(SquareMicrometer, 1223)   \
    X(SquareInch, 1224)         \
    X(SquareFoot, 1225)         \
    X(CubicMillimeter, 1240)    \
    X(CubicCentimeter, 1241)    \
    X(CubicMeter, 1242)         \
    X(CubicMicrometer, 1243)    \
    X(CubicInch, 1244)          \
    X(CubicFoot, 1245)          \
    X(Liter, 1246)              \
    X(Radian, 1260)

namespace Lyr {

#define LYR_DEFINE_UNIT(name, offset) inline constexpr Lyrenum name{LYR_HOST_BLOCK + (offset)};
LYR_UNIT_IDENTIFIERS(LYR_DEFINE_UNIT)
#undef LYR_DEFINE_UNIT

}  // namespace Lyr
