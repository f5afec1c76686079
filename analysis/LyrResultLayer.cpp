#include <analysis/AnalysisIdentifiers.h>
#include <analysis/LyrResultLayer.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_volume/LyrVolumeObject.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

/** How far is looked for a value, in voxels: a surface lies between two voxels, one of which has a value. */
constexpr std::int64_t REACH = 2;

/** A place among the centres of voxels, which lie at whole numbers. */
struct Place {
    std::array<double, 3> index{};
    std::array<std::int64_t, 3> nearest{};
};

/** Looks for the nearest voxel with a value, up to `reach` voxels from the one that holds the place. Returns the square
 * of its distance in mm, infinite if there is none. */
double search(const LyrVolume& volume, const Place& place, std::int64_t reach, float& found) {
    std::array<std::int64_t, 3> from{}, to{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        from[axis] = std::max<std::int64_t>(place.nearest[axis] - reach, 0);
        to[axis] = std::min(place.nearest[axis] + reach, volume.size()[axis] - 1);
    }
    double least = std::numeric_limits<double>::infinity();
    for (std::int64_t z = from[2]; z <= to[2]; ++z) {
        for (std::int64_t y = from[1]; y <= to[1]; ++y) {
            for (std::int64_t x = from[0]; x <= to[0]; ++x) {
                const double dx = (static_cast<double>(x) - place.index[0]) * volume.spacing()[0];
                const double dy = (static_cast<double>(y) - place.index[1]) * volume.spacing()[1];
                const double dz = (static_cast<double>(z) - place.index[2]) * volume.spacing()[2];
                const double distance = dx * dx + dy * dy + dz * dz;
                if (distance < least && !std::isnan(volume.at(x, y, z))) {
                    least = distance;
                    found = volume.at(x, y, z);
                }
            }
        }
    }
    return least;
}

/** The value of the voxel nearest to a place (mm) that has one; NaN if there is none within reach. */
float nearestValue(const LyrVolume& volume, const float* position) {
    Place place;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        place.index[axis] = static_cast<double>(position[axis]) / volume.spacing()[axis] - 0.5;
        place.nearest[axis] = static_cast<std::int64_t>(std::lround(place.index[axis]));
    }
    float found = std::numeric_limits<float>::quiet_NaN();
    // A surface has many vertices, and all but few have a value close by. What is not searched yet lies at least as far
    // away as the border of what is: half a voxel more than the reach along the finest axis.
    const double finest = *std::min_element(volume.spacing().begin(), volume.spacing().end());
    for (std::int64_t reach = 0; reach <= REACH; ++reach) {
        const double border = (static_cast<double>(reach) + 0.5) * finest;
        if (search(volume, place, reach, found) <= border * border) {
            break;
        }
    }
    return found;
}

}  // namespace

const LyrMetaClass& LyrResultLayer::metaClass() {
    static const LyrMetaClass meta("LyrResultLayer", sizeof(LyrResultLayer), &LyrColoredLayer::metaClass(), nullptr,
                                   LYS_ANALYSIS_MODULE, 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrResultLayer::getMetaClass() const {
    return metaClass();
}

bool LyrResultLayer::readout(const LyrVector3<float>& position, Readout& out) const {
    LyrVolume::Size voxel{};
    return document().voxelAt(position, voxel) && !std::isnan(values()->at(voxel[0], voxel[1], voxel[2])) &&
           LyrColoredLayer::readout(position, out);
}

void LyrResultLayer::finishSlice(int, int, std::span<const float> values, std::span<std::uint8_t> pixels) const {
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (std::isnan(values[i])) {
            pixels[4 * i + 3] = 0;
        }
    }
}

LyrColoredLayer::VertexValues LyrResultLayer::vertexValues() const {
    return [values = values()](const LyrRendering::SurfaceMesh& mesh, std::size_t first, std::span<float> out) {
        for (std::size_t i = 0; i < out.size(); ++i) {
            out[i] = nearestValue(*values, mesh.positions.data() + 3 * (first + i));
        }
    };
}
