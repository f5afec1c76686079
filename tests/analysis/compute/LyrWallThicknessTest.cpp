#include <analysis/compute/LyrWallThickness.h>

#include <algorithm>
#include <limits>
#include <numbers>

#include "TestVolumes.h"

using testvolumes::distance;
using testvolumes::makeShape;
using testvolumes::makeSolid;
using testvolumes::Place;
using testvolumes::VolumePtr;

namespace {

LyrThicknessResult analyse(const VolumePtr& volume, const LyrWallThickness::Options& options = {}) {
    LyrThicknessResult result;
    LyrAnalysisOutcome outcome;
    EXPECT_TRUE(LyrWallThickness::run(volume, options, result, outcome)) << outcome.error;
    return result;
}

std::string errorOf(const VolumePtr& volume, const LyrWallThickness::Options& options = {}) {
    LyrThicknessResult result;
    LyrAnalysisOutcome outcome;
    EXPECT_FALSE(LyrWallThickness::run(volume, options, result, outcome));
    EXPECT_FALSE(result.values);
    return outcome.error;
}

/** How far the thickness in each wall is from the truth. Within half a thickness and a voxel of the foot, where
 * balls of the block reach into the wall, nothing is expected; within half a thickness of the other ends, where balls
 * may fit worse, the part `atEnds` may differ. At least the part `leastSeen` of a wall is material: of a thin one,
 * whose outer voxels are half air, less. Walls thinner than a voxel are left out. */
void expectWalls(const LyrThicknessResult& result, std::int64_t edge, double atEnds = 0.03, double leastSeen = 0.8) {
    const LyrCasting::Truth truth = LyrCasting::truth(edge);
    for (const LyrCasting::Wall& wall : truth.walls) {
        if (wall.thickness < truth.spacing) {
            continue;
        }
        double worst = 0.0;
        double seen = 0.0;
        double wrong = 0.0;
        for (std::int64_t z = 0; z < edge; ++z) {
            for (std::int64_t y = 0; y < edge; ++y) {
                for (std::int64_t x = 0; x < edge; ++x) {
                    const auto at = [&](std::int64_t i) { return (static_cast<double>(i) + 0.5) * truth.spacing; };
                    const double half = wall.thickness / 2.0;
                    const float thickness = result.values->at(x, y, z);
                    if (at(x) < wall.low[0] || at(x) > wall.high[0] || at(y) < wall.low[1] || at(y) > wall.high[1] ||
                        at(z) < wall.low[2] + half + truth.spacing || at(z) > wall.high[2] || std::isnan(thickness)) {
                        continue;
                    }
                    const double error = std::abs(static_cast<double>(thickness) - wall.thickness);
                    seen += 1.0;
                    wrong += error > truth.spacing ? 1.0 : 0.0;
                    if (at(y) > wall.low[1] + half && at(y) < wall.high[1] - half && at(z) < wall.high[2] - half) {
                        worst = std::max(worst, error);
                    }
                }
            }
        }
        const double voxels = (wall.high[0] - wall.low[0]) * (wall.high[1] - wall.low[1]) *
                              (wall.high[2] - wall.low[2] - wall.thickness / 2.0 - truth.spacing) /
                              std::pow(truth.spacing, 3.0);
        EXPECT_GT(seen, leastSeen * voxels) << "wall of " << wall.thickness << " mm at " << edge;
        EXPECT_LE(worst, truth.spacing) << "wall of " << wall.thickness << " mm at " << edge;
        EXPECT_LE(wrong, atEnds * seen) << "wall of " << wall.thickness << " mm at " << edge;
    }
}

/** A slab of a thickness in voxels between two planes with a normal, in a volume that it leaves on all sides. */
VolumePtr slab(double thickness, Place normal, double place) {
    const double length = std::hypot(normal[0], normal[1], normal[2]);
    return makeShape({28, 28, 28}, [=](const Place& p) {
        const double along = (p[0] * normal[0] + p[1] * normal[1] + p[2] * normal[2]) / length - place;
        return std::abs(along) < thickness / 2.0;
    });
}

}  // namespace

TEST(LyrWallThickness, measures_the_walls_of_the_casting_within_a_voxel) {
    for (const std::int64_t edge : testvolumes::castingEdges({64, 96, 128})) {
        expectWalls(analyse(testvolumes::casting(edge)), edge);
    }
}

TEST(LyrWallThickness, measures_the_walls_of_the_casting_within_a_voxel_under_noise) {
    for (const std::int64_t edge : testvolumes::castingEdges({96})) {
        expectWalls(analyse(testvolumes::casting(edge, 5.0)), edge);
    }
}

// Down to walls of one voxel with gaps of 1.3 voxels between them, however both lie in the grid.
TEST(LyrWallThickness, measures_walls_of_one_voxel_beside_gaps_of_little_more) {
    for (const double noise : {0.0, 5.0}) {
        for (std::int64_t edge = 28; edge <= 62; edge += noise > 0.0 ? 4 : 1) {
            SCOPED_TRACE(noise);
            expectWalls(analyse(testvolumes::casting(edge, noise)), edge, 0.15, 0.4);
        }
    }
}

TEST(LyrWallThickness, keeps_the_thickness_of_a_block_out_of_the_thin_walls_on_it) {
    // Two walls on a block of 12, with a gap of 1.2 between them and air on their other sides, at several places.
    for (const double offset : {0.0, 0.25, 0.5, 0.7}) {
        for (const double thickness : {1.0, 1.5, 2.0, 2.6}) {
            const double first = 8.0 + offset;
            const double second = first + thickness + 1.2;
            const auto inWall = [=](double x) {
                return (x > first && x < first + thickness) || (x > second && x < second + thickness);
            };
            const LyrThicknessResult result = analyse(makeShape({26, 24, 34}, [=](const Place& p) {
                const bool inside = p[1] > 2.5 && p[1] < 20.5 && p[0] > 2.5 && p[0] < 22.5;
                return inside && p[2] > 2.5 && p[2] < (inWall(p[0]) ? 29.5 : 14.5);
            }));
            for (std::int64_t z = 17; z < 27; ++z) {
                for (std::int64_t y = 5; y < 18; ++y) {
                    for (std::int64_t x = 4; x < 22; ++x) {
                        const float value = result.values->at(x, y, z);
                        if (!std::isnan(value)) {
                            ASSERT_NEAR(value, thickness, 1.0) << "at " << x << ' ' << y << ' ' << z << ", " << offset;
                        }
                    }
                }
            }
        }
    }
}

TEST(LyrWallThickness, is_finer_than_voxels_for_slabs_along_the_axes) {
    LyrWallThickness::Options halfway;
    halfway.threshold = (testvolumes::kAir + testvolumes::kSolid) / 2.0F;
    for (const Place& normal : {Place{1, 0, 0}, Place{0, 1, 0}, Place{0, 0, 1}}) {
        for (const double thickness : {1.3, 2.0, 2.5, 3.7, 6.2}) {
            for (const double middle : {13.5, 13.7, 14.1}) {
                const LyrThicknessResult result = analyse(slab(thickness, normal, middle), halfway);
                EXPECT_NEAR(result.least, thickness, 0.2) << "around " << middle;
                EXPECT_NEAR(result.greatest, thickness, 0.2) << "around " << middle;
            }
        }
    }
}

TEST(LyrWallThickness, is_right_to_a_voxel_for_slabs_in_other_directions) {
    LyrWallThickness::Options halfway;
    halfway.threshold = (testvolumes::kAir + testvolumes::kSolid) / 2.0F;
    for (const Place& normal : {Place{1, 1, 0}, Place{1, 2, 3}, Place{1, -1, 1}, Place{3, 1, 0}}) {
        const double length = std::hypot(normal[0], normal[1], normal[2]);
        const double middle = 13.7 * (normal[0] + normal[1] + normal[2]) / length;
        for (const double thickness : {1.3, 2.5, 3.7, 6.2}) {
            const LyrThicknessResult result = analyse(slab(thickness, normal, middle), halfway);
            EXPECT_NEAR(result.median, thickness, thickness > 5.0 ? 0.35 : 1.0)
                << thickness << " across " << normal[0] << ' ' << normal[1] << ' ' << normal[2];
        }
    }
}

TEST(LyrWallThickness, of_a_ball_is_its_diameter_everywhere) {
    const Place center{12.4, 12.1, 11.8};
    const LyrThicknessResult result =
        analyse(makeShape({25, 25, 25}, [&](const Place& p) { return distance(p, center) < 8.5; }));
    EXPECT_NEAR(result.median, 17.0, 0.6);
    EXPECT_NEAR(result.least, 17.0, 1.0);
    EXPECT_NEAR(result.greatest, 17.0, 0.6);
}

TEST(LyrWallThickness, of_a_cylinder_is_its_diameter_up_to_its_ends) {
    const LyrThicknessResult result = analyse(makeShape({20, 20, 40}, [](const Place& p) {
        return std::hypot(p[0] - 9.6, p[1] - 9.3) < 5.0 && p[2] > 5.0 && p[2] < 35.0;
    }));
    EXPECT_NEAR(result.median, 10.0, 0.6);
    EXPECT_LT(result.greatest, 11.0);
    const auto thin = std::count_if(result.values->samples().begin(), result.values->samples().end(),
                                    [](float value) { return value < 9.0F; });
    EXPECT_LT(static_cast<double>(thin), 0.05 * static_cast<double>(result.materialVoxels))
        << "but for bits of the rims";
}

TEST(LyrWallThickness, takes_edges_and_corners_for_as_thick_as_what_lies_beside_them) {
    const LyrThicknessResult result = analyse(makeSolid(
        {40, 40, 14}, [](auto x, auto y, auto z) { return x >= 4 && x < 36 && y >= 4 && y < 36 && z >= 4 && z < 10; }));
    EXPECT_NEAR(result.least, 6.0, 0.1);
    EXPECT_NEAR(result.greatest, 6.0, 0.1);
    EXPECT_NEAR(result.values->at(4, 4, 4), 6.0F, 0.1F);
}

// Right edges, at whatever angle they stand in the grid: a square bar is as thick in them as from side to side.
TEST(LyrWallThickness, takes_the_edges_of_a_turned_bar_for_as_thick_as_the_bar) {
    for (const double degrees : {45.0, 30.0, 12.0}) {
        const double cosine = std::cos(degrees * std::numbers::pi / 180.0);
        const double sine = std::sin(degrees * std::numbers::pi / 180.0);
        const LyrThicknessResult result = analyse(makeShape({34, 34, 12}, [=](const Place& p) {
            const Place q{p[0] - 16.3, p[1] - 16.6, p[2]};
            return std::max(std::abs(q[0] * cosine + q[1] * sine), std::abs(q[1] * cosine - q[0] * sine)) < 9.0;
        }));
        EXPECT_NEAR(result.median, 18.0, 0.5) << degrees;
        EXPECT_NEAR(result.least, 18.0, 1.0) << degrees;
    }
}

TEST(LyrWallThickness, takes_a_bump_for_as_thick_as_what_it_stands_on) {
    for (const std::int64_t width : {1, 2}) {
        const LyrThicknessResult result = analyse(makeSolid({30, 30, 18}, [=](auto x, auto y, auto z) {
            const bool bump = x >= 14 && x < 14 + width && y >= 14 && y < 14 + width && z == 12;
            return (x >= 2 && x < 28 && y >= 2 && y < 28 && z >= 4 && z < 12) || bump;
        }));
        EXPECT_NEAR(result.least, 8.0, 0.2) << width;
    }
}

TEST(LyrWallThickness, tells_two_steps_apart) {
    const LyrThicknessResult result = analyse(makeSolid({60, 30, 24}, [](auto x, auto y, auto z) {
        return x >= 2 && x < 58 && y >= 2 && y < 28 && z >= 2 && z < (x < 30 ? 6 : 18);
    }));
    EXPECT_NEAR(result.values->at(12, 15, 4), 4.0F, 0.2F);
    EXPECT_NEAR(result.values->at(46, 15, 10), 16.0F, 0.2F);
}

TEST(LyrWallThickness, is_in_mm_for_voxels_that_are_no_cubes) {
    const auto plate = [](std::size_t axis, std::int64_t voxels) {
        return analyse(makeSolid({32, 32, 32},
                                 [=](auto x, auto y, auto z) {
                                     const std::array<std::int64_t, 3> p{x, y, z};
                                     return p[axis] >= 10 && p[axis] < 10 + voxels;
                                 },
                                 {0.5, 1.0, 2.0}))
            .median;
    };
    EXPECT_NEAR(plate(0, 8), 4.0, 0.1);
    EXPECT_NEAR(plate(1, 5), 5.0, 0.1);
    EXPECT_NEAR(plate(2, 4), 8.0, 0.1);
}

TEST(LyrWallThickness, does_not_end_where_the_volume_ends) {
    // Only one face of the slab is in the volume: twice the depth that is seen is the best that can be said.
    const LyrThicknessResult cut = analyse(makeSolid({24, 24, 24}, [](auto x, auto, auto) { return x >= 16; }));
    EXPECT_NEAR(cut.median, 15.0, 0.2);
    const LyrThicknessResult slice =
        analyse(makeSolid({30, 30, 1}, [](auto x, auto, auto) { return x >= 9 && x < 16; }));
    EXPECT_NEAR(slice.median, 7.0, 0.1);
}

TEST(LyrWallThickness, gives_material_a_number_and_everything_else_none) {
    const VolumePtr volume = testvolumes::casting(48, 5.0);
    const LyrThicknessResult result = analyse(volume);
    std::uint64_t material = 0;
    double sum = 0.0;
    std::vector<float> values;
    for (std::size_t i = 0; i < volume->samples().size(); ++i) {
        const float value = result.values->samples()[i];
        ASSERT_EQ(volume->samples()[i] >= result.threshold, value > 0.0F);
        ASSERT_EQ(volume->samples()[i] < result.threshold, std::isnan(value));
        if (value > 0.0F) {
            ++material;
            sum += static_cast<double>(value);
            values.push_back(value);
        }
    }
    std::sort(values.begin(), values.end());
    EXPECT_EQ(result.materialVoxels, material);
    EXPECT_EQ(result.countedMaterialVolume, static_cast<double>(material) * result.voxelVolume);
    EXPECT_NEAR(result.mean, sum / static_cast<double>(material), 1e-6);
    EXPECT_EQ(result.least, static_cast<double>(values.front()));
    EXPECT_EQ(result.greatest, static_cast<double>(values.back()));
    EXPECT_EQ(result.median, static_cast<double>(values[(values.size() - 1) / 2]));
}

TEST(LyrWallThickness, refuses_what_it_cannot_analyse_with_a_message) {
    EXPECT_NE(errorOf(nullptr).find("no volume"), std::string::npos);
    const VolumePtr constant = makeSolid({4, 4, 4}, [](auto, auto, auto) { return true; });
    EXPECT_NE(errorOf(constant).find("same value"), std::string::npos);
    LyrWallThickness::Options options;
    options.threshold = 1000.0F;
    EXPECT_NE(errorOf(constant, options).find("no material"), std::string::npos);
    options.threshold = 50.0F;
    EXPECT_NE(errorOf(constant, options).find("no air"), std::string::npos);
    options.threshold = std::numeric_limits<float>::infinity();
    EXPECT_NE(errorOf(constant, options).find("not a finite number"), std::string::npos);
}

TEST(LyrWallThickness, works_on_noise) {
    const VolumePtr volume = testvolumes::noise(32);
    const LyrThicknessResult result = analyse(volume);
    EXPECT_GT(result.least, 0.0);
    EXPECT_LT(result.greatest, 12.0);
}
