// What a saver leaves behind when it is killed, or refused, at each of its system calls. The calls are those that the
// kernel sees, so that none can be forgotten here. Changing a call needs to know the registers of the processor.

#if defined(__x86_64__) && defined(__linux__)

#include <lyr_core/LyrFileSaver.h>

#include "TemporaryFolder.h"
#include "TracedProcess.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

namespace {

using Names = std::set<std::string>;
using Action = TracedProcess::Action;
using Stop = TracedProcess::Stop;

const std::string OLD(3000, 'o');
const std::string NEW(70000, 'n');
constexpr const char* NONE = "(none)";

/** A file (or none) to be replaced, in a folder of its own. */
struct Scene {
    explicit Scene(bool hasOld) : before(hasOld ? OLD : NONE) {
        if (hasOld) {
            folder.write("a", OLD);
        }
    }
    TracedProcess::Outcome save(const TracedProcess::Decision& decide) const {
        const auto operation = [&] {
            LyrString message;
            const bool done = LyrFileSaver::replace(folder.file("a"), NEW, &message);
            return done                ? TracedProcess::Succeeded
                   : message.isEmpty() ? TracedProcess::FailedSilently
                                       : TracedProcess::FailedWithMessage;
        };
        return TracedProcess::run(operation, decide);
    }
    bool isOld() const { return folder.read("a") == before; }
    bool isNew() const { return folder.read("a") == NEW; }
    /** True if nothing but the file is there. */
    bool isTidy() const { return folder.names() == (folder.read("a") == NONE ? Names{} : Names{"a"}); }

    TemporaryFolder folder;
    std::string before;
};

class LyrFileSaverFault : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        const Scene scene(GetParam());
        int count = 0;
        const auto outcome = scene.save([&](const Stop& stop) {
            count += stop.isEntry ? 1 : 0;
            return Action();
        });
        if (outcome == TracedProcess::NotTraced) {
            GTEST_SKIP() << "processes may not be traced here";
        }
        ASSERT_EQ(outcome, TracedProcess::Succeeded);
        ASSERT_TRUE(scene.isNew() && scene.isTidy());
        mCalls = count;
        ASSERT_GT(mCalls, 8);
    }
    int mCalls = 0;
};

}  // namespace

TEST_P(LyrFileSaverFault, flushes_the_file_before_and_the_folder_after_it_takes_its_place) {
    const Scene scene(GetParam());
    std::vector<long> order;
    const auto outcome = scene.save([&](const Stop& stop) {
        const bool counts = stop.call == SYS_write || stop.call == SYS_fsync || stop.call == SYS_renameat;
        if (counts && stop.isEntry) {
            order.push_back(stop.call);
        }
        return Action();
    });
    EXPECT_EQ(outcome, TracedProcess::Succeeded);
    EXPECT_EQ(order, (std::vector<long>{SYS_write, SYS_fsync, SYS_renameat, SYS_fsync}));
}

TEST_P(LyrFileSaverFault, killed_at_any_call_it_leaves_the_old_or_the_new_file_whole_and_debris_that_is_swept) {
    int sweptFiles = 0;
    for (int call = 0; call < mCalls; ++call) {
        for (const bool atEntry : {true, false}) {
            const Scene scene(GetParam());
            const auto outcome = scene.save([&](const Stop& stop) {
                Action action;
                action.kill = stop.index == call && stop.isEntry == atEntry;
                return action;
            });
            ASSERT_EQ(outcome, TracedProcess::Killed) << call;
            EXPECT_TRUE(scene.isOld() || scene.isNew()) << call;
            const bool wasOld = scene.isOld();
            sweptFiles += LyrFileSaver::sweepLeftovers(scene.folder.path());
            EXPECT_TRUE(scene.isTidy()) << call;
            EXPECT_TRUE(wasOld ? scene.isOld() : scene.isNew()) << "a leftover was promoted, " << call;
        }
    }
    EXPECT_GT(sweptFiles, 0);
}

TEST_P(LyrFileSaverFault, an_error_of_any_call_is_told_and_leaves_the_old_file_and_nothing_beside_it) {
    for (const int error : {EIO, ENOSPC, EPERM, EXDEV}) {
        for (int call = 0; call < mCalls; ++call) {
            const Scene scene(GetParam());
            long failed = -1;
            const auto outcome = scene.save([&](const Stop& stop) {
                Action action;
                if (stop.index == call) {
                    failed = stop.isEntry ? stop.call : failed;
                    action.error = error;
                }
                return action;
            });
            // Handles that are closed after everything is done, and file systems without hard links, where the new file
            // is put in place without a way back.
            const bool isHarmless = (failed == SYS_close && scene.isNew()) || (failed == SYS_linkat && error == EPERM);
            if (isHarmless) {
                EXPECT_EQ(outcome, TracedProcess::Succeeded) << call << " error " << error;
                EXPECT_TRUE(scene.isNew()) << call << " error " << error;
            } else {
                EXPECT_EQ(outcome, TracedProcess::FailedWithMessage) << call << " error " << error << " of " << failed;
                EXPECT_TRUE(scene.isOld()) << call << " error " << error << " of " << failed;
            }
            EXPECT_TRUE(scene.isTidy()) << call << " error " << error << " of " << failed;
        }
    }
}

TEST_P(LyrFileSaverFault, closing_the_written_file_is_checked) {
    const Scene scene(GetParam());
    bool wasRenamed = false;
    bool wasClosed = false;
    const auto outcome = scene.save([&](const Stop& stop) {
        Action action;
        wasRenamed = wasRenamed || stop.call == SYS_renameat;
        if (stop.call == SYS_close && stop.isEntry && wasRenamed && !wasClosed) {
            wasClosed = true;
            action.error = EIO;
        }
        return action;
    });
    EXPECT_TRUE(wasClosed);
    EXPECT_EQ(outcome, TracedProcess::FailedWithMessage);
    EXPECT_TRUE(scene.isOld() && scene.isTidy());
}

TEST_P(LyrFileSaverFault, a_disk_that_dies_at_any_call_leaves_a_whole_file_and_a_message) {
    for (int call = 0; call < mCalls; ++call) {
        const Scene scene(GetParam());
        const auto outcome = scene.save([&](const Stop& stop) {
            Action action;
            action.error = stop.index >= call && stop.call != SYS_close ? EIO : 0;
            return action;
        });
        EXPECT_TRUE(scene.isOld() || scene.isNew()) << call;
        if (outcome == TracedProcess::Succeeded) {
            EXPECT_TRUE(scene.isNew() && scene.isTidy()) << call;
        } else {
            EXPECT_EQ(outcome, TracedProcess::FailedWithMessage) << call;
        }
    }
}

TEST_P(LyrFileSaverFault, goes_on_after_interruptions_and_short_writes) {
    const Scene scene(GetParam());
    std::set<int> interrupted;
    int writes = 0;
    const auto outcome = scene.save([&](const Stop& stop) {
        Action action;
        const bool canBeInterrupted = stop.call == SYS_openat || stop.call == SYS_write || stop.call == SYS_fsync ||
                                      stop.call == SYS_pread64 || stop.call == SYS_flock || stop.call == SYS_close;
        // Every second call of these kinds, so that the repeated one comes through.
        if (stop.isEntry && canBeInterrupted && !interrupted.contains(stop.index - 1)) {
            interrupted.insert(stop.index);
            action.error = EINTR;
        } else if (stop.isEntry && stop.call == SYS_write) {
            ++writes;
            action.atMost = 999;
        }
        return action;
    });
    EXPECT_EQ(outcome, TracedProcess::Succeeded);
    EXPECT_GE(writes, 71);
    EXPECT_TRUE(scene.isNew());
}

TEST_P(LyrFileSaverFault, a_sweep_at_any_moment_of_a_living_saver_does_no_harm) {
    for (int call = 0; call < mCalls; ++call) {
        const Scene scene(GetParam());
        const auto outcome = scene.save([&](const Stop& stop) {
            if (stop.index == call && stop.isEntry) {
                LyrFileSaver::sweepLeftovers(scene.folder.path());
            }
            return Action();
        });
        EXPECT_EQ(outcome, TracedProcess::Succeeded) << call;
        EXPECT_TRUE(scene.isNew() && scene.isTidy()) << call;
    }
}

TEST_P(LyrFileSaverFault, a_sweep_at_any_moment_does_not_take_away_the_way_back) {
    const Scene scene(GetParam());
    bool renamed = false;
    const auto outcome = scene.save([&](const Stop& stop) {
        Action action;
        renamed = renamed || stop.call == SYS_renameat;
        if (renamed && stop.isEntry && stop.call == SYS_fsync) {
            LyrFileSaver::sweepLeftovers(scene.folder.path());
            action.error = EIO;
        }
        return action;
    });
    EXPECT_EQ(outcome, TracedProcess::FailedWithMessage);
    EXPECT_TRUE(scene.isOld() && scene.isTidy());
}

TEST_P(LyrFileSaverFault, does_not_take_back_what_somebody_else_has_saved_meanwhile) {
    const Scene scene(GetParam());
    bool renamed = false;
    const auto outcome = scene.save([&](const Stop& stop) {
        Action action;
        renamed = renamed || stop.call == SYS_renameat;
        if (renamed && stop.isEntry && stop.call == SYS_fsync) {
            EXPECT_TRUE(LyrFileSaver::replace(scene.folder.file("a"), "of somebody else"));
            action.error = EIO;
        }
        return action;
    });
    EXPECT_EQ(outcome, TracedProcess::FailedWithMessage);
    EXPECT_EQ(scene.folder.read("a"), "of somebody else");
    EXPECT_TRUE(scene.isTidy());
}

INSTANTIATE_TEST_SUITE_P(, LyrFileSaverFault, testing::Bool(),
                         [](const auto& with) { return with.param ? "over_an_old_file" : "where_there_is_none"; });

#endif
