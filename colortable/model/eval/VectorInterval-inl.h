// Second stage: the place of each value in its section's interval, for the rules that need it. Included once for each
// instruction set.
#if defined(LYS_EVAL_VECTOR_INTERVAL_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef LYS_EVAL_VECTOR_INTERVAL_INL
#undef LYS_EVAL_VECTOR_INTERVAL_INL
#else
#define LYS_EVAL_VECTOR_INTERVAL_INL
#endif

#include <colortable/model/eval/VectorBase-inl.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_SSE4
HWY_BEFORE_NAMESPACE();
namespace lys::eval {
namespace HWY_NAMESPACE {

using FloatMask = hn::Mask<FloatTag>;

/// Intervals of a group's sections and what these need the places for.
struct Intervals {
    FloatVector low;
    FloatVector width;
    IntVector kind;

    HWY_INLINE FloatMask is(int32_t bit) const { return hn::RebindMask(floats, hn::TestBit(kind, hn::Set(ints, bit))); }

    HWY_INLINE IntVector kinds() const { return kind; }

    /// 1 - place in inverted rainbows.
    HWY_INLINE FloatVector turned(FloatVector place) const {
        return hn::IfThenElse(is(invertedKind), hn::Sub(hn::Set(floats, 1.0f), place), place);
    }
};

/// The same where one section alone needs places: every lane takes its interval, its own lanes are `here`.
struct OneInterval {
    FloatVector low;
    FloatVector width;
    FloatMask here;
    FloatVector turnStart;
    FloatVector turnSign;

    HWY_INLINE FloatMask is(int32_t) const { return here; }

    HWY_INLINE IntVector kinds() const { return hn::BitCast(ints, hn::VecFromMask(floats, here)); }

    /// 0 + place or 1 - place.
    HWY_INLINE FloatVector turned(FloatVector place) const { return hn::Add(turnStart, hn::Xor(place, turnSign)); }
};

struct LoneInterval {
    static constexpr bool needsKinds = true;

    explicit LoneInterval(const PlanData& plan)
        : low(hn::Set(floats, plan.lone.low)),
          width(hn::Set(floats, plan.lone.width)),
          offset(hn::Set(words, plan.loneOffset)),
          turnStart(hn::Set(floats, (plan.kinds & invertedKind) != 0 ? 1.0f : 0.0f)),
          turnSign(hn::Set(floats, (plan.kinds & invertedKind) != 0 ? -0.0f : 0.0f)) {}

    HWY_INLINE OneInterval at(const uint32_t* offsets) const {
        const auto here = hn::RebindMask(floats, hn::Eq(hn::Load(words, offsets), offset));
        return {low, width, here, turnStart, turnSign};
    }

    FloatVector low;
    FloatVector width;
    WordVector offset;
    FloatVector turnStart;
    FloatVector turnSign;
};

/// Many sections: records from memory, transposed.
struct RecordIntervals {
    static constexpr bool needsKinds = false;

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
/// Intervals of a table that fits into registers.
struct LaneIntervals {
    static constexpr bool needsKinds = false;

    explicit LaneIntervals(const PlanData& plan)
        : low(plan.laneLow), width(plan.laneWidth), kind(reinterpret_cast<const float*>(plan.laneKind)) {}

    HWY_INLINE Intervals at(const uint32_t* offsets) const {
        const auto index = hn::ShiftRight<offsetShift>(hn::Load(words, offsets));
        return {low.at(index), width.at(index), hn::BitCast(ints, kind.at(index))};
    }

    LaneTable<2> low;
    LaneTable<2> width;
    LaneTable<2> kind;
};
#endif

/// The scalar path's fraction: a true division, then its two comparisons. The machine's own maximum and minimum take
/// their second operand where the first is NaN, or equal: NaN and -0 become 0 as they have to.
template <class In>
HWY_INLINE FloatVector placeOf(FloatVector value, const In& in) {
    const auto place = hn::Div(hn::Sub(value, in.low), in.width);
    return hn::Min(hn::Max(place, hn::Zero(floats)), hn::Set(floats, 1.0f));
}

HWY_INLINE bool holdsKind(IntVector kinds, int32_t bits) {
    return !hn::AllFalse(ints, hn::Ne(hn::And(kinds, hn::Set(ints, bits)), hn::Zero(ints)));
}

/// Red is left of its clamp only beyond the middle, blue only up to it: one sine, with red's sign turned, serves both.
template <class In>
HWY_INLINE void storeSineArguments(const In& in, FloatVector place, float* side, float* green) {
    const auto half = hn::Set(floats, 0.5f);
    const auto pi = hn::Set(floats, 3.1415927f);
    const auto turned = in.turned(place);
    const auto isRainbow = in.is(rainbowKind);
    const auto shifted = hn::IfThenElse(hn::Gt(turned, half), hn::Sub(half, turned), hn::Add(turned, half));
    hn::Store(hn::IfThenElseZero(isRainbow, hn::Mul(shifted, pi)), floats, side);
    hn::Store(hn::IfThenElseZero(isRainbow, hn::Mul(turned, pi)), floats, green);
}

template <class In>
HWY_INLINE FloatVector placeOrNone(const In& in, int32_t bit, FloatVector place) {
    return hn::IfThenElse(in.is(bit), place, hn::Set(floats, noPlace));
}

/// handled: the kinds that the table can have at all; an outer loop for each set of them keeps the inner one short.
template <int32_t handled, class IntervalSource>
HWY_INLINE int32_t placeAll(const PlanData& plan, int groups, BlockStages* stages) {
    const IntervalSource source(plan);
    auto kinds = hn::Zero(ints);
    for (int i = 0; i < groups * lanes; i += lanes) {
        const auto in = source.at(stages->offsets + i);
        const auto place = placeOf(hn::Load(floats, stages->values + i), in);
        kinds = hn::Or(kinds, in.kinds());
        if constexpr ((handled & gradientKind) != 0)
            hn::Store(hn::IfThenElseZero(in.is(gradientKind), place), floats, stages->gradientPlace + i);
        if constexpr ((handled & sineKinds) != 0)
            storeSineArguments(in, place, stages->side + i, stages->green + i);
        if constexpr ((handled & hueKind) != 0)
            hn::Store(placeOrNone(in, hueKind, place), floats, stages->huePlace + i);
        if constexpr ((handled & thirdsKind) != 0)
            hn::Store(placeOrNone(in, thirdsKind, place), floats, stages->thirdsPlace + i);
    }
    int32_t found = 0;
    for (const int32_t bits : {gradientKind, rainbowKind, hueKind, thirdsKind})
        found |= (handled & bits) != 0 && holdsKind(kinds, bits) ? bits : 0;
    return found;
}

/// Gradients and constants alone: a constant's interval is infinitely wide, its place 0 without asking for its kind.
template <class IntervalSource>
HWY_INLINE int32_t placeGradients(const PlanData& plan, int groups, BlockStages* stages) {
    const IntervalSource source(plan);
    for (int i = 0; i < groups * lanes; i += lanes) {
        const auto place = placeOf(hn::Load(floats, stages->values + i), source.at(stages->offsets + i));
        hn::Store(place, floats, stages->gradientPlace + i);
    }
    return gradientKind;
}

template <class IntervalSource>
HWY_INLINE int32_t placeByKinds(const PlanData& plan, int groups, BlockStages* stages) {
    switch (plan.kinds & coloredKinds) {
        case gradientKind:
            if constexpr (IntervalSource::needsKinds)
                return placeAll<gradientKind, IntervalSource>(plan, groups, stages);
            else
                return placeGradients<IntervalSource>(plan, groups, stages);
        case rainbowKind:
        case rainbowKind | invertedKind:
            return placeAll<sineKinds, IntervalSource>(plan, groups, stages);
        case hueKind:
            return placeAll<hueKind, IntervalSource>(plan, groups, stages);
        case thirdsKind:
            return placeAll<thirdsKind, IntervalSource>(plan, groups, stages);
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
