#include <colortable/legend/LegendLayout.h>
#include <colortable/legend/SectionImage.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

// What holds for every legend whatever its size and resolution: far too small, empty, or larger than any screen, with
// boundaries that are equal, enormous or none at all.

using namespace lys::legend;

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();

/** Letters that are 7 wide and 12 tall, of which 2 lie below the line. */
TextMeasure letters() {
    return {
        [](const QString& text) { return QRect(0, -10, static_cast<int>(text.size()) * 7, text.isEmpty() ? 0 : 12); },
        [](float value) { return QString::number(static_cast<double>(value), 'g', 6); }};
}

std::vector<float> anyPositions() {
    std::vector<float> positions(*rc::gen::inRange<std::size_t>(0, 12));
    for (float& position : positions) {
        const int kind = *rc::gen::inRange(0, 12);
        position = kind == 0   ? LARGEST / static_cast<float>(*rc::gen::inRange(1, 5))
                   : kind == 1 ? -LARGEST
                   : kind < 4  ? static_cast<float>(*rc::gen::inRange(-2, 3))
                               : static_cast<float>(*rc::gen::inRange(-100000, 100000)) / 64.0f;
    }
    std::sort(positions.begin(), positions.end());
    return positions;
}

Input anyInput() {
    Input input;
    const int largest = *rc::gen::element(3, 30, 300, 5000);
    input.size = QSize(*rc::gen::inRange(0, largest), *rc::gen::inRange(0, largest));
    input.dotsPerInch = *rc::gen::element(0.0f, -96.0f, std::numeric_limits<float>::quiet_NaN(), LARGEST, 0.001f, 1.0f,
                                          50.0f, 96.0f, 110.4f, 192.0f, 600.0f, 1e6f);
    input.horizontal = *rc::gen::arbitrary<bool>();
    input.textRight = *rc::gen::arbitrary<bool>();
    input.alignRight = *rc::gen::arbitrary<bool>();
    input.autoLabel = *rc::gen::arbitrary<bool>();
    input.lowerExtension = *rc::gen::arbitrary<bool>();
    input.upperExtension = *rc::gen::arbitrary<bool>();
    input.thickness = *rc::gen::element<long long>(
        -5, 0, 1, 12, 24, 100, 1000000, std::numeric_limits<long long>::max(), std::numeric_limits<long long>::min());
    input.caption = QString(*rc::gen::inRange(0, 30), QLatin1Char('x'));
    input.positions = anyPositions();
    return input;
}

bool hasRange(const Input& input) {
    return input.positions.size() >= 2 && input.positions.front() < input.positions.back() &&
           std::isfinite(input.positions.back() - input.positions.front());
}

/** Pixels of the bar between what is kept free for the extension boxes. */
int innerLength(const Input& input, const Layout& layout) {
    return (input.horizontal ? layout.bar.width() : layout.bar.height()) - 2 * layout.extensionLength;
}

}  // namespace

RC_GTEST_PROP(LegendLayoutOfAnySize, asks_for_lengths_that_are_not_negative, ()) {
    const Input input = anyInput();
    const Layout layout = layOut(input, letters());
    RC_ASSERT(layout.minimumSizeHint.width() >= 0);
    RC_ASSERT(layout.minimumSizeHint.height() >= 0);
    RC_ASSERT(layout.sizeHint.width() == layout.minimumSizeHint.width());
    RC_ASSERT(layout.thickness >= 0);
    RC_ASSERT(layout.extensionLength >= 1);
    RC_ASSERT((layout.bar.width() >= 0 || !input.horizontal));
}

RC_GTEST_PROP(LegendLayoutOfAnySize, draws_no_inner_label_over_another, ()) {
    const Input input = anyInput();
    const Layout layout = layOut(input, letters());
    const auto labels = placeLabels(input, layout, letters());
    std::vector<QRect> drawn;
    for (const Label& label : labels) {
        // A number leaves nothing below the line.
        QRect ink = letters().boundingRect(label.text).translated(label.x, label.baseline);
        ink.setBottom(label.baseline - 1);
        if (label.drawn) {
            drawn.push_back(ink);
        }
    }
    RC_ASSERT((labels.empty() || (labels.front().drawn && labels.back().drawn)));
    if (drawn.size() < 3) {
        return;
    }
    // The one that is placed last is drawn in any case.
    drawn.erase(input.horizontal ? drawn.end() - 1 : drawn.begin());
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            RC_ASSERT(!drawn[i].intersects(drawn[k]));
        }
    }
}

RC_GTEST_PROP(LegendLayoutOfAnySize, chooses_labels_in_the_range_in_ascending_order, ()) {
    const Input input = anyInput();
    const Layout layout = layOut(input, letters());
    const std::vector<float> values = labelValues(input, layout);
    if (!input.autoLabel) {
        RC_ASSERT(values == input.positions);
        return;
    }
    RC_ASSERT(values.empty() == !hasRange(input));
    if (values.empty()) {
        return;
    }
    const auto intervals = values.size() - 1;
    RC_ASSERT(((intervals >= 1 && intervals <= 5) || intervals == 10));
    const double low = static_cast<double>(input.positions.front());
    const double high = static_cast<double>(input.positions.back());
    // Ten additions of a rounded step: each loses less than half a unit of the largest number met.
    const double lost =
        20 * std::max(std::abs(low), std::abs(high)) * static_cast<double>(6e-8f) + (high - low) / 999.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double expected = low + (high - low) * static_cast<double>(i) / static_cast<double>(intervals);
        RC_ASSERT(std::abs(static_cast<double>(values[i]) - expected) <= lost);
    }
}

RC_GTEST_PROP(LegendLayoutOfAnySize, keeps_all_boxes_on_the_bar_or_draws_them_at_0, ()) {
    const Input input = anyInput();
    const Layout layout = layOut(input, letters());
    const auto boxes = innerBoxes(input, layout);
    const bool fits = innerLength(input, layout) >= 1 && hasRange(input);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const QRect& rect = boxes[i].rect;
        const int from = input.horizontal ? rect.left() : rect.top();
        const int to = input.horizontal ? rect.right() : rect.bottom();
        if (!fits) {
            RC_ASSERT(from == 0);
            RC_ASSERT(to == 0);
            continue;
        }
        const int first = (input.horizontal ? layout.bar.left() : layout.bar.top()) + layout.extensionLength - 1;
        // The last boundary may be rounded up by a pixel: its share of the range is formed in single precision.
        RC_ASSERT(from >= first - 1);
        RC_ASSERT(to <= first + innerLength(input, layout) + 1);
        if (i > 0) {
            const QRect& before = boxes[i - 1].rect;
            const bool joined = input.horizontal ? rect.left() == before.right() : rect.bottom() == before.top();
            RC_ASSERT(joined);
        }
    }
}

RC_GTEST_PROP(LegendLayoutOfAnySize, extension_boxes_adjoin_the_range_and_end_with_the_bar, ()) {
    const Input input = anyInput();
    const Layout layout = layOut(input, letters());
    const auto boxes = innerBoxes(input, layout);
    const auto lower = lowerExtensionBox(input, layout);
    const auto upper = upperExtensionBox(input, layout);
    RC_ASSERT(lower.has_value() == (input.lowerExtension && !input.positions.empty()));
    RC_ASSERT(upper.has_value() == (input.upperExtension && !input.positions.empty()));
    if (boxes.empty() || innerLength(input, layout) < 1 || !hasRange(input) || !lower || !upper) {
        return;
    }
    if (input.horizontal) {
        RC_ASSERT(lower->left() == layout.bar.left());
        RC_ASSERT(upper->right() < layout.bar.right());
        RC_ASSERT(lower->right() < boxes.front().rect.left());
        // The last pixel of the range, at most, is shared.
        RC_ASSERT(upper->left() >= boxes.back().rect.right() - 1);
    } else {
        RC_ASSERT(lower->top() == boxes.front().rect.bottom());
        RC_ASSERT(upper->bottom() == boxes.back().rect.top());
        RC_ASSERT(lower->bottom() <= layout.bar.bottom());
        RC_ASSERT(upper->top() >= layout.bar.top() - 2);
    }
}

RC_GTEST_PROP(SectionPicture, draws_just_those_lines_that_are_inside_of_an_area, ()) {
    const auto rect = [] {
        return QRect(*rc::gen::inRange(-40, 40), *rc::gen::inRange(-40, 40), *rc::gen::inRange(0, 40),
                     *rc::gen::inRange(0, 40));
    };
    const QRect picture = rect();
    const QRect area = rect();
    const auto halves = *rc::gen::element(Halves::LeftOverWhite, Halves::LowerOverWhite, Halves::UpperOverWhite);
    const Lines lines = linesInside(picture, halves, area);
    const bool vertical = halves == Halves::LeftOverWhite;
    const int length = vertical ? picture.height() : picture.width();
    for (int line = 0; line < length; ++line) {
        // Values of a vertical picture grow upwards.
        const QRect place = vertical ? QRect(picture.left(), picture.bottom() - line, picture.width(), 1)
                                     : QRect(picture.left() + line, picture.top(), 1, picture.height());
        RC_ASSERT((line >= lines.first && line <= lines.last) == !place.intersected(area).isEmpty());
    }
    RC_ASSERT(lines.first >= 0);
    RC_ASSERT(lines.last < std::max(length, 1));
}
