// Kernel in plain C++: the stages of the vector kernels, written so that a compiler can vectorise them for the baseline.
#include <cstring>
#include <limits>

#include <colortable/model/eval/BlockStages_p.h>
#include <colortable/model/eval/BucketIndex_p.h>
#include <colortable/model/eval/KernelTarget_p.h>
#include <colortable/model/eval/KeySearch_p.h>
#include <colortable/model/eval/SineSeries_p.h>

namespace lys::eval {

namespace {

constexpr int groupSize = 4;
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

/// Copies the values, filled up to a whole group with the last one; returns how many there are then.
int loadValues(const float* values, int n, BlockStages* stages) {
    const int padded = (n + groupSize - 1) / groupSize * groupSize;
    std::memcpy(stages->values, values, sizeof(float) * static_cast<size_t>(n));
    for (int i = n; i < padded; ++i)
        stages->values[i] = values[n - 1];
    return padded;
}

bool findSections(const PlanData& plan, int n, BlockStages* stages) {
    for (int i = 0; i < n; ++i)
        stages->keys[i] = orderedKey(stages->values[i]);
    for (int i = 0; i < n; ++i)
        stages->buckets[i] = bucketOf(plan.buckets, stages->values[i], stages->keys[i]);
    return searchKeys(plan, stages->keys, stages->buckets, n, stages->offsets);
}

const SectionInterval& intervalAt(const PlanData& plan, uint32_t offset) {
    return plan.interval[offset / uint32_t{sizeof(SectionInterval)}];
}

/// The scalar path's fraction, split into loops without branches. Fills the places of the rules and returns the kinds that
/// occur in the block.
int32_t placeInIntervals(const PlanData& plan, int n, BlockStages* stages) {
    float low[blockSize];
    float width[blockSize];
    int32_t kind[blockSize];
    int32_t kinds = 0;
    for (int i = 0; i < n; ++i) {
        const SectionInterval& interval = intervalAt(plan, stages->offsets[i]);
        low[i] = interval.low;
        width[i] = interval.width;
        kind[i] = interval.kind;
        kinds |= interval.kind;
    }
    for (int i = 0; i < n; ++i) {
        float t = (stages->values[i] - low[i]) / width[i];
        t = t > 0.0f ? t : 0.0f;
        low[i] = t < 1.0f ? t : 1.0f;
    }
    const float* place = low;
    for (int i = 0; i < n && (kinds & gradientKind); ++i)
        stages->gradientPlace[i] = (kind[i] & gradientKind) ? place[i] : 0.0f;
    for (int i = 0; i < n && (kinds & rainbowKind); ++i) {
        const float turned = (kind[i] & invertedKind) ? 1.0f - place[i] : place[i];
        stages->sinePlace[i] = (kind[i] & rainbowKind) ? turned : nan;
    }
    for (int i = 0; i < n && (kinds & hueKind); ++i)
        stages->huePlace[i] = (kind[i] & hueKind) ? place[i] : nan;
    for (int i = 0; i < n && (kinds & thirdsKind); ++i)
        stages->thirdsPlace[i] = (kind[i] & thirdsKind) ? place[i] : nan;
    return kinds & coloredKinds;
}

float clampedSine(float argument) {
    const double wide = argument;
    const double folded = piInDouble - wide;
    const double x = wide < folded ? wide : folded;
    const double square = x * x;
    double sum = sineSeries[6];
    for (int i = 5; i >= 0; --i)
        sum = sum * square + sineSeries[i];
    const float sine = static_cast<float>(x * square * sum + x);
    return sine > 0.0f ? sine : 0.0f;
}

/// Red is left of its clamp only beyond the middle and blue only before it: one sine serves both.
void addRainbow(int n, BlockStages* stages) {
    constexpr float pi = 3.1415927f;
    float side[blockSize];
    for (int i = 0; i < n; ++i) {
        const float t = stages->sinePlace[i];
        side[i] = clampedSine((t > 0.5f ? t - 0.5f : t + 0.5f) * pi);
    }
    for (int i = 0; i < n; ++i)
        stages->green[i] += clampedSine(stages->sinePlace[i] * pi);
    for (int i = 0; i < n; ++i) {
        const float t = stages->sinePlace[i];
        stages->red[i] += t > 0.5f ? side[i] : 0.0f;
        stages->blue[i] += t < 0.5f ? side[i] : 0.0f;
    }
}

/// The position inside a piece of 1 / factor, held to 1: then 1 - s needs no clamp either.
float pieceFraction(float place, float bound, float factor) {
    const float s = (place - bound) * factor;
    return s < 1.0f ? s : 1.0f;
}

void addHue(int n, BlockStages* stages) {
    for (int i = 0; i < n; ++i) {
        const float t = stages->huePlace[i];
        const bool in1 = t >= 0.16666667f;
        const bool in2 = t >= 0.33333334f;
        const bool in3 = t >= 0.5f;
        const bool in4 = t >= 0.6666667f;
        const bool in5 = t >= 0.8333333f;
        const float lower = in2 ? 0.33333334f : in1 ? 0.16666667f : 0.0f;
        const float bound = in5 ? 0.8333333f : in4 ? 0.6666667f : in3 ? 0.5f : lower;
        const float up = pieceFraction(t, bound, 6.0f);
        const float down = 1.0f - up;
        const bool here = t == t;
        const float red = in5 ? 1.0f : in4 ? up : in2 ? 0.0f : in1 ? down : 1.0f;
        const float green = in4 ? 0.0f : in3 ? down : in1 ? 1.0f : up;
        const float blue = in5 ? down : in3 ? 1.0f : in2 ? up : 0.0f;
        stages->red[i] += here ? red : 0.0f;
        stages->green[i] += here ? green : 0.0f;
        stages->blue[i] += here ? blue : 0.0f;
    }
}

void addThirds(int n, BlockStages* stages) {
    for (int i = 0; i < n; ++i) {
        const float t = stages->thirdsPlace[i];
        const bool in1 = t >= 0.33333334f;
        const bool in2 = t >= 0.6666667f;
        const float up = pieceFraction(t, in2 ? 0.6666667f : in1 ? 0.33333334f : 0.0f, 3.0f);
        const float down = 1.0f - up;
        const bool here = t == t;
        stages->red[i] += in2 ? up : 0.0f;
        stages->green[i] += here && !in2 ? (in1 ? down : up) : 0.0f;
        stages->blue[i] += in2 ? down : in1 ? up : 0.0f;
    }
}

void analyticColors(int32_t kinds, int n, BlockStages* stages) {
    const size_t bytes = sizeof(float) * static_cast<size_t>(n);
    std::memset(stages->red, 0, bytes);
    std::memset(stages->green, 0, bytes);
    std::memset(stages->blue, 0, bytes);
    if (kinds & rainbowKind)
        addRainbow(n, stages);
    if (kinds & hueKind)
        addHue(n, stages);
    if (kinds & thirdsKind)
        addThirds(n, stages);
}

template <bool gradient, bool analytic>
void compose(const PlanData& plan, const BlockStages& stages, int n, float* out) {
    for (int i = n - 1; i >= 0; --i) {
        const uint32_t section = stages.offsets[i] / uint32_t{sizeof(SectionInterval)};
        float color[channelCount];
        std::memcpy(color, plan.start[section], sizeof color);
        if constexpr (gradient) {
            const float t = stages.gradientPlace[i];
            for (int c = 0; c < channelCount; ++c)
                color[c] = (1.0f - t) * color[c] + t * plan.end[section][c];
        }
        if constexpr (analytic) {
            // A sum with 0 keeps every bit but the sign of -0, which only sections of other rules can have.
            const bool here = (plan.interval[section].kind & analyticKinds) != 0;
            color[0] = here ? stages.red[i] : color[0];
            color[1] = here ? stages.green[i] : color[1];
            color[2] = here ? stages.blue[i] : color[2];
        }
        std::memcpy(out + i * channelCount, color, sizeof color);
    }
}

void composeColors(const PlanData& plan, int32_t kinds, const BlockStages& stages, int n, float* out) {
    const bool gradient = (kinds & gradientKind) != 0;
    if ((kinds & analyticKinds) != 0)
        return gradient ? compose<true, true>(plan, stages, n, out) : compose<false, true>(plan, stages, n, out);
    return gradient ? compose<true, false>(plan, stages, n, out) : compose<false, false>(plan, stages, n, out);
}

int colorBlock(const PlanData& plan, const float* values, int n, float* out, bool /*stream*/) {
    BlockStages stages;
    const int padded = loadValues(values, n, &stages);
    if (findSections(plan, padded, &stages)) {
        int failing = n - 1;
        while ((intervalAt(plan, stages.offsets[failing]).kind & failingKind) == 0)
            --failing;
        if (failing + 1 < n)
            colorBlock(plan, values + failing + 1, n - failing - 1, out + channelCount * (failing + 1), false);
        return failing;
    }
    const int32_t kinds = plan.intervals == IntervalMode::None ? 0 : placeInIntervals(plan, padded, &stages);
    if ((kinds & analyticKinds) != 0)
        analyticColors(kinds, padded, &stages);
    composeColors(plan, kinds, stages, n, out);
    return -1;
}

}  // namespace

Kernel plainKernel() {
    return {&colorBlock, {}};
}

}  // namespace lys::eval
