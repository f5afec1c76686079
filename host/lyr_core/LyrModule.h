#pragma once

#include <lyr_core/LyrModulePresence.h>

#include <cstdint>

/** What a module tells of itself. A loader reads the note from the file before any code of the module runs, then calls
 * the entry to get at the initialiser. */

/** Changes whenever the binary interface between host and modules does. */
inline constexpr std::uint32_t LYR_MODULE_ABI = 0x4C590001;

/** Functions of a module, given by its C entry. */
struct LyrModuleEntry {
    std::uint32_t abi;
    const char* name;
    bool (*ready)();  ///< whether loading registered all that the module needs; tries again what is missing
    void (*init)();
    void (*cleanup)();
};

/** Name of the C entry: `extern "C" const LyrModuleEntry* lyr_module_entry()`. */
#define LYR_MODULE_ENTRY_SYMBOL "lyr_module_entry"

/** The ELF note (owner "LYS", type 1) that names a module. `seal` is a checksum of the rest of the file, put in after
 * the file was linked; 0 means that the file is not sealed. */
struct LyrModuleNote {
    std::uint32_t ownerSize = 4;
    std::uint32_t descriptionSize = 64;
    std::uint32_t type = 1;
    char owner[4] = {'L', 'Y', 'S', '\0'};
    std::uint32_t abi = LYR_MODULE_ABI;
    std::uint32_t reserved = 0;
    std::uint64_t seal = 0;
    char name[48] = {};
};
static_assert(sizeof(LyrModuleNote) == 80 && alignof(LyrModuleNote) == 8);

/** Writes note and entry of a module; once, at the end of the source that holds the module's static objects. */
#define LYR_DEFINE_MODULE(moduleName, readyFunction, initFunction, cleanupFunction)                            \
    extern "C" __attribute__((visibility("default"), used, aligned(8), section(".note.lys.module")))           \
    const LyrModuleNote lyr_module_note = {4, 64, 1, {'L', 'Y', 'S', '\0'}, LYR_MODULE_ABI, 0, 0, moduleName}; \
    static const LyrModulePresence lyr_module_presence(moduleName);                                            \
    extern "C" __attribute__((visibility("default"))) const LyrModuleEntry* lyr_module_entry() {               \
        static const LyrModuleEntry entry = {LYR_MODULE_ABI, moduleName, readyFunction, initFunction,          \
                                             cleanupFunction};                                                 \
        return &entry;                                                                                         \
    }
