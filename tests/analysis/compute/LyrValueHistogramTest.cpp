#include <analysis/compute/LyrValueHistogram.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <span>

#include <analysis/compute/LyrSortedValues.h>

#include "TestVolumes.h"

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

LyrSortedValues sorted(const std::vector<float>& values) {
    LyrSortedValues made;
    LyrAnalysisOutcome outcome;
    const auto count = static_cast<std::int64_t>(values.size());
    const auto volume =
        testvolumes::make({count, 1, 1}, [&](auto x, auto, auto) { return values[static_cast<std::size_t>(x)]; });
    EXPECT_TRUE(LyrSortedValues::make(*volume, made, outcome)) << outcome.error;
    return made;
}

}  // namespace

TEST(LyrValueHistogram, bins_hold_their_lower_end_and_the_last_its_upper_one) {
    const std::vector<float> values{0.0F, 0.5F, 1.0F, 1.5F, 2.0F, 3.0F, 4.0F, -1.0F, 4.5F, kNan, kInfinity};
    LyrValueHistogram histogram;
    ASSERT_TRUE(LyrValueHistogram::make(values, 4, 0.0, 4.0, histogram));
    EXPECT_EQ(histogram.counts, (std::vector<std::uint64_t>{2, 2, 1, 2}));
    EXPECT_EQ(histogram.below, 1U);
    EXPECT_EQ(histogram.above, 1U);
    EXPECT_EQ(histogram.total, 9U);
    EXPECT_EQ(histogram.edge(1), 1.0);
    EXPECT_EQ(histogram.edge(4), 4.0);
}

TEST(LyrValueHistogram, ends_of_bins_decide_to_the_bit) {
    // 0.1 in steps: rounding in the division must not carry an end into the bin before it.
    LyrValueHistogram histogram;
    ASSERT_TRUE(LyrValueHistogram::make({}, 10, 0.0, 1.0, histogram));
    std::vector<float> values;
    for (std::size_t bin = 0; bin < 10; ++bin) {
        float value = static_cast<float>(histogram.edge(bin));
        if (static_cast<double>(value) < histogram.edge(bin)) {
            value = std::nextafter(value, 2.0F);
        }
        values.push_back(value);
    }
    ASSERT_TRUE(LyrValueHistogram::make(values, 10, 0.0, 1.0, histogram));
    EXPECT_EQ(histogram.counts, std::vector<std::uint64_t>(10, 1));
}

TEST(LyrValueHistogram, of_a_volume_covers_its_range) {
    LyrValueHistogram histogram;
    ASSERT_TRUE(LyrValueHistogram::make(
        *testvolumes::make({5, 1, 1}, [](auto x, auto, auto) { return x == 4 ? kNan : static_cast<float>(x); }), 3,
        histogram));
    EXPECT_EQ(histogram.low, 0.0);
    EXPECT_EQ(histogram.high, 3.0);
    EXPECT_EQ(histogram.counts, (std::vector<std::uint64_t>{1, 1, 2}));
    ASSERT_TRUE(
        LyrValueHistogram::make(*testvolumes::make({5, 1, 1}, [](auto, auto, auto) { return 2.0F; }), 2, histogram));
    EXPECT_EQ(histogram.low, 1.5);
    EXPECT_EQ(histogram.high, 2.5);
    EXPECT_EQ(histogram.counts, (std::vector<std::uint64_t>{0, 5}));
    EXPECT_FALSE(
        LyrValueHistogram::make(*testvolumes::make({5, 1, 1}, [](auto, auto, auto) { return kNan; }), 2, histogram));
}

TEST(LyrValueHistogram, refuses_what_is_no_range) {
    LyrValueHistogram histogram;
    histogram.low = 7.0;
    EXPECT_FALSE(LyrValueHistogram::make({}, 0, 0.0, 1.0, histogram));
    EXPECT_FALSE(LyrValueHistogram::make({}, 2000000, 0.0, 1.0, histogram));
    EXPECT_FALSE(LyrValueHistogram::make({}, 4, 1.0, 1.0, histogram));
    EXPECT_FALSE(LyrValueHistogram::make({}, 4, 0.0, std::numeric_limits<double>::infinity(), histogram));
    EXPECT_EQ(histogram.low, 7.0);
}

TEST(LyrSectionShares, a_boundary_belongs_to_the_section_below_and_the_first_to_the_one_above) {
    const std::vector<float> boundaries{1.0F, 2.0F, 3.0F};
    EXPECT_EQ(LyrSectionShares::sectionOf(0.5F, boundaries), 0U);
    EXPECT_EQ(LyrSectionShares::sectionOf(1.0F, boundaries), 1U);
    EXPECT_EQ(LyrSectionShares::sectionOf(2.0F, boundaries), 1U);
    EXPECT_EQ(LyrSectionShares::sectionOf(2.5F, boundaries), 2U);
    EXPECT_EQ(LyrSectionShares::sectionOf(3.0F, boundaries), 2U);
    EXPECT_EQ(LyrSectionShares::sectionOf(3.5F, boundaries), 3U);
    const std::vector<float> twins{1.0F, 1.0F, 2.0F, 2.0F};
    EXPECT_EQ(LyrSectionShares::sectionOf(0.5F, twins), 0U);
    EXPECT_EQ(LyrSectionShares::sectionOf(1.0F, twins), 2U);
    EXPECT_EQ(LyrSectionShares::sectionOf(2.0F, twins), 2U);
    EXPECT_EQ(LyrSectionShares::sectionOf(3.0F, twins), 4U);
}

TEST(LyrSectionShares, counts_every_finite_value_once) {
    const std::vector<float> values{0.0F, 1.0F, 1.0F, 2.0F, 2.5F, 9.0F, kNan, -kInfinity};
    LyrSectionShares shares;
    ASSERT_TRUE(LyrSectionShares::make(values, std::vector<float>{1.0F, 2.0F}, shares));
    EXPECT_EQ(shares.counts, (std::vector<std::uint64_t>{1, 3, 2}));
    EXPECT_EQ(shares.total, 6U);
    EXPECT_DOUBLE_EQ(shares.percent(1), 50.0);
    EXPECT_EQ(shares.percent(3), 0.0);
    ASSERT_TRUE(LyrSectionShares::make(values, {}, shares));
    EXPECT_EQ(shares.counts, (std::vector<std::uint64_t>{6}));
    ASSERT_TRUE(LyrSectionShares::make({}, std::vector<float>{1.0F}, shares));
    EXPECT_EQ(shares.percent(0), 0.0);
}

TEST(LyrSectionShares, refuses_boundaries_that_fall_or_are_no_numbers) {
    LyrSectionShares shares;
    EXPECT_FALSE(LyrSectionShares::make({}, std::vector<float>{2.0F, 1.0F}, shares));
    EXPECT_FALSE(LyrSectionShares::make({}, std::vector<float>{1.0F, kNan}, shares));
    EXPECT_TRUE(shares.counts.empty());
}

TEST(LyrSortedValues, are_all_finite_values_in_order) {
    const LyrSortedValues values = sorted({3.0F, kNan, 1.0F, kInfinity, 2.0F});
    EXPECT_EQ(std::vector<float>(values.values().begin(), values.values().end()),
              (std::vector<float>{1.0F, 2.0F, 3.0F}));
    EXPECT_TRUE(sorted({kNan}).values().empty());
}

TEST(LyrSortedValues, are_in_order_beyond_one_piece) {
    const auto volume = testvolumes::noise(100);
    LyrSortedValues values;
    LyrAnalysisOutcome outcome;
    ASSERT_TRUE(LyrSortedValues::make(*volume, values, outcome));
    ASSERT_EQ(values.values().size(), 1000000U);
    EXPECT_TRUE(std::is_sorted(values.values().begin(), values.values().end()));
    const auto sum = [](std::span<const float> all) { return std::accumulate(all.begin(), all.end(), 0.0); };
    EXPECT_NEAR(sum(values.values()), sum(volume->samples()), 1e-3);
}

TEST(LyrSortedValues, give_the_same_shares_and_histograms_as_the_values_themselves) {
    std::vector<float> values{kNan};
    for (int i = 0; i < 1000; ++i) {
        values.push_back(static_cast<float>((i * 37) % 101) / 10.0F);
    }
    const LyrSortedValues order = sorted(values);
    for (const std::vector<float>& boundaries :
         {std::vector<float>{}, {0.0F}, {5.0F, 5.0F, 7.0F, 7.0F}, {1.0F, 2.0F, 3.05F, 11.0F}}) {
        LyrSectionShares direct;
        LyrSectionShares quick;
        ASSERT_TRUE(LyrSectionShares::make(values, boundaries, direct));
        ASSERT_TRUE(order.shares(boundaries, quick));
        EXPECT_EQ(quick.counts, direct.counts);
        EXPECT_EQ(quick.total, direct.total);
    }
    for (const auto& [low, high] : {std::pair{0.0, 10.0}, std::pair{2.0, 7.3}, std::pair{-5.0, -1.0}}) {
        LyrValueHistogram direct;
        LyrValueHistogram quick;
        ASSERT_TRUE(LyrValueHistogram::make(values, 13, low, high, direct));
        ASSERT_TRUE(order.histogram(13, low, high, quick));
        EXPECT_EQ(quick.counts, direct.counts);
        EXPECT_EQ(quick.below, direct.below);
        EXPECT_EQ(quick.above, direct.above);
        EXPECT_EQ(quick.total, direct.total);
    }
    LyrSectionShares shares;
    EXPECT_FALSE(order.shares(std::vector<float>{2.0F, 1.0F}, shares));
    LyrValueHistogram histogram;
    EXPECT_FALSE(order.histogram(0, 0.0, 1.0, histogram));
}
