#pragma once

#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrObjectPtr.h>

#include <string>
#include <vector>

namespace lys::cli {

/** Finds the table that a user names: an existing file (a table's or a preset's) first, then the user's, an installed
 * or a built-in preset by its name. The table is the caller's alone and may be changed. */
class TableSource {
public:
    /** Throws Failure (Unusable) when there is no such table or its file cannot be used. */
    explicit TableSource(const std::string& nameOrPath);

    LyrColorLookupTable& table() const { return static_cast<LyrColorLookupTable&>(*mTable); }
    /** Where it comes from: the path, or the name of a preset. */
    const std::string& name() const { return mName; }
    /** True for a preset that is part of the program. */
    bool isBuiltIn() const { return mBuiltIn; }

    /** True if a preset has this name. */
    static bool isPreset(const std::string& name);

private:
    void load();
    void checkSections() const;

    std::string mName;
    LyrObjectPtr mTable;
    bool mBuiltIn = false;
};

}  // namespace lys::cli
