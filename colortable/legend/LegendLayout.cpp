#include <colortable/legend/LegendLayout.h>
#include <lys_core/LyqScaling.h>

#include <algorithm>
#include <cmath>

namespace lys::legend {

namespace {

/** Unscaled length of an extension box. */
constexpr int EXTENSION_LENGTH = 12;
/** Least distance between automatic labels. */
constexpr int LABEL_DISTANCE = 10;
/** Height that a vertical legend asks for. Not scaled: the view stretches it anyway. */
constexpr int VERTICAL_HINT = 128;
/** Column of the labels against the widest of them. */
constexpr double COLUMN_RESERVE = 1.05;
/** Coordinates beyond this lie outside of every picture; up to it a float is exact. */
constexpr float LARGEST_COORDINATE = 16777216.0f;

int scaled(const Input& input, int length) {
    return LyqScaling::getScaledPixelip(input.dotsPerInch, length);
}

bool hasRange(const Input& input) {
    if (input.positions.size() < 2) {
        return false;
    }
    const float low = input.positions.front();
    const float high = input.positions.back();
    return std::isfinite(low) && std::isfinite(high) && low < high && std::isfinite(high - low);
}

int truncated(float coordinate) {
    return std::isnan(coordinate) ? 0
                                  : static_cast<int>(std::clamp(coordinate, -LARGEST_COORDINATE, LARGEST_COORDINATE));
}

std::vector<float> automaticValues(const Input& input, int available, int labelLength) {
    std::vector<float> values;
    if (!hasRange(input)) {
        return values;
    }
    const float low = input.positions.front();
    const float range = input.positions.back() - low;
    const int intervals = intervalCount(std::max(available, 1) / (scaled(input, LABEL_DISTANCE) + labelLength));
    const float step = range / static_cast<float>(intervals);
    float sum = low;
    for (int i = 0; i <= intervals; ++i) {
        // Near the largest float the sum, a rounded step too many, is infinite: that is the end of the range.
        const float value = std::isfinite(sum) ? sum : input.positions.back();
        values.push_back(std::fabs(value) < range / 1000.0f ? 0.0f : value);
        sum += step;
    }
    return values;
}

/** Lets the widest and tallest label cover the given values. */
void measureLabels(const std::vector<float>& values, const TextMeasure& measure, int* widest, int* tallest) {
    for (const float value : values) {
        const QSize size = measure.boundingRect(measure.labelText(value)).size();
        *widest = std::max(*widest, size.width());
        if (tallest) {
            *tallest = std::max(*tallest, size.height());
        }
    }
}

QRect captionRect(const Input& input, const TextMeasure& measure) {
    if (input.caption.isEmpty()) {
        return {};
    }
    QRect rect(QPoint(0, 0), measure.boundingRect(input.caption).size());
    rect.setBottom(rect.bottom() + scaled(input, 3));
    return rect;
}

int availableHeight(const Input& input, const Layout& layout) {
    return std::max(input.size.height() - layout.caption.height(), 1);
}

void layOutVertical(const Input& input, const TextMeasure& measure, Layout& layout) {
    const int available = availableHeight(input, layout);
    measureLabels(labelValues(input, available, 0), measure, &layout.widestLabel, &layout.tallestLabel);
    // What is painted in the end may be other values than those measured so far: the column has to hold them as well.
    measureLabels(labelValues(input, available, layout.tallestLabel), measure, &layout.widestLabel, nullptr);
    layout.extensionLength = std::max(scaled(input, EXTENSION_LENGTH), layout.tallestLabel / 2 + 1);

    const int gap = scaled(input, 3);
    const int column = static_cast<int>(COLUMN_RESERVE * layout.widestLabel);
    const int width = std::max(layout.thickness + column + gap, gap + layout.caption.width());
    layout.sizeHint = QSize(width, VERTICAL_HINT);
    layout.minimumSizeHint = QSize(width, gap + 2 * layout.extensionLength);

    layout.bar = QRect(QPoint(0, 0), input.size);
    layout.bar.setTop(layout.caption.bottom() + scaled(input, 6));
    layout.labels = layout.bar;
    if (input.textRight) {
        layout.bar.setRight(layout.thickness);
        layout.labels.setLeft(layout.thickness + gap);
        return;
    }
    layout.bar.setLeft(gap + layout.widestLabel);
    layout.labels.setRight(layout.widestLabel);
    const int excess = layout.bar.width() - layout.thickness;
    if (excess > 0) {
        layout.bar.translate(excess, 0);
        layout.labels.translate(excess, 0);
    }
}

void centre(const Input& input, QRect& rect) {
    rect.moveLeft(std::max((input.size.width() - rect.width()) / 2, 0));
}

void layOutHorizontal(const Input& input, const TextMeasure& measure, Layout& layout) {
    if (!input.positions.empty()) {
        measureLabels({input.positions.front(), input.positions.back()}, measure, &layout.widestLabel,
                      &layout.tallestLabel);
    }
    layout.extensionLength = scaled(input, EXTENSION_LENGTH);
    const int gap = scaled(input, 3);
    layout.sizeHint = QSize(std::max(gap + layout.caption.width(), gap + layout.widestLabel),
                            scaled(input, 9) + layout.caption.height() + layout.tallestLabel + layout.thickness);
    layout.minimumSizeHint = layout.sizeHint;

    layout.labels = QRect(QPoint(0, 0), input.size);
    layout.labels.setHeight(gap + layout.tallestLabel);
    layout.bar = QRect(QPoint(0, 0), input.size);
    layout.bar.setHeight(layout.thickness + 2);
    layout.bar.setWidth(std::max(input.size.width() - layout.widestLabel, 0));
    centre(input, layout.labels);
    centre(input, layout.caption);
    centre(input, layout.bar);
    if (input.textRight) {
        layout.labels.moveTop(0);
        layout.bar.moveTop(layout.labels.bottom() + gap);
        layout.caption.moveTop(layout.bar.bottom() + gap);
    } else {
        layout.caption.moveTop(0);
        layout.bar.moveTop(layout.caption.bottom() + gap);
        layout.labels.moveTop(layout.bar.bottom() + gap);
    }
}

void placeHorizontal(const Input& input, const Layout& layout, const TextMeasure& measure, std::vector<Label>& labels) {
    int lastRight = 0;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        Label& label = labels[i];
        const int width = measure.boundingRect(label.text).width();
        label.x = valueToCoordinate(input, layout, label.value) - width / 2;
        label.baseline = layout.labels.bottom() - scaled(input, 3);
        label.drawn = i == 0 || i + 1 == labels.size() || label.x > lastRight;
        if (label.drawn) {
            lastRight = label.x + width - 1;
        }
    }
}

void placeVertical(const Input& input, const Layout& layout, const TextMeasure& measure, std::vector<Label>& labels) {
    int lastBaseline = 0;
    for (std::size_t back = 0; back < labels.size(); ++back) {
        const std::size_t i = labels.size() - 1 - back;
        Label& label = labels[i];
        const QRect box = measure.boundingRect(label.text);
        label.x = layout.labels.left() + (input.alignRight ? layout.widestLabel - box.width() : 0);
        label.baseline = valueToCoordinate(input, layout, label.value) + box.height() / 2;
        label.drawn = back == 0 || i == 0 || label.baseline + box.top() > lastBaseline;
        if (label.drawn) {
            lastBaseline = label.baseline;
        }
    }
}

}  // namespace

int intervalCount(long long fit) {
    const long long count = std::clamp<long long>(fit, 1, 10);
    return count <= 5 ? static_cast<int>(count) : count < 10 ? 5 : 10;
}

std::vector<float> labelValues(const Input& input, int available, int labelLength) {
    return input.autoLabel ? automaticValues(input, available, labelLength) : input.positions;
}

std::vector<float> labelValues(const Input& input, const Layout& layout) {
    return input.horizontal ? labelValues(input, layout.labels.width(), layout.widestLabel)
                            : labelValues(input, availableHeight(input, layout), layout.tallestLabel);
}

Layout layOut(const Input& input, const TextMeasure& measure) {
    Layout layout;
    layout.thickness = scaled(input, static_cast<int>(std::clamp<long long>(input.thickness, 0, LARGEST_THICKNESS)));
    layout.caption = captionRect(input, measure);
    if (input.horizontal) {
        layOutHorizontal(input, measure, layout);
    } else {
        layOutVertical(input, measure, layout);
    }
    return layout;
}

int valueToCoordinate(const Input& input, const Layout& layout, float value) {
    const int extension = layout.extensionLength;
    const int length = (input.horizontal ? layout.bar.width() : layout.bar.height()) - 2 * extension;
    if (length < 1 || !hasRange(input)) {
        return 0;
    }
    const float low = input.positions.front();
    const float range = input.positions.back() - low;
    float along = (value - low) * static_cast<float>(length) / range;
    if (!std::isfinite(along)) {
        // Of values near the largest float the product overflows.
        along = (value - low) / range * static_cast<float>(length);
    }
    if (input.horizontal) {
        return truncated(static_cast<float>(layout.bar.left() + extension) + along);
    }
    return truncated(static_cast<float>(layout.bar.top() + length - 1 + extension) - along);
}

std::optional<QRect> upperExtensionBox(const Input& input, const Layout& layout) {
    if (!input.upperExtension || input.positions.empty()) {
        return std::nullopt;
    }
    const int length = scaled(input, EXTENSION_LENGTH);
    if (input.horizontal) {
        return QRect(layout.bar.right() - length, layout.bar.top(), length, layout.thickness);
    }
    const int top = valueToCoordinate(input, layout, input.positions.back()) - length;
    return QRect(layout.bar.left(), top, layout.thickness, length + 1);
}

std::optional<QRect> lowerExtensionBox(const Input& input, const Layout& layout) {
    if (!input.lowerExtension || input.positions.empty()) {
        return std::nullopt;
    }
    const int length = scaled(input, EXTENSION_LENGTH);
    if (input.horizontal) {
        return QRect(layout.bar.left(), layout.bar.top(), length, layout.thickness);
    }
    const int top = valueToCoordinate(input, layout, input.positions.front());
    return QRect(layout.bar.left(), top, layout.thickness, length + 1);
}

std::vector<Box> innerBoxes(const Input& input, const Layout& layout) {
    std::vector<Box> boxes;
    for (std::size_t i = 1; i < input.positions.size(); ++i) {
        const int from = valueToCoordinate(input, layout, input.positions[i - 1]);
        const int to = valueToCoordinate(input, layout, input.positions[i]);
        const int length = std::abs(to - from) + 1;
        const QRect rect = input.horizontal ? QRect(std::min(from, to), layout.bar.top(), length, layout.thickness)
                                            : QRect(layout.bar.left(), std::min(from, to), layout.thickness, length);
        boxes.push_back({static_cast<int>(i), rect});
    }
    return boxes;
}

std::vector<Label> placeLabels(const Input& input, const Layout& layout, const TextMeasure& measure) {
    std::vector<Label> labels;
    for (const float value : labelValues(input, layout)) {
        labels.push_back({value, measure.labelText(value), 0, 0, false});
    }
    if (input.horizontal) {
        placeHorizontal(input, layout, measure, labels);
    } else {
        placeVertical(input, layout, measure, labels);
    }
    return labels;
}

}  // namespace lys::legend
