// First stage: the values of a block in lane order and their sections. Included once for each instruction set.
#if defined(LYS_EVAL_VECTOR_SEARCH_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef LYS_EVAL_VECTOR_SEARCH_INL
#undef LYS_EVAL_VECTOR_SEARCH_INL
#else
#define LYS_EVAL_VECTOR_SEARCH_INL
#endif

#include <colortable/model/eval/KeySearch_p.h>
#include <colortable/model/eval/VectorBase-inl.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_SSE4
HWY_BEFORE_NAMESPACE();
namespace lys::eval {
namespace HWY_NAMESPACE {

#if HWY_TARGET != HWY_SSE4
/// keepValues: later stages need them; tables of constants do not.
template <bool keepValues>
HWY_INLINE void putSections(FloatVector value, WordVector section, int at, BlockStages* stages) {
    if constexpr (keepValues)
        hn::Store(value, floats, stages->values + at);
    hn::Store(hn::ShiftLeft<offsetShift>(section), words, stages->offsets + at);
}

HWY_INLINE WordVector addWhereLess(WordVector count, FloatVector boundary, FloatVector value) {
    return hn::Sub(count, hn::BitCast(words, hn::VecFromMask(floats, hn::Lt(boundary, value))));
}

/// Few boundaries: counts those below each value.
template <bool keepValues>
HWY_INLINE void countCuts(const PlanData& plan, const float* values, int n, BlockStages* stages) {
    // Those that are not there are infinite, which is below nothing.
    const auto cut0 = hn::Set(floats, plan.cuts[0]);
    const auto cut1 = hn::Set(floats, plan.cuts[1]);
    const auto cut2 = hn::Set(floats, plan.cuts[2]);
    forEachGroup(values, n, [&](FloatVector value, int at) {
        auto section = addWhereLess(hn::Zero(words), cut0, value);
        section = addWhereLess(section, cut1, value);
        section = addWhereLess(section, cut2, value);
        putSections<keepValues>(value, section, at, stages);
    });
}

/// The way down the search tree: bit l of path says whether level l's boundary is below the value, which is last for
/// the level passed last.
struct Descent {
    WordVector path;
    hn::Mask<FloatTag> last;
};

template <int level>
HWY_INLINE void descend(FloatVector boundary, FloatVector value, Descent* way) {
    const auto bit = hn::Set(words, 1u << level);
    way->last = hn::Lt(boundary, value);
    const auto below = hn::RebindMask(words, way->last);
#if HWY_TARGET == HWY_AVX3
    way->path.raw = _mm512_mask_or_epi32(way->path.raw, below.raw, way->path.raw, bit.raw);
#else
    way->path = hn::Or(way->path, hn::IfThenElseZero(below, bit));
#endif
}

/// The 16 boundaries of level 4. In two registers the turn taken last, bit 3 of the path, says in which.
struct Level4 {
    explicit Level4(const float* table) : lower(table), upper(table + treeLevelSize - lanes) {}

    HWY_INLINE FloatVector at(const Descent& way) const {
        if constexpr (lanes == treeLevelSize)
            return lower.at(way.path);
        return hn::IfThenElse(way.last, upper.at(way.path), lower.at(way.path));
    }

    LaneTable<1> lower;
    LaneTable<1> upper;
};

/// Up to 31 boundaries: a perfect search tree, its levels held in registers and read by permutes. The path is the
/// section's record, see slotOf.
template <int levels, bool keepValues>
HWY_INLINE void searchTree(const PlanData& plan, const float* values, int n, BlockStages* stages) {
    const auto root = hn::Set(floats, plan.tree[0][0]);
    const LaneTable<1> level1(plan.tree[1]);
    const LaneTable<1> level2(plan.tree[2]);
    const LaneTable<1> level3(plan.tree[3]);
    const Level4 level4(plan.tree[4]);
    forEachGroup(values, n, [&](FloatVector value, int at) {
        Descent way{hn::Zero(words), {}};
        descend<0>(root, value, &way);
        descend<1>(level1.at(way.path), value, &way);
        descend<2>(level2.at(way.path), value, &way);
        if constexpr (levels > 3)
            descend<3>(level3.at(way.path), value, &way);
        if constexpr (levels > 4)
            descend<4>(level4.at(way), value, &way);
        putSections<keepValues>(value, way.path, at, stages);
    });
}
#endif

/// Ordered integers of the values, see orderedKey.
HWY_INLINE IntVector keysOf(FloatVector value) {
    const auto bits = hn::BitCast(ints, hn::Add(value, hn::Zero(floats)));
    const auto magnitude = hn::And(hn::BroadcastSignBit(bits), hn::Set(ints, hwy::LimitsMax<int32_t>()));
    const auto isNumber = hn::RebindMask(ints, hn::Eq(value, value));
    return hn::IfThenElse(isNumber, hn::Xor(bits, magnitude), hn::Set(ints, hwy::LimitsMin<int32_t>()));
}

/// Buckets of equal width in the value. The clamp comes before the conversion and takes NaN to bucket 0.
HWY_INLINE WordVector linearBuckets(const BucketIndex& index, FloatVector value) {
    const auto place =
        hn::Mul(hn::Sub(hn::Add(value, hn::Zero(floats)), hn::Set(floats, index.origin)), hn::Set(floats, index.scale));
    const auto last = hn::Set(floats, static_cast<float>(index.lastBucket));
    const auto positive = hn::IfThenElseZero(hn::Gt(place, hn::Zero(floats)), place);
    return hn::BitCast(words, hn::ConvertTo(ints, hn::IfThenElse(hn::Lt(positive, last), positive, last)));
}

/// Buckets of equal width in the ordered integer, which is nearly logarithmic.
HWY_INLINE WordVector logarithmicBuckets(const BucketIndex& index, IntVector key) {
    const auto first = hn::Set(ints, index.firstKey);
    const auto inside = hn::Min(hn::Max(key, first), hn::Set(ints, index.lastKey));
    return hn::ShiftRightSame(hn::BitCast(words, hn::Sub(inside, first)), index.shift);
}

/// Any number of boundaries: bucket, then bisection.
HWY_INLINE void searchBuckets(const PlanData& plan, const float* values, int n, BlockStages* stages) {
    const BucketIndex& index = plan.buckets;
    forEachGroup(values, n, [&](FloatVector value, int at) {
        const auto key = keysOf(value);
        const auto bucket = index.linear ? linearBuckets(index, value) : logarithmicBuckets(index, key);
        hn::Store(value, floats, stages->values + at);
        hn::Store(key, ints, stages->keys + at);
        hn::Store(bucket, words, stages->buckets + at);
    });
    const int padded = (n + lanes - 1) / lanes * lanes;
    searchKeys(plan, stages->keys, stages->buckets, padded, stages->offsets);
}

#if HWY_TARGET != HWY_SSE4
template <bool keepValues>
HWY_INLINE void searchRegisters(const PlanData& plan, const float* values, int n, BlockStages* stages) {
    if (plan.search == SearchMode::Count)
        return countCuts<keepValues>(plan, values, n, stages);
    switch (plan.treeLevels) {
        case 5:
            return searchTree<5, keepValues>(plan, values, n, stages);
        case 4:
            return searchTree<4, keepValues>(plan, values, n, stages);
        default:
            return searchTree<3, keepValues>(plan, values, n, stages);
    }
}
#endif

/// Finds the sections of all lanes.
HWY_INLINE void findSections(const PlanData& plan, const float* values, int n, BlockStages* stages) {
#if HWY_TARGET != HWY_SSE4
    if (plan.search != SearchMode::Buckets) {
        return plan.intervals == IntervalMode::None ? searchRegisters<false>(plan, values, n, stages)
                                                    : searchRegisters<true>(plan, values, n, stages);
    }
#endif
    searchBuckets(plan, values, n, stages);
}

/// Whether one of n values lies in a failing run.
template <int runs>
HWY_INLINE bool liesInRun(const PlanData& plan, const float* values, int64_t n) {
    const auto firstUpTo = hn::Set(floats, plan.firstUpTo);
    const auto fromBelow = hn::FirstN(floats, plan.failsFromBelow ? static_cast<size_t>(lanes) : 0);
    auto found = hn::FirstN(floats, 0);
    const auto test = [&](FloatVector value) {
        found = hn::Or(found, hn::AndNot(hn::Gt(value, firstUpTo), fromBelow));
        for (int r = 0; r < runs; ++r) {
            const auto above = hn::Gt(value, hn::Set(floats, plan.failingRuns[r].above));
            found = hn::Or(found, hn::And(above, hn::Le(value, hn::Set(floats, plan.failingRuns[r].upTo))));
        }
    };
    const int64_t whole = n / lanes * lanes;
    for (int64_t i = 0; i < whole; i += lanes)
        test(hn::LoadU(floats, values + i));
    if (whole < n) {
        alignas(64) float last[lanes];
        for (int64_t i = 0; i < lanes; ++i)
            last[i] = values[whole + i < n ? whole + i : whole];
        test(hn::Load(floats, last));
    }
    return !hn::AllFalse(floats, found);
}

}  // namespace HWY_NAMESPACE
}  // namespace lys::eval
HWY_AFTER_NAMESPACE();
#endif
#endif
