#include <lys_core/PresetTestTools.h>

#include <lyr_core/TemporaryFolder.h>
#include <lys_core/LyqPresetStore.h>

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <cstdlib>
#include <cstring>

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

}  // namespace

TEST(LyqPresetStoreProcesses, eight_processes_that_save_at_once_lose_nothing) {
    Thing::metaClass();
    const TemporaryFolder folder;
    const int saves = savesOfEach();
    pid_t children[PROCESSES];
    for (int process = 0; process < PROCESSES; ++process) {
        children[process] = ::fork();
        ASSERT_GE(children[process], 0);
        if (children[process] == 0) {
            ::_exit(runProcess(folder.path(), process, saves));
        }
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    }
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
