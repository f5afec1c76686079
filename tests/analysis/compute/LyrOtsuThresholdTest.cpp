#include <analysis/compute/LyrOtsuThreshold.h>

#include <limits>

#include "TestVolumes.h"

using testvolumes::make;
using testvolumes::VolumePtr;

namespace {

bool find(const VolumePtr& volume, float& threshold, std::string& error) {
    LyrAnalysisOutcome outcome;
    const bool found = LyrOtsuThreshold::find(*volume, threshold, outcome);
    error = outcome.error;
    return found;
}

/** The variance between the classes below and from a threshold on, from the samples themselves. */
double varianceBetween(const LyrVolume& volume, double threshold) {
    double counts[2] = {0.0, 0.0};
    double sums[2] = {0.0, 0.0};
    for (const float value : volume.samples()) {
        const int material = static_cast<double>(value) >= threshold ? 1 : 0;
        counts[material] += 1.0;
        sums[material] += static_cast<double>(value);
    }
    if (counts[0] == 0.0 || counts[1] == 0.0) {
        return 0.0;
    }
    const double difference = sums[0] / counts[0] - sums[1] / counts[1];
    return counts[0] * counts[1] * difference * difference;
}

}  // namespace

TEST(LyrOtsuThreshold, lies_in_the_middle_between_two_single_values) {
    float threshold = 0.0F;
    std::string error;
    ASSERT_TRUE(find(make({4, 4, 4}, [](auto x, auto, auto) { return x == 0 ? 100.0F : 300.0F; }), threshold, error));
    // The gap is 200 wide; the two outermost bins of 1/4096 of it hold the values.
    EXPECT_NEAR(threshold, 200.0F, 0.1F);
}

TEST(LyrOtsuThreshold, lies_near_the_middle_of_the_classes_where_few_values_leave_it_open) {
    // Faces that halve their voxels: 32 samples of 0, 16 of 50 and 32 of 100. Any cut between two of the values is as
    // good as the next; nearest to the middle of the means, 0 and 83 or 17 and 100, is best.
    float threshold = 0.0F;
    std::string error;
    ASSERT_TRUE(find(make({5, 4, 4}, [](auto x, auto, auto) { return x < 2    ? 0.0F
                                                                     : x == 2 ? 50.0F
                                                                              : 100.0F; }),
                     threshold, error));
    EXPECT_TRUE(std::abs(threshold - 41.7F) < 0.1F || std::abs(threshold - 58.3F) < 0.1F) << threshold;
}

TEST(LyrOtsuThreshold, has_the_largest_variance_between_the_classes_of_all_thresholds) {
    const VolumePtr volume = testvolumes::casting(48, 8.0);
    float threshold = 0.0F;
    std::string error;
    ASSERT_TRUE(find(volume, threshold, error));
    double best = 0.0;
    for (double trial = 500.0; trial < 31000.0; trial += 250.0) {
        best = std::max(best, varianceBetween(*volume, trial));
    }
    EXPECT_GE(varianceBetween(*volume, threshold), best * (1.0 - 1e-6));
}

TEST(LyrOtsuThreshold, leaves_samples_in_both_classes_of_neighbouring_floats) {
    const float low = 1.0F;
    const float high = std::nextafter(low, 2.0F);
    float threshold = 0.0F;
    std::string error;
    ASSERT_TRUE(find(make({4, 4, 4}, [&](auto x, auto, auto) { return x == 0 ? low : high; }), threshold, error));
    EXPECT_EQ(threshold, high);
}

TEST(LyrOtsuThreshold, works_over_the_whole_range_of_floats) {
    const float most = std::numeric_limits<float>::max();
    float threshold = 1.0F;
    std::string error;
    ASSERT_TRUE(find(make({4, 4, 4}, [&](auto x, auto, auto) { return x < 2 ? -most : most; }), threshold, error));
    EXPECT_NEAR(threshold / most, 0.0F, 0.001F);
}

TEST(LyrOtsuThreshold, leaves_out_what_is_no_finite_number) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    float threshold = 0.0F;
    std::string error;
    ASSERT_TRUE(
        find(make({4, 1, 1}, [&](auto x, auto, auto) { return x == 0   ? nan
                                                              : x == 1 ? inf
                                                              : x == 2 ? 0.0F
                                                                       : 8.0F; }),
             threshold, error));
    EXPECT_NEAR(threshold, 4.0F, 0.01F);
}

TEST(LyrOtsuThreshold, does_not_exist_for_a_constant_volume_nor_for_one_without_numbers) {
    float threshold = 7.0F;
    std::string error;
    EXPECT_FALSE(find(make({4, 4, 4}, [](auto, auto, auto) { return 5.0F; }), threshold, error));
    EXPECT_NE(error.find("same value"), std::string::npos) << error;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(find(make({4, 4, 4}, [&](auto, auto, auto) { return nan; }), threshold, error));
    EXPECT_NE(error.find("no finite samples"), std::string::npos) << error;
    EXPECT_EQ(threshold, 7.0F);
}
