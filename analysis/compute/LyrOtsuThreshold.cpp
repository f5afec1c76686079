#include <analysis/compute/LyrOtsuThreshold.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <analysis/compute/OtsuStage_p.h>

namespace lyranalysis {

namespace {

constexpr std::size_t kBins = 4096;

using Counts = std::vector<std::uint64_t>;

std::size_t binOf(float value, double low, double scale) {
    const double bin = (static_cast<double>(value) - low) * scale;
    return std::min(static_cast<std::size_t>(std::max(bin, 0.0)), kBins - 1);
}

bool countSamples(const LyrVolume& volume, AnalysisTask& task, Counts& sum) {
    const double low = volume.valueRange().low;
    const double scale = static_cast<double>(kBins) / (static_cast<double>(volume.valueRange().high) - low);
    std::vector<Counts> counts(task.threads(), Counts(kBins));
    const auto slices = static_cast<std::size_t>(volume.size()[2]);
    const std::size_t length = volume.samples().size() / slices;
    const bool done = task.stage(kOtsuWeight, slices, [&](std::size_t slice, std::size_t worker) {
        Counts& mine = counts[worker];
        for (const float value : volume.samples().subspan(slice * length, length)) {
            if (std::isfinite(value)) {
                ++mine[binOf(value, low, scale)];
            }
        }
    });
    sum.assign(kBins, 0);
    for (const Counts& mine : counts) {
        std::transform(sum.begin(), sum.end(), mine.begin(), sum.begin(), std::plus<>());
    }
    return done;
}

/** Place of the best cut in bins from the lowest on. Of cuts that divide equally well, as all in a gap do, the one that
 * is nearest to the middle between the means of the two classes. */
double bestCut(const Counts& counts) {
    double total = 0.0;
    double totalSum = 0.0;
    for (std::size_t bin = 0; bin < kBins; ++bin) {
        total += static_cast<double>(counts[bin]);
        totalSum += static_cast<double>(counts[bin]) * static_cast<double>(bin);
    }
    double below = 0.0;
    double belowSum = 0.0;
    double best = -1.0;
    double middle = 0.0;
    std::size_t first = 0;
    std::size_t last = 0;
    for (std::size_t bin = 0; bin + 1 < kBins; ++bin) {
        below += static_cast<double>(counts[bin]);
        belowSum += static_cast<double>(counts[bin]) * static_cast<double>(bin);
        const double above = total - below;
        if (below <= 0.0 || above <= 0.0) {
            continue;
        }
        const double meanBelow = belowSum / below;
        const double meanAbove = (totalSum - belowSum) / above;
        const double difference = meanBelow - meanAbove;
        const double between = below * above * difference * difference;
        if (between > best) {
            best = between;
            first = bin + 1;
            // Sums are over bins by their number; what a bin holds lies half a bin above its lower end.
            middle = (meanBelow + meanAbove) / 2.0 + 0.5;
        }
        if (between == best) {
            last = bin + 1;
        }
    }
    return std::clamp(middle, static_cast<double>(first), static_cast<double>(last));
}

}  // namespace

bool findOtsuThreshold(const LyrVolume& volume, AnalysisTask& task, float& threshold) {
    const LyrVolume::ValueRange range = volume.valueRange();
    if (range.isEmpty()) {
        return task.fail(LYR_MARK_TEXT(
            "LyrAnalysis", "the volume has no finite samples, so there is nothing to tell material from air by"));
    }
    if (range.low == range.high) {
        return task.fail(LYR_MARK_TEXT("LyrAnalysis",
                                       "all finite samples of the volume have the same value, so no threshold divides "
                                       "them into air and material; open another volume or give a threshold"));
    }
    Counts counts;
    if (!countSamples(volume, task, counts)) {
        return false;
    }
    const double low = range.low;
    const double width = (static_cast<double>(range.high) - low) / static_cast<double>(kBins);
    const float found = static_cast<float>(low + bestCut(counts) * width);
    // In a range of few floats rounding may reach its ends.
    threshold = std::clamp(found, std::nextafter(range.low, range.high), range.high);
    return true;
}

bool chooseThreshold(const LyrVolume& volume, const std::optional<float>& given, AnalysisTask& task, float& threshold) {
    if (!given) {
        return findOtsuThreshold(volume, task, threshold);
    }
    if (!std::isfinite(*given)) {
        return task.fail(LYR_MARK_TEXT(
            "LyrAnalysis",
            "the threshold is not a finite number; give one between the grey values of air and material"));
    }
    threshold = *given;
    return task.stage(kOtsuWeight, 0, {});
}

}  // namespace lyranalysis

bool LyrOtsuThreshold::find(const LyrVolume& volume, float& threshold, LyrAnalysisOutcome& outcome,
                            const LyrAnalysisControl& control) {
    lyranalysis::AnalysisTask task("threshold", lyranalysis::kOtsuWeight, control, outcome);
    float found = 0.0F;
    if (!task.run([&] { return lyranalysis::findOtsuThreshold(volume, task, found); })) {
        return false;
    }
    threshold = found;
    return true;
}
