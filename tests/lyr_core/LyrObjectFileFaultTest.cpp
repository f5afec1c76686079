// Saving an object while each system call in turn fails, or kills the program: the call is changed in the registers of
// the processor.

#if defined(__x86_64__) && defined(__linux__)

#include <lyr_core/LyrFileSaver.h>
#include <lyr_core/LyrObjectFile.h>

#include "FileTestObjects.h"
#include "TemporaryFolder.h"
#include "TracedProcess.h"

#include <gtest/gtest.h>

namespace {

using namespace file_test;
using Action = TracedProcess::Action;
using Stop = TracedProcess::Stop;

const std::string NEW_TEXT = replaced(DEFAULT_TEXT, "\"FileTestWeight\": 0.5", "\"FileTestWeight\": 0.75");

/** Saves a sample over a file with the default text. */
TracedProcess::Outcome saveOver(const TemporaryFolder& folder, const TracedProcess::Decision& decide) {
    folder.write("a", DEFAULT_TEXT);
    LyrObjectPtr object(new Sample);
    static_cast<Sample&>(*object).weight.setValue(0.75f);
    const auto operation = [&] {
        LyrObjectFile::Report report;
        const bool done = LyrObjectFile::save(*object, folder.file("a"), report);
        return done && report.ok          ? TracedProcess::Succeeded
               : report.message.isEmpty() ? TracedProcess::FailedSilently
                                          : TracedProcess::FailedWithMessage;
    };
    return TracedProcess::run(operation, decide);
}

}  // namespace

TEST(LyrObjectFileFault, every_failing_call_is_told_and_every_kill_leaves_a_whole_file) {
    constexpr int noError = 0;
    for (const int error : {EIO, ENOSPC, EPERM, EXDEV, noError}) {
        bool wentThrough = false;
        for (int call = 0; !wentThrough; ++call) {
            ASSERT_LT(call, 200);
            const TemporaryFolder folder;
            long touched = -1;
            const auto outcome = saveOver(folder, [&](const Stop& stop) {
                Action action;
                if (stop.index == call && stop.isEntry) {
                    touched = stop.call;
                    action.error = error;
                    action.kill = error == noError;
                }
                return action;
            });
            if (outcome == TracedProcess::NotTraced) {
                GTEST_SKIP() << "processes may not be traced here";
            }
            const std::string present = folder.read("a");
            EXPECT_TRUE(present == DEFAULT_TEXT || present == NEW_TEXT) << call;
            LyrFileSaver::sweepLeftovers(folder.path());
            EXPECT_EQ(folder.names(), std::set<std::string>{"a"}) << call;
            wentThrough = touched == -1;
            // Only closing a file that is not written to, and a missing way back, are no failures.
            const bool isHarmless = touched == SYS_close || (touched == SYS_linkat && error == EPERM);
            if (outcome == TracedProcess::Succeeded) {
                EXPECT_TRUE((wentThrough || isHarmless) && present == NEW_TEXT) << call << " error " << error;
            } else {
                EXPECT_EQ(outcome, error == noError ? TracedProcess::Killed : TracedProcess::FailedWithMessage) << call;
                EXPECT_TRUE(error == noError || present == DEFAULT_TEXT) << call << " error " << error;
            }
        }
    }
}

#endif
