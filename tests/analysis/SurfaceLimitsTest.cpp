#include <ToolkitApplication.h>
#include <analysis/DefectSurface.h>
#include <analysis/PartSurface.h>
#include <analysis/compute/LyrDefectResult.h>
#include <gtest/gtest.h>

#include <QTest>

#include <algorithm>
#include <random>

namespace {

std::shared_ptr<const LyrVolume> noise(std::int64_t edge) {
    LyrVolume::Description description;
    description.size = {edge, edge, edge};
    std::vector<float> samples(static_cast<std::size_t>(edge * edge * edge));
    std::mt19937 random(1);
    std::generate(samples.begin(), samples.end(), [&] { return random() % 5 == 0 ? 0.0f : 1.0f; });
    return LyrVolume::create(description, std::move(samples));
}

LyrDefectResult defectsOf(std::size_t count, std::uint64_t voxels) {
    LyrDefectResult result;
    result.defects.resize(count);
    for (LyrDefect& defect : result.defects) {
        defect.voxels = voxels;
        defect.sphericity = 1.0;
    }
    return result;
}

}  // namespace

TEST(PartSurface, of_noise_is_coarser_and_still_goes_around_the_part) {
    const ToolkitApplication application;
    // 1.35 million faces: 0.32 for each of three neighbours of each voxel.
    const auto surface = PartSurface::of(noise(112));
    ASSERT_TRUE(QTest::qWaitFor([&] { return surface->isFinished(); }, 60000));
    ASSERT_TRUE(surface->mesh()) << surface->error().toStdString();
    EXPECT_LT(surface->mesh()->triangles.size() / 3, 2 * PartSurface::MOST_FACES);
    const auto [low, high] = std::minmax_element(surface->mesh()->positions.begin(), surface->mesh()->positions.end());
    EXPECT_NEAR(*low, 0.0f, 2.0f);
    EXPECT_NEAR(*high, 112.0f, 2.0f);
}

TEST(DefectSurface, shows_the_largest_defects_as_long_as_they_are_drawn_quickly) {
    EXPECT_EQ(DefectSurface::shownCount(defectsOf(16, 5000)), 16u);
    // Two voxels have ten faces.
    EXPECT_EQ(DefectSurface::shownCount(defectsOf(100000, 2)), 10000u);
    // A ball of a hundred thousand voxels: one and a half times its surface, 15629 faces.
    EXPECT_EQ(DefectSurface::shownCount(defectsOf(10, 100000)), 6u);
    EXPECT_EQ(DefectSurface::shownCount(defectsOf(1, 100000000)), 1u) << "one is always shown";
    EXPECT_EQ(DefectSurface::shownCount(defectsOf(0, 1)), 0u);
}
