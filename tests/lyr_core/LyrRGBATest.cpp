#include <lyr_core/LyrRGBA.h>

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace {

constexpr float nanValue = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

TEST(LyrRGBA, the_default_is_fully_transparent) {
    EXPECT_EQ(LyrRGBAf(), LyrRGBAf(0, 0, 0, 0));
}

TEST(LyrRGBA, a_colour_without_alpha_is_opaque) {
    EXPECT_EQ(LyrRGBAf(0.25F, 0.5F, 0.75F).alpha, 1.0F);
}

TEST(LyrRGBA, the_named_colours_are_opaque) {
    EXPECT_EQ(LyrRGBAf::BLACK(), LyrRGBAf(0, 0, 0, 1));
    EXPECT_EQ(LyrRGBAf::WHITE(), LyrRGBAf(1, 1, 1, 1));
    EXPECT_EQ(LyrRGBAf::GRAY(0.25F), LyrRGBAf(0.25F, 0.25F, 0.25F, 1));
    EXPECT_EQ(LyrRGBAf::GRAY(0.0F), LyrRGBAf::BLACK());
}

TEST(LyrRGBA, the_channels_lie_in_order_without_gaps) {
    const LyrRGBAf colors[2] = {{1, 2, 3, 4}, {5, 6, 7, 8}};
    const float* const channels = &colors[0].red;
    EXPECT_EQ(&colors[0].green, channels + 1);
    EXPECT_EQ(&colors[0].blue, channels + 2);
    EXPECT_EQ(&colors[0].alpha, channels + 3);
    EXPECT_EQ(&colors[1].red, channels + 4);
}

TEST(LyrRGBA, clamping_brings_every_channel_into_the_unit_interval) {
    LyrRGBAf color(-0.5F, 1.5F, 0.5F, infinity);
    EXPECT_EQ(&color.clamp(), &color);
    EXPECT_EQ(color, LyrRGBAf(0, 1, 0.5F, 1));
    LyrRGBAf other(-infinity, std::nextafter(1.0F, 2.0F), std::nextafter(1.0F, 0.0F), -1);
    EXPECT_EQ(other.clamp(), LyrRGBAf(0, 1, 0.99999994F, 0));
}

TEST(LyrRGBA, clamping_keeps_nan_and_negative_zero) {
    LyrRGBAf color(nanValue, -0.0F, -0.0F, nanValue);
    color.clamp();
    EXPECT_TRUE(std::isnan(color.red));
    EXPECT_TRUE(std::isnan(color.alpha));
    EXPECT_TRUE(color.green == 0.0F && std::signbit(color.green));
    EXPECT_TRUE(color.blue == 0.0F && std::signbit(color.blue));
}

TEST(LyrRGBA, the_clamped_mode_is_off_at_first_and_shared_by_all_colour_types) {
    EXPECT_FALSE(LyrRGBAf::isClamped());
    LyrRGBAf::setClamped(true);
    EXPECT_TRUE(LyrRGBAf::isClamped());
    EXPECT_TRUE(LyrRGBA<double>::isClamped());
    LyrRGBA<double>::setClamped(false);
    EXPECT_FALSE(LyrRGBAf::isClamped());
}

TEST(LyrRGBA, plain_comparison_looks_at_every_channel) {
    const LyrRGBAf color(0.1F, 0.2F, 0.3F, 0.4F);
    EXPECT_TRUE(color == LyrRGBAf(0.1F, 0.2F, 0.3F, 0.4F));
    EXPECT_FALSE(color == LyrRGBAf(0, 0.2F, 0.3F, 0.4F));
    EXPECT_FALSE(color == LyrRGBAf(0.1F, 0, 0.3F, 0.4F));
    EXPECT_FALSE(color == LyrRGBAf(0.1F, 0.2F, 0, 0.4F));
    EXPECT_FALSE(color == LyrRGBAf(0.1F, 0.2F, 0.3F, 0));
    EXPECT_TRUE(LyrRGBAf(0.0F, 0, 0) == LyrRGBAf(-0.0F, 0, 0));
    EXPECT_FALSE(LyrRGBAf(nanValue, 0, 0) == LyrRGBAf(nanValue, 0, 0));
}

TEST(LyrRGBA, another_channel_type_is_converted_channel_by_channel) {
    EXPECT_EQ(LyrRGBAf(LyrRGBA<double>(0.1, 0.2, 0.3, 0.4)), LyrRGBAf(0.1F, 0.2F, 0.3F, 0.4F));
}

// White D65 is x = 0.3127, y = 0.3290, hence X = x / y and Z = (1 - x - y) / y at Y = 1.
TEST(LyrRGBA, white_has_the_tristimulus_values_of_d65) {
    const LyrVector3<double> xyz = LyrRGBA<double>::WHITE().toXYZ();
    EXPECT_NEAR(xyz.x, 0.3127 / 0.3290, 1e-14);
    EXPECT_NEAR(xyz.y, 1.0, 1e-14);
    EXPECT_NEAR(xyz.z, (1.0 - 0.3127 - 0.3290) / 0.3290, 1e-14);
}

TEST(LyrRGBA, the_primaries_have_the_chromaticities_of_the_standard) {
    const LyrRGBA<double> primaries[] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    const double chromaticities[][2] = {{0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}};
    for (int i = 0; i < 3; ++i) {
        const LyrVector3<double> xyz = primaries[i].toXYZ();
        const double sum = xyz.x + xyz.y + xyz.z;
        EXPECT_NEAR(xyz.x / sum, chromaticities[i][0], 1e-14) << i;
        EXPECT_NEAR(xyz.y / sum, chromaticities[i][1], 1e-14) << i;
    }
}

TEST(LyrRGBA, a_colour_survives_the_way_through_xyz) {
    const LyrRGBA<double> color(0.25, 1.5, -0.75, 0.5);
    const LyrRGBA<double> back = LyrRGBA<double>::fromXYZ(color.toXYZ(), color.alpha);
    EXPECT_NEAR(back.red, 0.25, 1e-14);
    EXPECT_NEAR(back.green, 1.5, 1e-14);
    EXPECT_NEAR(back.blue, -0.75, 1e-14);
    EXPECT_EQ(back.alpha, 0.5);
    EXPECT_EQ(LyrRGBAf::fromXYZ({0, 0, 0}), LyrRGBAf::BLACK());
}

}  // namespace
