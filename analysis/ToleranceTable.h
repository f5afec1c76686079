#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_core/LyrRGBA.h>

#include <span>
#include <vector>

class LyrColorLookupTable;
struct LyrDefect;
enum class LyrVerdict;

/** Whether a table is a tolerance table, as lysVerdicts() tells. */
LYS_ANALYSIS_EXPORT bool lysIsTolerance(const LyrColorLookupTable& table);

/** The colour that stands for a verdict; transparent black for None. */
LYS_ANALYSIS_EXPORT LyrRGBA<float> lysColorOf(LyrVerdict verdict);

/** Judges defects by a tolerance table: one whose sections, constants or gradients from a colour to the same one, all
 * have one of three colours, to 8 bits a channel and opaque. They are those of the installed tolerance presets:
 * pass (0, 158, 115), warn (230, 159, 0), fail (213, 94, 0).
 *
 *  A defect gets the verdict of the section that its `volume`, mm³ and narrowed to float, falls into; boundaries are
 * read as mm³, whatever quantity the table names.
 *  @return one verdict for each defect; none at all if the table is null or no tolerance table */
LYS_ANALYSIS_EXPORT std::vector<LyrVerdict> lysVerdicts(const LyrColorLookupTable* table,
                                                        std::span<const LyrDefect> defects);
