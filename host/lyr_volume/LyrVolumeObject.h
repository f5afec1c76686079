#pragma once

#include <memory>
#include <string>

#include <lyr_core/LyrObject.h>
#include <lyr_core/LyrVector3.h>
#include <lyr_volume/LyrVolume.h>
#include <lyr_volume/LyrVolumeExport.h>

/** An opened volume as an object of the host's graph: what an application opens, and layers and analyses work on.
 *
 *  The world's millimetres have their zero at the corner of the volume's first voxel, and run with the sample order:
 *  voxel (i, j, k) covers [i, i + 1] · step along x, and so on. A volume without distances counts a voxel as 1 mm. */
class LYR_VOLUME_EXPORT LyrVolumeObject : public LyrObject {
public:
    /** @param volume  not null
     *  @param name    for people: a file's name without its folder
     *  @param path    where it was opened from */
    LyrVolumeObject(std::shared_ptr<const LyrVolume> volume, std::string name, std::string path);
    ~LyrVolumeObject() override;
    LyrVolumeObject(const LyrVolumeObject&) = delete;
    LyrVolumeObject& operator=(const LyrVolumeObject&) = delete;

    static const LyrMetaClass& metaClass();
    const LyrMetaClass& getMetaClass() const override;

    const std::shared_ptr<const LyrVolume>& volume() const { return mVolume; }
    const std::string& name() const { return mName; }
    const std::string& path() const { return mPath; }

    /** Edges of a voxel, mm. */
    LyrVector3<float> step() const;
    /** Edges of the volume, mm: it reaches from (0, 0, 0) to here. */
    LyrVector3<float> extent() const;
    /** A place of the world in the volume's own axes, mm, where the first voxel's centre lies at the volume's origin:
     * what people read as a position, in windows and reports. */
    LyrVolume::Vector volumePosition(const LyrVector3<float>& world) const;
    /** The place of the world of a position in the volume's own axes. */
    LyrVector3<float> worldPosition(const LyrVolume::Vector& position) const;
    /** The voxel at a place (mm). False outside of the volume and for NaN. */
    bool voxelAt(const LyrVector3<float>& position, LyrVolume::Size& out) const;
    /** The sample of the voxel at a place (mm). False outside. */
    bool sampleAt(const LyrVector3<float>& position, float& out) const;

private:
    std::shared_ptr<const LyrVolume> mVolume;
    std::string mName;
    std::string mPath;
};
