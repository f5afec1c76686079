#include <lys_core/LyqAnalysisExtension.h>
#include <lys_core/LyqBackgroundJob.h>
#include <lys_core/LyqLayer.h>
#include <lys_core/LyqSession.h>
#include <workbench/AnalysisRunner.h>

#include <memory>

namespace workbench {

AnalysisRunner::AnalysisRunner(QObject* parent) : QObject(parent) {}

AnalysisRunner::~AnalysisRunner() {
    cancel();
}

bool AnalysisRunner::isRunning() const {
    return mJob && mJob->isRunning();
}

bool AnalysisRunner::start(LyqAnalysisExtension& analysis, QString& message) {
    if (isRunning()) {
        message = tr("\"%1\" is under way. Wait for it, or cancel it.").arg(mTitle);
        return false;
    }
    LyrObject* document = LyqSession::instance().document();
    if (!document || !analysis.accepts(document)) {
        message = tr("\"%1\" needs an opened volume.").arg(analysis.title());
        return false;
    }
    const std::shared_ptr<LyqAnalysisRun> run = analysis.createRun(document, message);
    if (!run) {
        return false;
    }
    if (!run->setThreshold(mThreshold)) {
        message = tr("\"%1\" goes by no threshold. Start it without one.").arg(analysis.title());
        return false;
    }
    run->setNumbersOnly(mNumbersOnly);
    mTitle = analysis.title();
    mRun = run;
    mJob = new LyqBackgroundJob(
        [run](const LyqBackgroundJob::Progress& progress, QString& text) { return run->compute(progress, text); },
        analysis.module(), this);
    LyqBackgroundJob* const job = mJob;
    connect(job, &LyqBackgroundJob::progressChanged, this, &AnalysisRunner::progressChanged);
    connect(job, &LyqBackgroundJob::finished, this, [this, job, run](bool done, const QString& text) {
        job->deleteLater();
        mRun.reset();
        if (done) {
            for (const LyrObjectPtr& object : run->createLayers()) {
                LyqSession::instance().addLayer(dynamic_cast<LyqLayer*>(object.get()));
            }
            LyqSession::instance().addReport(run->report());
            Q_EMIT succeeded(*run);
        }
        Q_EMIT finished(done, text);
    });
    job->start();
    Q_EMIT started();
    return true;
}

void AnalysisRunner::cancel() {
    if (!mJob) {
        return;
    }
    // It ends by itself, and is deleted then, so that nobody waits for it here. Until then its module stays loaded, and
    // what it reads is kept by the run.
    LyqBackgroundJob* const job = mJob;
    mJob = nullptr;
    mRun->cancel();
    mRun.reset();
    job->cancel();
    disconnect(job, nullptr, this, nullptr);
    connect(job, &LyqBackgroundJob::finished, job, &QObject::deleteLater);
    Q_EMIT finished(false, QString());
}

}  // namespace workbench
