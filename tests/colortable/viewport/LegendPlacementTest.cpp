#include <colortable/viewport/LegendPlacement.h>
#include <lyr_core/LyrHostIdentifiers.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace lys::viewport;

constexpr Viewport VIEW{0.0f, 0.0f, 800.0f, 600.0f};

Wish wish(Lyrenum position, Lyrenum alignment, float size = 0.7f, const QSize& hint = QSize(60, 128),
          const QSize& minimum = QSize(20, 30)) {
    return {position, alignment, size, hint, minimum};
}

QRect placed(const Wish& wanted, const Viewport& viewport = VIEW, float dotsPerInch = 96.0f) {
    const Place place = placeLegend(viewport, dotsPerInch, wanted);
    return QRect(place.position, place.size);
}

}  // namespace

TEST(LegendPlacement, a_vertical_bar_takes_its_share_of_the_free_height) {
    // Free: 780 by 580 from (10, 10). 0.7 * 580 is 406 in single precision.
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Center)), QRect(10, 97, 60, 406));
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Top)), QRect(10, 10, 60, 406));
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Bottom)), QRect(10, 184, 60, 406));
    EXPECT_EQ(placed(wish(Lyr::Right, Lyr::Center)), QRect(730, 97, 60, 406));
}

TEST(LegendPlacement, a_horizontal_bar_reads_top_as_right_and_bottom_as_left) {
    const QSize hint(200, 40);
    EXPECT_EQ(placed(wish(Lyr::Bottom, Lyr::Center, 0.5f, hint)), QRect(205, 550, 390, 40));
    EXPECT_EQ(placed(wish(Lyr::Top, Lyr::Top, 0.5f, hint)), QRect(400, 10, 390, 40));
    EXPECT_EQ(placed(wish(Lyr::Top, Lyr::Right, 0.5f, hint)), QRect(400, 10, 390, 40));
    EXPECT_EQ(placed(wish(Lyr::Bottom, Lyr::Bottom, 0.5f, hint)), QRect(10, 550, 390, 40));
    EXPECT_EQ(placed(wish(Lyr::Bottom, Lyr::Left, 0.5f, hint)), QRect(10, 550, 390, 40));
}

TEST(LegendPlacement, an_unknown_side_is_left_and_an_unknown_alignment_the_centre) {
    EXPECT_EQ(placed(wish(Lyr::Gradient, Lyr::Gradient)), placed(wish(Lyr::Left, Lyr::Center)));
}

TEST(LegendPlacement, the_share_lies_between_a_hundredth_and_the_whole) {
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Top, 0.0f, QSize(60, 128), QSize(1, 1))).height(), 5);
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Top, -3.0f, QSize(60, 128), QSize(1, 1))).height(), 5);
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Top, 7.0f)).height(), 580);
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Top, 0.5f, QSize(60, 128), QSize(1, 1)), {0, 0, 100, 22}).height(), 2);
}

TEST(LegendPlacement, an_odd_length_is_centred_in_double_and_truncated) {
    // 582 free from 10, 291 long: 301 - 145.5 is 155.5.
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Center, 0.5f), {0, 0, 800, 602}), QRect(10, 155, 60, 291));
    EXPECT_EQ(placed(wish(Lyr::Top, Lyr::Center, 0.5f, QSize(200, 40)), {0, 0, 602, 600}), QRect(155, 10, 291, 40));
    // 581 free, 406 long (0.7 * 581 = 406.7): 300.5 - 203 is 97.5.
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Center), {0, 0, 800, 601}), QRect(10, 97, 60, 406));
}

TEST(LegendPlacement, edges_are_added_in_double_too) {
    // At 110 dpi the margin is 11.458333: the edges 11.458333 and 92.541664 make 103.999997, in single precision 104.
    // 0.7 * 81.08 is 56.76, so 51.9999986 - 28 is a little less than 24.
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Center), {0, 0, 800, 104}, 110.0f), QRect(11, 23, 60, 56));
}

TEST(LegendPlacement, the_minimum_enlarges_away_from_the_anchor) {
    const Wish small = wish(Lyr::Right, Lyr::Bottom, 0.01f, QSize(60, 128), QSize(90, 100));
    // Placed for 60 by 5, then enlarged without moving.
    EXPECT_EQ(placed(small), QRect(730, 585, 90, 100));
}

TEST(LegendPlacement, positions_are_truncated_toward_zero) {
    // A margin of 11.5 pixels at 110.4 dpi and a view that starts left of 0.
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Top), {-13.0f, -13.0f, 800, 600}, 110.4f).topLeft(), QPoint(-1, -1));
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Top), {0, 0, 800, 600}, 110.4f).topLeft(), QPoint(11, 11));
}

TEST(LegendPlacement, margins_scale_with_the_resolution) {
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Top), VIEW, 192.0f).topLeft(), QPoint(20, 20));
    EXPECT_EQ(placed(wish(Lyr::Left, Lyr::Top), VIEW, 0.0f).topLeft(), QPoint(10, 10));
}

TEST(LegendPlacement, centres_lie_between_pixels_for_even_lengths) {
    const auto centre = centreOf(QRect(10, 20, 4, 5));
    EXPECT_EQ(centre.x, 11.5f);
    EXPECT_EQ(centre.y, 22.0f);
    EXPECT_EQ(centre.z, 0.5f);
}

TEST(LegendPlacement, a_frame_over_the_whole_view_covers_the_device) {
    const auto corners = quadCorners(QRect(0, 0, 800, 600), VIEW);
    ASSERT_EQ(corners.size(), 4u);
    const float expected[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(corners[static_cast<std::size_t>(i)].x, expected[i][0]);
        EXPECT_EQ(corners[static_cast<std::size_t>(i)].y, expected[i][1]);
        EXPECT_EQ(corners[static_cast<std::size_t>(i)].z, 0.0f);
    }
}

TEST(LegendPlacement, textures_have_powers_of_two) {
    EXPECT_EQ(textureLength(300), 512);
    EXPECT_EQ(textureLength(40), 64);
    EXPECT_EQ(textureLength(64), 64);
    EXPECT_EQ(textureLength(1), 1);
    EXPECT_EQ(textureLength(0), 0);
    EXPECT_EQ(textureLength(-5), 0);
    EXPECT_EQ(textureLength(2147483647), 1 << 30);
}

TEST(LegendPlacement, only_the_exact_key_colour_becomes_transparent) {
    QImage image(2, 2, QImage::Format_RGB32);
    image.setPixel(0, 0, qRgb(0, 0, 8));
    image.setPixel(1, 0, qRgb(0, 0, 9));
    image.setPixel(0, 1, qRgb(1, 0, 8));
    image.setPixel(1, 1, qRgb(200, 100, 50));
    const std::vector<unsigned char> expected = {0, 0, 8, 0, 0, 0, 9, 255, 1, 0, 8, 255, 200, 100, 50, 255};
    PixelBytes bytes;
    ASSERT_TRUE(keyedPixels(image, bytes));
    EXPECT_EQ(std::vector<unsigned char>(bytes.begin(), bytes.end()), expected);
    ASSERT_TRUE(keyedPixels(QImage(), bytes));
    EXPECT_TRUE(bytes.isEmpty());
}
