#pragma once

#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/LyqExtension.h>
#include <lys_core/LyqReport.h>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/** One run of an analysis over one document. Made and asked for its results by the thread of the user interface;
 * compute() runs in another thread and must not touch the host's objects: what it reads is taken in the constructor. */
class LYS_CORE_EXPORT LyqAnalysisRun {
public:
    /** Told now and then which part is done, 0 to 1. False: the run was cancelled and has to return soon. Not to be
     * called from further threads that the run has started: they look at cancelFlag(). */
    using Progress = std::function<bool(double)>;

    LyqAnalysisRun() = default;
    virtual ~LyqAnalysisRun();
    LyqAnalysisRun(const LyqAnalysisRun&) = delete;
    LyqAnalysisRun& operator=(const LyqAnalysisRun&) = delete;

    /** Before compute(): the grey value from which on samples are material; none has the analysis choose. False if the
     * analysis goes by no threshold. Without this call it chooses. */
    virtual bool setThreshold(std::optional<float> threshold);

    /** Before compute(): nobody will look at pictures, only report() and saveReport() will be asked. What would only be
     * seen in views need not be made. */
    void setNumbersOnly(bool numbersOnly) { mNumbersOnly = numbersOnly; }
    bool numbersOnly() const { return mNumbersOnly; }

    /** From any thread: compute() is to return at once, within some milliseconds. Nothing comes of the run any more. */
    void cancel() noexcept { mCancelled.store(true, std::memory_order_relaxed); }
    /** What cancel() sets, for work that looks at it often or from several threads. It lives as long as the run. */
    const std::atomic<bool>& cancelFlag() const noexcept { return mCancelled; }

    /** Does the work. False, and a message for users, when it failed; false without one when it was cancelled. */
    virtual bool compute(const Progress& progress, QString& message) = 0;

    /** After a compute() that succeeded: new layers (LyqLayer) that show the result. */
    virtual std::vector<LyrObjectPtr> createLayers();
    /** After a compute() that succeeded: the numbers. */
    virtual LyqReport report() const;
    /** After a compute() that succeeded: writes the numbers to a file, as CSV or JSON by the ending of its name (.csv,
     * .json). False, and a message for users, if it cannot be written. */
    virtual bool saveReport(const QString& file, QString& message) const;

private:
    std::atomic<bool> mCancelled{false};
    bool mNumbersOnly = false;
};

/** An analysis that users start from a menu or by `--analysis`. */
class LYS_CORE_EXPORT LyqAnalysisExtension : public LyqExtension {
public:
    using LyqExtension::LyqExtension;
    ~LyqAnalysisExtension() override;

    virtual bool accepts(const LyrObject* document) const = 0;
    /** A run over the document. Null, and a message for users, if there is nothing to analyse. */
    virtual std::unique_ptr<LyqAnalysisRun> createRun(LyrObject* document, QString& message) = 0;
};
