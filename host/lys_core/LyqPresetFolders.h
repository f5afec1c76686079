#pragma once

#include <lys_core/LysCoreExport.h>

#include <string>

/** Where presets lie. The folders need not exist. */
class LYS_CORE_EXPORT LyqPresetFolders {
public:
    /** The user's own presets, shared by all programs: `$XDG_DATA_HOME/lys_colortable/presets`, where a variable that
     * is empty or no absolute path counts as `~/.local/share`. */
    static std::string user();
    /** The presets that come with the programs: share/lys/presets beside the folder of the libraries. */
    static std::string installed();
};
