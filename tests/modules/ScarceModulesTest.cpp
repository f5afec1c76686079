#include "ModuleTools.h"
#include "Process.h"
#include "scarce/EachAllocation.h"

#include <lyr_core/LyrMetaClass.h>

#include <dlfcn.h>

using namespace modules;

// The module loader with each allocation failing in turn, those of the modules' static objects included: a module is
// loaded whole or not at all.

namespace {

constexpr const char* CLASSES[] = {"LyrColorLookupTable", "LyrColorLookupTable::Section",
                                   "LyrColorLookupTableRenderSettings", "LyrColorLookupTableRenderPlugin",
                                   "LyrPresetColortableProxyObject"};

bool isWhole() {
    bool whole = LyrModuleLoader::isLoaded(COLORTABLE);
    for (const char* name : CLASSES) {
        const LyrMetaClass* meta = LyrMetaClass::find(name);
        whole = whole && meta && meta->isCreatable();
    }
    return whole && id("CreateSmooth") != Lyrenum(-1) && id("MaximumRange") != Lyrenum(-1) && newTable();
}

bool isGone() {
    return !LyrModuleLoader::isLoaded(COLORTABLE) && LyrIdentifierRegistry::moduleRegistrationCount(COLORTABLE) == 0 &&
           LyrMetaClass::moduleClassCount(COLORTABLE) == 0 && !process::maps(COLORTABLE_MODULE);
}

/** The process makes the application when it starts. */
struct NoModule {
    NoModule() {
        // The vector library's own static objects end the process without memory: they are there already.
        dlopen("libhwy.so.1", RTLD_NOW | RTLD_NODELETE);
        LyqApplication::instance().undoStack().clear();
    }
    ~NoModule() {
        while (LyrModuleLoader::isLoaded(COLORTABLE) && LyrModuleLoader::unload(COLORTABLE, message)) {
        }
    }
    std::string path = COLORTABLE_MODULE;
    LyrString message;
};

struct LoadedModule : NoModule {
    LoadedModule() { EXPECT_TRUE(LyrModuleLoader::load(path, message)) << message.utf8(); }
};

}  // namespace

TEST(ScarceModules, are_loaded_whole_or_not_at_all) {
    const int failures = scarce::withEachAllocationFailing<NoModule>(
        [](NoModule& module) { return LyrModuleLoader::load(module.path, module.message); },
        [](NoModule&, bool done) { EXPECT_TRUE(done ? isWhole() : isGone()); });
    EXPECT_GT(failures, 100);
}

TEST(ScarceModules, are_unloaded_without_needing_any) {
    LoadedModule module;
    {
        const ScarceMemory memory(0, ScarceMemory::Failing::ForGood);
        EXPECT_TRUE(LyrModuleLoader::unload(COLORTABLE, module.message));
        EXPECT_FALSE(memory.hasFailed());
    }
    EXPECT_TRUE(isGone());
}

TEST(ScarceModules, that_have_to_stay_stay_as_they_are) {
    struct UsedModule : LoadedModule {
        LyrObjectRefPtr table = newTable();
    };
    for (int n = 0; n < 100; ++n) {
        UsedModule module;
        scarce::ErrorCount errors;
        bool failed = false;
        {
            const ScarceMemory memory(n, ScarceMemory::Failing::ForGood);
            EXPECT_FALSE(LyrModuleLoader::unload(COLORTABLE, module.message));
            failed = memory.hasFailed();
        }
        EXPECT_TRUE(isWhole());
        EXPECT_EQ(errors.count > 0, failed);
        if (!failed) {
            EXPECT_NE(std::string(module.message.utf8()).find("LyrColorLookupTable"), std::string::npos);
            return;
        }
    }
    ADD_FAILURE() << "no end";
}

TEST(ScarceModules, are_named_or_refused_with_an_error) {
    const int failures = scarce::withEachAllocationFailing<NoModule>(
        [](NoModule& module) { return !LyrModuleLoader::readName(module.path, module.message).isNull(); },
        [](NoModule&, bool) { EXPECT_TRUE(isGone()); });
    EXPECT_GT(failures, 0);
}

TEST(ScarceModules, are_initialised_or_say_what_is_missing) {
    const int failures = scarce::withEachAllocationFailing<LoadedModule>(
        [](NoModule& module) {
            return LyrModuleLoader::init(COLORTABLE, module.message) &&
                   LyrModuleLoader::cleanup(COLORTABLE, module.message);
        },
        [](NoModule&, bool) { EXPECT_TRUE(isWhole()); });
    EXPECT_GT(failures, 0);
}
