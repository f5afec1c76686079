#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/Lyrenum.h>
#include <lyr_volume/LyrVolume.h>

/** A new table (LyrColorLookupTable), a rainbow over a range, which is widened where it has no extent; 0 to 1 for an
 * empty one. Undo hears nothing of its making. Null when memory ran out. */
LYS_ANALYSIS_EXPORT LyrObjectPtr lysRainbowTable(LyrVolume::ValueRange range, Lyrenum quantity);
