// Last stage: colours in the order of memory. Included once for each instruction set.
#if defined(LYS_EVAL_VECTOR_COMPOSE_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef LYS_EVAL_VECTOR_COMPOSE_INL
#undef LYS_EVAL_VECTOR_COMPOSE_INL
#else
#define LYS_EVAL_VECTOR_COMPOSE_INL
#endif

#include <cstring>

#include <colortable/model/eval/VectorBase-inl.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_SSE4
HWY_BEFORE_NAMESPACE();
namespace lys::eval {
namespace HWY_NAMESPACE {

template <bool stream>
HWY_INLINE void putColors(FloatVector colors, float* out) {
    if constexpr (stream)
        hn::Stream(colors, floats, out);
    else
        hn::StoreU(colors, floats, out);
}

/// (1 - t) * start + t * end in single steps, as the scalar path. Where the section is no gradient t is 0 and end is -0:
/// what comes out is start, to the last bit.
HWY_INLINE FloatVector blend(FloatVector start, FloatVector end, FloatVector place) {
    const auto rest = hn::Sub(hn::Set(floats, 1.0f), place);
    return hn::Add(hn::Mul(rest, start), hn::Mul(place, end));
}

/// Colours k * lanes / 4 and following of one group.
template <bool gradient, bool analytic, bool stream, int k>
HWY_INLINE void composeVector(const PlanData& plan, const BlockStages& stages, int at, FloatVector place,
                              FloatVector analyticPart, float* out) {
    FloatVector colors = loadRecords(plan.start, stages.offsets + at + k);
    if constexpr (gradient)
        colors = blend(colors, loadRecords(plan.end, stages.offsets + at + k), hn::Broadcast<k>(place));
    if constexpr (analytic)
        colors = hn::Or(colors, analyticPart);
    putColors<stream>(colors, out + k * lanes);
}

/// Constants come from the sections' start colours, gradients are blended with their ends, and what the analytic rules
/// made is joined bit by bit: their sections' start colours are 0 but for alpha.
template <bool gradient, bool analytic, bool stream>
HWY_INLINE void composeGroup(const PlanData& plan, const BlockStages& stages, int at, float* out) {
    const auto zero = hn::Zero(floats);
    FloatVector place = zero;
    FloatVector a0 = zero;
    FloatVector a1 = zero;
    FloatVector a2 = zero;
    FloatVector a3 = zero;
    if constexpr (gradient)
        place = hn::Load(floats, stages.gradientPlace + at);
    if constexpr (analytic) {
        const auto red = hn::Load(floats, stages.red + at);
        const auto green = hn::Load(floats, stages.green + at);
        const auto blue = hn::Load(floats, stages.blue + at);
        const auto redGreenLow = hn::InterleaveLower(floats, red, green);
        const auto redGreenHigh = hn::InterleaveUpper(floats, red, green);
        const auto blueLow = hn::InterleaveLower(floats, blue, zero);
        const auto blueHigh = hn::InterleaveUpper(floats, blue, zero);
        a0 = lowerHalves(redGreenLow, blueLow);
        a1 = upperHalves(redGreenLow, blueLow);
        a2 = lowerHalves(redGreenHigh, blueHigh);
        a3 = upperHalves(redGreenHigh, blueHigh);
    }
    composeVector<gradient, analytic, stream, 0>(plan, stages, at, place, a0, out);
    composeVector<gradient, analytic, stream, 1>(plan, stages, at, place, a1, out);
    composeVector<gradient, analytic, stream, 2>(plan, stages, at, place, a2, out);
    composeVector<gradient, analytic, stream, 3>(plan, stages, at, place, a3, out);
}

template <bool gradient, bool analytic, bool stream>
HWY_INLINE void composeAll(const PlanData& plan, const BlockStages& stages, int n, float* out) {
    const int whole = n / lanes;
    const int rest = n % lanes;
    if (rest != 0) {
        alignas(64) float last[lanes * channelCount];
        composeGroup<gradient, analytic, false>(plan, stages, whole * lanes, last);
        std::memcpy(out + whole * lanes * channelCount, last, sizeof(float) * channelCount * static_cast<size_t>(rest));
    }
    for (int g = whole - 1; g >= 0; --g)
        composeGroup<gradient, analytic, stream>(plan, stages, g * lanes, out + g * lanes * channelCount);
}

template <bool gradient, bool analytic>
HWY_INLINE void composeTo(const PlanData& plan, const BlockStages& stages, int n, float* out, bool stream) {
    if (stream)
        composeAll<gradient, analytic, true>(plan, stages, n, out);
    else
        composeAll<gradient, analytic, false>(plan, stages, n, out);
}

/// Writes the block's n colours; kinds are those that occur in it.
HWY_INLINE void composeColors(const PlanData& plan, int32_t kinds, const BlockStages& stages, int n, float* out, bool stream) {
    const bool gradient = (kinds & gradientKind) != 0;
    if ((kinds & analyticKinds) != 0)
        return gradient ? composeTo<true, true>(plan, stages, n, out, stream)
                        : composeTo<false, true>(plan, stages, n, out, stream);
    return gradient ? composeTo<true, false>(plan, stages, n, out, stream)
                    : composeTo<false, false>(plan, stages, n, out, stream);
}

}  // namespace HWY_NAMESPACE
}  // namespace lys::eval
HWY_AFTER_NAMESPACE();
#endif
#endif
