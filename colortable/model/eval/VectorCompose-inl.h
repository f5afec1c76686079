// Last stage: colours in the order of memory. Included once for each instruction set.
#if defined(LYS_EVAL_VECTOR_COMPOSE_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef LYS_EVAL_VECTOR_COMPOSE_INL
#undef LYS_EVAL_VECTOR_COMPOSE_INL
#else
#define LYS_EVAL_VECTOR_COMPOSE_INL
#endif

#include <cstring>

#include <colortable/model/eval/VectorRules-inl.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_SSE4
HWY_BEFORE_NAMESPACE();
namespace lys::eval {
namespace HWY_NAMESPACE {

/// What the colours of a block are made of beside the sections' start colours.
enum class Analytic { None, Sines, Colors };

/// The colours of one group in the order of memory.
struct Colors {
    FloatVector part[channelCount];
};

template <bool stream>
HWY_INLINE void putColors(const Colors& colors, float* out) {
    for (int k = 0; k < channelCount; ++k) {
        if constexpr (stream)
            hn::Stream(colors.part[k], floats, out + k * lanes);
        else
            hn::StoreU(colors.part[k], floats, out + k * lanes);
    }
}

/// From a register for each channel to colours.
HWY_INLINE Colors interleaved(const Rgb& rgb, FloatVector alpha) {
    const auto redGreenLow = hn::InterleaveLower(floats, rgb.red, rgb.green);
    const auto redGreenHigh = hn::InterleaveUpper(floats, rgb.red, rgb.green);
    const auto blueAlphaLow = hn::InterleaveLower(floats, rgb.blue, alpha);
    const auto blueAlphaHigh = hn::InterleaveUpper(floats, rgb.blue, alpha);
    return {{lowerHalves(redGreenLow, blueAlphaLow), upperHalves(redGreenLow, blueAlphaLow),
             lowerHalves(redGreenHigh, blueAlphaHigh), upperHalves(redGreenHigh, blueAlphaHigh)}};
}

/// (1 - t) * start + t * end in single steps, as the scalar path. Where the section is no gradient t is 0 and end is
/// -0: what comes out is start, to the last bit.
HWY_INLINE FloatVector blend(FloatVector start, FloatVector end, FloatVector place) {
    const auto rest = hn::Sub(hn::Set(floats, 1.0f), place);
    return hn::Add(hn::Mul(rest, start), hn::Mul(place, end));
}

template <Analytic analytic>
HWY_INLINE Rgb analyticPart(const BlockStages& stages, int at) {
    if constexpr (analytic == Analytic::Sines)
        return rainbowColor(stages, at);
    return {hn::Load(floats, stages.rgb[0] + at), hn::Load(floats, stages.rgb[1] + at),
            hn::Load(floats, stages.rgb[2] + at)};
}

/// Sections' colours from their records in memory. Gradients are blended with their ends, and what the analytic rules
/// made is joined bit by bit: their sections' start colours are 0 but for alpha.
template <bool gradient, Analytic analytic>
struct RecordComposer {
    RecordComposer(const PlanData& p, const BlockStages& s) : plan(p), stages(s) {}

    template <int k>
    HWY_INLINE FloatVector blended(int at, FloatVector place) const {
        const Ends ends = loadEnds(plan.ends, stages.offsets + at + k);
        return blend(ends.start, ends.end, hn::Broadcast<k>(place));
    }

    HWY_INLINE Colors operator()(int at) const {
        Colors colors;
        if constexpr (gradient) {
            const auto place = hn::Load(floats, stages.gradientPlace + at);
            colors = {{blended<0>(at, place), blended<1>(at, place), blended<2>(at, place), blended<3>(at, place)}};
        } else {
            for (int k = 0; k < channelCount; ++k)
                colors.part[k] = loadRecords(plan.start, stages.offsets + at + k);
        }
        if constexpr (analytic != Analytic::None) {
            const Colors other = interleaved(analyticPart<analytic>(stages, at), hn::Zero(floats));
            for (int k = 0; k < channelCount; ++k)
                colors.part[k] = hn::Or(colors.part[k], other.part[k]);
        }
        return colors;
    }

    const PlanData& plan;
    const BlockStages& stages;
};

#if HWY_TARGET != HWY_SSE4
/// The same for tables whose colours fit into registers.
template <bool gradient, Analytic analytic, int registers>
struct LaneComposer {
    LaneComposer(const PlanData& p, const BlockStages& s)
        : stages(s),
          start{Table(p.laneStart[0]), Table(p.laneStart[1]), Table(p.laneStart[2]), Table(p.laneStart[3])},
          end{Table(p.laneEnd[0]), Table(p.laneEnd[1]), Table(p.laneEnd[2]), Table(p.laneEnd[3])} {}

    HWY_INLINE Colors operator()(int at) const {
        const auto index = hn::ShiftRight<offsetShift>(hn::Load(words, stages.offsets + at));
        FloatVector channel[channelCount];
        for (int c = 0; c < channelCount; ++c)
            channel[c] = start[c].at(index);
        if constexpr (gradient) {
            const auto place = hn::Load(floats, stages.gradientPlace + at);
            for (int c = 0; c < channelCount; ++c)
                channel[c] = blend(channel[c], end[c].at(index), place);
        }
        Rgb rgb = {channel[0], channel[1], channel[2]};
        if constexpr (analytic != Analytic::None)
            rgb = both(rgb, analyticPart<analytic>(stages, at));
        return interleaved(rgb, channel[alphaChannel]);
    }

    using Table = LaneTable<registers>;
    const BlockStages& stages;
    Table start[channelCount];
    Table end[channelCount];
};
#endif

template <bool stream, class Composer>
HWY_INLINE void composeAll(const Composer& composer, int n, float* out) {
    const int rest = n % lanes;
    const int whole = n - rest;
    for (int i = 0; i < whole; i += lanes)
        putColors<stream>(composer(i), out + i * channelCount);
    if (rest != 0) {
        alignas(64) float last[lanes * channelCount];
        putColors<false>(composer(whole), last);
        std::memcpy(out + whole * channelCount, last, sizeof(float) * channelCount * static_cast<size_t>(rest));
    }
}

template <class Composer>
HWY_INLINE void composeTo(const Composer& composer, int n, float* out, bool stream) {
    if (stream)
        composeAll<true>(composer, n, out);
    else
        composeAll<false>(composer, n, out);
}

template <bool gradient, Analytic analytic>
HWY_INLINE void composeFrom(const PlanData& plan, const BlockStages& stages, int n, float* out, bool stream) {
#if HWY_TARGET != HWY_SSE4
    if (plan.colorRegisters == 1)
        return composeTo(LaneComposer<gradient, analytic, 1>(plan, stages), n, out, stream);
#endif
#if HWY_TARGET == HWY_AVX3
    if (plan.colorRegisters == 2)
        return composeTo(LaneComposer<gradient, analytic, 2>(plan, stages), n, out, stream);
#endif
    composeTo(RecordComposer<gradient, analytic>(plan, stages), n, out, stream);
}

template <bool gradient>
HWY_INLINE void composeBlended(const PlanData& plan, int32_t kinds, const BlockStages& stages, int n, float* out,
                               bool stream) {
    if ((kinds & (hueKind | thirdsKind)) != 0)
        return composeFrom<gradient, Analytic::Colors>(plan, stages, n, out, stream);
    if ((kinds & rainbowKind) != 0)
        return composeFrom<gradient, Analytic::Sines>(plan, stages, n, out, stream);
    composeFrom<gradient, Analytic::None>(plan, stages, n, out, stream);
}

/// Writes the block's n colours; kinds are those that occur in it.
HWY_INLINE void composeColors(const PlanData& plan, int32_t kinds, const BlockStages& stages, int n, float* out,
                              bool stream) {
    if ((kinds & gradientKind) != 0)
        composeBlended<true>(plan, kinds, stages, n, out, stream);
    else
        composeBlended<false>(plan, kinds, stages, n, out, stream);
}

}  // namespace HWY_NAMESPACE
}  // namespace lys::eval
HWY_AFTER_NAMESPACE();
#endif
#endif
