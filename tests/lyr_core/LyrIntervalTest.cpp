#include <lyr_core/LyrInterval.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace {

using Range = LyrInterval<float, float>;
using Selection = LyrInterval<long long, long long>;

constexpr float nanValue = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr long long longLowest = std::numeric_limits<long long>::lowest();
constexpr long long longLargest = std::numeric_limits<long long>::max();

TEST(LyrInterval, the_default_is_empty_from_the_largest_to_the_lowest_number) {
    const Range range;
    EXPECT_TRUE(range.isEmpty());
    EXPECT_EQ(range.low, 3.4028235e38F);
    EXPECT_EQ(range.high, -3.4028235e38F);
    EXPECT_EQ(Range::EMPTY().low, 3.4028235e38F);
    EXPECT_EQ(Range::EMPTY().high, -3.4028235e38F);
    EXPECT_EQ(Selection().low, 9223372036854775807LL);
    EXPECT_EQ(Selection().high, -9223372036854775807LL - 1);
}

TEST(LyrInterval, an_interval_is_empty_when_low_lies_above_high) {
    EXPECT_TRUE(Range(1, 0).isEmpty());
    EXPECT_FALSE(Range(1, 1).isEmpty());
    EXPECT_FALSE(Range(0.0F, -0.0F).isEmpty());
    EXPECT_FALSE(Range(-infinity, infinity).isEmpty());
    EXPECT_TRUE(Range(nanValue, 1).isEmpty());
    EXPECT_TRUE(Range(0, nanValue).isEmpty());
}

TEST(LyrInterval, the_size_of_real_numbers_is_their_difference) {
    EXPECT_EQ(Range(-1, 2.5F).getSize(), 3.5F);
    EXPECT_EQ(Range(2, 2).getSize(), 0);
    EXPECT_EQ(Range(2, 1).getSize(), 0);
    EXPECT_EQ(Range().getSize(), 0);
    EXPECT_EQ((LyrInterval<float, double>(-3e38F, 3e38F).getSize()), 2 * static_cast<double>(3e38F));
}

TEST(LyrInterval, the_size_of_integers_is_the_number_of_items) {
    EXPECT_EQ(Selection(3, 7).getSize(), 5);
    EXPECT_EQ(Selection(3, 3).getSize(), 1);
    EXPECT_EQ(Selection(4, 3).getSize(), 0);
    EXPECT_EQ(Selection().getSize(), 0);
    EXPECT_EQ((LyrInterval<int, double>(1, 4).getSize()), 4.0);
}

TEST(LyrInterval, a_size_that_does_not_fit_is_the_largest_number) {
    EXPECT_EQ(Selection(longLowest, longLargest).getSize(), longLargest);
    EXPECT_EQ(Selection(0, longLargest).getSize(), longLargest);
    EXPECT_EQ(Selection(1, longLargest).getSize(), longLargest);
    EXPECT_EQ(Selection(2, longLargest).getSize(), longLargest - 1);
    EXPECT_EQ(
        (LyrInterval<int, long long>(std::numeric_limits<int>::lowest(), std::numeric_limits<int>::max()).getSize()),
        4294967296LL);
    EXPECT_EQ((LyrInterval<long long, int>(0, 5000000000LL).getSize()), 2147483647);
    EXPECT_EQ((LyrInterval<std::uint8_t, int>(0, 255).getSize()), 256);
}

TEST(LyrInterval, clamping_gives_the_nearest_value) {
    const Range range(0, 1.5707964F);
    EXPECT_EQ(range.clamp(-1), 0);
    EXPECT_EQ(range.clamp(2), 1.5707964F);
    EXPECT_EQ(range.clamp(1), 1);
    EXPECT_EQ(range.clamp(infinity), 1.5707964F);
    EXPECT_EQ(range.clamp(-infinity), 0);
    EXPECT_EQ(Selection(2, 4).clamp(9), 4);
}

TEST(LyrInterval, clamping_keeps_nan_and_negative_zero) {
    EXPECT_TRUE(std::isnan(Range(0, 1).clamp(nanValue)));
    EXPECT_TRUE(std::signbit(Range(0, 1).clamp(-0.0F)));
}

TEST(LyrInterval, an_empty_interval_clamps_nothing) {
    EXPECT_EQ(Range().clamp(5), 5);
    EXPECT_EQ(Range(1, 0).clamp(0.25F), 0.25F);
}

TEST(LyrInterval, both_bounds_belong_to_the_interval) {
    const Range range(1, 2);
    EXPECT_TRUE(range.contains(1.0F));
    EXPECT_TRUE(range.contains(2.0F));
    EXPECT_FALSE(range.contains(std::nextafter(2.0F, 3.0F)));
    EXPECT_FALSE(range.contains(0.5F));
    EXPECT_FALSE(range.contains(nanValue));
    EXPECT_FALSE(Range().contains(0.0F));
}

TEST(LyrInterval, an_interval_contains_its_parts_and_the_empty_one) {
    const Range range(1, 3);
    EXPECT_TRUE(range.contains(Range(1, 3)));
    EXPECT_TRUE(range.contains(Range(2, 2)));
    EXPECT_FALSE(range.contains(Range(0, 2)));
    EXPECT_FALSE(range.contains(Range(2, 4)));
    EXPECT_TRUE(range.contains(Range()));
    EXPECT_TRUE(Range().contains(Range(1, 0)));
    EXPECT_FALSE(Range().contains(range));
}

TEST(LyrInterval, intersecting_leaves_the_common_part) {
    EXPECT_EQ(Range(0, 2).intersect({1, 3}), Range(1, 2));
    EXPECT_EQ(Range(0, 3).intersect({1, 2}), Range(1, 2));
    EXPECT_EQ(Range(0, 1).intersect({1, 2}), Range(1, 1));
    EXPECT_EQ(Selection(0, 5).intersect({3, 9}), Selection(3, 5));
}

TEST(LyrInterval, intervals_without_common_values_intersect_to_the_empty_one) {
    const Range nothing = Range(0, 1).intersect({2, 3});
    EXPECT_EQ(nothing.low, 3.4028235e38F);
    EXPECT_EQ(nothing.high, -3.4028235e38F);
    EXPECT_TRUE(Range(0, 1).intersect(Range()).isEmpty());
    EXPECT_TRUE(Range().intersect({0, 1}).isEmpty());
    EXPECT_TRUE(Range(5, 4).intersect({0, 9}).isEmpty());
    EXPECT_TRUE(Range(0, 9).intersect({5, 4}).isEmpty());
}

TEST(LyrInterval, uniting_grows_over_gaps) {
    EXPECT_EQ(Range(0, 1).unite({2, 3}), Range(0, 3));
    EXPECT_EQ(Range(2, 3).unite({0, 1}), Range(0, 3));
    EXPECT_EQ(Range(0, 3).unite({1, 2}), Range(0, 3));
    EXPECT_EQ(Range(0, 1).unite(0.5F), Range(0, 1));
    EXPECT_EQ(Range(0, 1).unite(-4.0F).unite(7.0F), Range(-4, 7));
}

TEST(LyrInterval, the_empty_interval_is_neutral_when_united) {
    EXPECT_EQ(Range().unite({1, 2}), Range(1, 2));
    EXPECT_EQ(Range(1, 2).unite(Range()), Range(1, 2));
    EXPECT_EQ(Range().unite(5.0F), Range(5, 5));
    // Not only the one that is written (largest, lowest).
    EXPECT_EQ(Range(9, 8).unite({1, 2}), Range(1, 2));
    EXPECT_EQ(Range(1, 2).unite({9, 8}), Range(1, 2));
    EXPECT_EQ(Range(1, 2).unite(nanValue), Range(1, 2));
}

TEST(LyrInterval, an_empty_interval_stays_empty_when_united_with_itself) {
    EXPECT_TRUE(Range().unite(Range()).isEmpty());
    const Range united = Range(5, 3).unite({2, 1});
    EXPECT_EQ(united.low, 3.4028235e38F);
    EXPECT_EQ(united.high, -3.4028235e38F);
}

TEST(LyrInterval, enlarging_moves_both_bounds) {
    EXPECT_EQ(Range(1, 2).enlarge(0.5F), Range(0.5F, 2.5F));
    EXPECT_EQ(Range(1, 1).enlarge(1), Range(0, 2));
    EXPECT_EQ(Range(0, 4).enlarge(-1), Range(1, 3));
    EXPECT_EQ(Selection(3, 4).enlarge(2), Selection(1, 6));
    EXPECT_EQ(Selection(3, 9).enlarge(-2), Selection(5, 7));
}

TEST(LyrInterval, an_empty_interval_stays_empty_when_enlarged) {
    const Range range = Range().enlarge(0.01F);
    EXPECT_EQ(range.low, 3.4028235e38F);
    EXPECT_EQ(range.high, -3.4028235e38F);
    EXPECT_TRUE(Range(1, 0).enlarge(100).isEmpty());
    EXPECT_TRUE(Selection().enlarge(1).isEmpty());
}

TEST(LyrInterval, an_interval_that_shrinks_to_nothing_is_empty) {
    const Range range = Range(0, 1).enlarge(-1);
    EXPECT_EQ(range.low, 3.4028235e38F);
    EXPECT_EQ(range.high, -3.4028235e38F);
    EXPECT_TRUE(Selection(1, 2).enlarge(-1).isEmpty());
}

TEST(LyrInterval, integer_bounds_stop_at_the_limits_of_their_type) {
    EXPECT_EQ(Selection(longLowest + 1, longLargest - 1).enlarge(5), Selection(longLowest, longLargest));
    EXPECT_EQ(Selection(0, 0).enlarge(longLargest), Selection(-longLargest, longLargest));
    EXPECT_TRUE(Selection(0, 0).enlarge(longLowest).isEmpty());
    EXPECT_TRUE(Selection(longLowest, longLargest).enlarge(longLowest).isEmpty());
    EXPECT_EQ((LyrInterval<std::uint8_t>(3, 250).enlarge(10)), LyrInterval<std::uint8_t>(0, 255));
}

TEST(LyrInterval, normalising_exchanges_bounds_in_the_wrong_order) {
    EXPECT_EQ(Range(2, 1).normalize(), Range(1, 2));
    EXPECT_EQ(Range(1, 2).normalize(), Range(1, 2));
    EXPECT_EQ(Selection(5, -5).normalize(), Selection(-5, 5));
}

TEST(LyrInterval, the_empty_interval_stays_empty_when_normalised) {
    EXPECT_TRUE(Range().normalize().isEmpty());
    EXPECT_TRUE(Range(nanValue, 0).normalize().isEmpty());
}

TEST(LyrInterval, intervals_are_equal_when_they_hold_the_same_values) {
    EXPECT_TRUE(Range(1, 2) == Range(1, 2));
    EXPECT_FALSE(Range(1, 2) == Range(1, 3));
    EXPECT_FALSE(Range(0, 2) == Range(1, 2));
    EXPECT_TRUE(Range(5, 4) == Range());
    EXPECT_FALSE(Range(4, 5) == Range());
    EXPECT_TRUE(Range(0.0F, 1) == Range(-0.0F, 1));
}

TEST(LyrInterval, a_pair_of_bounds_is_converted_both_ways) {
    EXPECT_EQ(Range(LyrValuePair<float>(1, 2)), Range(1, 2));
    EXPECT_EQ(Range(1, 2).toPair(), LyrValuePair<float>(1, 2));
    EXPECT_EQ(Range().toPair(), LyrValuePair<float>(3.4028235e38F, -3.4028235e38F));
}

}  // namespace
