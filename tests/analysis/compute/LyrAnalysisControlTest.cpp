#include <analysis/compute/LyrAnalysisControl.h>

#include <time.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <thread>

#include <analysis/compute/LyrDefectAnalysis.h>
#include <analysis/compute/LyrOtsuThreshold.h>
#include <analysis/compute/LyrSortedValues.h>
#include <analysis/compute/LyrWallThickness.h>

#include "TestVolumes.h"

#include <Sanitizers.h>

using testvolumes::VolumePtr;

namespace {

using Analyse = bool (*)(const VolumePtr&, const LyrAnalysisControl&, LyrAnalysisOutcome&);

bool runDefects(const VolumePtr& volume, const LyrAnalysisControl& control, LyrAnalysisOutcome& outcome) {
    LyrDefectResult result;
    const bool done = LyrDefectAnalysis::run(volume, {}, result, outcome, control);
    EXPECT_EQ(done, result.values != nullptr);
    return done;
}

bool runThickness(const VolumePtr& volume, const LyrAnalysisControl& control, LyrAnalysisOutcome& outcome) {
    LyrThicknessResult result;
    const bool done = LyrWallThickness::run(volume, {}, result, outcome, control);
    EXPECT_EQ(done, result.values != nullptr);
    return done;
}

bool runThreshold(const VolumePtr& volume, const LyrAnalysisControl& control, LyrAnalysisOutcome& outcome) {
    float threshold = -1.0F;
    const bool done = LyrOtsuThreshold::find(*volume, threshold, outcome, control);
    EXPECT_EQ(done, threshold != -1.0F);
    return done;
}

bool runSorting(const VolumePtr& volume, const LyrAnalysisControl& control, LyrAnalysisOutcome& outcome) {
    LyrSortedValues values;
    const bool done = LyrSortedValues::make(*volume, values, outcome, control);
    EXPECT_EQ(done, !values.values().empty());
    return done;
}

/** Seconds of processor time, of all threads, from the moment when a flag is set until an analysis returns. The flag is
 *  set by another thread, some milliseconds after a part was told to be done: in the midst of what comes next. */
double timeToEnd(Analyse run, const VolumePtr& volume, double part, LyrAnalysisOutcome& outcome) {
    const auto processorTime = [] {
        timespec now{};
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
        return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
    };
    std::atomic<bool> flag{false};
    std::atomic<bool> ended{false};
    std::atomic<double> told{-1.0};
    double from = 0.0;
    std::jthread canceller([&] {
        while (told < part && !ended) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        const double seen = processorTime();
        while (processorTime() < seen + 0.01 && !ended) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        from = processorTime();
        flag = true;
    });
    LyrAnalysisControl control;
    control.threads = 2;
    control.cancel = &flag;
    control.progress = [&](double done) {
        told = done;
        return true;
    };
    run(volume, control, outcome);
    const double until = processorTime();
    ended = true;
    canceller.join();
    return outcome.cancelled ? until - from : 0.0;
}

/** The shortest of several such times, the first below `bound` at the latest: a machine that stops for a moment (memory
 *  to clear, another guest on its processor) does so once, a stretch of work that does not look at the flag is there
 *  each time. Infinite when the analysis was done before its flag, every time. */
double shortestTimeToEnd(Analyse run, const VolumePtr& volume, double part, double bound) {
    double shortest = std::numeric_limits<double>::infinity();
    for (int attempt = 0; attempt < 5 && shortest >= bound; ++attempt) {
        LyrAnalysisOutcome outcome;
        const double time = timeToEnd(run, volume, part, outcome);
        if (outcome.cancelled) {
            shortest = std::min(shortest, time);
        }
    }
    return shortest;
}

constexpr Analyse kAll[] = {runDefects, runThickness, runThreshold, runSorting};

bool sameBits(const LyrVolume& a, const LyrVolume& b) {
    return a.samples().size() == b.samples().size() &&
           std::memcmp(a.samples().data(), b.samples().data(), a.samples().size_bytes()) == 0;
}

}  // namespace

TEST(LyrAnalysisControl, progress_begins_at_0_never_falls_and_ends_at_1_on_the_calling_thread) {
    const VolumePtr volume = testvolumes::casting(48, 3.0);
    for (const Analyse run : kAll) {
        std::vector<double> told;
        LyrAnalysisControl control;
        control.threads = 3;
        control.progress = [&, caller = std::this_thread::get_id()](double part) {
            EXPECT_EQ(std::this_thread::get_id(), caller);
            told.push_back(part);
            return true;
        };
        LyrAnalysisOutcome outcome;
        ASSERT_TRUE(run(volume, control, outcome)) << outcome.error;
        ASSERT_GE(told.size(), 3U);
        EXPECT_EQ(told.front(), 0.0);
        EXPECT_EQ(told.back(), 1.0);
        for (std::size_t i = 1; i < told.size(); ++i) {
            EXPECT_GT(told[i], told[i - 1]);
        }
    }
}

TEST(LyrAnalysisControl, progress_moves_all_the_while) {
    const VolumePtr volume = testvolumes::casting(64);
    for (const Analyse run : {runDefects, runThickness}) {
        double widest = 0.0;
        double last = 0.0;
        LyrAnalysisControl control;
        control.threads = 1;
        control.progress = [&](double part) {
            widest = std::max(widest, part - last);
            last = part;
            return true;
        };
        LyrAnalysisOutcome outcome;
        ASSERT_TRUE(run(volume, control, outcome));
        EXPECT_LT(widest, 0.15);
    }
}

TEST(LyrAnalysisControl, a_progress_function_that_says_no_cancels_at_any_time) {
    const VolumePtr volume = testvolumes::casting(40, 3.0);
    for (const Analyse run : kAll) {
        int calls = 0;
        LyrAnalysisControl control;
        control.progress = [&](double) {
            ++calls;
            return true;
        };
        LyrAnalysisOutcome outcome;
        control.threads = 1;
        ASSERT_TRUE(run(volume, control, outcome));
        const int all = calls;
        for (int stop = 0; stop < all; ++stop) {
            int seen = 0;
            double last = 0.0;
            control.progress = [&](double part) {
                EXPECT_LE(seen, stop) << "no call after the no";
                last = part;
                return seen++ < stop;
            };
            EXPECT_FALSE(run(volume, control, outcome)) << stop;
            EXPECT_TRUE(outcome.cancelled);
            EXPECT_NE(outcome.error.find("cancelled"), std::string::npos);
        }
    }
}

TEST(LyrAnalysisControl, a_flag_cancels_before_and_during) {
    const VolumePtr volume = testvolumes::casting(64);
    for (const Analyse run : kAll) {
        std::atomic<bool> flag{true};
        LyrAnalysisControl control;
        control.cancel = &flag;
        LyrAnalysisOutcome outcome;
        EXPECT_FALSE(run(volume, control, outcome));
        EXPECT_TRUE(outcome.cancelled);
        flag = false;
        control.progress = [&](double part) {
            flag = flag || part > 0.3;
            return true;
        };
        EXPECT_FALSE(run(volume, control, outcome));
        EXPECT_TRUE(outcome.cancelled);
        flag = false;
        control.progress = {};
        EXPECT_TRUE(run(volume, control, outcome)) << "a cancelled analysis can be run again";
        EXPECT_FALSE(outcome.cancelled);
        EXPECT_TRUE(outcome.error.empty());
    }
}

TEST(LyrAnalysisControl, a_flag_ends_an_analysis_within_milliseconds_whatever_it_does_just_then) {
    struct Case {
        Analyse run;
        VolumePtr volume;
        std::vector<double> moments;
    };
    // A volume of few slices is painted with balls in one piece, about the half of the work, from 0.48 on.
    const Case cases[] = {{runThickness, testvolumes::noise({512, 512, 8}), {0.1, 0.3, 0.42, 0.45, 0.47, 0.482}},
                          {runThickness, testvolumes::casting(96, 5.0), {0.0, 0.2, 0.4, 0.6, 0.8, 0.9}},
                          {runDefects, testvolumes::noise(144), {0.1, 0.25, 0.4, 0.55, 0.7, 0.8, 0.9}},
                          {runSorting, testvolumes::noise(192), {0.1, 0.3, 0.5, 0.7}}};
    constexpr double bound = 0.1 * SANITIZER_SLOWDOWN;
    for (const Case& one : cases) {
        std::size_t cancelled = 0;
        for (const double moment : one.moments) {
            const double time = shortestTimeToEnd(one.run, one.volume, moment, bound);
            EXPECT_TRUE(time < bound || std::isinf(time)) << time << " s from " << moment;
            cancelled += std::isinf(time) ? 0 : 1;
        }
        EXPECT_GT(cancelled, one.moments.size() / 2);
    }
}

TEST(LyrAnalysisControl, results_are_the_same_for_any_number_of_threads) {
    for (const VolumePtr& volume : {testvolumes::casting(64, 5.0), testvolumes::noise(40)}) {
        LyrDefectResult defects;
        LyrThicknessResult thickness;
        LyrAnalysisOutcome outcome;
        LyrAnalysisControl control;
        control.threads = 1;
        ASSERT_TRUE(LyrDefectAnalysis::run(volume, {}, defects, outcome, control));
        ASSERT_TRUE(LyrWallThickness::run(volume, {}, thickness, outcome, control));
        for (const int threads : {2, 3, 8}) {
            control.threads = threads;
            LyrDefectResult otherDefects;
            LyrThicknessResult otherThickness;
            ASSERT_TRUE(LyrDefectAnalysis::run(volume, {}, otherDefects, outcome, control));
            ASSERT_TRUE(LyrWallThickness::run(volume, {}, otherThickness, outcome, control));
            EXPECT_EQ(otherDefects.labels, defects.labels);
            EXPECT_TRUE(sameBits(*otherDefects.values, *defects.values));
            EXPECT_EQ(otherDefects.materialVolume, defects.materialVolume);
            EXPECT_EQ(otherDefects.defectVolume, defects.defectVolume);
            EXPECT_TRUE(sameBits(*otherThickness.values, *thickness.values));
            EXPECT_EQ(otherThickness.mean, thickness.mean);
            EXPECT_EQ(otherThickness.median, thickness.median);
        }
    }
}

TEST(LyrAnalysisControl, two_analyses_at_once_do_not_disturb_each_other) {
    const VolumePtr volume = testvolumes::casting(64, 5.0);
    LyrDefectResult alone;
    LyrAnalysisOutcome outcome;
    LyrThicknessResult thicknessAlone;
    ASSERT_TRUE(LyrDefectAnalysis::run(volume, {}, alone, outcome));
    ASSERT_TRUE(LyrWallThickness::run(volume, {}, thicknessAlone, outcome));
    LyrDefectResult defects;
    LyrThicknessResult thickness;
    {
        const std::jthread first([&] {
            LyrAnalysisOutcome mine;
            EXPECT_TRUE(LyrDefectAnalysis::run(volume, {}, defects, mine)) << mine.error;
        });
        const std::jthread second([&] {
            LyrAnalysisOutcome mine;
            EXPECT_TRUE(LyrWallThickness::run(volume, {}, thickness, mine)) << mine.error;
        });
    }
    EXPECT_EQ(defects.labels, alone.labels);
    EXPECT_EQ(defects.defectVolume, alone.defectVolume);
    EXPECT_TRUE(sameBits(*thickness.values, *thicknessAlone.values));
    EXPECT_EQ(thickness.median, thicknessAlone.median);
}

TEST(LyrAnalysisControl, a_volume_may_be_let_go_of_while_it_is_analysed) {
    VolumePtr volume = testvolumes::casting(40);
    const std::weak_ptr<const LyrVolume> watched = volume;
    LyrAnalysisControl control;
    control.progress = [&](double) {
        volume.reset();
        return true;
    };
    {
        LyrThicknessResult result;
        LyrAnalysisOutcome outcome;
        EXPECT_TRUE(LyrWallThickness::run(VolumePtr(volume), {}, result, outcome, control)) << outcome.error;
        EXPECT_EQ(result.volume, watched.lock());
    }
    EXPECT_TRUE(watched.expired());
}

TEST(LyrAnalysisControl, memory_that_is_not_there_is_a_message_before_it_is_taken) {
    const VolumePtr volume = testvolumes::casting(64);
    for (const Analyse run : {runDefects, runThickness, runSorting}) {
        LyrAnalysisControl control;
        control.memoryLimit = 1000;
        LyrAnalysisOutcome outcome;
        EXPECT_FALSE(run(volume, control, outcome));
        EXPECT_FALSE(outcome.cancelled);
        EXPECT_NE(outcome.error.find("GiB of memory"), std::string::npos) << outcome.error;
    }
}

TEST(LyrAnalysisControl, every_further_need_of_memory_is_a_message_too) {
    // From a limit that is too small for anything to one that is enough: refused with a message or done, nothing else.
    // The noise needs much beside the volume, so that later checks refuse as well as the first one.
    const VolumePtr volume = testvolumes::noise(48);
    for (const Analyse run : {runDefects, runThickness, runSorting}) {
        std::vector<double> refusedAt;
        bool enough = false;
        for (std::uint64_t limit = 1000; !enough; limit += limit / 4) {
            ASSERT_LT(limit, std::uint64_t{1} << 28U) << "for a volume of 432 KiB";
            double told = 0.0;
            LyrAnalysisControl control;
            control.threads = 1;
            control.memoryLimit = limit;
            control.progress = [&](double part) {
                told = part;
                return true;
            };
            LyrAnalysisOutcome outcome;
            enough = run(volume, control, outcome);
            if (!enough) {
                EXPECT_FALSE(outcome.cancelled);
                EXPECT_NE(outcome.error.find("GiB of memory"), std::string::npos) << outcome.error;
                refusedAt.push_back(told);
            }
        }
        EXPECT_GE(refusedAt.size(), 2U);
        EXPECT_TRUE(run == runSorting || refusedAt.back() > refusedAt.front()) << "a later check has refused";
    }
}

TEST(LyrAnalysisControl, what_a_progress_function_throws_does_not_leave_the_analysis) {
    const VolumePtr volume = testvolumes::casting(40);
    LyrAnalysisControl control;
    control.progress = [](double part) {
        if (part > 0.2) {
            throw std::runtime_error("out of order");
        }
        return true;
    };
    for (const Analyse run : kAll) {
        LyrAnalysisOutcome outcome;
        EXPECT_FALSE(run(volume, control, outcome));
        EXPECT_NE(outcome.error.find("out of order"), std::string::npos) << outcome.error;
    }
}
