#include <analysis/compute/LyrSortedValues.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <utility>

#include <analysis/compute/AnalysisTask_p.h>
#include <analysis/compute/PiecewiseSort_p.h>

namespace {

using lyranalysis::AnalysisTask;

// Values that are looked at between two looks for a cancelled task.
constexpr std::size_t kPiece = std::size_t{1} << 20U;

/** Calls visit(piece) for the samples piece by piece, on the calling thread. */
template <typename Visit>
bool forPieces(const LyrVolume& values, AnalysisTask& task, double weight, const Visit& visit) {
    const std::span<const float> samples = values.samples();
    for (std::size_t at = 0; at < samples.size(); at += kPiece) {
        if (task.isStopped()) {
            return false;
        }
        visit(samples.subspan(at, std::min(kPiece, samples.size() - at)));
    }
    return task.stage(weight, 0, {});
}

bool isFinite(float value) {
    return std::isfinite(value);
}

bool countFinite(const LyrVolume& values, AnalysisTask& task, double weight, std::size_t& count) {
    return forPieces(values, task, weight, [&](std::span<const float> piece) {
        count += static_cast<std::size_t>(std::count_if(piece.begin(), piece.end(), isFinite));
    });
}

bool collectFinite(const LyrVolume& values, AnalysisTask& task, double weight, std::size_t count,
                   std::vector<float>& out) {
    out.reserve(count);
    return forPieces(values, task, weight, [&](std::span<const float> piece) {
        std::copy_if(piece.begin(), piece.end(), std::back_inserter(out), isFinite);
    });
}

}  // namespace

bool LyrSortedValues::make(const LyrVolume& values, LyrSortedValues& out, LyrAnalysisOutcome& outcome,
                           const LyrAnalysisControl& control) {
    constexpr double kCollect = 0.3;
    lyranalysis::AnalysisTask task("value order", 1.0, control, outcome);
    LyrSortedValues made;
    if (!task.run([&] {
            std::size_t count = 0;
            if (!countFinite(values, task, kCollect / 2.0, count) ||
                !task.claim(2 * lyranalysis::sortBytes<float>(count)) ||
                !collectFinite(values, task, kCollect / 2.0, count, made.values_)) {
                return false;
            }
            return lyranalysis::sortInPieces(made.values_, task, 1.0 - kCollect, std::less<>());
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
