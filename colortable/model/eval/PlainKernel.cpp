// Kernel in plain C++: the stages of the vector kernels, written so that a compiler can vectorise them for the
// baseline.
#include <algorithm>
#include <bit>
#include <cstring>

#include <colortable/model/eval/BlockStages_p.h>
#include <colortable/model/eval/BucketIndex_p.h>
#include <colortable/model/eval/KernelTarget_p.h>
#include <colortable/model/eval/KeySearch_p.h>
#include <colortable/model/eval/SineSeries_p.h>

namespace lys::eval {

namespace {

constexpr int groupSize = 4;
constexpr float pi = 3.1415927f;

/// Copies the values, filled up to a whole group with the last one; returns how many there are then.
int loadValues(const float* values, int n, BlockStages* stages) {
    const int padded = (n + groupSize - 1) / groupSize * groupSize;
    std::memcpy(stages->values, values, sizeof(float) * static_cast<size_t>(n));
    for (int i = n; i < padded; ++i)
        stages->values[i] = values[n - 1];
    return padded;
}

void findSections(const PlanData& plan, int n, BlockStages* stages) {
    for (int i = 0; i < n; ++i)
        stages->keys[i] = orderedKey(stages->values[i]);
    for (int i = 0; i < n; ++i)
        stages->buckets[i] = bucketOf(plan.buckets, stages->values[i], stages->keys[i]);
    searchKeys(plan, stages->keys, stages->buckets, n, stages->offsets);
}

const SectionInterval& intervalAt(const PlanData& plan, uint32_t offset) {
    return plan.interval[offset / uint32_t{sizeof(SectionInterval)}];
}

/// The scalar path's fraction, split into loops without branches. Fills the places of the rules and returns the kinds
/// that occur in the block.
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
        const float shifted = turned > 0.5f ? 0.5f - turned : turned + 0.5f;
        stages->side[i] = (kind[i] & rainbowKind) ? shifted * pi : 0.0f;
        stages->green[i] = (kind[i] & rainbowKind) ? turned * pi : 0.0f;
    }
    for (int i = 0; i < n && (kinds & hueKind); ++i)
        stages->huePlace[i] = (kind[i] & hueKind) ? place[i] : noPlace;
    for (int i = 0; i < n && (kinds & thirdsKind); ++i)
        stages->thirdsPlace[i] = (kind[i] & thirdsKind) ? place[i] : noPlace;
    return kinds & coloredKinds;
}

float sineOf(float argument) {
    const double wide = argument;
    const double folded = piInDouble - wide;
    const double x = wide < folded ? wide : folded;
    const double square = x * x;
    double sum = sineSeries[6];
    for (int i = 5; i >= 0; --i)
        sum = sum * square + sineSeries[i];
    return static_cast<float>(x * square * sum + x);
}

/// Writes the clamped colours that the sines stand for; a sine never exceeds 1.
void setRainbow(int n, BlockStages* stages) {
    for (int i = 0; i < n; ++i)
        stages->side[i] = sineOf(stages->side[i]);
    for (int i = 0; i < n; ++i)
        stages->green[i] = sineOf(stages->green[i]);
    for (int i = 0; i < n; ++i) {
        const float side = stages->side[i];
        const float green = stages->green[i];
        stages->rgb[0][i] = -side > greatestClampedRed ? -side : 0.0f;
        stages->rgb[1][i] = green > 0.0f ? green : 0.0f;
        stages->rgb[2][i] = side > 0.0f ? side : 0.0f;
    }
}

/// All bits of a word or none, and a choice by them: a compiler makes branches of anything plainer.
uint32_t maskOf(bool condition) {
    return 0u - static_cast<uint32_t>(condition);
}

float masked(uint32_t mask, float value) {
    return std::bit_cast<float>(std::bit_cast<uint32_t>(value) & mask);
}

float choose(uint32_t mask, float value, float other) {
    return std::bit_cast<float>((std::bit_cast<uint32_t>(value) & mask) | (std::bit_cast<uint32_t>(other) & ~mask));
}

/// The position inside a piece of 1 / factor, held to 1: then 1 - s needs no clamp either.
float pieceFraction(float place, float bound, float factor) {
    const float s = (place - bound) * factor;
    return choose(maskOf(s < 1.0f), s, 1.0f);
}

void addHue(int n, BlockStages* stages) {
    for (int i = 0; i < n; ++i) {
        const float t = stages->huePlace[i];
        const uint32_t in1 = maskOf(t >= 0.16666667f);
        const uint32_t in2 = maskOf(t >= 0.33333334f);
        const uint32_t in3 = maskOf(t >= 0.5f);
        const uint32_t in4 = maskOf(t >= 0.6666667f);
        const uint32_t in5 = maskOf(t >= 0.8333333f);
        const uint32_t here = maskOf(t < noPlace);
        float bound = choose(in2, 0.33333334f, masked(in1, 0.16666667f));
        bound = choose(in4, 0.6666667f, choose(in3, 0.5f, bound));
        bound = choose(in5, 0.8333333f, bound);
        const float up = pieceFraction(t, bound, 6.0f);
        const float down = 1.0f - up;
        const float red = masked(~in2 | in4, choose(in5, 1.0f, choose(in4, up, choose(in1, down, 1.0f))));
        const float green = masked(~in4, choose(in3, down, choose(in1, 1.0f, up)));
        const float blue = masked(in2, choose(in5, down, choose(in3, 1.0f, up)));
        stages->rgb[0][i] += masked(here, red);
        stages->rgb[1][i] += masked(here, green);
        stages->rgb[2][i] += masked(here, blue);
    }
}

void addThirds(int n, BlockStages* stages) {
    for (int i = 0; i < n; ++i) {
        const float t = stages->thirdsPlace[i];
        const uint32_t in1 = maskOf(t >= 0.33333334f);
        const uint32_t in2 = maskOf(t >= 0.6666667f);
        const uint32_t here = maskOf(t < noPlace);
        const float up = pieceFraction(t, choose(in2, 0.6666667f, masked(in1, 0.33333334f)), 3.0f);
        const float down = 1.0f - up;
        stages->rgb[0][i] += masked(here & in2, up);
        stages->rgb[1][i] += masked(here & ~in2, choose(in1, down, up));
        stages->rgb[2][i] += masked(here & in1, choose(in2, down, up));
    }
}

/// A value has one rule, the other rules add 0.
void analyticColors(int32_t kinds, int n, BlockStages* stages) {
    if (kinds & rainbowKind) {
        setRainbow(n, stages);
    } else {
        for (float* channel : stages->rgb)
            std::fill_n(channel, n, 0.0f);
    }
    if (kinds & hueKind)
        addHue(n, stages);
    if (kinds & thirdsKind)
        addThirds(n, stages);
}

/// Gradients are blended as in the scalar path; with a place of 0 and an end of -0 the start comes out. Analytic
/// colours join a start of 0 bit by bit.
template <bool gradient, bool analytic>
void compose(const PlanData& plan, const BlockStages& stages, int n, float* out) {
    for (int i = 0; i < n; ++i) {
        const uint32_t section = stages.offsets[i] / uint32_t{sizeof(SectionInterval)};
        float color[channelCount];
        std::memcpy(color, plan.start[section], sizeof color);
        if constexpr (gradient) {
            const float t = stages.gradientPlace[i];
            for (int c = 0; c < channelCount; ++c)
                color[c] = (1.0f - t) * color[c] + t * plan.ends[section][1][c];
        }
        if constexpr (analytic) {
            for (int c = 0; c < alphaChannel; ++c)
                color[c] =
                    std::bit_cast<float>(std::bit_cast<uint32_t>(color[c]) | std::bit_cast<uint32_t>(stages.rgb[c][i]));
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

void colorBlock(const PlanData& plan, const float* values, int n, float* out, bool /*stream*/) {
    BlockStages stages;
    const int padded = loadValues(values, n, &stages);
    findSections(plan, padded, &stages);
    const int32_t kinds = plan.intervals == IntervalMode::None ? 0 : placeInIntervals(plan, padded, &stages);
    if ((kinds & analyticKinds) != 0)
        analyticColors(kinds, padded, &stages);
    composeColors(plan, kinds, stages, n, out);
}

bool holdsFailure(const PlanData& plan, const float* values, int64_t n) {
    return std::any_of(values, values + n, [&plan](float value) { return fails(plan, value); });
}

}  // namespace

Kernel plainKernel() {
    return {&colorBlock, &holdsFailure, {}};
}

}  // namespace lys::eval
