#include <colortable/legend/LegendLayout.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>

// What holds for every legend that has the room it asks for: nothing stands outside of it, and what must not overlap
// does not. The end labels are always drawn, so the last one may touch an inner one.

using namespace lys::legend;

namespace {

/** Letters that are 7 wide and 12 tall, of which 2 lie below the line, where digits leave nothing, at a resolution that
 * divides lengths without a rest. */
struct Letters {
    int scale;
    QRect box(const QString& text) const {
        return {0, -10 * scale, static_cast<int>(text.size()) * 7 * scale, text.isEmpty() ? 0 : 12 * scale};
    }
    /** What a number covers of its box. */
    QRect ink(const QString& text) const {
        QRect rect = box(text);
        rect.setBottom(-1);
        return rect;
    }
    TextMeasure measure() const {
        return {[*this](const QString& text) { return box(text); },
                [](float value) { return QString::number(static_cast<double>(value), 'g', 6); }};
    }
};

struct Legend {
    Input input;
    Letters letters{1};
    Layout layout;
    QRect all;
};

Input randomInput(const Letters& letters) {
    Input input;
    input.dotsPerInch = static_cast<float>(96 * letters.scale);
    input.horizontal = *rc::gen::arbitrary<bool>();
    input.textRight = *rc::gen::arbitrary<bool>();
    input.alignRight = *rc::gen::arbitrary<bool>();
    input.autoLabel = *rc::gen::arbitrary<bool>();
    input.lowerExtension = *rc::gen::arbitrary<bool>();
    input.upperExtension = *rc::gen::arbitrary<bool>();
    input.thickness = *rc::gen::inRange(0, 60);
    input.caption = QString(*rc::gen::inRange(0, 30), QLatin1Char('x'));
    // Ranges that single precision divides well: labels are summed up in it.
    float position = static_cast<float>(*rc::gen::inRange(-10000, 10000)) / 64.0f;
    const int count = *rc::gen::inRange(2, 12);
    for (int i = 0; i < count; ++i) {
        input.positions.push_back(position);
        position += static_cast<float>(*rc::gen::inRange(64, 100000)) / 1024.0f;
    }
    return input;
}

/** A legend at least as large as it asks to be. The labels, and so the width, depend on the height. A horizontal one
 * asks for its texts alone: the bar's ends and a pixel between them come on top. */
Legend randomLegend() {
    Legend legend;
    legend.letters.scale = *rc::gen::inRange(1, 4);
    legend.input = randomInput(legend.letters);
    const QSize more(*rc::gen::inRange(0, 400), *rc::gen::inRange(0, 600));
    legend.input.size = QSize(1, 128 * legend.letters.scale + 12 * legend.letters.scale + more.height());
    const QSize hint = layOut(legend.input, legend.letters.measure()).sizeHint;
    const int bar = legend.input.horizontal ? 24 * legend.letters.scale + 1 : 0;
    legend.input.size = QSize(hint.width() + bar + more.width(), std::max(hint.height(), legend.input.size.height()));
    legend.layout = layOut(legend.input, legend.letters.measure());
    legend.all = QRect(QPoint(0, 0), legend.input.size);
    return legend;
}

std::vector<QRect> boxesOf(const Legend& legend) {
    std::vector<QRect> rects;
    for (const Box& box : innerBoxes(legend.input, legend.layout)) {
        rects.push_back(box.rect);
    }
    for (const auto& rect :
         {lowerExtensionBox(legend.input, legend.layout), upperExtensionBox(legend.input, legend.layout)}) {
        if (rect) {
            rects.push_back(*rect);
        }
    }
    return rects;
}

std::vector<QRect> labelsOf(const Legend& legend) {
    std::vector<QRect> rects;
    for (const Label& label : placeLabels(legend.input, legend.layout, legend.letters.measure())) {
        if (label.drawn) {
            rects.push_back(legend.letters.ink(label.text).translated(label.x, label.baseline));
        }
    }
    return rects;
}

}  // namespace

RC_GTEST_PROP(LegendLayoutProperty, nothing_stands_outside_of_a_legend_that_has_the_room_it_asks_for, ()) {
    const Legend legend = randomLegend();
    for (const QRect& rect : boxesOf(legend)) {
        RC_ASSERT(rect.isEmpty() || legend.all.contains(rect));
    }
    for (const QRect& rect : labelsOf(legend)) {
        RC_ASSERT(legend.all.contains(rect));
    }
    RC_ASSERT(legend.layout.caption.isEmpty() || legend.all.contains(legend.layout.caption));
}

RC_GTEST_PROP(LegendLayoutProperty, labels_boxes_and_caption_do_not_overlap, ()) {
    const Legend legend = randomLegend();
    const std::vector<QRect> labels = labelsOf(legend);
    const std::vector<QRect> boxes = boxesOf(legend);
    for (const QRect& label : labels) {
        RC_ASSERT(!label.intersects(legend.layout.caption));
        for (const QRect& box : boxes) {
            RC_ASSERT(!label.intersects(box));
        }
    }
    for (const QRect& box : boxes) {
        RC_ASSERT(!box.intersects(legend.layout.caption));
    }
}

RC_GTEST_PROP(LegendLayoutProperty, inner_labels_do_not_overlap, ()) {
    const Legend legend = randomLegend();
    std::vector<QRect> labels = labelsOf(legend);
    // The label that is placed last is drawn in any case: at the lower end of a vertical bar, at the right of another.
    labels.erase(legend.input.horizontal ? labels.end() - 1 : labels.begin());
    for (std::size_t i = 0; i < labels.size(); ++i) {
        for (std::size_t k = 0; k < i; ++k) {
            RC_ASSERT(!labels[i].intersects(labels[k]));
        }
    }
}

RC_GTEST_PROP(LegendLayoutProperty, the_boxes_follow_the_boundaries_without_gaps, ()) {
    const Legend legend = randomLegend();
    const std::vector<Box> boxes = innerBoxes(legend.input, legend.layout);
    RC_ASSERT(boxes.size() + 1 == legend.input.positions.size());
    for (std::size_t i = 1; i < boxes.size(); ++i) {
        const QRect& before = boxes[i - 1].rect;
        const QRect& rect = boxes[i].rect;
        const bool joined = legend.input.horizontal ? rect.left() == before.right() : rect.bottom() == before.top();
        RC_ASSERT(joined);
        RC_ASSERT(boxes[i].section == boxes[i - 1].section + 1);
    }
}
