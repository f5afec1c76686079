#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include <analysis/compute/LyrAnalysisControl.h>

/** Marks a text for the translators, who find it in a context. What it stands for is the text itself. */
#define LYR_MARK_TEXT(context, text) text

namespace lyranalysis {

/** One run of an analysis: spreads its stages over threads, tells the progress, and notices that it is to stop. */
class AnalysisTask {
public:
    /** `name` begins every message, `weight` is the sum of the weights of all stages to come. */
    AnalysisTask(const char* name, double weight, const LyrAnalysisControl& control, LyrAnalysisOutcome& outcome);

    /** Runs work(index, worker) for each index below count, in any order, on all threads; `worker` is below threads().
     *  False when the task was stopped: some indices were then not visited. Throws what the work threw. */
    using Work = std::function<void(std::size_t index, std::size_t worker)>;
    bool stage(double weight, std::size_t count, const Work& work);

    /** True once the task is to be given up; for work that takes long for one index. Called from any thread. */
    bool isStopped() const {
        return stopped_.load(std::memory_order_relaxed) ||
               (control_.cancel && control_.cancel->load(std::memory_order_relaxed));
    }

    std::size_t threads() const { return threads_; }

    /** Counts `bytes` as taken from here on; false, with a message, when they are more than there is left of what the
     *  task may take. To be asked before they are taken. */
    bool claim(std::uint64_t bytes);
    /** Counts them as free again. */
    void release(std::uint64_t bytes) { claimed_ -= std::min(bytes, claimed_); }

    /** Sets the message and returns false. The text is one that was marked for translation and lives for ever; %1, %2
     * and so on in it stand for the arguments. */
    bool fail(const char* text, std::vector<std::string> arguments = {});

    /** Runs the body with everything it throws turned into messages, and ends the progress. False when the body
     *  returned false or threw. */
    bool run(const std::function<bool()>& body);

private:
    void drain(std::size_t count, const Work& work, std::size_t worker, double weight);
    void report(double done);
    void keep(std::exception_ptr problem);

    const char* name_;
    const double weight_;
    const LyrAnalysisControl& control_;
    LyrAnalysisOutcome& outcome_;
    std::size_t threads_;
    std::uint64_t memory_;  ///< bytes that the task may take
    std::uint64_t claimed_ = 0;
    double done_ = 0.0;
    double told_ = -1.0;
    std::atomic<bool> stopped_{false};
    std::atomic<std::size_t> next_{0};
    std::atomic<std::size_t> finished_{0};
    std::mutex mutex_;
    std::exception_ptr problem_;
};

/** Bytes of memory that a new buffer can have without pushing others out; where that is unknown, the largest number. */
std::uint64_t freeMemory();

}  // namespace lyranalysis
