#include <analysis/compute/LyrDefectAnalysis.h>

#include <algorithm>
#include <limits>
#include <map>
#include <numbers>

#include "TestVolumes.h"

using testvolumes::distance;
using testvolumes::make;
using testvolumes::makeShape;
using testvolumes::makeSolid;
using testvolumes::Place;
using testvolumes::VolumePtr;

namespace {

LyrDefectResult analyse(const VolumePtr& volume, const LyrDefectAnalysis::Options& options = {}) {
    LyrDefectResult result;
    LyrAnalysisOutcome outcome;
    EXPECT_TRUE(LyrDefectAnalysis::run(volume, options, result, outcome)) << outcome.error;
    return result;
}

std::string errorOf(const VolumePtr& volume, const LyrDefectAnalysis::Options& options = {}) {
    LyrDefectResult result;
    result.threshold = 42.0F;
    LyrAnalysisOutcome outcome;
    EXPECT_FALSE(LyrDefectAnalysis::run(volume, options, result, outcome));
    EXPECT_FALSE(outcome.cancelled);
    EXPECT_EQ(result.threshold, 42.0F) << "a failed analysis leaves the result as it was";
    return outcome.error;
}

/** Voxels of each region below the threshold that does not reach the edge, by a flood over faces, smallest first. */
std::vector<std::uint64_t> countByFlood(const LyrVolume& volume, float threshold, std::uint64_t smallest) {
    const auto [nx, ny, nz] = volume.size();
    std::vector<bool> seen(volume.samples().size());
    std::vector<std::uint64_t> counts;
    const auto index = [&, w = nx, h = ny](std::int64_t x, std::int64_t y, std::int64_t z) {
        return static_cast<std::size_t>(x + w * (y + h * z));
    };
    for (std::size_t start = 0; start < seen.size(); ++start) {
        if (seen[start] || volume.samples()[start] >= threshold) {
            continue;
        }
        std::vector<std::size_t> open{start};
        seen[start] = true;
        std::uint64_t count = 0;
        bool enclosed = true;
        while (!open.empty()) {
            const auto at = static_cast<std::int64_t>(open.back());
            open.pop_back();
            ++count;
            const std::int64_t x = at % nx;
            const std::int64_t y = at / nx % ny;
            const std::int64_t z = at / nx / ny;
            const std::int64_t steps[6][3] = {{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}};
            for (const auto& step : steps) {
                const std::int64_t a = x + step[0];
                const std::int64_t b = y + step[1];
                const std::int64_t c = z + step[2];
                if (a < 0 || b < 0 || c < 0 || a >= nx || b >= ny || c >= nz) {
                    enclosed = false;
                } else if (!seen[index(a, b, c)] && volume.samples()[index(a, b, c)] < threshold) {
                    seen[index(a, b, c)] = true;
                    open.push_back(index(a, b, c));
                }
            }
        }
        if (enclosed && count >= smallest) {
            counts.push_back(count);
        }
    }
    std::sort(counts.begin(), counts.end());
    return counts;
}

std::vector<std::uint64_t> sizesOf(const LyrDefectResult& result) {
    std::vector<std::uint64_t> sizes;
    for (const LyrDefect& defect : result.defects) {
        sizes.push_back(defect.voxels);
    }
    std::sort(sizes.begin(), sizes.end());
    return sizes;
}

/** Diameter of a pore in voxels, the least of an ellipsoid. */
double voxelsAcross(const LyrCasting::Pore& pore, double spacing) {
    // Some are meant to be whole numbers: rounding shall not take them off.
    return 2.0 * *std::min_element(pore.radii.begin(), pore.radii.end()) / spacing + 0.001;
}

/** Every pore found and nothing else; the volumes of those of `across` voxels or more within two percent. */
void expectPores(const LyrDefectResult& result, std::int64_t edge, double across) {
    const LyrCasting::Truth truth = LyrCasting::truth(edge);
    ASSERT_EQ(result.defects.size(), truth.pores.size());
    for (const LyrCasting::Pore& pore : truth.pores) {
        const auto nearest =
            std::min_element(result.defects.begin(), result.defects.end(), [&](const auto& a, const auto& b) {
                return distance(a.center, pore.center) < distance(b.center, pore.center);
            });
        EXPECT_LT(distance(nearest->center, pore.center), truth.spacing);
        if (voxelsAcross(pore, truth.spacing) >= across) {
            EXPECT_NEAR(nearest->volume / pore.volume, 1.0, 0.02)
                << "at " << edge << ", pore of " << pore.volume << " mm3";
        }
    }
}

bool isInBox(std::int64_t x, std::int64_t y, std::int64_t z, std::int64_t low, std::int64_t high) {
    return std::min({x, y, z}) >= low && std::max({x, y, z}) <= high;
}

}  // namespace

TEST(LyrDefectAnalysis, finds_every_pore_of_the_casting_and_measures_it_within_two_percent) {
    for (const std::int64_t edge : testvolumes::castingEdges({64, 96, 128})) {
        const LyrDefectResult result = analyse(testvolumes::casting(edge));
        expectPores(result, edge, 4.0);
        const LyrCasting::Truth truth = LyrCasting::truth(edge);
        EXPECT_NEAR(result.porosity / (100.0 * truth.porosity), 1.0, 0.01);
        EXPECT_NEAR(result.materialVolume / truth.materialVolume, 1.0, 0.001);
    }
}

// From 6 voxels across on in every noise. Below, the noise of the surface voxels does not allow it, whatever measures:
// a ball of 4 voxels across has at best a standard deviation of 1.1 %, one of 5 voxels 0.7 % (next case).
TEST(LyrDefectAnalysis, measures_pores_of_six_voxels_within_two_percent_in_every_noise_of_five_percent) {
    for (const std::int64_t edge : testvolumes::castingEdges({64, 96, 128})) {
        for (std::uint64_t seed = 1; seed <= 6; ++seed) {
            expectPores(analyse(testvolumes::casting(edge, 5.0, seed)), edge, 6.0);
        }
    }
}

// The limits for the standard deviation are those that no unbiased measure is below, from the derivatives of the voxels
// of a ball by its centre and radius (Cramér and Rao), at 4, 5, 6, 7 and 8 voxels across, times 1.7: twelve noises tell
// a deviation to a fifth of itself, and no shape is presumed here.
TEST(LyrDefectAnalysis, measures_pores_without_bias_and_nearly_as_well_as_noise_allows) {
    constexpr int kSeeds = 12;
    constexpr std::array<double, 5> kBounds{1.16, 0.70, 0.49, 0.36, 0.27};
    const LyrCasting::Truth truth = LyrCasting::truth(128);
    std::vector<double> sums(truth.pores.size());
    std::vector<double> squares(truth.pores.size());
    for (int seed = 1; seed <= kSeeds; ++seed) {
        const LyrDefectResult result = analyse(testvolumes::casting(128, 5.0, static_cast<std::uint64_t>(seed)));
        for (std::size_t i = 0; i < truth.pores.size(); ++i) {
            double volume = 0.0;
            for (const LyrDefect& defect : result.defects) {
                volume += distance(defect.center, truth.pores[i].center) < 0.5 ? defect.volume : 0.0;
            }
            const double error = 100.0 * (volume / truth.pores[i].volume - 1.0);
            sums[i] += error;
            squares[i] += error * error;
        }
    }
    for (std::size_t i = 0; i < truth.pores.size(); ++i) {
        const auto across = static_cast<std::size_t>(voxelsAcross(truth.pores[i], truth.spacing));
        const double bound = kBounds[std::clamp<std::size_t>(across, 4, 8) - 4];
        EXPECT_NEAR(sums[i] / kSeeds, 0.0, bound) << "pore " << i;
        EXPECT_LT(std::sqrt(squares[i] / kSeeds), 1.7 * bound) << "pore " << i;
    }
}

TEST(LyrDefectAnalysis, reports_what_an_independent_count_from_the_stated_threshold_gives) {
    for (const VolumePtr& volume : {testvolumes::casting(80, 5.0), testvolumes::noise(40)}) {
        const LyrDefectResult result = analyse(volume);
        EXPECT_EQ(sizesOf(result), countByFlood(*volume, result.threshold, 2));
        const auto material = std::count_if(volume->samples().begin(), volume->samples().end(),
                                            [&](float value) { return value >= result.threshold; });
        EXPECT_EQ(result.materialVoxels, static_cast<std::uint64_t>(material));
        const LyrVolume::Vector& spacing = volume->spacing();
        EXPECT_EQ(result.voxelVolume, spacing[0] * spacing[1] * spacing[2]);
        std::uint64_t voxels = 0;
        for (const LyrDefect& defect : result.defects) {
            EXPECT_EQ(defect.countedVolume, static_cast<double>(defect.voxels) * result.voxelVolume);
            voxels += defect.voxels;
        }
        EXPECT_EQ(result.defectVoxels, voxels);
        EXPECT_EQ(result.countedDefectVolume, static_cast<double>(voxels) * result.voxelVolume);
    }
}

TEST(LyrDefectAnalysis, places_and_boxes_follow_from_the_labelled_voxels_alone) {
    struct Seen {
        double count = 0.0;
        Place sum{};
        Place low{1e9, 1e9, 1e9};
        Place high{-1e9, -1e9, -1e9};
    };
    const VolumePtr volume = testvolumes::casting(80, 5.0);
    const LyrDefectResult result = analyse(volume);
    const auto [nx, ny, nz] = volume->size();
    std::vector<Seen> seen(result.defects.size());
    for (std::int64_t z = 0; z < nz; ++z) {
        for (std::int64_t y = 0; y < ny; ++y) {
            for (std::int64_t x = 0; x < nx; ++x) {
                const std::uint32_t label = result.labels[static_cast<std::size_t>(x + nx * (y + ny * z))];
                const Place at{static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)};
                if (label == 0) {
                    continue;
                }
                Seen& one = seen.at(label - 1);
                one.count += 1.0;
                for (std::size_t k = 0; k < 3; ++k) {
                    one.sum[k] += at[k];
                    one.low[k] = std::min(one.low[k], at[k]);
                    one.high[k] = std::max(one.high[k], at[k]);
                }
            }
        }
    }
    for (std::size_t i = 0; i < seen.size(); ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            const auto mm = [&](double index) { return volume->origin()[k] + index * volume->spacing()[k]; };
            EXPECT_NEAR(result.defects[i].center[k], mm(seen[i].sum[k] / seen[i].count), 1e-9);
            EXPECT_NEAR(result.defects[i].low[k], mm(seen[i].low[k] - 0.5), 1e-9);
            EXPECT_NEAR(result.defects[i].high[k], mm(seen[i].high[k] + 0.5), 1e-9);
        }
    }
}

TEST(LyrDefectAnalysis, counts_small_hollows_and_porosity_as_an_independent_count_does) {
    for (const VolumePtr& volume : {testvolumes::casting(80, 5.0), testvolumes::noise(40)}) {
        LyrDefectAnalysis::Options options;
        options.minimumVoxels = 5;
        const LyrDefectResult result = analyse(volume, options);
        std::uint64_t small = 0;
        std::uint64_t smallVoxels = 0;
        double large = 0.0;
        for (const std::uint64_t count : countByFlood(*volume, result.threshold, 1)) {
            small += count < 5 ? 1 : 0;
            smallVoxels += count < 5 ? count : 0;
            large += count < 5 ? 0.0 : static_cast<double>(count);
        }
        const auto material =
            static_cast<double>(std::count_if(volume->samples().begin(), volume->samples().end(),
                                              [&](float value) { return value >= result.threshold; }));
        EXPECT_EQ(result.smallHollows, small);
        EXPECT_EQ(result.smallHollowVoxels, smallVoxels);
        EXPECT_NEAR(result.countedPorosity, 100.0 * large / (large + material), 1e-9);
        double volumes = 0.0;
        for (const LyrDefect& defect : result.defects) {
            volumes += defect.volume;
        }
        EXPECT_NEAR(result.porosity, 100.0 * volumes / (volumes + result.materialVolume), 1e-9);
    }
}

TEST(LyrDefectAnalysis, counts_face_neighbours_as_one_and_edge_neighbours_as_two) {
    // Two hollows of 2 × 2 × 2 that share an edge only, and one of 2 × 2 × 3.
    const VolumePtr volume = makeSolid({16, 16, 16}, [](auto x, auto y, auto z) {
        const bool first = x >= 4 && x < 6 && y >= 4 && y < 6 && z >= 4 && z < 6;
        const bool second = x >= 6 && x < 8 && y >= 6 && y < 8 && z >= 4 && z < 6;
        const bool third = x >= 10 && x < 12 && y >= 10 && y < 12 && z >= 10 && z < 13;
        return !first && !second && !third;
    });
    const LyrDefectResult result = analyse(volume);
    EXPECT_EQ(sizesOf(result), (std::vector<std::uint64_t>{8, 8, 12}));
    ASSERT_EQ(result.defects.size(), 3U);
    EXPECT_EQ(result.defects[0].number, 1U);
    EXPECT_EQ(result.defects[0].voxels, 12U) << "the largest comes first";
    // Two grey values only: the share of each voxel is all or nothing, so both volumes agree.
    for (const LyrDefect& defect : result.defects) {
        EXPECT_DOUBLE_EQ(defect.volume, static_cast<double>(defect.voxels));
    }
    EXPECT_DOUBLE_EQ(result.porosity, 100.0 * 28.0 / 4096.0);
    EXPECT_DOUBLE_EQ(result.countedPorosity, 100.0 * 28.0 / 4096.0);
}

TEST(LyrDefectAnalysis, leaves_out_what_opens_to_the_edge_of_the_volume) {
    // A block in air with a closed hollow, and a bore that winds from one side to the middle.
    const VolumePtr volume = makeSolid({20, 20, 20}, [](auto x, auto y, auto z) {
        const bool hollow = isInBox(x, y, z, 4, 6);
        const bool bore = (y == 12 && z == 12 && x <= 12) || (x == 12 && z == 12 && y >= 9 && y <= 12);
        return isInBox(x, y, z, 2, 17) && !hollow && !bore;
    });
    const LyrDefectResult result = analyse(volume);
    ASSERT_EQ(result.defects.size(), 1U);
    EXPECT_EQ(result.defects[0].voxels, 27U);
}

TEST(LyrDefectAnalysis, places_a_defect_in_the_axes_of_the_volume) {
    const VolumePtr volume =
        make({12, 12, 12},
             [](auto x, auto y, auto z) { return x >= 3 && x <= 6 && y >= 4 && y <= 5 && z == 7 ? 0.0F : 100.0F; },
             {0.5, 1.0, 2.0}, {10.0, 20.0, 30.0});
    const LyrDefectResult result = analyse(volume);
    ASSERT_EQ(result.defects.size(), 1U);
    const LyrDefect& defect = result.defects[0];
    EXPECT_EQ(defect.first, (std::array<std::int64_t, 3>{3, 4, 7}));
    EXPECT_EQ(defect.last, (std::array<std::int64_t, 3>{6, 5, 7}));
    EXPECT_EQ(defect.center, (Place{10.0 + 4.5 * 0.5, 20.0 + 4.5, 30.0 + 14.0}));
    EXPECT_EQ(defect.low, (Place{11.25, 23.5, 43.0}));
    EXPECT_EQ(defect.high, (Place{13.25, 25.5, 45.0}));
    EXPECT_DOUBLE_EQ(defect.countedVolume, 8.0);
    EXPECT_DOUBLE_EQ(defect.volume, 8.0);
    // 2 × 2 × 2 mm: at least an edge, at most a diagonal of space and what the voxels add.
    EXPECT_GE(defect.size, 2.0);
    EXPECT_LE(defect.size, 3.5);
}

TEST(LyrDefectAnalysis, labels_and_values_say_for_each_voxel_which_defect_it_is) {
    const VolumePtr volume = testvolumes::casting(64);
    const LyrDefectResult result = analyse(volume);
    ASSERT_TRUE(result.values);
    EXPECT_EQ(result.values->size(), volume->size());
    EXPECT_EQ(result.values->spacing(), volume->spacing());
    std::map<std::uint32_t, std::uint64_t> counts;
    for (std::size_t i = 0; i < result.labels.size(); ++i) {
        const std::uint32_t number = result.labels[i];
        const float value = result.values->samples()[i];
        if (number == 0) {
            EXPECT_TRUE(std::isnan(value));
            continue;
        }
        ++counts[number];
        EXPECT_LT(volume->samples()[i], result.threshold);
        EXPECT_EQ(value, static_cast<float>(result.defects.at(number - 1).volume));
    }
    ASSERT_EQ(counts.size(), result.defects.size());
    for (const LyrDefect& defect : result.defects) {
        EXPECT_EQ(counts[defect.number], defect.voxels);
    }
    const LyrDefect& largest = result.defects.front();
    const auto voxel = [&](std::size_t k) {
        return static_cast<std::int64_t>(std::floor(largest.center[k] / volume->spacing()[k]));
    };
    EXPECT_EQ(result.defectAt(voxel(0), voxel(1), voxel(2)), &largest);
    EXPECT_EQ(result.defectAt(0, 0, 0), nullptr);
    EXPECT_EQ(result.defectAt(-1, 0, 0), nullptr);
    EXPECT_EQ(result.defectAt(0, 64, 0), nullptr);
}

TEST(LyrDefectAnalysis, measures_balls_by_their_grey_values_and_calls_them_round) {
    const Place center{12.3, 11.6, 12.1};
    for (const double radius : {2.0, 3.0, 5.0, 8.0}) {
        const VolumePtr volume = makeShape({25, 25, 25}, [&](const Place& p) { return distance(p, center) > radius; });
        const LyrDefectResult result = analyse(volume);
        ASSERT_EQ(result.defects.size(), 1U) << radius;
        const LyrDefect& ball = result.defects[0];
        const double truth = 4.0 / 3.0 * std::numbers::pi * radius * radius * radius;
        EXPECT_NEAR(ball.volume / truth, 1.0, 0.005) << radius;
        EXPECT_LT(distance(ball.center, center), 0.3);
        EXPECT_NEAR(ball.size, 2.0 * radius, 1.0);
        EXPECT_GT(ball.sphericity, 0.93);
        EXPECT_LE(ball.sphericity, 1.0);
    }
}

TEST(LyrDefectAnalysis, calls_a_rod_less_round_than_a_cube) {
    const auto hollow = [](std::int64_t length, std::int64_t width) {
        return analyse(makeSolid({40, 20, 20},
                                 [=](auto x, auto y, auto z) {
                                     return !(x >= 2 && x < 2 + length && y >= 5 && y < 5 + width && z >= 5 &&
                                              z < 5 + width);
                                 }))
            .defects.at(0);
    };
    // Cube of 8: (36 π V²)^⅓ / (6 · 64) = 0.806. Rod of 32 × 4 × 4: 309.6 / 544 = 0.569. The lines that the surface is
    // counted along cut edges off.
    EXPECT_NEAR(hollow(8, 8).sphericity, 0.806 + 0.075, 0.075);
    EXPECT_NEAR(hollow(32, 4).sphericity, 0.569 + 0.075, 0.075);
    EXPECT_NEAR(hollow(32, 4).size, std::hypot(32.0, 4.0, 4.0), 1.0);
}

TEST(LyrDefectAnalysis, follows_the_grey_of_the_material_around_a_defect) {
    // The material is darker by a tenth towards one side, as hardening of the beam makes it.
    const Place left{12.2, 12.4, 12.3};
    const Place right{47.7, 12.1, 12.6};
    const VolumePtr clean =
        makeShape({60, 25, 25}, [&](const Place& p) { return distance(p, left) > 4.0 && distance(p, right) > 4.0; });
    const VolumePtr shaded = make(clean->size(), [&](auto x, auto y, auto z) {
        return clean->at(x, y, z) * (1.0F - 0.1F * static_cast<float>(x >= 30 ? 1 : 0));
    });
    const LyrDefectResult result = analyse(shaded);
    ASSERT_EQ(result.defects.size(), 2U);
    for (const LyrDefect& defect : result.defects) {
        EXPECT_NEAR(defect.volume / (4.0 / 3.0 * std::numbers::pi * 64.0), 1.0, 0.01);
    }
}

TEST(LyrDefectAnalysis, shares_a_thin_wall_between_two_hollows_once) {
    // A hollow of 6 × 6 × 7 with a wall of one voxel of half the grey through it.
    const VolumePtr volume = make({16, 16, 16}, [](auto x, auto y, auto z) {
        const bool hollow = x >= 5 && x < 11 && y >= 5 && y < 11 && z >= 4 && z < 11;
        return !hollow ? 100.0F : z == 7 ? 60.0F : 0.0F;
    });
    const LyrDefectResult result = analyse(volume);
    ASSERT_EQ(result.defects.size(), 2U);
    // 3 layers of 36 on either side; the wall is air by 0.4 and counts for one of them.
    EXPECT_NEAR(result.defectVolume, 216.0 + 0.4 * 36.0, 0.2);
}

TEST(LyrDefectAnalysis, gets_through_noise_that_is_full_of_hollows) {
    const std::int64_t edge = testvolumes::edgesOf("LYS_NOISE_EDGE", {64}).at(0);
    const VolumePtr volume = testvolumes::noise(edge);
    LyrDefectAnalysis::Options options;
    options.minimumVoxels = 1;
    options.threshold = 0.2F;
    const LyrDefectResult result = analyse(volume, options);
    EXPECT_GT(static_cast<double>(result.defects.size()), 0.05 * std::pow(static_cast<double>(edge), 3.0));
    EXPECT_EQ(sizesOf(result), countByFlood(*volume, 0.2F, 1));
    for (const LyrDefect& defect : result.defects) {
        ASSERT_GE(defect.volume, 0.0);
        ASSERT_TRUE(std::isfinite(defect.volume));
        ASSERT_GT(defect.sphericity, 0.0);
        ASSERT_LE(defect.sphericity, 1.0);
    }
}

TEST(LyrDefectAnalysis, leaves_out_hollows_below_the_smallest_size_and_counts_them) {
    const VolumePtr volume = makeSolid({20, 9, 9}, [](auto x, auto y, auto z) {
        return !(y == 4 && z == 4 && (x == 2 || x == 5 || (x >= 8 && x < 11) || (x >= 13 && x < 18)));
    });
    EXPECT_EQ(sizesOf(analyse(volume)), (std::vector<std::uint64_t>{3, 5}));
    LyrDefectAnalysis::Options options;
    options.minimumVoxels = 4;
    const LyrDefectResult result = analyse(volume, options);
    EXPECT_EQ(sizesOf(result), (std::vector<std::uint64_t>{5}));
    EXPECT_EQ(result.minimumVoxels, 4);
    EXPECT_EQ(result.smallHollows, 3U);
    EXPECT_EQ(result.smallHollowVoxels, 5U);
    options.minimumVoxels = -3;
    EXPECT_EQ(analyse(volume, options).defects.size(), 4U) << "less than one voxel is one";
}

TEST(LyrDefectAnalysis, takes_a_threshold_as_it_is_given) {
    const VolumePtr volume = testvolumes::casting(48);
    LyrDefectAnalysis::Options options;
    options.threshold = 9000.25F;
    const LyrDefectResult result = analyse(volume, options);
    EXPECT_EQ(result.threshold, 9000.25F);
    EXPECT_TRUE(result.thresholdWasGiven);
    EXPECT_FALSE(analyse(volume).thresholdWasGiven);
    EXPECT_EQ(sizesOf(result), countByFlood(*volume, 9000.25F, 2));
}

TEST(LyrDefectAnalysis, looks_at_a_single_slice_as_a_flat_figure) {
    const VolumePtr slice = makeSolid({20, 20, 1}, [](auto x, auto y, auto) {
        return x >= 2 && x < 18 && y >= 2 && y < 18 && !(x >= 6 && x < 10 && y >= 6 && y < 9);
    });
    const LyrDefectResult result = analyse(slice);
    ASSERT_EQ(result.defects.size(), 1U);
    EXPECT_EQ(result.defects[0].voxels, 12U);
    EXPECT_DOUBLE_EQ(result.defects[0].volume, 12.0);
}

TEST(LyrDefectAnalysis, counts_what_is_no_number_as_air) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const VolumePtr volume = make({9, 9, 9}, [&](auto x, auto y, auto z) {
        return isInBox(x, y, z, 3, 5) ? nan : x == 0 ? 0.0F : 100.0F;
    });
    const LyrDefectResult result = analyse(volume);
    ASSERT_EQ(result.defects.size(), 1U);
    EXPECT_EQ(result.defects[0].voxels, 27U);
    EXPECT_DOUBLE_EQ(result.defects[0].volume, 27.0);
}

TEST(LyrDefectAnalysis, counts_samples_without_end_as_the_threshold_does) {
    const float endless = std::numeric_limits<float>::infinity();
    // A hollow of 3³ with a glaring voxel on its wall and a black one in its middle.
    const VolumePtr volume = make({9, 9, 9}, [&](auto x, auto y, auto z) {
        const bool glaring = x == 2 && y == 4 && z == 4;
        const bool black = x == 4 && y == 4 && z == 4;
        return glaring ? endless : black ? -endless : isInBox(x, y, z, 3, 5) || x == 0 ? 0.0F : 100.0F;
    });
    const LyrDefectResult result = analyse(volume);
    ASSERT_EQ(result.defects.size(), 1U);
    EXPECT_EQ(result.defects[0].voxels, 27U);
    EXPECT_DOUBLE_EQ(result.defects[0].volume, 27.0);
    EXPECT_EQ(result.materialVoxels, 9U * 9U * 8U - 27U);
    EXPECT_DOUBLE_EQ(result.materialVolume, 9.0 * 9.0 * 8.0 - 27.0);
}

TEST(LyrDefectAnalysis, leaves_a_padding_out_of_the_levels) {
    // Air of 18 to 22, and corners that a reconstruction has filled with a value far below.
    const Place center{14.2, 14.4, 14.1};
    const VolumePtr clean = makeShape({28, 28, 28}, [&](const Place& p) {
        return std::max({std::abs(p[0] - 13.5), std::abs(p[1] - 13.5), std::abs(p[2] - 13.5)}) < 8.0 &&
               distance(p, center) > 3.0;
    });
    const VolumePtr padded = make(clean->size(), [&](auto x, auto y, auto z) {
        const bool isCorner = (x < 4 || x > 23) && (y < 4 || y > 23);
        const auto ripple = static_cast<float>((x + 2 * y + 3 * z) % 5 - 2);
        return isCorner ? -500.0F : 20.0F + 0.8F * clean->at(x, y, z) + ripple;
    });
    LyrDefectAnalysis::Options options;
    options.threshold = 60.0F;
    const LyrDefectResult result = analyse(padded, options);
    EXPECT_NEAR(result.airLevel, 20.0, 0.1);
    EXPECT_NEAR(result.materialLevel, 100.0, 0.1);
    ASSERT_EQ(result.defects.size(), 1U);
    EXPECT_NEAR(result.defects[0].volume / (4.0 / 3.0 * std::numbers::pi * 27.0), 1.0, 0.02);
}

TEST(LyrDefectAnalysis, succeeds_without_a_defect) {
    const LyrDefectResult result =
        analyse(makeSolid({8, 8, 8}, [](auto x, auto y, auto z) { return isInBox(x, y, z, 2, 5); }));
    EXPECT_TRUE(result.defects.empty());
    EXPECT_EQ(result.porosity, 0.0);
    EXPECT_EQ(result.materialVoxels, 64U);
    ASSERT_TRUE(result.values);
    EXPECT_TRUE(result.values->valueRange().isEmpty());
}

TEST(LyrDefectAnalysis, refuses_what_it_cannot_analyse_with_a_message) {
    EXPECT_NE(errorOf(nullptr).find("no volume"), std::string::npos);
    const VolumePtr constant = makeSolid({4, 4, 4}, [](auto, auto, auto) { return true; });
    EXPECT_NE(errorOf(constant).find("same value"), std::string::npos);
    LyrDefectAnalysis::Options options;
    options.threshold = 1000.0F;
    EXPECT_NE(errorOf(constant, options).find("no material"), std::string::npos);
    options.threshold = std::numeric_limits<float>::quiet_NaN();
    EXPECT_NE(errorOf(constant, options).find("not a finite number"), std::string::npos);
    options.threshold = 50.0F;
    EXPECT_EQ(analyse(constant, options).materialVoxels, 64U) << "a block without air has no defects";
}

TEST(LyrDefectAnalysis, takes_a_single_voxel) {
    const VolumePtr voxel = make({1, 1, 1}, [](auto, auto, auto) { return 5.0F; });
    LyrDefectAnalysis::Options options;
    options.threshold = 1.0F;
    EXPECT_TRUE(analyse(voxel, options).defects.empty());
}
