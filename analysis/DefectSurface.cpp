#include <analysis/DefectSurface.h>
#include <analysis/compute/LyrDefectResult.h>
#include <lyr_volume/LyrVolumeSurface.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <new>
#include <numbers>
#include <span>

namespace {

/** Visits the voxels around a defect, those of its box and one more to all sides, inside of the volume. */
template <typename Visit>
void visitBox(const LyrDefect& defect, const LyrVolume::Size& size, const Visit& visit) {
    std::array<std::int64_t, 3> from{}, to{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        from[axis] = std::max<std::int64_t>(defect.first[axis] - 1, 0);
        to[axis] = std::min(defect.last[axis] + 1, size[axis] - 1);
    }
    for (std::int64_t z = from[2]; z <= to[2]; ++z) {
        for (std::int64_t y = from[1]; y <= to[1]; ++y) {
            for (std::int64_t x = from[0]; x <= to[0]; ++x) {
                visit(static_cast<std::size_t>(x + size[0] * (y + size[1] * z)));
            }
        }
    }
}

/** A volume that is high in the defects, falls through 0 at their surfaces and is low everywhere else. */
std::shared_ptr<const LyrVolume> hollowness(const LyrDefectResult& result) {
    const LyrVolume& volume = *result.volume;
    const float low = -std::max(volume.valueRange().high - result.threshold, std::numeric_limits<float>::min());
    std::vector<float> samples(volume.samples().size(), low);
    const std::size_t shown = DefectSurface::shownCount(result);
    for (const LyrDefect& defect : std::span(result.defects).first(shown)) {
        visitBox(defect, volume.size(), [&](std::size_t i) {
            const float grey = volume.samples()[i];
            // Of what is no material only defects count: neither the outside nor hollows that are too small.
            if (std::isfinite(grey) && (grey >= result.threshold || result.labels[i] > 0)) {
                samples[i] = result.threshold - grey;
            }
        });
    }
    LyrVolume::Description description = volume.description();
    return LyrVolume::create(std::move(description), std::move(samples));
}

std::shared_ptr<LyrRendering::SurfaceMesh> meshOf(const LyrVolumeSurface& surface) {
    auto mesh = std::make_shared<LyrRendering::SurfaceMesh>();
    const auto flatten = [](const std::vector<LyrVector3<float>>& from, std::vector<float>& to) {
        to.reserve(3 * from.size());
        for (const LyrVector3<float>& v : from) {
            to.insert(to.end(), {v.x, v.y, v.z});
        }
    };
    flatten(surface.positions, mesh->positions);
    flatten(surface.normals, mesh->normals);
    mesh->triangles.reserve(3 * surface.triangles.size());
    for (const auto& triangle : surface.triangles) {
        mesh->triangles.insert(mesh->triangles.end(), triangle.begin(), triangle.end());
    }
    return mesh;
}

}  // namespace

std::size_t DefectSurface::shownCount(const LyrDefectResult& result) {
    double faces = 0.0;
    for (std::size_t i = 0; i < result.defects.size(); ++i) {
        const auto voxels = static_cast<double>(result.defects[i].voxels);
        // A chain of voxels has the most faces, a ball the least: 6 of a cube's for each face of it, 1.5 of a ball's.
        const double ball = 1.5 * std::cbrt(36.0 * std::numbers::pi * voxels * voxels);
        const double sphericity = std::clamp(result.defects[i].sphericity, 0.05, 1.0);
        faces += std::min(4.0 * voxels + 2.0, ball / sphericity);
        if (faces > MOST_FACES) {
            return std::max<std::size_t>(i, 1);
        }
    }
    return result.defects.size();
}

std::uint32_t DefectSurface::defectNear(const LyrDefectResult& result, const LyrVector3<float>& place) {
    const LyrVolume& volume = *result.volume;
    const std::array<double, 3> at = {static_cast<double>(place.x), static_cast<double>(place.y),
                                      static_cast<double>(place.z)};
    std::array<double, 3> index{};
    std::array<std::int64_t, 3> middle{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        index[axis] = at[axis] / volume.spacing()[axis] - 0.5;
        if (!(index[axis] >= -1.0 && index[axis] <= static_cast<double>(volume.size()[axis]))) {
            return 0;
        }
        middle[axis] = static_cast<std::int64_t>(std::lround(index[axis]));
    }
    std::uint32_t number = 0;
    double least = std::numeric_limits<double>::infinity();
    for (std::int64_t z = middle[2] - 1; z <= middle[2] + 1; ++z) {
        for (std::int64_t y = middle[1] - 1; y <= middle[1] + 1; ++y) {
            for (std::int64_t x = middle[0] - 1; x <= middle[0] + 1; ++x) {
                const LyrDefect* defect = result.defectAt(x, y, z);
                const double distance = std::hypot((static_cast<double>(x) - index[0]) * volume.spacing()[0],
                                                   (static_cast<double>(y) - index[1]) * volume.spacing()[1],
                                                   (static_cast<double>(z) - index[2]) * volume.spacing()[2]);
                if (defect && distance < least) {
                    least = distance;
                    number = defect->number;
                }
            }
        }
    }
    return number;
}

bool DefectSurface::extract(const LyrDefectResult& result, DefectSurface& out, std::string& error,
                            const std::function<bool(double)>& progress) {
    try {
        DefectSurface made;
        if (result.defects.empty()) {
            made.mesh = std::make_shared<LyrRendering::SurfaceMesh>();
            out = std::move(made);
            return true;
        }
        const std::shared_ptr<const LyrVolume> volume = hollowness(result);
        std::shared_ptr<const LyrVolumeSurface> surface;
        if (!volume || !LyrVolumeSurface::extract(*volume, 0.0f, surface, error, progress)) {
            return false;
        }
        made.mesh = meshOf(*surface);
        auto owners = std::make_shared<std::vector<std::uint32_t>>();
        owners->reserve(surface->positions.size());
        for (const LyrVector3<float>& place : surface->positions) {
            owners->push_back(defectNear(result, place));
        }
        made.defects = std::move(owners);
        out = std::move(made);
        return true;
    } catch (const std::bad_alloc&) {
        error = "the surfaces of the defects: not enough memory; close other programs and try again";
        return false;
    }
}
