#pragma once

#include <lyr_core/LyrCoreExport.h>

/** Stands in a module and tells the unload guards when the module's code goes. At the end of a process that means:
 * before the module's classes are destroyed, while an undo history that is older than the module may still hold its
 * objects. */
class LYR_CORE_EXPORT LyrModulePresence {
public:
    /** `module` must be a literal. */
    explicit LyrModulePresence(const char* module);
    ~LyrModulePresence();
    LyrModulePresence(const LyrModulePresence&) = delete;
    LyrModulePresence& operator=(const LyrModulePresence&) = delete;

private:
    const char* mModule;
};
