#include <analysis/compute/AnalysisTask_p.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fstream>
#include <limits>
#include <new>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace lyranalysis {

namespace {

// Steps of the progress below this part are not worth a call.
constexpr double kSmallestStep = 0.002;

std::string gibibytes(std::uint64_t bytes) {
    const double value = std::ceil(static_cast<double>(bytes) / 1073741824.0 * 10.0) / 10.0;
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed, 1).ptr;
    return {text.data(), end};
}

}  // namespace

std::uint64_t freeMemory() {
    constexpr std::string_view kField = "MemAvailable:";
    std::ifstream file("/proc/meminfo");
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with(kField)) {
            continue;
        }
        const std::size_t digits = line.find_first_of("0123456789");
        std::uint64_t kibibytes = 0;
        if (digits != std::string::npos &&
            std::from_chars(line.data() + digits, line.data() + line.size(), kibibytes).ec == std::errc{}) {
            return kibibytes * 1024;
        }
    }
    return std::numeric_limits<std::uint64_t>::max();
}

AnalysisTask::AnalysisTask(const char* name, double weight, const LyrAnalysisControl& control,
                           LyrAnalysisOutcome& outcome)
    : name_(name), weight_(weight), control_(control), outcome_(outcome) {
    constexpr int kMostThreads = 64;
    const int wanted = control.threads > 0 ? control.threads : static_cast<int>(std::thread::hardware_concurrency());
    threads_ = static_cast<std::size_t>(std::clamp(wanted, 1, kMostThreads));
    memory_ = control.memoryLimit > 0 ? control.memoryLimit : freeMemory();
    outcome_ = {};
}

void AnalysisTask::keep(std::exception_ptr problem) {
    const std::lock_guard lock(mutex_);
    if (!problem_) {
        problem_ = std::move(problem);
    }
    stopped_ = true;
}

void AnalysisTask::report(double done) {
    // The last step is told by run(), once it is certain that all went well.
    const double part = std::clamp(done / weight_, 0.0, 1.0 - kSmallestStep);
    if (!control_.progress || part < told_ + kSmallestStep) {
        return;
    }
    told_ = part;
    if (!control_.progress(part)) {
        stopped_ = true;
    }
}

void AnalysisTask::drain(std::size_t count, const Work& work, std::size_t worker, double weight) {
    try {
        while (!isStopped()) {
            const std::size_t index = next_.fetch_add(1);
            if (index >= count) {
                break;
            }
            work(index, worker);
            const std::size_t finished = finished_.fetch_add(1) + 1;
            if (worker == 0) {
                report(done_ + weight * static_cast<double>(finished) / static_cast<double>(count));
            }
        }
    } catch (...) {
        keep(std::current_exception());
    }
}

bool AnalysisTask::stage(double weight, std::size_t count, const Work& work) {
    if (isStopped()) {
        return false;
    }
    next_ = 0;
    finished_ = 0;
    {
        std::vector<std::jthread> helpers;
        helpers.reserve(threads_);
        try {
            for (std::size_t worker = 1; worker < std::min(threads_, count); ++worker) {
                helpers.emplace_back([this, count, &work, worker, weight] { drain(count, work, worker, weight); });
            }
        } catch (const std::system_error&) {
            // The system gives no more threads: those that are there do it all.
        }
        drain(count, work, 0, weight);
    }
    if (problem_) {
        std::rethrow_exception(problem_);
    }
    if (isStopped()) {
        return false;
    }
    done_ += weight;
    report(done_);
    return !isStopped();
}

bool AnalysisTask::claim(std::uint64_t bytes) {
    const std::uint64_t left = memory_ - std::min(claimed_, memory_);
    if (bytes <= left) {
        claimed_ += bytes;
        return true;
    }
    return fail(LYR_MARK_TEXT("LyrAnalysis",
                              "needs %1 GiB of memory, and %2 GiB are free; close other programs or analyse a smaller "
                              "part of the volume"),
                {gibibytes(bytes + claimed_), gibibytes(memory_)});
}

bool AnalysisTask::fail(const char* text, std::vector<std::string> arguments) {
    std::string reason = text;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const char mark[] = {'%', static_cast<char>('1' + i), '\0'};
        const std::size_t place = reason.find(mark);
        if (place != std::string::npos) {
            reason.replace(place, 2, arguments[i]);
        }
    }
    outcome_.error = std::string(name_) + ": " + reason;
    outcome_.text = text;
    outcome_.arguments = std::move(arguments);
    return false;
}

bool AnalysisTask::run(const std::function<bool()>& body) {
    bool succeeded = false;
    try {
        report(0.0);
        succeeded = !isStopped() && body() && !isStopped();
        if (succeeded && control_.progress) {
            succeeded = control_.progress(1.0);
            stopped_ = !succeeded;
        }
    } catch (const std::bad_alloc&) {
        return fail(LYR_MARK_TEXT("LyrAnalysis",
                                  "not enough memory; close other programs or analyse a smaller part of the volume"));
    } catch (const std::exception& problem) {
        return fail(LYR_MARK_TEXT("LyrAnalysis", "ended by an error (%1); nothing was changed"), {problem.what()});
    } catch (...) {
        return fail(LYR_MARK_TEXT("LyrAnalysis", "ended by an unknown error; nothing was changed"));
    }
    if (!succeeded && outcome_.error.empty()) {
        outcome_.cancelled = true;
        return fail(LYR_MARK_TEXT("LyrAnalysis", "cancelled"));
    }
    return succeeded;
}

}  // namespace lyranalysis
