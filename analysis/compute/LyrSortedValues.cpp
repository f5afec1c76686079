#include <analysis/compute/LyrSortedValues.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include <analysis/compute/AnalysisTask_p.h>

namespace {

/** Sorts in pieces, then merges them pairwise, so that a cancelled task ends soon. */
bool sortValues(std::vector<float>& values, lyranalysis::AnalysisTask& task) {
    constexpr std::size_t kPiece = std::size_t{1} << 18U;
    const std::size_t count = values.size();
    const auto at = [&](std::size_t i) { return values.begin() + static_cast<std::ptrdiff_t>(std::min(i, count)); };
    if (!task.stage(1.0, (count + kPiece - 1) / kPiece,
                    [&](std::size_t piece, std::size_t) { std::sort(at(piece * kPiece), at((piece + 1) * kPiece)); })) {
        return false;
    }
    for (std::size_t length = kPiece; length < count; length *= 2) {
        const double weight = static_cast<double>(length) / static_cast<double>(count);
        if (!task.stage(weight, (count + 2 * length - 1) / (2 * length), [&](std::size_t pair, std::size_t) {
                const std::size_t begin = pair * 2 * length;
                std::inplace_merge(at(begin), at(begin + length), at(begin + 2 * length));
            })) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool LyrSortedValues::make(const LyrVolume& values, LyrSortedValues& out, LyrAnalysisOutcome& outcome,
                           const LyrAnalysisControl& control) {
    // The merges double their length up to the whole: their weights sum up to less than 2.
    lyranalysis::AnalysisTask task("value order", 3.0, control, outcome);
    LyrSortedValues made;
    if (!task.run([&] {
            const auto finite = [](float value) { return std::isfinite(value); };
            const auto count = std::count_if(values.samples().begin(), values.samples().end(), finite);
            // A merge takes as much again.
            if (!task.hasMemory(static_cast<std::uint64_t>(count) * 2 * sizeof(float))) {
                return false;
            }
            made.values_.reserve(static_cast<std::size_t>(count));
            std::copy_if(values.samples().begin(), values.samples().end(), std::back_inserter(made.values_), finite);
            return sortValues(made.values_, task);
        })) {
        return false;
    }
    out = std::move(made);
    return true;
}

bool LyrSortedValues::shares(std::span<const float> boundaries, LyrSectionShares& out) const {
    LyrSectionShares made;
    if (!LyrSectionShares::make({}, boundaries, made)) {
        return false;
    }
    made.total = values_.size();
    std::size_t before = 0;
    for (std::size_t i = 0; i < boundaries.size(); ++i) {
        // The first boundary belongs to the section above it, and so do those equal to it; all others to the one below.
        const bool isFirst = boundaries[i] == boundaries[0];
        const auto end = isFirst ? std::lower_bound(values_.begin(), values_.end(), boundaries[i])
                                 : std::upper_bound(values_.begin(), values_.end(), boundaries[i]);
        const auto until = static_cast<std::size_t>(end - values_.begin());
        made.counts[i] = until - before;
        before = until;
    }
    made.counts.back() = values_.size() - before;
    out = std::move(made);
    return true;
}

bool LyrSortedValues::histogram(std::size_t bins, double low, double high, LyrValueHistogram& out) const {
    LyrValueHistogram made;
    if (!LyrValueHistogram::make({}, bins, low, high, made)) {
        return false;
    }
    const auto countBelow = [&](double edge) {
        const auto place = std::lower_bound(values_.begin(), values_.end(), edge, [](float value, double limit) {
            return static_cast<double>(value) < limit;
        });
        return static_cast<std::uint64_t>(place - values_.begin());
    };
    const auto through = std::upper_bound(values_.begin(), values_.end(), high,
                                          [](double limit, float value) { return limit < static_cast<double>(value); });
    const auto upToHigh = static_cast<std::uint64_t>(through - values_.begin());
    made.total = values_.size();
    made.below = countBelow(low);
    made.above = made.total - upToHigh;
    std::uint64_t before = made.below;
    for (std::size_t bin = 0; bin < bins; ++bin) {
        const std::uint64_t until = bin + 1 < bins ? countBelow(made.edge(bin + 1)) : upToHigh;
        made.counts[bin] = until - before;
        before = until;
    }
    out = std::move(made);
    return true;
}
