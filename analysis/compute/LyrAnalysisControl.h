#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/** How an analysis runs. A default object: unheard, not to be stopped, all processors, all memory that is free. */
struct LyrAnalysisControl {
    /** Called now and then with the part that is done, on the thread that runs the analysis: 0 first, never falling, 1
     *  last and only when the analysis succeeded. Returning false cancels. */
    std::function<bool(double)> progress;
    /** Set from any thread to cancel; may be null. It must live until the analysis has returned. */
    const std::atomic<bool>* cancel = nullptr;
    /** Threads that compute, the calling one among them; 0 for one a processor. The results do not depend on it. */
    int threads = 0;
    /** Bytes that the analysis may take; 0 for what the machine has free. */
    std::uint64_t memoryLimit = 0;
};

/** What happened to an analysis. */
struct LyrAnalysisOutcome {
    std::string error;       ///< what, where and what to do about it; empty when the analysis succeeded
    bool cancelled = false;  ///< it was cancelled; `error` says so too
    /** What `error` says after the analysis' name, for translating: a text of the context "LyrAnalysis", in which %1,
     *  %2 and so on stand for the arguments. Null when the analysis succeeded. */
    const char* text = nullptr;
    std::vector<std::string> arguments;
};
