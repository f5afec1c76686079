#pragma once

#include <lys_core/LyqPresetStore.h>

#include <sys/stat.h>

#include <map>
#include <optional>
#include <string>

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
    bool isOf(const std::string& className) const;
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

        bool isStillTrue(const struct stat& now) const;
    };
    std::map<std::string, Known> files;

    /** The header of a file that is there; nothing if it is not. */
    std::optional<PresetHeader> headerOf(const std::string& path);
};
