#include <analysis/HistogramLayout.h>
#include <analysis/compute/LyrSortedValues.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>

namespace {

LyrSortedValues sorted(std::vector<float> samples) {
    LyrVolume::Description description;
    description.size = {static_cast<std::int64_t>(samples.size()), 1, 1};
    const auto volume = LyrVolume::create(description, std::move(samples));
    LyrSortedValues values;
    LyrAnalysisOutcome outcome;
    EXPECT_TRUE(LyrSortedValues::make(*volume, values, outcome)) << outcome.error;
    return values;
}

}  // namespace

TEST(HistogramLayout, heights_grow_with_the_logarithm_of_the_counts) {
    // From 0 to 10 in five columns of 2: seven values, none, one, none, three (the last column holds its upper end).
    const auto layout = HistogramLayout::make(sorted({0, 0, 0, 1, 1, 1, 1, 5, 8, 9, 10}), {}, {5, 30});
    // Of log 8 of the largest count: log 2 is a third, log 4 two thirds.
    EXPECT_EQ(layout.bars, (std::vector<int>{30, 0, 10, 0, 20}));
    EXPECT_EQ(layout.low, 0.0);
    EXPECT_EQ(layout.high, 10.0);
}

TEST(HistogramLayout, boundaries_stand_in_the_columns_of_their_values_each_once) {
    const std::vector<float> boundaries{0.0f, 2.5f, 2.6f, 10.0f};
    const auto layout = HistogramLayout::make(sorted({0, 10}), boundaries, {10, 8});
    EXPECT_EQ(layout.lines, (std::vector<int>{0, 2, 9}));
}

TEST(HistogramLayout, a_boundary_beyond_the_values_widens_the_range_but_not_without_end) {
    const std::vector<float> near{-5.0f, 12.0f};
    auto layout = HistogramLayout::make(sorted({0, 10}), near, {17, 8});
    EXPECT_EQ(layout.low, -5.0);
    EXPECT_EQ(layout.high, 12.0);
    EXPECT_EQ(layout.lines, (std::vector<int>{0, 16}));
    const std::vector<float> far{-1e30f, 5.0f, std::numeric_limits<float>::infinity()};
    layout = HistogramLayout::make(sorted({0, 10}), far, {20, 8});
    EXPECT_EQ(layout.low, -10.0);
    EXPECT_EQ(layout.high, 10.0);
    EXPECT_EQ(layout.lines, (std::vector<int>{15}));
}

TEST(HistogramLayout, one_value_has_a_range_around_it) {
    const auto layout = HistogramLayout::make(sorted({7, 7}), {}, {4, 8});
    EXPECT_EQ(layout.low, 6.5);
    EXPECT_EQ(layout.high, 7.5);
    EXPECT_EQ(layout.bars, (std::vector<int>{0, 0, 8, 0}));
    const auto large = HistogramLayout::make(sorted({1e30f}), {}, {4, 8});
    EXPECT_LT(large.valueAt(0), large.valueAt(3));
    const float largest = std::numeric_limits<float>::max();
    EXPECT_EQ(HistogramLayout::make(sorted({largest}), {}, {4, 8}).valueAt(3), largest);
    EXPECT_FALSE(large.isEmpty());
}

TEST(HistogramLayout, nothing_is_shown_without_values_or_without_room) {
    EXPECT_TRUE(HistogramLayout::make(sorted({NAN, NAN}), {}, {10, 10}).isEmpty());
    EXPECT_TRUE(HistogramLayout::make(sorted({1, 2}), {}, {0, 10}).isEmpty());
    EXPECT_TRUE(HistogramLayout::make(sorted({1, 2}), {}, {-2, -2}).isEmpty());
    EXPECT_EQ(HistogramLayout::make(sorted({NAN}), {}, {10, 10}).valueAt(3), 0.0f);
}

TEST(HistogramLayout, a_rare_value_has_a_pixel_all_the_same) {
    std::vector<float> samples(100000, 0.0f);
    samples.push_back(10.0f);
    const auto layout = HistogramLayout::make(sorted(samples), {}, {2, 3});
    EXPECT_EQ(layout.bars, (std::vector<int>{3, 1}));
}

TEST(HistogramLayout, a_column_tells_the_value_in_its_middle) {
    const auto layout = HistogramLayout::make(sorted({0, 10}), {}, {5, 8});
    EXPECT_EQ(layout.valueAt(0), 1.0f);
    EXPECT_EQ(layout.valueAt(4), 9.0f);
    EXPECT_EQ(layout.valueAt(-3), 1.0f);
    EXPECT_EQ(layout.valueAt(50), 9.0f);
}
