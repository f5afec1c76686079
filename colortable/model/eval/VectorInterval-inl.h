// Second stage: the place of each value in its section's interval, for the rules that need it. Included once for each
// instruction set.
#if defined(LYS_EVAL_VECTOR_INTERVAL_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef LYS_EVAL_VECTOR_INTERVAL_INL
#undef LYS_EVAL_VECTOR_INTERVAL_INL
#else
#define LYS_EVAL_VECTOR_INTERVAL_INL
#endif

#include <limits>

#include <colortable/model/eval/VectorBase-inl.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_SSE4
HWY_BEFORE_NAMESPACE();
namespace lys::eval {
namespace HWY_NAMESPACE {

struct Intervals {
    FloatVector low;
    FloatVector width;
    IntVector kind;
};

/// One section needs its interval: all lanes take it, only that section's lanes carry its kind.
struct LoneInterval {
    explicit LoneInterval(const PlanData& plan)
        : low(hn::Set(floats, plan.lone.low)),
          width(hn::Set(floats, plan.lone.width)),
          kind(hn::Set(ints, plan.lone.kind)),
          offset(hn::Set(words, plan.loneOffset)) {}

    HWY_INLINE Intervals at(const uint32_t* offsets) const {
        const auto here = hn::RebindMask(ints, hn::Eq(hn::Load(words, offsets), offset));
        return {low, width, hn::IfThenElseZero(here, kind)};
    }

    FloatVector low;
    FloatVector width;
    IntVector kind;
    WordVector offset;
};

/// Many sections: records from memory, transposed.
struct RecordIntervals {
    explicit RecordIntervals(const PlanData& plan) : table(plan.interval) {}

    HWY_INLINE Intervals at(const uint32_t* offsets) const {
        const auto r0 = loadRecords(table, offsets);
        const auto r1 = loadRecords(table, offsets + 1);
        const auto r2 = loadRecords(table, offsets + 2);
        const auto r3 = loadRecords(table, offsets + 3);
        const auto front01 = hn::InterleaveLower(floats, r0, r1);
        const auto front23 = hn::InterleaveLower(floats, r2, r3);
        const auto back01 = hn::InterleaveUpper(floats, r0, r1);
        const auto back23 = hn::InterleaveUpper(floats, r2, r3);
        return {lowerHalves(front01, front23), upperHalves(front01, front23),
                hn::BitCast(ints, lowerHalves(back01, back23))};
    }

    const SectionInterval* table;
};

#if HWY_TARGET != HWY_SSE4
/// A table of up to 32 (AVX-512) or 16 (AVX2) floats in two registers.
struct LaneTable {
    explicit LaneTable(const float* table) : lower(hn::Load(floats, table)), upper(hn::Load(floats, table + lanes)) {}

    HWY_INLINE FloatVector at(WordVector index) const {
#if HWY_TARGET == HWY_AVX3
        return FloatVector{_mm512_permutex2var_ps(lower.raw, index.raw, upper.raw)};
#else
        const __m256 low = _mm256_permutevar8x32_ps(lower.raw, index.raw);
        const __m256 high = _mm256_permutevar8x32_ps(upper.raw, index.raw);
        return FloatVector{_mm256_blendv_ps(low, high, hn::BitCast(floats, hn::ShiftLeft<28>(index)).raw)};
#endif
    }

    FloatVector lower;
    FloatVector upper;
};

struct LaneIntervals {
    explicit LaneIntervals(const PlanData& plan)
        : low(plan.laneLow), width(plan.laneWidth), kind(reinterpret_cast<const float*>(plan.laneKind)) {}

    HWY_INLINE Intervals at(const uint32_t* offsets) const {
        const auto index = hn::ShiftRight<4>(hn::Load(words, offsets));
        return {low.at(index), width.at(index), hn::BitCast(ints, kind.at(index))};
    }

    LaneTable low;
    LaneTable width;
    LaneTable kind;
};
#endif

/// The scalar path's fraction: a true division, then its two comparisons.
HWY_INLINE FloatVector placeOf(FloatVector value, const Intervals& in) {
    const auto one = hn::Set(floats, 1.0f);
    const auto place = hn::Div(hn::Sub(value, in.low), in.width);
    const auto fromZero = hn::IfThenElseZero(hn::Gt(place, hn::Zero(floats)), place);
    return hn::IfThenElse(hn::Lt(fromZero, one), fromZero, one);
}

HWY_INLINE hn::Mask<FloatTag> isOfKind(IntVector kind, int32_t bit) {
    return hn::RebindMask(floats, hn::TestBit(kind, hn::Set(ints, bit)));
}

HWY_INLINE FloatVector placeOrNan(IntVector kind, int32_t bit, FloatVector place) {
    return hn::IfThenElse(isOfKind(kind, bit), place, hn::Set(floats, std::numeric_limits<float>::quiet_NaN()));
}

HWY_INLINE bool holdsKind(IntVector kinds, int32_t bits) {
    return !hn::AllFalse(ints, hn::Ne(hn::And(kinds, hn::Set(ints, bits)), hn::Zero(ints)));
}

/// handled: the kinds that the table can have at all; an outer loop for each set of them keeps the inner one short.
template <int32_t handled, class IntervalSource>
HWY_INLINE int32_t placeAll(const PlanData& plan, int groups, BlockStages* stages) {
    const IntervalSource source(plan);
    auto kinds = hn::Zero(ints);
    for (int i = (groups - 1) * lanes; i >= 0; i -= lanes) {
        const Intervals in = source.at(stages->offsets + i);
        const auto place = placeOf(hn::Load(floats, stages->values + i), in);
        kinds = hn::Or(kinds, in.kind);
        if constexpr ((handled & gradientKind) != 0)
            hn::Store(hn::IfThenElseZero(isOfKind(in.kind, gradientKind), place), floats, stages->gradientPlace + i);
        if constexpr ((handled & sineKinds) != 0) {
            const auto inverted = hn::Sub(hn::Set(floats, 1.0f), place);
            const auto turned = hn::IfThenElse(isOfKind(in.kind, invertedKind), inverted, place);
            hn::Store(placeOrNan(in.kind, rainbowKind, turned), floats, stages->sinePlace + i);
        }
        if constexpr ((handled & hueKind) != 0)
            hn::Store(placeOrNan(in.kind, hueKind, place), floats, stages->huePlace + i);
        if constexpr ((handled & thirdsKind) != 0)
            hn::Store(placeOrNan(in.kind, thirdsKind, place), floats, stages->thirdsPlace + i);
    }
    int32_t found = 0;
    for (const int32_t bits : {gradientKind, rainbowKind, hueKind, thirdsKind})
        found |= (handled & bits) != 0 && holdsKind(kinds, bits) ? bits : 0;
    return found;
}

template <class IntervalSource>
HWY_INLINE int32_t placeByKinds(const PlanData& plan, int groups, BlockStages* stages) {
    switch (plan.kinds & coloredKinds) {
        case gradientKind:
            return placeAll<gradientKind, IntervalSource>(plan, groups, stages);
        case rainbowKind:
        case rainbowKind | invertedKind:
            return placeAll<sineKinds, IntervalSource>(plan, groups, stages);
        case hueKind:
            return placeAll<hueKind, IntervalSource>(plan, groups, stages);
        default:
            return placeAll<coloredKinds, IntervalSource>(plan, groups, stages);
    }
}

/// Fills the places that the table's rules need; returns the kinds that occur in the block.
HWY_INLINE int32_t placeInIntervals(const PlanData& plan, int groups, BlockStages* stages) {
    switch (plan.intervals) {
        case IntervalMode::None:
            return 0;
        case IntervalMode::Lone:
            return placeByKinds<LoneInterval>(plan, groups, stages);
#if HWY_TARGET != HWY_SSE4
        case IntervalMode::Lanes:
            return placeByKinds<LaneIntervals>(plan, groups, stages);
#endif
        default:
            return placeByKinds<RecordIntervals>(plan, groups, stages);
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace lys::eval
HWY_AFTER_NAMESPACE();
#endif
#endif
