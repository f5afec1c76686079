#pragma once

#include <lyr_core/LyrCoreExport.h>

/** How the process hands colours over. Kept apart from the colour template, so that all libraries share one switch. */
class LYR_CORE_EXPORT LyrColorMode {
public:
    /** True while colours are to be clamped into [0, 1] once more where they are handed over; off at start. */
    static bool isClamped() noexcept;
    static void setClamped(bool clamped) noexcept;
};
