#pragma once

#include <lyr_core/LyrObjectFile.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_core/LyrString.h>
#include <lys_core/LysCoreExport.h>

#include <memory>
#include <string>
#include <vector>

/** The presets of one class in one folder, an object file each. A preset's name is the naming template of its object;
 * a file without one is named after itself. Of several files with one name the one that a store would make counts,
 * then the first by file name, but those that can be used before all others. Any number of processes may use a folder
 * at once: changes are made under a lock on the folder, which ends with its process.
 *
 *  Symbolic links in the folder are neither read nor written through, and files of other classes are left alone. What
 * cannot be read stays as it is until somebody deletes it, or saves under its name. */
class LYS_CORE_EXPORT LyqPresetStore {
public:
    /** A preset as it lies in the folder. */
    struct Entry {
        LyrString name;
        std::string path;
        /** Why it cannot be used, with the path; null if nothing is known against it. */
        LyrString problem;
        /** Written by a newer version of the program: never to be overwritten. */
        bool isNewer = false;
    };

    /** `className`: the class of the objects, derived ones included; empty for every class. A folder that is writable
     * is swept: what savers that were killed have left behind is removed. */
    LyqPresetStore(std::string folder, bool isWritable, std::string className);
    ~LyqPresetStore();
    LyqPresetStore(const LyqPresetStore&) = delete;
    LyqPresetStore& operator=(const LyqPresetStore&) = delete;

    const std::string& folder() const { return mFolder; }
    bool isWritable() const { return mIsWritable; }

    /** All presets by name, with those that cannot be read. A folder that is not there holds none; one that cannot be
     * read gives a message (may be null). */
    std::vector<Entry> list(LyrString* message = nullptr) const;
    bool contains(const LyrString& name) const;

    /** The object of a preset, with the roles of all that it owns prepared. Null, and a report that says why, if there
     * is no such preset or it cannot be used. */
    LyrObjectPtr load(const LyrString& name, LyrObjectFile::Report& report, Lyrenum scope) const;

    /** Writes an object under a name, which becomes its naming template. With `replace` it takes the place of a preset
     * of that name, but not of one of a newer version. False, and a message, if it could not be done: the folder is
     * then as it was. */
    bool save(LyrObject& preset, const LyrString& name, LyrString& message, bool replace = true);

    /** Gives a preset another name, which must be free. */
    bool rename(const LyrString& from, const LyrString& to, LyrString& message);
    bool remove(const LyrString& name, LyrString& message);

    /** Takes in a copy of a preset's file, byte for byte. `name` receives its name. With `replace` it takes the place
     * of a preset of that name. The message may also tell what a person should know of a file that was taken in. */
    bool importFile(const std::string& path, bool replace, LyrString& name, LyrString& message);
    /** Whether a file could be taken in as things stand, without doing so. */
    bool checkImport(const std::string& path, bool replace, LyrString& name, LyrString& message);
    /** Whether the last change failed for nothing but a preset that has the name already. */
    bool isNameTaken() const { return mIsNameTaken; }

    /** The content of a preset's file. */
    bool contentOf(const LyrString& name, std::string& bytes, LyrString& message) const;
    /** Writes a copy of a preset's file, byte for byte. */
    bool exportFile(const LyrString& name, const std::string& path, LyrString& message) const;

    /** Why a name cannot be a preset's, a null string if it can. */
    static LyrString checkName(const LyrString& name);

private:
    class Lock;
    struct Index;

    struct Incoming;

    bool readIncoming(const std::string& path, Incoming& incoming, LyrString& message) const;
    bool refuseTaken(const LyrString& name, LyrString& message);
    bool mayChange(LyrString& message) const;
    bool find(const LyrString& name, Entry& entry) const;
    std::string targetFor(const LyrString& name, const Entry* present, LyrString& message) const;
    LyrObjectPtr loadEntry(const Entry& entry, LyrObjectFile::Report& report, Lyrenum scope) const;

    std::string mFolder;
    bool mIsWritable;
    bool mIsNameTaken = false;
    std::string mClass;
    std::unique_ptr<Index> mIndex;
};
