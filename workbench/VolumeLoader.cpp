#include <lys_core/LyqBackgroundJob.h>
#include <workbench/VolumeLoader.h>

#include <QFile>
#include <QStringList>

#include <utility>

namespace workbench {

VolumeLoader::VolumeLoader(QObject* parent) : QObject(parent) {}

VolumeLoader::~VolumeLoader() = default;

bool VolumeLoader::isLoading() const {
    return mJob && mJob->isRunning();
}

void VolumeLoader::load(const QString& path) {
    struct Result {
        std::shared_ptr<const LyrVolume> volume;
        LyrVolumeReader::Report report;
    };
    cancel();
    mPath = path;
    const auto result = std::make_shared<Result>();
    const std::string name = QFile::encodeName(path).toStdString();
    mJob = new LyqBackgroundJob(
        [name, result](const LyqBackgroundJob::Progress& progress, QString& message) {
            const bool done = LyrVolumeReader::read(name, result->volume, result->report, progress);
            message = QString::fromStdString(result->report.error);
            return done;
        },
        QString(), this);
    LyqBackgroundJob* const job = mJob;
    connect(job, &LyqBackgroundJob::progressChanged, this, &VolumeLoader::progressChanged);
    connect(job, &LyqBackgroundJob::finished, this, [this, job, path, result](bool done, const QString& message) {
        job->deleteLater();
        if (!done) {
            Q_EMIT failed(path, message);
            return;
        }
        QStringList warnings;
        for (const std::string& warning : result->report.warnings) {
            warnings << QString::fromStdString(warning);
        }
        Q_EMIT loaded(path, result->volume, warnings);
    });
    job->start();
}

void VolumeLoader::cancel() {
    if (!mJob) {
        return;
    }
    // It ends by itself, and is deleted then, so that nobody waits for it here.
    LyqBackgroundJob* const job = mJob;
    mJob = nullptr;
    job->cancel();
    disconnect(job, nullptr, this, nullptr);
    if (job->isRunning()) {
        connect(job, &LyqBackgroundJob::finished, job, &QObject::deleteLater);
    } else {
        job->deleteLater();
    }
}

}  // namespace workbench
