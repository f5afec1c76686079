#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrString.h>
#include <lyr_core/Lyrenum.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

class LyrColorLookupTable;

/** The tolerance tables (ToleranceTable.h) among the presets of tables, the user's and the installed ones. */
class LYS_ANALYSIS_EXPORT TolerancePresets {
public:
    struct Entry {
        LyrString name;
        Lyrenum kind;
        bool isOfVolumes = false;  ///< whether the table's quantity is Volume
        LyrObjectPtr table;        ///< LyrColorLookupTable, not null
    };

    /** Reads what there is now: first the tables of volumes, then all others, in both the user's before the installed
     * ones. A file that did not change is not read again; one that cannot be read is left out. */
    const std::vector<Entry>& update();
    const std::vector<Entry>& entries() const { return mEntries; }

private:
    struct File {
        std::int64_t changed = 0;  ///< when, ns
        std::int64_t size = 0;
        LyrObjectPtr table;  ///< null if it is no tolerance table
    };

    void add(Lyrenum kind);
    LyrObjectPtr read(const std::string& path);

    std::vector<Entry> mEntries;
    std::map<std::string, File> mFiles;
};
