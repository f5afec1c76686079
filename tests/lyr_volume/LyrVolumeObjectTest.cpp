#include <gtest/gtest.h>
#include <lyr_core/LyrMetaClass.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lyr_volume/LyrVolumeObject.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

/** 4 × 3 × 2 voxels of 0.5 × 1 × 2 mm, sample = 100 z + 10 y + x. */
std::shared_ptr<const LyrVolume> smallVolume() {
    LyrVolume::Description description;
    description.size = {4, 3, 2};
    description.spacing = {0.5, 1.0, 2.0};
    std::vector<float> samples;
    for (int z = 0; z < 2; ++z) {
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 4; ++x) {
                samples.push_back(float(100 * z + 10 * y + x));
            }
        }
    }
    return LyrVolume::create(description, std::move(samples));
}

}  // namespace

TEST(LyrVolumeObject, it_tells_name_path_and_edges) {
    const LyrObjectPtr object(new LyrVolumeObject(smallVolume(), "part.nrrd", "/scans/part.nrrd"));
    const auto& opened = static_cast<const LyrVolumeObject&>(*object);
    EXPECT_STREQ(object->getMetaClass().getClassName(), "LyrVolumeObject");
    EXPECT_EQ(opened.name(), "part.nrrd");
    EXPECT_EQ(opened.path(), "/scans/part.nrrd");
    EXPECT_EQ(opened.step(), LyrVector3<float>(0.5f, 1.0f, 2.0f));
    EXPECT_EQ(opened.extent(), LyrVector3<float>(2.0f, 3.0f, 4.0f));
}

TEST(LyrVolumeObject, a_place_in_mm_gives_the_sample_of_its_voxel) {
    const LyrObjectPtr object(new LyrVolumeObject(smallVolume(), "", ""));
    const auto& opened = static_cast<const LyrVolumeObject&>(*object);
    float value = -1.0f;
    ASSERT_TRUE(opened.sampleAt({1.6f, 2.9f, 2.1f}, value));
    EXPECT_EQ(value, 123.0f);
    ASSERT_TRUE(opened.sampleAt({0.0f, 0.0f, 0.0f}, value));
    EXPECT_EQ(value, 0.0f);
    LyrVolume::Size voxel{};
    ASSERT_TRUE(opened.voxelAt({0.5f, 1.0f, 1.9f}, voxel));
    EXPECT_EQ(voxel, (LyrVolume::Size{1, 1, 0}));
}

TEST(LyrVolumeObject, positions_in_the_volumes_own_axes_count_from_the_centre_of_the_first_voxel) {
    LyrVolume::Description description;
    description.size = {2, 2, 2};
    description.spacing = {2.0, 2.0, 4.0};
    description.origin = {10.0, 20.0, -30.0};
    const LyrObjectPtr object(new LyrVolumeObject(LyrVolume::create(description, std::vector<float>(8)), "", ""));
    const auto& opened = static_cast<const LyrVolumeObject&>(*object);
    // The corner of the first voxel is half a voxel before its centre.
    EXPECT_EQ(opened.volumePosition({0.0f, 0.0f, 0.0f}), (LyrVolume::Vector{9.0, 19.0, -32.0}));
    EXPECT_EQ(opened.volumePosition({1.0f, 3.0f, 6.0f}), (LyrVolume::Vector{10.0, 22.0, -26.0}));
    EXPECT_EQ(opened.worldPosition({10.0, 22.0, -26.0}), LyrVector3<float>(1.0f, 3.0f, 6.0f));
}

TEST(LyrVolumeObject, places_outside_and_nan_give_no_sample) {
    const LyrObjectPtr object(new LyrVolumeObject(smallVolume(), "", ""));
    const auto& opened = static_cast<const LyrVolumeObject&>(*object);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    float value = 5.0f;
    for (const LyrVector3<float>& place :
         {LyrVector3<float>(-0.01f, 1, 1), LyrVector3<float>(2.0f, 1, 1), LyrVector3<float>(1, 3.0f, 1),
          LyrVector3<float>(1, 1, 4.0f), LyrVector3<float>(nan, 1, 1), LyrVector3<float>(1, 1e30f, 1)}) {
        EXPECT_FALSE(opened.sampleAt(place, value));
    }
    EXPECT_EQ(value, 5.0f);
}
