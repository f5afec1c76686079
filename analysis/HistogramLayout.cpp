#include <analysis/HistogramLayout.h>
#include <analysis/compute/LyrSortedValues.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

void chooseRange(std::span<const float> values, std::span<const float> boundaries, HistogramLayout& layout) {
    double low = static_cast<double>(values.front());
    double high = static_cast<double>(values.back());
    if (low == high) {
        // Wide enough that both ends are other floats than the value.
        const double margin = std::max(0.5, std::abs(low) * 1e-6);
        low -= margin;
        high += margin;
    }
    const double width = high - low;
    layout.low = low;
    layout.high = high;
    for (const float boundary : boundaries) {
        if (std::isfinite(boundary)) {
            layout.low = std::min(layout.low, std::max(static_cast<double>(boundary), low - width));
            layout.high = std::max(layout.high, std::min(static_cast<double>(boundary), high + width));
        }
    }
}

void placeLines(std::span<const float> boundaries, HistogramLayout& layout) {
    const int last = layout.size.width() - 1;
    for (const float boundary : boundaries) {
        const auto value = static_cast<double>(boundary);
        if (value >= layout.low && value <= layout.high) {
            const double part = (value - layout.low) / (layout.high - layout.low);
            const int column = std::min(static_cast<int>(part * layout.size.width()), last);
            if (layout.lines.empty() || layout.lines.back() != column) {
                layout.lines.push_back(column);
            }
        }
    }
}

}  // namespace

HistogramLayout HistogramLayout::make(const LyrSortedValues& values, std::span<const float> boundaries, QSize size) {
    HistogramLayout layout;
    layout.size = size;
    if (values.values().empty() || size.isEmpty()) {
        return layout;
    }
    chooseRange(values.values(), boundaries, layout);
    LyrValueHistogram histogram;
    if (!values.histogram(static_cast<std::size_t>(size.width()), layout.low, layout.high, histogram)) {
        return layout;
    }
    const std::uint64_t most = *std::max_element(histogram.counts.begin(), histogram.counts.end());
    const double scale = size.height() / std::log1p(static_cast<double>(most));
    layout.bars.reserve(histogram.counts.size());
    for (const std::uint64_t count : histogram.counts) {
        const auto height = static_cast<int>(std::lround(std::log1p(static_cast<double>(count)) * scale));
        layout.bars.push_back(count > 0 ? std::clamp(height, 1, size.height()) : 0);
    }
    placeLines(boundaries, layout);
    return layout;
}

float HistogramLayout::valueAt(int column) const {
    if (isEmpty()) {
        return 0.0f;
    }
    const double middle = std::clamp(column, 0, size.width() - 1) + 0.5;
    // Around the largest float the range ends beyond what a float can be.
    constexpr double LARGEST = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(low + (high - low) * middle / size.width(), -LARGEST, LARGEST));
}
