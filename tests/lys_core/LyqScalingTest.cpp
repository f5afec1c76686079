#include <lys_core/LyqScaling.h>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <cmath>
#include <limits>

TEST(LyqScaling, lengths_grow_with_the_resolution_and_halves_round_up) {
    EXPECT_EQ(LyqScaling::getScaledPixelip(96.0f, 12), 12);
    EXPECT_EQ(LyqScaling::getScaledPixelip(192.0f, 12), 24);
    EXPECT_EQ(LyqScaling::getScaledPixelip(144.0f, 3), 5);  // 4.5
    EXPECT_EQ(LyqScaling::getScaledPixelip(72.0f, 12), 9);
    EXPECT_EQ(LyqScaling::getScaledPixelip(72.0f, 6), 5);     // 4.5
    EXPECT_EQ(LyqScaling::getScaledPixelip(110.0f, 10), 11);  // 11.458
    EXPECT_EQ(LyqScaling::getScaledPixelf(110.0f, 10.0f), 11.458333f);
}

TEST(LyqScaling, a_pixel_never_vanishes_but_none_stays_none) {
    EXPECT_EQ(LyqScaling::getScaledPixeli(10.0f, 1), 1);
    EXPECT_EQ(LyqScaling::getScaledPixeli(10.0f, 3), 1);
    EXPECT_EQ(LyqScaling::getScaledPixeli(10.0f, 0), 0);
}

TEST(LyqScaling, a_resolution_that_is_none_stands_for_the_default) {
    for (const float none : {0.0f, -5.0f, std::nanf(""), std::numeric_limits<float>::infinity()}) {
        EXPECT_EQ(LyqScaling::getScaledPixelip(none, 12), 12);
        EXPECT_EQ(LyqScaling::getScaledPixelf(none, 12.0f), 12.0f);
    }
}

TEST(LyqScaling, points_become_pixels_of_the_resolution) {
    const ToolkitApplication application;
    QFont font(QStringLiteral("Arial"));
    font.setPointSize(10);
    EXPECT_EQ(LyqScaling::getScaledFont(font, 96.0f).pixelSize(), 13);   // 13.33
    EXPECT_EQ(LyqScaling::getScaledFont(font, 192.0f).pixelSize(), 27);  // 26.67
    EXPECT_EQ(LyqScaling::getScaledFont(font, 72.0f).pixelSize(), 10);
    EXPECT_EQ(LyqScaling::getScaledFont(font, 0.0f).pixelSize(), 13);
    EXPECT_EQ(LyqScaling::getScaledFont(font, 1.0f).pixelSize(), 1);
    font.setPixelSize(20);
    EXPECT_EQ(LyqScaling::getScaledFont(font, 144.0f).pixelSize(), 30);
}

TEST(LyqScaling, sums_of_lengths_at_an_absurd_resolution_stay_whole_numbers) {
    const int length = LyqScaling::getScaledPixelip(std::numeric_limits<float>::max(), 12);
    EXPECT_GT(length, 1000000);
    EXPECT_LE(length, std::numeric_limits<int>::max() / 100);
}
