#include <analysis/HistogramLayout.h>
#include <analysis/compute/LyrSortedValues.h>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

// What holds for every histogram, of any values and boundaries and at any size.

namespace {

constexpr float LARGEST = std::numeric_limits<float>::max();
constexpr float INFINITE = std::numeric_limits<float>::infinity();

float anyNumber() {
    const int kind = *rc::gen::inRange(0, 12);
    return kind == 0   ? LARGEST
           : kind == 1 ? -LARGEST
           : kind == 2 ? std::numeric_limits<float>::denorm_min()
           : kind < 5  ? static_cast<float>(*rc::gen::inRange(-2, 3))
                       : static_cast<float>(*rc::gen::inRange(-100000, 100000)) / 64.0f;
}

struct Case {
    std::vector<float> samples;
    std::vector<float> boundaries;
    HistogramLayout layout;
    float low() const { return *std::min_element(samples.begin(), samples.end()); }
    float high() const { return *std::max_element(samples.begin(), samples.end()); }
};

Case anyCase() {
    Case result;
    result.samples.resize(*rc::gen::inRange<std::size_t>(1, 60));
    std::generate(result.samples.begin(), result.samples.end(), anyNumber);
    result.boundaries.resize(*rc::gen::inRange<std::size_t>(0, 10));
    std::generate(result.boundaries.begin(), result.boundaries.end(), [] {
        return *rc::gen::inRange(0, 10) == 0 ? (*rc::gen::arbitrary<bool>() ? INFINITE : -INFINITE) : anyNumber();
    });
    std::sort(result.boundaries.begin(), result.boundaries.end());
    LyrVolume::Description description;
    description.size = {static_cast<std::int64_t>(result.samples.size()), 1, 1};
    LyrSortedValues values;
    LyrAnalysisOutcome outcome;
    RC_ASSERT(
        LyrSortedValues::make(*LyrVolume::create(description, std::vector<float>(result.samples)), values, outcome));
    const int largest = *rc::gen::element(2, 30, 3000);
    const QSize size(*rc::gen::inRange(1, largest), *rc::gen::inRange(1, largest));
    result.layout = HistogramLayout::make(values, result.boundaries, size);
    return result;
}

}  // namespace

RC_GTEST_PROP(HistogramLayoutProperty, one_bar_a_column_none_taller_than_the_picture_and_one_as_tall, ()) {
    const Case at = anyCase();
    const auto& bars = at.layout.bars;
    RC_ASSERT(static_cast<int>(bars.size()) == at.layout.size.width());
    RC_ASSERT(*std::min_element(bars.begin(), bars.end()) >= 0);
    RC_ASSERT(*std::max_element(bars.begin(), bars.end()) == at.layout.size.height());
    const auto filled = std::count_if(bars.begin(), bars.end(), [](int height) { return height > 0; });
    RC_ASSERT(filled <= static_cast<long long>(at.samples.size()));
}

RC_GTEST_PROP(HistogramLayoutProperty, all_values_are_shown_and_at_most_their_range_on_either_side, ()) {
    const Case at = anyCase();
    const double low = static_cast<double>(at.low());
    const double high = static_cast<double>(at.high());
    const double width = low < high ? high - low : 2 * std::max(0.5, std::abs(low) * 1e-6);
    RC_ASSERT(at.layout.low <= low);
    RC_ASSERT(at.layout.high >= high);
    RC_ASSERT(at.layout.low < at.layout.high);
    RC_ASSERT(at.layout.high - at.layout.low <= width * 3.0000001);
}

RC_GTEST_PROP(HistogramLayoutProperty, boundaries_stand_inside_each_once_in_their_order, ()) {
    const Case at = anyCase();
    const auto& lines = at.layout.lines;
    RC_ASSERT(std::adjacent_find(lines.begin(), lines.end(), std::greater_equal<>()) == lines.end());
    RC_ASSERT(lines.size() <= at.boundaries.size());
    RC_ASSERT((lines.empty() || lines.front() >= 0));
    RC_ASSERT((lines.empty() || lines.back() < at.layout.size.width()));
    for (const float boundary : at.boundaries) {
        const auto value = static_cast<double>(boundary);
        if (value >= at.layout.low && value <= at.layout.high) {
            const double part = (value - at.layout.low) / (at.layout.high - at.layout.low);
            const int column = std::min(static_cast<int>(part * at.layout.size.width()), at.layout.size.width() - 1);
            RC_ASSERT(std::find(lines.begin(), lines.end(), column) != lines.end());
        }
    }
}

RC_GTEST_PROP(HistogramLayoutProperty, columns_read_in_ascending_values_of_the_range, ()) {
    const Case at = anyCase();
    float last = at.layout.valueAt(-5);
    for (int column = 0; column < at.layout.size.width() + 5; ++column) {
        const float value = at.layout.valueAt(column);
        RC_ASSERT(value >= last);
        RC_ASSERT(static_cast<double>(value) >= at.layout.low * (1 + (at.layout.low < 0 ? 1e-6 : -1e-6)) - 1e-30);
        RC_ASSERT(static_cast<double>(value) <= at.layout.high * (1 + (at.layout.high < 0 ? -1e-6 : 1e-6)) + 1e-30);
        last = value;
    }
}
