#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_volume/LyrVolume.h>

#include <QObject>
#include <QString>

#include <atomic>
#include <memory>

class LyqBackgroundJob;
class LyrSortedValues;

/** The values of a volume in ascending order, sorted in the background, once for all who ask. */
class LYS_ANALYSIS_EXPORT ValueOrder : public QObject {
    Q_OBJECT

public:
    /** That of a volume: the one that others hold already, or a new one that begins its work. Not null. */
    static std::shared_ptr<ValueOrder> of(const std::shared_ptr<const LyrVolume>& volume);
    ~ValueOrder() override;

    /** True when it is there, or cannot be had. */
    bool isFinished() const;
    /** Null until it is there. */
    const std::shared_ptr<const LyrSortedValues>& values() const { return mValues; }
    /** Why there is none; empty if there is, or may yet be. */
    const QString& error() const { return mError; }

Q_SIGNALS:
    /** The order is there, or cannot be had. */
    void finished();

private:
    explicit ValueOrder(std::shared_ptr<const LyrVolume> volume);

    std::shared_ptr<const LyrVolume> mVolume;
    std::shared_ptr<const LyrSortedValues> mValues;
    std::shared_ptr<std::atomic<bool>> mCancelled = std::make_shared<std::atomic<bool>>(false);
    std::unique_ptr<LyqBackgroundJob> mJob;
    QString mError;
};
