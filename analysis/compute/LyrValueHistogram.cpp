#include <analysis/compute/LyrValueHistogram.h>

#include <algorithm>
#include <cmath>
#include <utility>

double LyrValueHistogram::edge(std::size_t bin) const {
    if (bin >= counts.size()) {
        return high;
    }
    return low + (high - low) * static_cast<double>(bin) / static_cast<double>(counts.size());
}

bool LyrValueHistogram::make(std::span<const float> values, std::size_t bins, double low, double high,
                             LyrValueHistogram& out) {
    constexpr std::size_t kMostBins = 1000000;
    if (bins < 1 || bins > kMostBins || !std::isfinite(low) || !std::isfinite(high) || !(low < high)) {
        return false;
    }
    LyrValueHistogram made;
    made.low = low;
    made.high = high;
    made.counts.assign(bins, 0);
    std::vector<double> edges(bins + 1);
    for (std::size_t bin = 0; bin <= bins; ++bin) {
        edges[bin] = made.edge(bin);
    }
    const double width = (high - low) / static_cast<double>(bins);
    for (const float single : values) {
        const double value = static_cast<double>(single);
        if (!std::isfinite(value)) {
            continue;
        }
        ++made.total;
        if (value < low || value > high) {
            ++(value < low ? made.below : made.above);
            continue;
        }
        auto bin = std::min(static_cast<std::size_t>((value - low) / width), bins - 1);
        // The division may end beside the bin by a rounding; its ends decide.
        while (bin > 0 && value < edges[bin]) {
            --bin;
        }
        while (bin + 1 < bins && value >= edges[bin + 1]) {
            ++bin;
        }
        ++made.counts[bin];
    }
    out = std::move(made);
    return true;
}

bool LyrValueHistogram::make(const LyrVolume& values, std::size_t bins, LyrValueHistogram& out) {
    const LyrVolume::ValueRange range = values.valueRange();
    if (range.isEmpty()) {
        return false;
    }
    const double margin = range.low == range.high ? 0.5 : 0.0;
    return make(values.samples(), bins, static_cast<double>(range.low) - margin,
                static_cast<double>(range.high) + margin, out);
}

std::size_t LyrSectionShares::sectionOf(float value, std::span<const float> boundaries) {
    if (boundaries.empty()) {
        return 0;
    }
    const bool onFirst = value == boundaries.front();
    const auto place = onFirst ? std::upper_bound(boundaries.begin(), boundaries.end(), value)
                               : std::lower_bound(boundaries.begin(), boundaries.end(), value);
    return static_cast<std::size_t>(place - boundaries.begin());
}

double LyrSectionShares::percent(std::size_t section) const {
    return total > 0 && section < counts.size()
               ? 100.0 * static_cast<double>(counts[section]) / static_cast<double>(total)
               : 0.0;
}

bool LyrSectionShares::make(std::span<const float> values, std::span<const float> boundaries, LyrSectionShares& out) {
    const bool finite = std::all_of(boundaries.begin(), boundaries.end(), [](float b) { return std::isfinite(b); });
    if (!finite || !std::is_sorted(boundaries.begin(), boundaries.end())) {
        return false;
    }
    LyrSectionShares made;
    made.counts.assign(boundaries.size() + 1, 0);
    for (const float value : values) {
        if (std::isfinite(value)) {
            ++made.counts[sectionOf(value, boundaries)];
            ++made.total;
        }
    }
    out = std::move(made);
    return true;
}
