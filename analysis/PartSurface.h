#pragma once

#include <analysis/LysAnalysisExport.h>
#include <lyr_opengl/LyrSurface.h>
#include <lyr_volume/LyrVolume.h>

#include <QObject>
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

class LyqBackgroundJob;

/** The surface between material and air of a volume, extracted in the background, once for all layers that colour it.
 *  One of more than MOST_FACES voxel faces is extracted from a coarser volume, voxels of twice the length until it has
 *  less: a cloud of noise would fill the memory, and each frame of it would take seconds to draw. */
class LYS_ANALYSIS_EXPORT PartSurface : public QObject {
    Q_OBJECT

public:
    /** The surface of a casting of 256³ voxels has 0.44 million. Without a graphics card a million triangles take about
     * 60 ms a frame; more of them than a large view has pixels show nothing more. */
    static constexpr std::uint64_t MOST_FACES = 500000;

    /** That of a volume: the one that others hold already, or a new one that begins its work. Not null. */
    static std::shared_ptr<PartSurface> of(const std::shared_ptr<const LyrVolume>& volume);
    ~PartSurface() override;

    /** True when it is there, or cannot be had. */
    bool isFinished() const;
    /** Null until it is there. */
    const std::shared_ptr<const LyrRendering::SurfaceMesh>& mesh() const { return mMesh; }
    /** The value at which the surface lies, once it is there. */
    float value() const { return mValue; }
    /** Why there is none; empty if there is, or may yet be. */
    const QString& error() const { return mError; }

Q_SIGNALS:
    /** The surface is there, or cannot be had. */
    void finished();

private:
    explicit PartSurface(std::shared_ptr<const LyrVolume> volume);

    std::shared_ptr<const LyrVolume> mVolume;
    std::shared_ptr<const LyrRendering::SurfaceMesh> mMesh;
    std::unique_ptr<LyqBackgroundJob> mJob;
    float mValue = 0.0f;
    QString mError;
};
