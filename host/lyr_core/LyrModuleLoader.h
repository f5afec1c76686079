#pragma once

#include <lyr_core/LyrCoreExport.h>
#include <lyr_core/LyrString.h>
#include <lyr_core/LyrStringList.h>

#include <string>

/** Loads modules at run time and really unloads them. A file is checked before any of its code runs: an ELF library of
 * this machine, whole, with the module note of this ABI, and unchanged since it was sealed. */
class LYR_CORE_EXPORT LyrModuleLoader {
public:
    /** Has a say before a module goes. */
    class LYR_CORE_EXPORT UnloadGuard {
    public:
        virtual ~UnloadGuard();
        /** Why a module cannot go now, null if it can. */
        virtual LyrString reasonToStay(const char* module) = 0;
        /** The module is about to go, if nothing has to stay: do or drop what is queued for its objects. Called again
         * after its clean-up. */
        virtual void aboutToUnload(const char* module);
        /** The module's code goes now, at the end of the process too, where nobody is asked: drop its objects. */
        virtual void moduleGoes(const char* module);
    };

    /** Loads a module from an absolute path: its identifiers and classes are registered then. A module that is loaded
     * already is counted once more. On failure `message` says what, where and what to do, and no code of the file has
     * run (but for a module whose own entry is wrong, or that could not register all that it brings: that goes again).
     * Where memory runs out an error is reported as well, and `message` may be null. */
    static bool load(const std::string& path, LyrString& message);
    /** Calls the module's initialiser, as a user of the module; cleanup() as often. */
    static bool init(const char* module, LyrString& message);
    static bool cleanup(const char* module, LyrString& message);
    /** Takes back one load; the last one unloads the module. Refused, with the reasons in `message`, while objects of
     * its classes live or a guard objects. Initialisations that are left are taken back first. */
    static bool unload(const char* module, LyrString& message);

    static bool isLoaded(const char* module);
    static LyrStringList getLoadedModules();

    /** The name in a module's note, without loading the file; null and a message if it is no module. */
    static LyrString readName(const std::string& path, LyrString& message);

    static void addUnloadGuard(UnloadGuard* guard);
    static void removeUnloadGuard(UnloadGuard* guard);
};
