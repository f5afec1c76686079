// The program while it is killed, or while a system call fails, as it saves: the call is changed in the registers of
// the processor.

#if defined(__x86_64__) && defined(__linux__)

#include "ProgramRun.h"

#include <lyr_core/TracedProcess.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

using Action = TracedProcess::Action;
using Arguments = std::vector<std::string>;
using Outcome = TracedProcess::Outcome;
using Stop = TracedProcess::Stop;
using Names = std::vector<std::string>;

constexpr int KILL = 0;
constexpr int MOST_CALLS = 400;
const int ERRORS[] = {EIO, ENOSPC, EPERM, EXDEV};

/// Of how many calls one is hit: starting the program twice for each takes a while. LYS_EVERY_CALL: each one is hit,
/// with each of the errors.
bool isEveryCall() {
    return std::getenv("LYS_EVERY_CALL") != nullptr;
}
int stride() {
    return isEveryCall() ? 1 : 4;
}

/// True: the program is killed at the call that is hit; false: that call fails.
class SaveFault : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        if (TracedProcess::run([] { return TracedProcess::Succeeded; }, [](const Stop&) { return Action(); }) ==
            TracedProcess::NotTraced) {
            GTEST_SKIP() << "processes may not be traced here";
        }
        std::filesystem::create_directory(folder / "out");
    }
    ProgramRun run(const Arguments& arguments) const {
        ProgramRun::Setup setup;
        setup.environment["XDG_DATA_HOME"] = folder / "data";
        return ProgramRun::of(arguments, setup);
    }
    Outcome runTraced(const Arguments& arguments, const TracedProcess::Decision& decide) const {
        const std::string errors = folder / "errors";
        return TracedProcess::run(
            [&] {
                const int file = ::open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
                ::dup2(file, 2);
                ::setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
                // Looking for leaks needs tracing as well, and a process has one tracer.
                const char* const options = std::getenv("ASAN_OPTIONS");
                ::setenv("ASAN_OPTIONS", (std::string(options ? options : "") + ":detect_leaks=0").c_str(), 1);
                std::vector<char*> argv = {const_cast<char*>(COLORTABLE_PROGRAM)};
                for (const std::string& argument : arguments) {
                    argv.push_back(const_cast<char*>(argument.c_str()));
                }
                argv.push_back(nullptr);
                ::execv(argv[0], argv.data());
                return TracedProcess::Broken;
            },
            decide);
    }
    /// Where the saving begins.
    using Begin = std::function<bool(const Stop&)>;
    static Begin naming(const std::string& path) {
        return [path](const Stop& stop) {
            return stop.call != SYS_execve &&
                   (stop.text(0).find(path) != std::string::npos || stop.text(1).find(path) != std::string::npos);
        };
    }
    static Begin locking() {
        return [](const Stop& stop) { return stop.call == SYS_flock; };
    }

    /// Runs the program with the call that comes so many after the beginning hit. True if there was one.
    bool hit(const Arguments& arguments, const Begin& begin, int call, int error) {
        int count = -1;
        bool wasHit = false;
        hitsMessage = false;
        outcome = runTraced(arguments, [&](const Stop& stop) {
            Action action;
            if (!stop.isEntry || (count < 0 && !begin(stop))) {
                return action;
            }
            if (++count == call) {
                wasHit = true;
                hitsMessage = stop.call == SYS_write && stop.arguments[0] == 2;
                action.kill = error == KILL;
                action.error = error;
            }
            return action;
        });
        return wasHit;
    }
    std::string errorText() const { return readBytes(folder / "errors"); }

    /// The calls of a save over a file are hit. `next` is what is run afterwards.
    void hitEach(const Arguments& arguments, const Begin& begin, const std::string& file, const Arguments& next) {
        oldText = readBytes(file);
        ASSERT_EQ(run(arguments).status, 0);
        newText = readBytes(file);
        ASSERT_NE(newText, oldText);
        const auto hitAll = [&](auto errorOf) {
            int call = 0;
            for (bool wasHit = true; wasHit; call += stride()) {
                ASSERT_LT(call, MOST_CALLS);
                std::ofstream(file, std::ios::binary | std::ios::trunc) << oldText;
                wasHit = hit(arguments, begin, call, errorOf(call));
                expectWhole(file, call);
                EXPECT_EQ(run(next).status, 0);
                const std::filesystem::path path(file);
                EXPECT_THAT(namesIn(path.parent_path()), testing::ElementsAre(path.filename().string()))
                    << "debris after call " << call;
            }
            EXPECT_GT(call, 20);
            EXPECT_EQ(outcome, TracedProcess::Succeeded) << "with no call hit";
        };
        if (GetParam()) {
            hitAll([](int) { return KILL; });
        } else if (!isEveryCall()) {
            hitAll([](int call) { return ERRORS[call / stride() % 4]; });
        } else {
            for (const int error : ERRORS) {
                hitAll([=](int) { return error; });
            }
        }
    }
    void expectWhole(const std::string& file, int call) const {
        const std::string present = readBytes(file);
        if (outcome == TracedProcess::Killed) {
            EXPECT_TRUE(present == oldText || present == newText) << call;
        } else if (outcome == TracedProcess::Succeeded) {
            EXPECT_EQ(present, newText) << call;
        } else {
            EXPECT_EQ(present, oldText) << call << " " << errorText();
            EXPECT_TRUE(hitsMessage || !errorText().empty()) << call << " ended with " << outcome;
        }
    }
    static Names namesIn(const std::string& path) {
        Names names;
        for (const auto& entry : std::filesystem::directory_iterator(path)) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }

    TestFolder folder;
    std::string oldText;
    std::string newText;
    Outcome outcome = TracedProcess::Broken;
    bool hitsMessage = false;
};

}  // namespace

TEST_P(SaveFault, a_table_written_to_a_file_is_the_old_or_the_new_one_and_the_next_save_leaves_no_debris) {
    const std::string file = folder / "out/table.json";
    ASSERT_EQ(run({"create", "smooth", "--from", "0", "--to", "1", "-o", file}).status, 0);
    const Arguments save = {"create", "smooth", "--from", "0", "--to", "2", "-o", file};
    hitEach(save, naming(file), file, save);
}

TEST_P(SaveFault, a_preset_is_the_old_or_the_new_one_and_the_next_start_leaves_no_debris) {
    ASSERT_EQ(run({"presets", "save", "mine", "--table", "Rainbow"}).status, 0);
    const std::string parent = folder / "data/lys_colortable/presets";
    const std::string file = parent + '/' + namesIn(parent).at(0);
    hitEach({"presets", "save", "mine", "--replace", "--absolute", "--table", "Reverse Rainbow"}, locking(), file,
            {"presets", "list"});
}

TEST_P(SaveFault, colors_written_to_a_file_are_the_old_or_the_new_ones_and_the_next_output_leaves_no_debris) {
    const std::string file = folder / "out/colors.f32";
    const std::string zeros = folder.write("zeros.f32", bytesOf({0, 0}));
    const std::string ones = folder.write("ones.f32", bytesOf({1, 1}));
    ASSERT_EQ(run({"map", "--table", "Rainbow", "-i", zeros, "-o", file}).status, 0);
    const Arguments next = {"map", "--table", "Rainbow", "-i", ones, "-o", file};
    hitEach(next, naming(folder / "out"), file, next);
}

INSTANTIATE_TEST_SUITE_P(, SaveFault, testing::Bool(),
                         [](const auto& hit) { return hit.param ? "killed" : "with_an_error"; });

#endif
