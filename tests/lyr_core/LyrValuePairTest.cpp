#include <lyr_core/LyrValuePair.h>

#include <limits>

#include <gtest/gtest.h>

namespace {

TEST(LyrValuePair, the_default_holds_two_zeros) {
    EXPECT_EQ(LyrValuePair<int>(), LyrValuePair<int>(0, 0));
}

TEST(LyrValuePair, both_values_are_kept_and_compared) {
    LyrValuePair<float> pair(1, 2);
    EXPECT_EQ(pair.first, 1);
    EXPECT_EQ(pair.second, 2);
    EXPECT_FALSE(pair == LyrValuePair<float>(1, 3));
    EXPECT_FALSE(pair == LyrValuePair<float>(0, 2));
    pair[0] = 7;
    pair[1] = 8;
    EXPECT_EQ(pair, LyrValuePair<float>(7, 8));
    EXPECT_EQ(static_cast<const LyrValuePair<float>&>(pair)[1], 8);
}

TEST(LyrValuePair, plain_comparison_treats_both_zeros_alike_and_nan_as_nothing) {
    const float nanValue = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(LyrValuePair<float>(0.0F, 1) == LyrValuePair<float>(-0.0F, 1));
    EXPECT_FALSE(LyrValuePair<float>(0, nanValue) == LyrValuePair<float>(0, nanValue));
}

}  // namespace
