#include <analysis/AnalysisIdentifiers.h>
#include <analysis/AnalysisMessage_p.h>
#include <analysis/ValueOrder.h>
#include <analysis/compute/LyrSortedValues.h>
#include <lys_core/LyqBackgroundJob.h>

#include <map>
#include <utility>

std::shared_ptr<ValueOrder> ValueOrder::of(const std::shared_ptr<const LyrVolume>& volume) {
    static std::map<const LyrVolume*, std::weak_ptr<ValueOrder>> known;
    std::erase_if(known, [](const auto& entry) { return entry.second.expired(); });
    std::weak_ptr<ValueOrder>& entry = known[volume.get()];
    std::shared_ptr<ValueOrder> order = entry.lock();
    if (!order) {
        order.reset(new ValueOrder(volume));
        entry = order;
    }
    return order;
}

ValueOrder::ValueOrder(std::shared_ptr<const LyrVolume> volume) : mVolume(std::move(volume)) {
    const auto result = std::make_shared<LyrSortedValues>();
    mJob = std::make_unique<LyqBackgroundJob>(
        [source = mVolume, result, cancelled = mCancelled](const LyqBackgroundJob::Progress& progress,
                                                           QString& message) {
            LyrAnalysisControl control;
            control.progress = progress;
            control.cancel = cancelled.get();
            LyrAnalysisOutcome outcome;
            const bool made = LyrSortedValues::make(*source, *result, outcome, control);
            message = lysAnalysisMessage(outcome, QString());
            return made;
        },
        QString::fromUtf8(LYS_ANALYSIS_MODULE));
    connect(mJob.get(), &LyqBackgroundJob::finished, this, [this, result](bool succeeded, const QString& message) {
        if (succeeded) {
            mValues = result;
        }
        mError = message;
        Q_EMIT finished();
    });
    mJob->start();
}

ValueOrder::~ValueOrder() {
    // The job's end is waited for: all its threads are to hear of it at once.
    *mCancelled = true;
}

bool ValueOrder::isFinished() const {
    return !mJob->isRunning();
}
