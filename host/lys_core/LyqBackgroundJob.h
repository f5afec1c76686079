#pragma once

#include <lys_core/LysCoreExport.h>

#include <QObject>
#include <QString>

#include <functional>
#include <memory>

/** Work in a thread of its own, with progress and cancel: an analysis, the reading of a volume. The results of the work
 * belong to the caller, who looks at them when finished() comes. */
class LYS_CORE_EXPORT LyqBackgroundJob : public QObject {
    Q_OBJECT

public:
    /** Told now and then which part is done, 0 to 1. False: cancelled. */
    using Progress = std::function<bool(double)>;
    /** Runs in the job's thread; may throw. False, and a message for users, when it failed. */
    using Work = std::function<bool(const Progress& progress, QString& message)>;

    /** @param module  the plug-in that the work is of: it stays loaded meanwhile; empty for the host's own */
    explicit LyqBackgroundJob(Work work, const QString& module = QString(), QObject* parent = nullptr);
    /** Cancels and waits for the thread. */
    ~LyqBackgroundJob() override;

    /** False if it was started before. */
    bool start();
    /** Asks the work to end; finished() comes when it has. */
    void cancel();
    bool isRunning() const;
    bool isCancelled() const;
    const QString& module() const;

Q_SIGNALS:
    /** Some ten times a second while the work goes on, and only when it moved. */
    void progressChanged(double done);
    /** Once, from the thread of the user interface, after the work's thread has ended. */
    void finished(bool succeeded, const QString& message);

private:
    void poll();

    struct Private;
    std::unique_ptr<Private> d;
};
