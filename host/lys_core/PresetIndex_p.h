#pragma once

#include <lys_core/LyqPresetStore.h>

#include <sys/stat.h>

#include <map>
#include <string>
#include <system_error>

/** What a preset's file says about itself: read without making objects. */
struct PresetHeader {
    LyrString name;
    std::string className;
    std::string baseName;
    LyrString problem;
    bool isNewer = false;
    /** False if the name is that of the file, as the content has none. */
    bool carriesName = false;

    /** Reads a file, which must be an ordinary one. */
    static PresetHeader read(const std::string& path);
    static PresetHeader parse(const std::string& path, const std::string& bytes);
    bool isOf(const std::string& wanted) const;
};

/** Reads a whole ordinary file of at most as many bytes as an object file may have; links are not followed. False, and
 * a reason. */
bool lysReadPresetFile(const std::string& path, std::string& bytes, LyrString& reason);

/** Writes a name into the text of a preset that has none; all other bytes stay. False if the text leaves no place. */
bool lysInsertPresetName(std::string& bytes, const LyrString& name);

/** The headers of a folder's files, read again only where a file has changed. */
struct LyqPresetStore::Index {
    struct Known {
        ino_t inode = 0;
        off_t size = 0;
        timespec modified{};
        timespec changed{};
        PresetHeader header;
        /** The file has the name that a store gives to the preset in it. */
        bool isNamedAfterPreset = false;
        ino_t listedInode = 0;  ///< as the folder tells it, which need not be that of the file
        unsigned scan = 0;      ///< the last one that met the file

        bool isStillTrue(const struct stat& now) const;
        /** Of several files with one name the least rank counts, then the first by file name. */
        int rank() const;
    };
    std::map<std::string, Known> files;

    /** What is known of a file that is there; null if it is not. */
    const Known* examine(const std::string& path);

    /** Brings `files` up to date with a folder. A `thorough` scan examines each file. Any other trusts files of the
     * store's own naming until something else has taken their place: a folder of thousands is scanned for each new
     * name. The error is that of reading the folder. */
    std::error_code scan(const std::string& folder, bool thorough);

private:
    unsigned mScan = 0;
};
