#include <lyr_volume/LyrCasting.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

std::shared_ptr<const LyrVolume> casting(std::int64_t edge, double noise = 0.0, std::uint64_t seed = 1) {
    std::shared_ptr<const LyrVolume> volume;
    std::string error;
    EXPECT_TRUE(LyrCasting::create({edge, noise, seed}, volume, error)) << error;
    return volume;
}

/** Volume of air in mm³ in a box around a pore, each voxel by its grey value. */
double measuredAir(const LyrVolume& volume, const LyrCasting::Truth& truth, const LyrCasting::Pore& pore) {
    std::array<std::int64_t, 3> first{};
    std::array<std::int64_t, 3> last{};
    for (std::size_t k = 0; k < 3; ++k) {
        first[k] = static_cast<std::int64_t>(std::floor((pore.center[k] - pore.radii[k]) / truth.spacing));
        last[k] = static_cast<std::int64_t>(std::floor((pore.center[k] + pore.radii[k]) / truth.spacing));
    }
    double sum = 0.0;
    for (std::int64_t z = first[2]; z <= last[2]; ++z) {
        for (std::int64_t y = first[1]; y <= last[1]; ++y) {
            for (std::int64_t x = first[0]; x <= last[0]; ++x) {
                sum += (30000.0 - static_cast<double>(volume.at(x, y, z))) / 29000.0;
            }
        }
    }
    return sum * truth.spacing * truth.spacing * truth.spacing;
}

double largestRadius(const LyrCasting::Pore& pore) {
    return *std::max_element(pore.radii.begin(), pore.radii.end());
}
double smallestRadius(const LyrCasting::Pore& pore) {
    return *std::min_element(pore.radii.begin(), pore.radii.end());
}

}  // namespace

TEST(LyrCasting, is_a_cube_of_64_mm_at_any_edge_length) {
    for (const std::int64_t edge : {16, 17, 64, 100}) {
        const auto volume = casting(edge);
        ASSERT_TRUE(volume);
        EXPECT_EQ(volume->size(), (LyrVolume::Size{edge, edge, edge}));
        EXPECT_DOUBLE_EQ(volume->spacing()[2], 64.0 / static_cast<double>(edge));
        EXPECT_DOUBLE_EQ(volume->origin()[0], 32.0 / static_cast<double>(edge));
        EXPECT_EQ(volume->unit(), "mm");
    }
}

TEST(LyrCasting, has_air_at_its_corners_and_the_stated_grey_values_at_both_ends) {
    const auto volume = casting(128);
    EXPECT_EQ(volume->at(0, 0, 0), 1000.0F);
    EXPECT_EQ(volume->at(127, 127, 127), 1000.0F);
    EXPECT_EQ(volume->at(64, 100, 20), 30000.0F);  // (32.25, 50.25, 10.25) mm: solid block
    EXPECT_EQ(volume->valueRange().low, 1000.0F);
    EXPECT_EQ(volume->valueRange().high, 30000.0F);
    EXPECT_EQ(casting(100)->valueRange().low, 1000.0F);
    EXPECT_EQ(casting(100)->valueRange().high, 30000.0F);
    EXPECT_EQ(LyrCasting::truth(128).air, 1000.0F);
    EXPECT_EQ(LyrCasting::truth(128).material, 30000.0F);
}

TEST(LyrCasting, pores_have_the_volume_of_their_formula_and_many_sizes) {
    const LyrCasting::Truth truth = LyrCasting::truth(64);
    EXPECT_DOUBLE_EQ(truth.spacing, 1.0);
    EXPECT_GE(truth.pores.size(), 12U);
    double smallest = 100.0;
    double largest = 0.0;
    double sum = 0.0;
    for (const LyrCasting::Pore& pore : truth.pores) {
        EXPECT_NEAR(pore.volume, 4.18879020478639 * pore.radii[0] * pore.radii[1] * pore.radii[2], 1e-9);
        smallest = std::min(smallest, 2.0 * smallestRadius(pore));
        largest = std::max(largest, 2.0 * largestRadius(pore));
        sum += pore.volume;
    }
    EXPECT_EQ(smallest, 2.0);
    EXPECT_EQ(largest, 8.0);
    EXPECT_NEAR(truth.poreVolume, sum, 1e-9);
}

TEST(LyrCasting, pores_keep_their_distance_from_each_other_the_bores_and_the_surface) {
    const LyrCasting::Truth truth = LyrCasting::truth(128);
    for (std::size_t i = 0; i < truth.pores.size(); ++i) {
        const LyrCasting::Pore& pore = truth.pores[i];
        for (std::size_t k = 0; k < 3; ++k) {
            EXPECT_GE(pore.center[k] - pore.radii[k] - truth.blockLow[k], 1.5) << i;
            EXPECT_GE(truth.blockHigh[k] - pore.center[k] - pore.radii[k], 1.5) << i;
        }
        for (std::size_t j = 0; j < i; ++j) {
            const LyrCasting::Pore& other = truth.pores[j];
            // A gap between the bounding boxes along one axis, or between the enclosing balls, is a lower bound.
            double gap = std::hypot(pore.center[0] - other.center[0], pore.center[1] - other.center[1],
                                    pore.center[2] - other.center[2]) -
                         largestRadius(pore) - largestRadius(other);
            for (std::size_t k = 0; k < 3; ++k) {
                gap = std::max(gap, std::abs(pore.center[k] - other.center[k]) - pore.radii[k] - other.radii[k]);
            }
            EXPECT_GE(gap, 1.5) << i << " and " << j;
        }
        for (const LyrCasting::Bore& bore : truth.bores) {
            std::array<double, 3> offset{};
            for (std::size_t k = 0; k < 3; ++k) {
                offset[k] = k == static_cast<std::size_t>(bore.axis) ? 0.0 : pore.center[k] - bore.from[k];
            }
            EXPECT_GE(std::hypot(offset[0], offset[1], offset[2]) - bore.radius - largestRadius(pore), 1.5) << i;
        }
    }
}

TEST(LyrCasting, pores_of_four_voxels_or_more_measure_within_one_percent) {
    for (const std::int64_t edge : {48, 64, 100, 128, 200}) {
        const auto volume = casting(edge);
        const LyrCasting::Truth truth = LyrCasting::truth(edge);
        int measured = 0;
        for (const LyrCasting::Pore& pore : truth.pores) {
            if (2.0 * smallestRadius(pore) < 4.0 * truth.spacing) {
                continue;
            }
            ++measured;
            EXPECT_NEAR(measuredAir(*volume, truth, pore) / pore.volume, 1.0, 0.01) << edge << ", " << pore.center[0];
        }
        EXPECT_GE(measured, edge >= 128 ? 16 : 4) << edge;
    }
}

TEST(LyrCasting, walls_of_2_to_10_mm_stand_where_the_truth_says) {
    const LyrCasting::Truth truth = LyrCasting::truth(256);
    const auto volume = casting(256);
    const std::vector<double> thickness{2.0, 3.0, 4.0, 6.0, 8.0, 10.0};
    ASSERT_EQ(truth.walls.size(), thickness.size());
    for (std::size_t i = 0; i < thickness.size(); ++i) {
        const LyrCasting::Wall& wall = truth.walls[i];
        EXPECT_EQ(wall.thickness, thickness[i]);
        EXPECT_EQ(wall.high[0] - wall.low[0], thickness[i]);
        EXPECT_GE((wall.high[1] - wall.low[1]) * (wall.high[2] - wall.low[2]), 500.0);
        // Material along x through the middle of the wall, in mm, between the neighbouring gaps.
        const auto y = static_cast<std::int64_t>((wall.low[1] + wall.high[1]) / 2.0 / truth.spacing);
        const auto z = static_cast<std::int64_t>((wall.low[2] + wall.high[2]) / 2.0 / truth.spacing);
        double sum = 0.0;
        for (auto x = static_cast<std::int64_t>((wall.low[0] - 1.5) / truth.spacing);
             x < static_cast<std::int64_t>((wall.high[0] + 1.5) / truth.spacing); ++x) {
            sum += (static_cast<double>(volume->at(x, y, z)) - 1000.0) / 29000.0 * truth.spacing;
        }
        EXPECT_NEAR(sum, thickness[i], 1e-3);
    }
}

TEST(LyrCasting, bores_go_right_through) {
    const LyrCasting::Truth truth = LyrCasting::truth(128);
    const auto volume = casting(128);
    ASSERT_GE(truth.bores.size(), 3U);
    for (const LyrCasting::Bore& bore : truth.bores) {
        const auto along = static_cast<std::size_t>(bore.axis);
        std::array<std::int64_t, 3> at{};
        for (std::size_t k = 0; k < 3; ++k) {
            at[k] = static_cast<std::int64_t>(bore.from[k] / truth.spacing);
        }
        for (at[along] = 0; at[along] < static_cast<std::int64_t>(bore.to[along] / truth.spacing); ++at[along]) {
            ASSERT_EQ(volume->at(at[0], at[1], at[2]), 1000.0F);
        }
    }
}

TEST(LyrCasting, its_material_adds_up_to_the_stated_volume) {
    // Block and walls by hand: 56 · 56 · 24 + 41 · (2·16 + 3·18 + 4·20 + 6·24 + 8·28 + 10·30) mm³.
    const LyrCasting::Truth truth = LyrCasting::truth(128);
    const double solid = 56.0 * 56.0 * 24.0 + 41.0 * (32.0 + 54.0 + 80.0 + 144.0 + 224.0 + 300.0);
    const double bores = std::numbers::pi * (9.0 * 24.0 + 4.0 * 24.0 + 2.25 * 56.0);
    EXPECT_NEAR(truth.materialVolume, solid - bores - truth.poreVolume, 1e-6);
    EXPECT_NEAR(truth.porosity, truth.poreVolume / (solid - bores), 1e-12);
    for (const std::int64_t edge : {33, 128}) {
        const auto volume = casting(edge);
        const double spacing = 64.0 / static_cast<double>(edge);
        double sum = 0.0;
        for (const float value : volume->samples()) {
            sum += (static_cast<double>(value) - 1000.0) / 29000.0;
        }
        EXPECT_NEAR(sum * spacing * spacing * spacing / truth.materialVolume, 1.0, 1e-3) << edge;
    }
}

TEST(LyrCasting, is_the_same_every_time) {
    const auto first = casting(40);
    const auto second = casting(40);
    EXPECT_TRUE(std::equal(first->samples().begin(), first->samples().end(), second->samples().begin()));
}

TEST(LyrCasting, noise_has_the_asked_deviation_no_bias_and_follows_the_seed) {
    const auto clean = casting(64);
    const auto noisy = casting(64, 5.0, 7);
    const auto again = casting(64, 5.0, 7);
    const auto other = casting(64, 5.0, 8);
    double sum = 0.0;
    double squares = 0.0;
    const std::size_t count = clean->samples().size();
    for (std::size_t i = 0; i < count; ++i) {
        const double difference = static_cast<double>(noisy->samples()[i]) - static_cast<double>(clean->samples()[i]);
        sum += difference;
        squares += difference * difference;
    }
    // 5 % of 29000; the mean of 262,144 samples scatters by 1450 / 512.
    EXPECT_NEAR(std::sqrt(squares / static_cast<double>(count)), 1450.0, 15.0);
    EXPECT_NEAR(sum / static_cast<double>(count), 0.0, 12.0);
    EXPECT_TRUE(std::equal(noisy->samples().begin(), noisy->samples().end(), again->samples().begin()));
    EXPECT_FALSE(std::equal(noisy->samples().begin(), noisy->samples().end(), other->samples().begin()));
}

TEST(LyrCasting, refuses_options_outside_their_limits_with_a_message) {
    for (const LyrCasting::Options& options :
         {LyrCasting::Options{15}, {1025}, {0}, {-128}, {64, -1.0}, {64, 101.0}, {64, std::nan("")}}) {
        std::shared_ptr<const LyrVolume> volume;
        std::string error;
        EXPECT_FALSE(LyrCasting::create(options, volume, error));
        EXPECT_FALSE(volume);
        EXPECT_NE(error.find("casting"), std::string::npos) << error;
    }
}
