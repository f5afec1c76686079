#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_core/Lyrenum.h>

/** The names that this library registers and exports, X(name), in the order of registration. */
#define LYS_ANALYSIS_IDENTIFIERS(X) X(SurfaceValue) X(MarkedDefect) X(HighlightedSection) X(ToleranceTable)

/** Module name of this library. */
inline constexpr const char* LYS_ANALYSIS_MODULE = "lys_analysis";

namespace Lyr {
// Numbers are given when the library is loaded: do not read these from static initialisers of other sources.
#define LYS_DECLARE_IDENTIFIER(name) LYS_ANALYSIS_EXPORT extern const Lyrenum name;
LYS_ANALYSIS_IDENTIFIERS(LYS_DECLARE_IDENTIFIER)
#undef LYS_DECLARE_IDENTIFIER
}  // namespace Lyr

/** Registers the names of this library, once; a call that follows a failure tries only the missing ones. True when all
 * are registered. */
LYS_ANALYSIS_EXPORT bool __lyqanalysis_enum_init();  // NOLINT(bugprone-reserved-identifier)
