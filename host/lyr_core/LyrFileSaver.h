#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrString.h>

#include <string>
#include <string_view>

/** Replaces files so that at every moment the old or the new one is there, whole, whatever stops the program or the
 * machine. */
class LYR_CORE_EXPORT LyrFileSaver {
public:
    /** Makes `content` the content of a file.
     *
     *  A temporary file beside it is written, flushed to the disk and read back; then it takes the old file's place,
     * and the folder is flushed. The permissions of the old file are kept, owner and group where that is permitted. A
     * symbolic link stays one: what it leads to is replaced. Only ordinary files that may be written are replaced.
     *
     *  False, and a message (may be null) with path, reason and what to do: the old file is in place, or there is none
     * as before, and nothing is left beside it. Only where the file system has no hard links can a new file stay in
     * place although the folder could not be flushed; the message then says so. */
    static bool replace(const std::string& path, std::string_view content, LyrString* message = nullptr);

    /** Removes what savers that were killed have left in a folder, and nothing else: never a file of a process that
     * lives, and never is a leftover put in the place of a file. For the start of a program. Returns how many files
     * were removed. */
    static int sweepLeftovers(const std::string& folder);
    /** The same for the folder in which replace() would make a file: before one is saved. */
    static int sweepBeside(const std::string& path);
};
