#pragma once

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>
#include <optional>

class LyqAnalysisExtension;
class LyqAnalysisRun;
class LyqBackgroundJob;

namespace workbench {

/** Runs analyses of plug-ins over the session's document, one at a time, and puts their results into the session. */
class AnalysisRunner : public QObject {
    Q_OBJECT

public:
    explicit AnalysisRunner(QObject* parent = nullptr);
    ~AnalysisRunner() override;

    /** What the runs to come take for material: samples from this value on. None: each analysis chooses. */
    void setThreshold(std::optional<float> threshold) { mThreshold = threshold; }
    std::optional<float> threshold() const { return mThreshold; }

    /** Whether of the runs to come only reports are wanted, no pictures. */
    void setNumbersOnly(bool numbersOnly) { mNumbersOnly = numbersOnly; }

    /** False, and a message, if it cannot begin. */
    bool start(LyqAnalysisExtension& analysis, QString& message);
    /** Nothing comes of the run any more. It ends in the background, soon; another one may begin at once. */
    void cancel();
    bool isRunning() const;
    QString title() const { return mTitle; }

Q_SIGNALS:
    void started();
    void progressChanged(double done);
    /** A run has succeeded; its layers are shown. */
    void succeeded(const LyqAnalysisRun& run);
    /** The run has ended, all is told of it; the message says why if it failed. */
    void finished(bool done, const QString& message);

private:
    QPointer<LyqBackgroundJob> mJob;
    std::shared_ptr<LyqAnalysisRun> mRun;
    QString mTitle;
    std::optional<float> mThreshold;
    bool mNumbersOnly = false;
};

}  // namespace workbench
