#pragma once

#include <lyr_volume/LyrVolumeReader.h>

#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

class LyqBackgroundJob;

namespace workbench {

/** Reads volumes in the background, one at a time: a new one takes the place of one that is still being read. */
class VolumeLoader : public QObject {
    Q_OBJECT

public:
    explicit VolumeLoader(QObject* parent = nullptr);
    ~VolumeLoader() override;

    void load(const QString& path);
    /** Ends the reading; nothing is told of it any more. */
    void cancel();
    bool isLoading() const;
    QString path() const { return mPath; }

Q_SIGNALS:
    void progressChanged(double done);
    void loaded(const QString& path, std::shared_ptr<const LyrVolume> volume, const QStringList& warnings);
    void failed(const QString& path, const QString& message);

private:
    QPointer<LyqBackgroundJob> mJob;
    QString mPath;
};

}  // namespace workbench
