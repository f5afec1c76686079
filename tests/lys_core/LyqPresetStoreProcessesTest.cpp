#include <lys_core/PresetTestTools.h>

#include <lyr_core/TemporaryFolder.h>
#include <lys_core/LyqPresetStore.h>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <functional>

using namespace preset_test;

namespace {

constexpr int PROCESSES = 8;

/** Saves of each process: LYS_PRESET_SAVES, or a few. */
int savesOfEach() {
    const char* text = std::getenv("LYS_PRESET_SAVES");
    int count = 0;
    const bool isGiven = text && std::from_chars(text, text + std::strlen(text), count).ec == std::errc();
    return isGiven && count > 0 ? count : 12;
}

std::string nameOf(int process, int save) {
    return "preset " + std::to_string(process) + " / " + std::to_string(save);
}

/** What one process does: presets of its own, one that all share, and the renaming of every third. */
int runProcess(const std::string& folder, int process, int saves) {
    LyqPresetStore store(folder, true, "PresetTestThing");
    LyrString message;
    for (int i = 0; i < saves; ++i) {
        HeldThing thing(static_cast<float>(process * 10000 + i));
        const std::string name = nameOf(process, i);
        const bool done = store.save(*thing, i % 3 == 0 ? name + " draft" : name, message) &&
                          store.save(*thing, "shared", message) &&
                          (i % 3 != 0 || store.rename(name + " draft", name, message));
        if (!done) {
            std::fprintf(stderr, "%s\n", message.utf8());
            return 1;
        }
    }
    return 0;
}

/** Runs a function in each of the processes at once. */
void inEveryProcess(const std::function<int(int)>& run) {
    pid_t children[PROCESSES];
    for (int process = 0; process < PROCESSES; ++process) {
        children[process] = ::fork();
        ASSERT_GE(children[process], 0);
        if (children[process] == 0) {
            ::_exit(run(process));
        }
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
    }
}

std::string contendedName(int name) {
    return "contended " + std::to_string(name);
}

/** The value of a preset, -1 if it cannot be loaded. */
int valueOf(const LyqPresetStore& store, const std::string& name) {
    LyrObjectFile::Report report;
    const LyrObjectPtr object = store.load(name, report, Lyr::TransientScope);
    return object ? static_cast<int>(static_cast<Thing*>(object.get())->value.stored()) : -1;
}

/** Saves under names that all processes share, from different ends. What one has saved is there from then on, whole: by
 * it or by another. */
int runContender(const std::string& folder, int process, int names) {
    LyqPresetStore store(folder, true, "PresetTestThing");
    LyrString message;
    for (int i = 0; i < names; ++i) {
        const int name = (i + process * names / PROCESSES) % names;
        HeldThing thing(static_cast<float>(process * 10000 + name));
        if (!store.save(*thing, contendedName(name), message)) {
            std::fprintf(stderr, "%s\n", message.utf8());
            return 1;
        }
        const int value = valueOf(store, contendedName(name));
        if (value < 0 || value % 10000 != name || value / 10000 >= PROCESSES) {
            std::fprintf(stderr, "%s: %d\n", contendedName(name).c_str(), value);
            return 2;
        }
    }
    return 0;
}

}  // namespace

TEST(LyqPresetStoreProcesses, eight_processes_that_save_at_once_lose_nothing) {
    Thing::metaClass();
    const TemporaryFolder folder;
    const int saves = savesOfEach();
    inEveryProcess([&](int process) { return runProcess(folder.path(), process, saves); });
    const LyqPresetStore store(folder.path(), true, "PresetTestThing");
    EXPECT_EQ(store.list().size(), static_cast<std::size_t>(PROCESSES * saves + 1));
    EXPECT_EQ(folder.names().size(), static_cast<std::size_t>(PROCESSES * saves + 1)) << "and nothing else is left";
    for (int process = 0; process < PROCESSES; ++process) {
        for (int i = 0; i < saves; ++i) {
            LyrObjectFile::Report report;
            const LyrObjectPtr object = store.load(nameOf(process, i), report, Lyr::TransientScope);
            ASSERT_TRUE(object) << report.message.utf8();
            EXPECT_EQ(static_cast<Thing*>(object.get())->value.stored(), static_cast<float>(process * 10000 + i));
        }
    }
}

TEST(LyqPresetStoreProcesses, eight_processes_that_save_under_the_same_names_lose_none) {
    Thing::metaClass();
    const TemporaryFolder folder;
    const int names = savesOfEach();
    inEveryProcess([&](int process) { return runContender(folder.path(), process, names); });
    const LyqPresetStore store(folder.path(), true, "PresetTestThing");
    EXPECT_EQ(store.list().size(), static_cast<std::size_t>(names));
    EXPECT_EQ(folder.names().size(), static_cast<std::size_t>(names)) << "and nothing else is left";
    for (int name = 0; name < names; ++name) {
        EXPECT_EQ(valueOf(store, contendedName(name)) % 10000, name);
    }
}
