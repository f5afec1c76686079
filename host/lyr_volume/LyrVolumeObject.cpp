#include <lyr_core/LyrMetaClass.h>
#include <lyr_volume/LyrVolumeObject.h>

#include <array>
#include <cmath>
#include <utility>

LyrVolumeObject::LyrVolumeObject(std::shared_ptr<const LyrVolume> volume, std::string name, std::string path)
    : mVolume(std::move(volume)), mName(std::move(name)), mPath(std::move(path)) {}

LyrVolumeObject::~LyrVolumeObject() = default;

const LyrMetaClass& LyrVolumeObject::metaClass() {
    static const LyrMetaClass meta("LyrVolumeObject", sizeof(LyrVolumeObject), &LyrObject::metaClass(), nullptr,
                                   "lyr_volume", 0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrVolumeObject::getMetaClass() const {
    return metaClass();
}

LyrVector3<float> LyrVolumeObject::step() const {
    const LyrVolume::Vector& spacing = mVolume->spacing();
    return {static_cast<float>(spacing[0]), static_cast<float>(spacing[1]), static_cast<float>(spacing[2])};
}

LyrVector3<float> LyrVolumeObject::extent() const {
    const LyrVolume::Vector& spacing = mVolume->spacing();
    const LyrVolume::Size& size = mVolume->size();
    return {static_cast<float>(spacing[0] * static_cast<double>(size[0])),
            static_cast<float>(spacing[1] * static_cast<double>(size[1])),
            static_cast<float>(spacing[2] * static_cast<double>(size[2]))};
}

LyrVolume::Vector LyrVolumeObject::volumePosition(const LyrVector3<float>& world) const {
    const std::array<float, 3> place = {world.x, world.y, world.z};
    LyrVolume::Vector position{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        position[axis] = static_cast<double>(place[axis]) - 0.5 * mVolume->spacing()[axis] + mVolume->origin()[axis];
    }
    return position;
}

LyrVector3<float> LyrVolumeObject::worldPosition(const LyrVolume::Vector& position) const {
    const auto along = [&](std::size_t axis) {
        return static_cast<float>(position[axis] - mVolume->origin()[axis] + 0.5 * mVolume->spacing()[axis]);
    };
    return {along(0), along(1), along(2)};
}

bool LyrVolumeObject::voxelAt(const LyrVector3<float>& position, LyrVolume::Size& out) const {
    const std::array<float, 3> place = {position.x, position.y, position.z};
    LyrVolume::Size voxel{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double index = std::floor(static_cast<double>(place[axis]) / mVolume->spacing()[axis]);
        if (!(index >= 0.0 && index < static_cast<double>(mVolume->size()[axis]))) {
            return false;
        }
        voxel[axis] = static_cast<std::int64_t>(index);
    }
    out = voxel;
    return true;
}

bool LyrVolumeObject::sampleAt(const LyrVector3<float>& position, float& out) const {
    LyrVolume::Size voxel{};
    if (!voxelAt(position, voxel)) {
        return false;
    }
    out = mVolume->at(voxel[0], voxel[1], voxel[2]);
    return true;
}
