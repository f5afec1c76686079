// Saving a preset through its handler while each system call in turn fails, or kills the program.

#if defined(__x86_64__) && defined(__linux__)

#include "PresetTools.h"

#include <lyr_core/TracedProcess.h>

#include <gtest/gtest.h>

using namespace presets;

namespace {

constexpr int KILL = 0;

class PresetFault : public PresetTest {
protected:
    PresetFault() {
        EXPECT_TRUE(handler->savePresetAs("mine"));
        file = *folder.names().begin();
        oldText = folder.read(file);
        lyrSetValue(table.get(), Lyr::AutoLabel, Lyrenum(0));
        EXPECT_TRUE(handler->savePresetAs("new"));
        newText = folder.read("new-" + digestOf("new"));
        EXPECT_TRUE(handler->removePreset("new"));
        newText.replace(newText.find("\"NameTemplate\": \"new\""), 21, "\"NameTemplate\": \"mine\"");
        EXPECT_EQ(folder.names(), std::set<std::string>{file});
    }
    /// The file of the preset that is not the first one ends so.
    std::string digestOf(const std::string&) const {
        for (const std::string& name : folder.names()) {
            if (name != file) {
                return name.substr(4);
            }
        }
        return {};
    }

    /// Saves over the old preset in a process of its own. That fails silently if there is no message, or if the
    /// document does not count as modified any more although nothing was saved.
    TracedProcess::Outcome save(const TracedProcess::Decision& decide) {
        folder.write(file, oldText);
        handler->setCurrentPreset("mine", Lyr::UserPreset);
        handler->setCurrentPresetModified(true);
        return TracedProcess::run(
            [&] {
                const bool done = handler->savePresetAs("mine");
                const bool isTold = !handler->getMessage().isEmpty() && handler->isCurrentPresetModified();
                return done     ? TracedProcess::Succeeded
                       : isTold ? TracedProcess::FailedWithMessage
                                : TracedProcess::FailedSilently;
            },
            decide);
    }

    /// Runs a save with one call failing (or killed). Returns false when there are no more calls.
    bool runWithFault(int call, int error) {
        long touched = -1;
        const auto outcome = save([&](const TracedProcess::Stop& stop) {
            TracedProcess::Action action;
            if (stop.index == call && stop.isEntry) {
                touched = stop.call;
                action.error = error;
                action.kill = error == KILL;
            }
            return action;
        });
        wasTraced = outcome != TracedProcess::NotTraced;
        if (!wasTraced) {
            return false;
        }
        const std::string present = folder.read(file);
        EXPECT_TRUE(present == oldText || present == newText) << "call " << call << " error " << error;
        const LyqPresetStore next(folder.path(), true, "");
        EXPECT_EQ(folder.names(), std::set<std::string>{file}) << "debris after call " << call << " error " << error;
        if (outcome == TracedProcess::Succeeded) {
            EXPECT_EQ(present, newText) << "call " << call << " (" << touched << ") error " << error;
        } else {
            EXPECT_EQ(outcome, error == KILL ? TracedProcess::Killed : TracedProcess::FailedWithMessage) << call;
            EXPECT_TRUE(error == KILL || present == oldText) << "call " << call << " error " << error;
        }
        return touched != -1;
    }

    std::string file;
    std::string oldText;
    std::string newText;
    bool wasTraced = true;
};

}  // namespace

TEST_F(PresetFault, every_failing_call_is_told_and_keeps_the_old_preset_and_every_kill_leaves_a_whole_one) {
    for (const int error : {EIO, ENOSPC, EPERM, EXDEV, KILL}) {
        int call = 0;
        while (runWithFault(call, error)) {
            ASSERT_LT(++call, 300);
        }
        if (!wasTraced) {
            GTEST_SKIP() << "processes may not be traced here";
        }
        EXPECT_GT(call, 20) << "a save takes more system calls than that";
    }
}

TEST_F(PresetFault, a_full_disk_is_told_and_keeps_the_old_preset) {
    const auto outcome = save([](const TracedProcess::Stop& stop) {
        TracedProcess::Action action;
        action.error = stop.isEntry && stop.call == SYS_write ? ENOSPC : 0;
        return action;
    });
    if (outcome == TracedProcess::NotTraced) {
        GTEST_SKIP() << "processes may not be traced here";
    }
    EXPECT_EQ(outcome, TracedProcess::FailedWithMessage);
    EXPECT_EQ(folder.read(file), oldText);
}

#endif
