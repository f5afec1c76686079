#include <colortable/legend/LegendLayout.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using namespace lys::legend;

constexpr int LETTER = 7;
constexpr int HEIGHT = 16;

/** A font of equal letters, 7 pixels wide, 12 above the baseline and 4 below; labels are as wide as `text` says. */
TextMeasure equalLetters(std::function<QString(float)> text) {
    return {[](const QString& shown) {
                return QRect(0, -12, static_cast<int>(shown.size()) * LETTER, shown.isEmpty() ? 0 : HEIGHT);
            },
            std::move(text)};
}

TextMeasure letters(int count) {
    return equalLetters([count](float) { return QString(count, QLatin1Char('8')); });
}

Input vertical(const QSize& size, std::vector<float> positions = {-1.0f, 1.0f}) {
    Input input;
    input.size = size;
    input.thickness = 12;
    input.positions = std::move(positions);
    return input;
}

Input horizontal(const QSize& size, std::vector<float> positions = {-1.0f, 1.0f}) {
    Input input = vertical(size, std::move(positions));
    input.horizontal = true;
    return input;
}

}  // namespace

TEST(LegendLayout, only_one_to_five_or_ten_intervals_occur) {
    const int expected[] = {1, 1, 2, 3, 4, 5, 5, 5, 5, 5, 10, 10, 10};
    for (int fit = 0; fit < 13; ++fit) {
        EXPECT_EQ(intervalCount(fit), expected[fit]) << fit;
    }
    EXPECT_EQ(intervalCount(-4), 1);
    EXPECT_EQ(intervalCount(1000000), 10);
}

TEST(LegendLayout, room_for_seven_labels_gives_six_and_room_for_ten_gives_eleven) {
    // A label takes 16 pixels and 10 between it and the next.
    EXPECT_EQ(labelValues(vertical({100, 200}), 7 * 26, HEIGHT).size(), 6u);
    EXPECT_EQ(labelValues(vertical({100, 200}), 10 * 26, HEIGHT).size(), 11u);
    EXPECT_EQ(labelValues(vertical({100, 200}), 10 * 26 - 1, HEIGHT).size(), 6u);
    EXPECT_EQ(labelValues(vertical({100, 200}), 0, HEIGHT).size(), 2u);
}

TEST(LegendLayout, label_values_are_summed_up_in_single_precision) {
    const auto unit = labelValues(vertical({100, 400}, {0.0f, 1.0f}), 400, HEIGHT);
    ASSERT_EQ(unit.size(), 11u);
    EXPECT_EQ(unit.front(), 0.0f);
    EXPECT_EQ(unit.back(), 1.0000001f);
    const auto both = labelValues(vertical({100, 400}), 400, HEIGHT);
    EXPECT_EQ(both.back(), 0.99999994f);
}

TEST(LegendLayout, a_value_below_a_thousandth_of_the_range_is_zero_but_the_sum_goes_on) {
    // -1 + 5 * 0.2 in single precision is 0 or a tiny number; what follows shows that the sum was not touched.
    const auto values = labelValues(vertical({100, 400}), 400, HEIGHT);
    ASSERT_EQ(values.size(), 11u);
    EXPECT_EQ(values[5], 0.0f);
    EXPECT_FALSE(std::signbit(values[5]));
    float sum = -1.0f;
    for (int i = 0; i < 6; ++i) {
        sum += 2.0f / 10.0f;
    }
    EXPECT_EQ(values[6], sum);
}

TEST(LegendLayout, the_last_label_of_a_range_up_to_the_largest_float_is_its_end) {
    // Ten times a tenth of it, rounded up, is infinite in single precision.
    const float largest = std::numeric_limits<float>::max();
    const auto values = labelValues(vertical({100, 400}, {0.0f, largest}), 400, HEIGHT);
    ASSERT_EQ(values.size(), 11u);
    EXPECT_EQ(values.back(), largest);
    EXPECT_LT(values[9], largest);
}

TEST(LegendLayout, without_automatic_labels_every_boundary_has_one) {
    Input input = vertical({100, 200}, {3.0f, 4.0f, 9.0f});
    input.autoLabel = false;
    EXPECT_EQ(labelValues(input, 1, HEIGHT), (std::vector<float>{3.0f, 4.0f, 9.0f}));
    input.positions = {5.0f};
    EXPECT_EQ(labelValues(input, 1, HEIGHT), std::vector<float>{5.0f});
    input.autoLabel = true;
    EXPECT_TRUE(labelValues(input, 1, HEIGHT).empty());
}

TEST(LegendLayout, a_range_that_is_empty_or_not_finite_has_no_automatic_labels_and_maps_to_zero) {
    const float inf = std::numeric_limits<float>::infinity();
    const float largest = std::numeric_limits<float>::max();
    for (const std::vector<float>& positions :
         {std::vector<float>{2.0f, 2.0f}, {3.0f, 1.0f}, {-inf, 0.0f}, {0.0f, std::nanf("")}, {-largest, largest}}) {
        const Input input = vertical({100, 200}, positions);
        EXPECT_TRUE(labelValues(input, 200, HEIGHT).empty());
        EXPECT_EQ(valueToCoordinate(input, layOut(input, letters(3)), 2.0f), 0);
    }
}

TEST(LegendLayout, huge_values_stay_on_the_bar) {
    const Input input = vertical({100, 200}, {2e38f, 3e38f});
    const Layout layout = layOut(input, letters(3));
    const Input unit = vertical({100, 200}, {0.0f, 1.0f});
    EXPECT_EQ(valueToCoordinate(input, layout, 2e38f), valueToCoordinate(unit, layOut(unit, letters(3)), 0.0f));
    EXPECT_EQ(valueToCoordinate(input, layout, 3e38f), valueToCoordinate(unit, layOut(unit, letters(3)), 1.0f));
    EXPECT_EQ(valueToCoordinate(input, layout, 2.5e38f), valueToCoordinate(unit, layOut(unit, letters(3)), 0.5f));
}

TEST(LegendLayout, a_vertical_bar_with_labels_right_stands_at_the_left_edge) {
    const Input input = vertical({100, 200});
    const Layout layout = layOut(input, letters(4));
    // No caption: its bottom is -1, so the bar starts at 5. right() = 12 makes the rectangle 13 wide.
    EXPECT_EQ(layout.caption, QRect());
    EXPECT_EQ(layout.bar, QRect(QPoint(0, 5), QPoint(12, 199)));
    EXPECT_EQ(layout.labels, QRect(QPoint(15, 5), QPoint(99, 199)));
    // 12 across, 28 * 1.05 = 29.4, 3 between.
    EXPECT_EQ(layout.sizeHint, QSize(44, 128));
    EXPECT_EQ(layout.extensionLength, 12);
    EXPECT_EQ(layout.minimumSizeHint, QSize(44, 27));
}

TEST(LegendLayout, a_vertical_bar_with_labels_left_hugs_the_right_edge) {
    Input input = vertical({100, 200});
    input.textRight = false;
    Layout layout = layOut(input, letters(0));
    input.positions = {0.0f, 1.0f};
    // Labels 30 wide: bar from 33, 67 wide, shifted by 55.
    layout =
        layOut(input, {[](const QString&) { return QRect(0, -12, 30, HEIGHT); }, [](float) { return QString("1"); }});
    EXPECT_EQ(layout.bar.left(), 88);
    EXPECT_EQ(layout.labels.left(), 55);
    EXPECT_EQ(layout.labels.right(), 30 + 55);
    EXPECT_EQ(layout.bar.width(), 67);
}

TEST(LegendLayout, a_caption_pushes_the_vertical_bar_down_and_widens_the_hint) {
    Input input = vertical({100, 200});
    input.caption = QStringLiteral("Wall thickness");
    const Layout layout = layOut(input, letters(4));
    EXPECT_EQ(layout.caption, QRect(0, 0, 98, 19));
    EXPECT_EQ(layout.bar.top(), 18 + 6);
    EXPECT_EQ(layout.sizeHint, QSize(101, 128));
}

TEST(LegendLayout, the_column_reserve_is_five_percent_truncated) {
    for (int width = 1; width <= 2000; ++width) {
        const TextMeasure measure{[width](const QString&) { return QRect(0, -12, width, HEIGHT); },
                                  [](float) { return QString("1"); }};
        EXPECT_EQ(layOut(vertical({100, 200}), measure).sizeHint.width(), 12 + width * 105 / 100 + 3) << width;
    }
}

TEST(LegendLayout, a_tall_font_lengthens_what_is_kept_free_at_both_ends) {
    const TextMeasure tall{[](const QString&) { return QRect(0, -30, 20, 41); }, [](float) { return QString("1"); }};
    EXPECT_EQ(layOut(vertical({100, 300}), tall).extensionLength, 21);
    EXPECT_EQ(layOut(horizontal({300, 100}), tall).extensionLength, 12);
}

TEST(LegendLayout, values_grow_upwards_along_a_vertical_bar) {
    const Input input = vertical({100, 200});
    const Layout layout = layOut(input, letters(4));
    // 195 pixels less 2 * 12: 171 for the range.
    EXPECT_EQ(valueToCoordinate(input, layout, 1.0f), 16);
    EXPECT_EQ(valueToCoordinate(input, layout, 0.0f), 101);
    EXPECT_EQ(valueToCoordinate(input, layout, -1.0f), 187);
    EXPECT_EQ(valueToCoordinate(input, layout, std::nanf("")), 0);
    EXPECT_EQ(valueToCoordinate(input, layout, 1e38f), -16777216);
    EXPECT_EQ(valueToCoordinate(input, layout, -1e38f), 16777216);
}

TEST(LegendLayout, boxes_beyond_the_range_of_a_vertical_bar_touch_its_ends) {
    Input input = vertical({100, 200});
    const Layout layout = layOut(input, letters(4));
    EXPECT_EQ(upperExtensionBox(input, layout), QRect(0, 4, 12, 13));
    EXPECT_EQ(lowerExtensionBox(input, layout), QRect(0, 187, 12, 13));
    input.lowerExtension = false;
    EXPECT_FALSE(lowerExtensionBox(input, layout).has_value());
    EXPECT_TRUE(upperExtensionBox(input, layout).has_value());
    // Hidden boxes free no room.
    EXPECT_EQ(valueToCoordinate(input, layOut(input, letters(4)), -1.0f), 187);
}

TEST(LegendLayout, inner_boxes_share_the_lines_of_their_frames) {
    const Input input = vertical({100, 200}, {-1.0f, 0.0f, 0.0f, 1.0f});
    const auto boxes = innerBoxes(input, layOut(input, letters(4)));
    ASSERT_EQ(boxes.size(), 3u);
    EXPECT_EQ(boxes[0].section, 1);
    EXPECT_EQ(boxes[0].rect, QRect(QPoint(0, 101), QPoint(11, 187)));
    EXPECT_EQ(boxes[1].rect, QRect(QPoint(0, 101), QPoint(11, 101)));
    EXPECT_EQ(boxes[2].rect, QRect(QPoint(0, 16), QPoint(11, 101)));
}

TEST(LegendLayout, a_horizontal_legend_has_labels_bar_and_caption_from_top_to_bottom) {
    Input input = horizontal({300, 80});
    input.caption = QStringLiteral("Deviation");
    const Layout layout = layOut(input, letters(3));
    EXPECT_EQ(layout.widestLabel, 21);
    EXPECT_EQ(layout.labels, QRect(0, 0, 300, 19));
    EXPECT_EQ(layout.bar, QRect((300 - 279) / 2, 18 + 3, 279, 14));
    EXPECT_EQ(layout.caption, QRect((300 - 63) / 2, 34 + 3, 63, 19));
    EXPECT_EQ(layout.sizeHint, QSize(66, 9 + 19 + 16 + 12));
    EXPECT_EQ(layout.sizeHint.height(), layout.caption.bottom() + 1);
    EXPECT_EQ(layout.minimumSizeHint, layout.sizeHint);
}

TEST(LegendLayout, a_horizontal_legend_with_labels_below_has_its_caption_on_top) {
    Input input = horizontal({300, 80});
    input.caption = QStringLiteral("Deviation");
    input.textRight = false;
    const Layout layout = layOut(input, letters(3));
    EXPECT_EQ(layout.caption.top(), 0);
    EXPECT_EQ(layout.bar.top(), 18 + 3);
    EXPECT_EQ(layout.labels.top(), 34 + 3);
    EXPECT_EQ(layout.sizeHint.height(), layout.labels.bottom() + 1);
    input.caption.clear();
    EXPECT_EQ(layOut(input, letters(3)).bar.top(), 2);
}

TEST(LegendLayout, boxes_beyond_the_range_of_a_horizontal_bar_lie_at_its_ends) {
    const Input input = horizontal({300, 80});
    const Layout layout =
        layOut(input, {[](const QString&) { return QRect(0, -12, 40, HEIGHT); }, [](float) { return QString("1"); }});
    EXPECT_EQ(layout.bar.left(), 20);
    EXPECT_EQ(layout.bar.right(), 279);
    EXPECT_EQ(upperExtensionBox(input, layout), QRect(QPoint(267, 21), QPoint(278, 32)));
    EXPECT_EQ(lowerExtensionBox(input, layout), QRect(20, 21, 12, 12));
    EXPECT_EQ(valueToCoordinate(input, layout, -1.0f), 32);
    EXPECT_EQ(valueToCoordinate(input, layout, 1.0f), 32 + 236);
}

TEST(LegendLayout, lengths_scale_with_the_resolution_but_the_vertical_hint_does_not) {
    Input input = vertical({200, 400});
    input.dotsPerInch = 192.0f;
    const Layout layout = layOut(input, letters(4));
    EXPECT_EQ(layout.thickness, 24);
    EXPECT_EQ(layout.bar.top(), -1 + 12);
    EXPECT_EQ(layout.labels.left(), 30);
    EXPECT_EQ(layout.sizeHint, QSize(24 + 29 + 6, 128));
    EXPECT_EQ(upperExtensionBox(input, layout)->height(), 25);
}

TEST(LegendLayout, an_absurd_thickness_stays_a_number) {
    for (const long long thickness : {-5LL, 0LL, 1LL << 40, std::numeric_limits<long long>::max()}) {
        Input input = vertical({100, 200});
        input.thickness = thickness;
        const Layout layout = layOut(input, letters(4));
        EXPECT_GE(layout.thickness, 0);
        EXPECT_GT(layout.sizeHint.width(), 0);
    }
}

TEST(LegendLayout, vertical_labels_are_centred_on_their_values_and_right_aligned) {
    const Input input = vertical({100, 200});
    const auto measure = equalLetters([](float value) { return QString::number(static_cast<double>(value), 'g', 2); });
    const Layout layout = layOut(input, measure);
    const auto labels = placeLabels(input, layout, measure);
    ASSERT_EQ(labels.size(), 6u);
    EXPECT_EQ(labels.front().text, QStringLiteral("-1"));
    EXPECT_EQ(labels.front().baseline, 187 + 8);
    EXPECT_EQ(labels.front().x, 15 + 4 * LETTER - 2 * LETTER);
    EXPECT_EQ(labels.back().baseline, 16 + 8);
    for (const Label& label : labels) {
        EXPECT_TRUE(label.drawn);
    }
}

TEST(LegendLayout, an_inner_label_that_meets_the_last_one_drawn_is_left_out) {
    Input input = vertical({100, 200}, {-1.0f, 0.95f, 0.98f, 1.0f});
    input.autoLabel = false;
    const auto labels = placeLabels(input, layOut(input, letters(2)), letters(2));
    ASSERT_EQ(labels.size(), 4u);
    EXPECT_TRUE(labels[3].drawn);
    EXPECT_FALSE(labels[2].drawn);
    EXPECT_FALSE(labels[1].drawn);
    EXPECT_TRUE(labels[0].drawn);
}

TEST(LegendLayout, the_end_labels_of_a_short_bar_may_overlap) {
    const Input input = vertical({100, 60});
    const auto labels = placeLabels(input, layOut(input, letters(2)), letters(2));
    EXPECT_TRUE(labels.front().drawn);
    EXPECT_TRUE(labels.back().drawn);
}

TEST(LegendLayout, inner_labels_never_overlap_and_no_label_is_wider_than_its_column) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> number(-1000.0f, 1000.0f);
    std::uniform_int_distribution<int> side(1, 700);
    const auto measure = equalLetters([](float value) { return QString::number(static_cast<double>(value), 'g', 6); });
    for (int round = 0; round < 500; ++round) {
        const float low = number(random);
        Input input = vertical({side(random), side(random)}, {low, low + std::fabs(number(random)) + 0.001f});
        input.horizontal = round % 2 == 0;
        const Layout layout = layOut(input, measure);
        const auto labels = placeLabels(input, layout, measure);
        int lastEdge = std::numeric_limits<int>::min();
        for (std::size_t i = 0; i + 1 < labels.size() && input.horizontal; ++i) {
            const int width = measure.boundingRect(labels[i].text).width();
            if (labels[i].drawn) {
                EXPECT_TRUE(i == 0 || labels[i].x > lastEdge);
                lastEdge = labels[i].x + width - 1;
            }
        }
        for (std::size_t i = labels.size(); i-- > 1 && !input.horizontal;) {
            EXPECT_LE(measure.boundingRect(labels[i].text).width(), layout.widestLabel);
            const int top = labels[i].baseline - 12;
            if (labels[i].drawn && i + 1 < labels.size()) {
                EXPECT_GT(top, lastEdge);
            }
            if (labels[i].drawn) {
                lastEdge = labels[i].baseline;
            }
        }
    }
}
