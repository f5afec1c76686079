#include <lyr_core/LyrClass.h>
#include <lyr_core/LyrClassManager.h>
#include <lyr_core/LyrError.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrModule.h>
#include <lyr_core/LyrModuleFile_p.h>
#include <lyr_core/LyrModuleLoader.h>
#include <lyr_core/LyrModulePresence.h>
#include <lyr_core/LyrOutOfMemory_p.h>
#include <lyr_core/LyrScratch.h>
#include <lyr_core/Lyrenum.h>

#include <dlfcn.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <new>
#include <vector>

namespace {

struct LoadedModule {
    std::string path;
    void* handle = nullptr;
    const LyrModuleEntry* entry = nullptr;
    int loads = 0;
    int inits = 0;
};

struct Loader {
    std::map<std::string, LoadedModule, std::less<>> modules;
    std::vector<LyrModuleLoader::UnloadGuard*> guards;

    static Loader& instance() {
        static Loader loader;
        return loader;
    }
    LoadedModule* find(const char* name) {
        auto found = name ? modules.find(std::string_view(name)) : modules.end();
        return found != modules.end() ? &found->second : nullptr;
    }
};

bool fail(LyrString& message, const std::string& text) {
    message = LyrString::fromUtf8(text.c_str());
    return false;
}

/** Memory ran out: all is as before. The message itself may find none; it is null then, and the error stands for it. */
bool failWithoutMemory(LyrString& message) noexcept {
    LyrError::emitError(LyrError::Message(Lyr::AllocationFailed));
    message = LyrString();
    try {
        message = LyrString("There is not enough memory for that; close something else and try again.");
    } catch (...) {
        return false;
    }
    return false;
}

/** Does what a call of the loader does; nothing that is thrown leaves it. */
template <class Work>
bool guarded(LyrString& message, Work work) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return failWithoutMemory(message);
    } catch (const std::exception& problem) {
        try {
            return fail(message, std::string("The module could not be looked at: ") + problem.what() + ".");
        } catch (...) {
            return failWithoutMemory(message);
        }
    } catch (...) {
        return failWithoutMemory(message);
    }
}

bool failNotLoaded(LyrString& message, const char* module) {
    return fail(message, "Module \"" + std::string(module ? module : "") + "\" is not loaded.");
}

bool checkFile(const std::string& path, LyrModuleFile& file, std::string& text) {
    std::string reason;
    if (!std::filesystem::path(path).is_absolute()) {
        reason = "its path is not absolute; give the full path of the file in the plug-in folder";
    } else if (!file.read(path, reason)) {
        reason += "; install the module again";
    } else if (file.abi() != LYR_MODULE_ABI) {
        reason = "it was built for another version of this application; install the matching one";
    } else if (file.seal != 0 && file.seal != file.computeSeal()) {
        reason = "its content was changed since it was built; install it again";
    } else if (file.name.empty()) {
        reason = "its note names no module";
    } else {
        return true;
    }
    text = "Cannot load module " + path + ": " + reason + ".";
    return false;
}

const LyrModuleEntry* findEntry(void* handle, const std::string& name) {
    using EntryFunction = const LyrModuleEntry* (*)();
    auto* function = reinterpret_cast<EntryFunction>(dlsym(handle, LYR_MODULE_ENTRY_SYMBOL));
    const LyrModuleEntry* entry = function ? function() : nullptr;
    const bool fits = entry && entry->abi == LYR_MODULE_ABI && entry->name && name == entry->name && entry->ready &&
                      entry->init && entry->cleanup;
    return fits ? entry : nullptr;
}

/** The classes of a module that have live objects, with their numbers. */
std::string describeLiveObjects(const char* module) {
    const auto pattern = LyrClassManager::SearchPattern::ofModule(module);
    std::vector<LyrClass*> objects(static_cast<std::size_t>(LyrClassManager::getObjectCount(pattern)));
    LyrClassManager::findObjects(objects.data(), static_cast<long long>(objects.size()), pattern);
    std::map<std::string, int> counts;
    for (const LyrClass* object : objects) {
        ++counts[object->getMetaClass().getClassName()];
    }
    std::string text;
    for (const auto& [name, count] : counts) {
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " of class " + name;
    }
    return text;
}

/** Has the guards drop what is queued for a module. That runs any code: guards and modules may come and go. */
void announceUnload(const char* module) {
    LyrScratch<LyrModuleLoader::UnloadGuard*> guards;
    for (LyrModuleLoader::UnloadGuard* guard : Loader::instance().guards) {
        if (!guards.append(guard)) {
            throw std::bad_alloc();
        }
    }
    for (LyrModuleLoader::UnloadGuard* guard : guards) {
        const auto& present = Loader::instance().guards;
        if (std::find(present.begin(), present.end(), guard) != present.end()) {
            guard->aboutToUnload(module);
        }
    }
}

/** Why a module has to stay, empty if it can go. */
std::string reasonsToStay(const char* module) {
    std::string text;
    for (LyrModuleLoader::UnloadGuard* guard : Loader::instance().guards) {
        const LyrString reason = guard->reasonToStay(module);
        if (!reason.isEmpty()) {
            text += (text.empty() ? "" : "; ") + std::string(reason.utf8());
        }
    }
    const std::string objects = describeLiveObjects(module);
    if (!objects.empty()) {
        text += (text.empty() ? "" : "; ") + ("objects are alive: " + objects);
    }
    return text;
}

/** Hears whether memory runs out while the static objects of a module register what it brings. */
class LoadWatch : public LyrError::Listener {
public:
    bool errorEmitted(const LyrError::Message& error) override {
        mRanOut = mRanOut || error.getCode() == Lyr::AllocationFailed;
        return false;  // it is for the others as well
    }
    bool ranOut() const { return mRanOut; }

private:
    bool mRanOut = false;
};

/** Closes a library that is not kept. */
struct LibraryCloser {
    void operator()(void* handle) const { dlclose(handle); }
};

/** Maps a file that was checked, and looks at its entry. What it registered goes again unless all is there. */
bool openModule(const std::string& path, const std::string& name, LyrString& message) {
    auto& modules = Loader::instance().modules;
    std::map<std::string, LoadedModule, std::less<>> fresh;  // the entry has its memory before the module is there
    LoadedModule& module = fresh[name];
    module.path = path;
    module.loads = 1;
    const std::string notComplete =
        "Cannot load module " + path + ": it could not register all of its names and classes; try again.";
    const LoadWatch watch;
    // All symbols are resolved before any code runs, so that a missing one is found here.
    std::unique_ptr<void, LibraryCloser> handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!handle) {
        const char* reason = dlerror();
        return fail(message, "Cannot load module " + path + ": " + (reason ? reason : "unknown reason") +
                                 "; install the matching one.");
    }
    module.entry = findEntry(handle.get(), name);
    if (!module.entry) {
        return fail(message, "Cannot load module " + path +
                                 ": its entry is missing or does not fit its note; install the module again.");
    }
    if (!module.entry->ready() || watch.ranOut()) {
        return fail(message, notComplete);
    }
    module.handle = handle.release();
    modules.merge(fresh);
    return true;
}

bool isMapped(const std::string& path) {
    void* handle = dlopen(path.c_str(), RTLD_NOLOAD | RTLD_LAZY);
    if (handle) {
        dlclose(handle);
    }
    return handle != nullptr;
}

bool finishUnload(const std::string& name, const LoadedModule& module, LyrString& message) {
    if (dlclose(module.handle) != 0 || isMapped(module.path)) {
        return fail(message, "Module \"" + name + "\" was closed, but stays in memory: another library uses it.");
    }
    const int names = LyrIdentifierRegistry::moduleRegistrationCount(name.c_str());
    const int classes = LyrMetaClass::moduleClassCount(name.c_str());
    if (names != 0 || classes != 0) {
        return fail(message, "Module \"" + name + "\" left " + std::to_string(names) + " names and " +
                                 std::to_string(classes) + " classes behind.");
    }
    return true;
}

}  // namespace

LyrModuleLoader::UnloadGuard::~UnloadGuard() = default;
void LyrModuleLoader::UnloadGuard::aboutToUnload(const char*) {}
void LyrModuleLoader::UnloadGuard::moduleGoes(const char*) {}

// Made before the module's end is to be told: what tells it then outlives the module.
LyrModulePresence::LyrModulePresence(const char* module) : mModule(module) {
    Loader::instance();
}

LyrModulePresence::~LyrModulePresence() {
    for (LyrModuleLoader::UnloadGuard* guard : Loader::instance().guards) {
        guard->moduleGoes(mModule);
    }
}

bool LyrModuleLoader::load(const std::string& path, LyrString& message) {
    return guarded(message, [&] {
        LyrModuleFile file;
        std::string text;
        if (!checkFile(path, file, text)) {
            return fail(message, text);
        }
        if (LoadedModule* loaded = Loader::instance().find(file.name.c_str())) {
            std::error_code error;
            if (!std::filesystem::equivalent(loaded->path, path, error)) {
                return fail(message, "Cannot load module " + path + ": a module of its name is loaded from " +
                                         loaded->path + "; unload that first.");
            }
            ++loaded->loads;
            return true;
        }
        return openModule(path, file.name, message);
    });
}

bool LyrModuleLoader::init(const char* module, LyrString& message) {
    return guarded(message, [&] {
        LoadedModule* loaded = Loader::instance().find(module);
        if (!loaded) {
            return failNotLoaded(message, module);
        }
        ++loaded->inits;
        try {
            loaded->entry->init();
        } catch (...) {
            --loaded->inits;
            throw;
        }
        return true;
    });
}

bool LyrModuleLoader::cleanup(const char* module, LyrString& message) {
    return guarded(message, [&] {
        LoadedModule* loaded = Loader::instance().find(module);
        if (!loaded) {
            return failNotLoaded(message, module);
        }
        if (loaded->inits == 0) {
            return fail(message, "Module \"" + std::string(module) + "\" is not initialised.");
        }
        --loaded->inits;
        loaded->entry->cleanup();
        return true;
    });
}

bool LyrModuleLoader::unload(const char* module, LyrString& message) {
    return guarded(message, [&] {
        if (!isLoaded(module)) {
            return failNotLoaded(message, module);
        }
        const std::string name = module;
        LoadedModule* loaded = Loader::instance().find(module);
        if (loaded->loads > 1) {
            --loaded->loads;
            return true;
        }
        announceUnload(name.c_str());
        const std::string reasons = reasonsToStay(name.c_str());
        if (!reasons.empty()) {
            return fail(message, "Module \"" + name + "\" cannot be unloaded: " + reasons + ".");
        }
        while ((loaded = Loader::instance().find(name.c_str())) && loaded->inits > 0) {
            --loaded->inits;
            loaded->entry->cleanup();
        }
        announceUnload(name.c_str());  // what the clean-up has left to be done later
        const auto gone = Loader::instance().modules.extract(name);
        // Something in the queue may have unloaded it.
        return gone.empty() || finishUnload(name, gone.mapped(), message);
    });
}

bool LyrModuleLoader::isLoaded(const char* module) {
    return Loader::instance().find(module) != nullptr;
}

LyrStringList LyrModuleLoader::getLoadedModules() {
    return lyrOrNothing([] {
        LyrStringList names;
        for (const auto& [name, module] : Loader::instance().modules) {
            names.append(LyrString::fromUtf8(name.c_str()));
        }
        return names;
    });
}

LyrString LyrModuleLoader::readName(const std::string& path, LyrString& message) {
    LyrString name;
    guarded(message, [&] {
        LyrModuleFile file;
        std::string text;
        if (!checkFile(path, file, text)) {
            return fail(message, text);
        }
        name = LyrString::fromUtf8(file.name.c_str());
        return true;
    });
    return name;
}

void LyrModuleLoader::addUnloadGuard(UnloadGuard* guard) {
    Loader::instance().guards.push_back(guard);
}

void LyrModuleLoader::removeUnloadGuard(UnloadGuard* guard) {
    std::erase(Loader::instance().guards, guard);
}
