#include <analysis/AnalysisIdentifiers.h>
#include <analysis/PartSurface.h>
#include <lyr_volume/LyrVolumeSurface.h>
#include <lys_core/LyqBackgroundJob.h>

#include <map>
#include <string>
#include <utility>

namespace {

/** What the background work hands over. */
struct Extraction {
    std::shared_ptr<LyrRendering::SurfaceMesh> mesh = std::make_shared<LyrRendering::SurfaceMesh>();
    float value = 0.0f;
};

std::vector<float> flat(const std::vector<LyrVector3<float>>& vectors) {
    std::vector<float> numbers;
    numbers.reserve(vectors.size() * 3);
    for (const LyrVector3<float>& v : vectors) {
        numbers.insert(numbers.end(), {v.x, v.y, v.z});
    }
    return numbers;
}

bool extract(const LyrVolume& volume, Extraction& out, const LyqBackgroundJob::Progress& progress, QString& message) {
    std::shared_ptr<const LyrVolumeSurface> surface;
    std::string error;
    out.value = LyrVolumeSurface::suggestValue(volume);
    if (!LyrVolumeSurface::extract(volume, out.value, surface, error, progress)) {
        message = QString::fromStdString(error);
        return false;
    }
    out.mesh->positions = flat(surface->positions);
    out.mesh->normals = flat(surface->normals);
    out.mesh->triangles.reserve(surface->triangles.size() * 3);
    for (const auto& triangle : surface->triangles) {
        out.mesh->triangles.insert(out.mesh->triangles.end(), triangle.begin(), triangle.end());
    }
    return true;
}

}  // namespace

std::shared_ptr<PartSurface> PartSurface::of(const std::shared_ptr<const LyrVolume>& volume) {
    static std::map<const LyrVolume*, std::weak_ptr<PartSurface>> known;
    std::erase_if(known, [](const auto& entry) { return entry.second.expired(); });
    std::weak_ptr<PartSurface>& entry = known[volume.get()];
    std::shared_ptr<PartSurface> surface = entry.lock();
    if (!surface) {
        surface.reset(new PartSurface(volume));
        entry = surface;
    }
    return surface;
}

PartSurface::PartSurface(std::shared_ptr<const LyrVolume> volume) : mVolume(std::move(volume)) {
    const auto result = std::make_shared<Extraction>();
    mJob = std::make_unique<LyqBackgroundJob>(
        [source = mVolume, result](const LyqBackgroundJob::Progress& progress, QString& message) {
            return extract(*source, *result, progress, message);
        },
        QString::fromUtf8(LYS_ANALYSIS_MODULE));
    connect(mJob.get(), &LyqBackgroundJob::finished, this, [this, result](bool succeeded, const QString& message) {
        if (succeeded) {
            mValue = result->value;
            mMesh = result->mesh;
        }
        mError = message;
        Q_EMIT finished();
    });
    mJob->start();
}

PartSurface::~PartSurface() = default;

bool PartSurface::isFinished() const {
    return !mJob->isRunning();
}
