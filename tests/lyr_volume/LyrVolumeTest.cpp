#include <lyr_volume/LyrVolume.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

namespace {

/** 3 × 4 × 2 samples whose value spells their place: 100 z + 10 y + x. */
std::shared_ptr<const LyrVolume> spelledVolume() {
    std::vector<float> samples;
    for (int z = 0; z < 2; ++z) {
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 3; ++x) {
                samples.push_back(static_cast<float>(100 * z + 10 * y + x));
            }
        }
    }
    LyrVolume::Description description;
    description.size = {3, 4, 2};
    description.spacing = {0.5, 0.25, 2.0};
    return LyrVolume::create(description, std::move(samples));
}

std::shared_ptr<const LyrVolume> rowOf(std::vector<float> samples) {
    LyrVolume::Description description;
    description.size = {static_cast<std::int64_t>(samples.size()), 1, 1};
    return LyrVolume::create(description, std::move(samples));
}

}  // namespace

TEST(LyrVolume, keeps_samples_x_fastest_and_takes_them_over_without_a_copy) {
    std::vector<float> samples(24);
    std::iota(samples.begin(), samples.end(), 0.0F);
    const float* storage = samples.data();
    LyrVolume::Description description;
    description.size = {2, 3, 4};
    const auto volume = LyrVolume::create(description, std::move(samples));
    ASSERT_TRUE(volume);
    EXPECT_EQ(volume->samples().data(), storage);
    EXPECT_EQ(volume->at(1, 0, 0), 1.0F);
    EXPECT_EQ(volume->at(0, 1, 0), 2.0F);
    EXPECT_EQ(volume->at(0, 0, 1), 6.0F);
}

TEST(LyrVolume, refuses_sizes_that_do_not_fit_the_samples) {
    for (const LyrVolume::Size size : {LyrVolume::Size{2, 3, 5},
                                       {0, 3, 4},
                                       {-2, -3, 4},
                                       {24, 1, 2},
                                       {1, 1, 1},
                                       // Product wraps around to 24 in 64 bits.
                                       {(std::int64_t{1} << 62) + 6, 4, 1}}) {
        LyrVolume::Description description;
        description.size = size;
        EXPECT_FALSE(LyrVolume::create(description, std::vector<float>(24)));
    }
    EXPECT_FALSE(LyrVolume::create({}, {}));
}

TEST(LyrVolume, refuses_a_spacing_that_is_no_distance) {
    for (const double spacing :
         {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        LyrVolume::Description description;
        description.size = {1, 1, 1};
        description.spacing = {1.0, spacing, 1.0};
        EXPECT_FALSE(LyrVolume::create(description, std::vector<float>(1)));
    }
}

TEST(LyrVolume, value_range_covers_finite_samples_only) {
    const float inf = std::numeric_limits<float>::infinity();
    const auto volume = rowOf({3.0F, -inf, -7.5F, std::nanf(""), inf, 12.0F});
    EXPECT_EQ(volume->valueRange().low, -7.5F);
    EXPECT_EQ(volume->valueRange().high, 12.0F);
    EXPECT_FALSE(volume->valueRange().isEmpty());
}

TEST(LyrVolume, value_range_of_a_constant_volume_is_one_value_and_of_no_finite_sample_empty) {
    EXPECT_EQ(rowOf({5.0F, 5.0F})->valueRange().low, 5.0F);
    EXPECT_EQ(rowOf({5.0F, 5.0F})->valueRange().high, 5.0F);
    EXPECT_TRUE(rowOf({std::nanf(""), std::numeric_limits<float>::infinity()})->valueRange().isEmpty());
}

TEST(LyrVolume, slices_run_in_sample_order_with_the_first_row_on_top) {
    const auto volume = spelledVolume();
    ASSERT_TRUE(volume);

    std::vector<float> z(12);
    ASSERT_TRUE(volume->slice(LyrVolume::Axis::Z, 1, z));
    EXPECT_EQ(z, (std::vector<float>{100, 101, 102, 110, 111, 112, 120, 121, 122, 130, 131, 132}));

    std::vector<float> y(6);
    ASSERT_TRUE(volume->slice(LyrVolume::Axis::Y, 2, y));
    EXPECT_EQ(y, (std::vector<float>{20, 21, 22, 120, 121, 122}));

    std::vector<float> x(8);
    ASSERT_TRUE(volume->slice(LyrVolume::Axis::X, 1, x));
    EXPECT_EQ(x, (std::vector<float>{1, 11, 21, 31, 101, 111, 121, 131}));
}

TEST(LyrVolume, slice_shapes_follow_the_axis) {
    const auto volume = spelledVolume();
    using Axis = LyrVolume::Axis;
    EXPECT_EQ(volume->sliceCount(Axis::X), 3);
    EXPECT_EQ(volume->sliceWidth(Axis::X), 4);
    EXPECT_EQ(volume->sliceHeight(Axis::X), 2);
    EXPECT_EQ(volume->sliceCount(Axis::Y), 4);
    EXPECT_EQ(volume->sliceWidth(Axis::Y), 3);
    EXPECT_EQ(volume->sliceHeight(Axis::Y), 2);
    EXPECT_EQ(volume->sliceCount(Axis::Z), 2);
    EXPECT_EQ(volume->sliceWidth(Axis::Z), 3);
    EXPECT_EQ(volume->sliceHeight(Axis::Z), 4);
}

TEST(LyrVolume, a_slice_outside_or_a_wrong_buffer_is_refused_and_leaves_the_buffer_alone) {
    const auto volume = spelledVolume();
    std::vector<float> buffer(12, -1.0F);
    EXPECT_FALSE(volume->slice(LyrVolume::Axis::Z, -1, buffer));
    EXPECT_FALSE(volume->slice(LyrVolume::Axis::Z, 2, buffer));
    EXPECT_FALSE(volume->slice(LyrVolume::Axis::X, 0, buffer));
    EXPECT_EQ(buffer, std::vector<float>(12, -1.0F));
}
