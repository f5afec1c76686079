#include <analysis/AnalysisIdentifiers.h>
#include <analysis/PartSurface.h>
#include <lyr_volume/LyrVolumeSurface.h>
#include <lys_core/LyqBackgroundJob.h>

#include <cmath>
#include <cstdint>
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

/** How many pairs of neighbouring voxels a value parts, border included: the surface has two triangles for each. */
std::uint64_t facesAt(const LyrVolume& volume, float value) {
    const LyrVolume::Size size = volume.size();
    const float* samples = volume.samples().data();
    const auto isHigh = [&](std::int64_t i) { return samples[i] >= value; };
    const std::int64_t steps[] = {1, size[0], size[0] * size[1]};
    std::uint64_t faces = 0;
    std::int64_t at = 0;
    for (std::int64_t z = 0; z < size[2]; ++z) {
        for (std::int64_t y = 0; y < size[1]; ++y) {
            for (std::int64_t x = 0; x < size[0]; ++x, ++at) {
                const std::int64_t place[] = {x, y, z};
                const bool high = isHigh(at);
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    const bool isLast = place[axis] + 1 == size[axis];
                    faces += high != (!isLast && isHigh(at + steps[axis])) ? 1 : 0;
                    faces += high && place[axis] == 0 ? 1 : 0;
                }
            }
        }
    }
    return faces;
}

/** A volume of voxels twice as long, each the mean of the finite samples that it covers. */
std::shared_ptr<const LyrVolume> halved(const LyrVolume& volume) {
    LyrVolume::Description description = volume.description();
    for (std::size_t axis = 0; axis < 3; ++axis) {
        description.size[axis] = (description.size[axis] + 1) / 2;
        description.spacing[axis] *= 2.0;
    }
    const auto [width, height, depth] = description.size;
    std::vector<float> samples(static_cast<std::size_t>(width * height * depth));
    for (std::int64_t z = 0; z < depth; ++z) {
        for (std::int64_t y = 0; y < height; ++y) {
            for (std::int64_t x = 0; x < width; ++x) {
                double sum = 0.0;
                int count = 0;
                for (std::int64_t k = 0; k < 8; ++k) {
                    const LyrVolume::Size voxel = {2 * x + (k & 1), 2 * y + (k >> 1 & 1), 2 * z + (k >> 2)};
                    const bool isInside =
                        voxel[0] < volume.size()[0] && voxel[1] < volume.size()[1] && voxel[2] < volume.size()[2];
                    const float v = isInside ? volume.at(voxel[0], voxel[1], voxel[2]) : NAN;
                    sum += std::isfinite(v) ? static_cast<double>(v) : 0.0;
                    count += std::isfinite(v) ? 1 : 0;
                }
                samples[static_cast<std::size_t>(x + width * (y + height * z))] =
                    count > 0 ? static_cast<float>(sum / count) : NAN;
            }
        }
    }
    return LyrVolume::create(std::move(description), std::move(samples));
}

bool extract(const std::shared_ptr<const LyrVolume>& source, Extraction& out,
             const LyqBackgroundJob::Progress& progress, QString& message) {
    std::shared_ptr<const LyrVolumeSurface> surface;
    std::string error;
    out.value = LyrVolumeSurface::suggestValue(*source);
    std::shared_ptr<const LyrVolume> volume = source;
    while (facesAt(*volume, out.value) > PartSurface::MOST_FACES) {
        volume = halved(*volume);
        if (!volume || !progress(0.0)) {
            return false;
        }
    }
    if (!LyrVolumeSurface::extract(*volume, out.value, surface, error, progress)) {
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
            return extract(source, *result, progress, message);
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
