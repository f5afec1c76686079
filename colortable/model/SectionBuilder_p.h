#pragma once

#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrRGBA.h>
#include <lyr_core/Lyrenum.h>

/** What a new section of a table is to be. */
struct SectionRecipe {
    Lyrenum type;
    const LyrRGBA<float>* color = nullptr;  ///< one point (0, channel) in each list; null leaves the lists empty
    const char* nameTemplate = nullptr;     ///< null sets none
    bool prepareRoles = false;
};

/** The fixed colours of generated and default tables: violet below the range, pink above. */
inline const LyrRGBA<float> COLOR_BELOW_RANGE(0.6f, 0.0f, 1.0f, 1.0f);
inline const LyrRGBA<float> COLOR_ABOVE_RANGE(1.0f, 0.0f, 0.6f, 1.0f);

/** A new section, not yet linked; null when it could not be made. */
LyrObjectRefPtr buildSection(const SectionRecipe& recipe);
