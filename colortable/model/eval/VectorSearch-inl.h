// First stage: load the values of a block and find their sections. Included once for each instruction set.
#if defined(LYS_EVAL_VECTOR_SEARCH_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef LYS_EVAL_VECTOR_SEARCH_INL
#undef LYS_EVAL_VECTOR_SEARCH_INL
#else
#define LYS_EVAL_VECTOR_SEARCH_INL
#endif

#include <cstring>

#include <colortable/model/eval/KeySearch_p.h>
#include <colortable/model/eval/VectorBase-inl.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_SSE4
HWY_BEFORE_NAMESPACE();
namespace lys::eval {
namespace HWY_NAMESPACE {

/// Loads n values in the stages' lane order, the last group filled up with the last value; returns the number of groups.
HWY_INLINE int loadValues(const float* values, int n, BlockStages* stages) {
    alignas(64) int32_t valueOfLane[lanes];
    for (int i = 0; i < lanes; ++i)
        valueOfLane[laneOf(i)] = i;
    const auto order = hn::SetTableIndices(floats, valueOfLane);
    const int whole = n / lanes;
    const int rest = n % lanes;
    if (rest != 0) {
        alignas(64) float last[lanes];
        for (int i = 0; i < lanes; ++i)
            last[i] = values[whole * lanes + (i < rest ? i : rest - 1)];
        hn::Store(hn::TableLookupLanes(hn::Load(floats, last), order), floats, stages->values + whole * lanes);
    }
    for (int g = whole - 1; g >= 0; --g)
        hn::Store(hn::TableLookupLanes(hn::LoadU(floats, values + g * lanes), order), floats, stages->values + g * lanes);
    return whole + (rest != 0 ? 1 : 0);
}

#if HWY_TARGET != HWY_SSE4
HWY_INLINE WordVector addWhereLess(WordVector count, FloatVector cut, FloatVector value) {
    return hn::Sub(count, hn::BitCast(words, hn::VecFromMask(floats, hn::Lt(cut, value))));
}

/// Stores the byte offsets of sections and returns the bits of failing ones.
HWY_INLINE WordVector storeSections(WordVector section, WordVector failingSections, uint32_t* offsets) {
    hn::Store(hn::ShiftLeft<4>(section), words, offsets);
    return hn::Shr(failingSections, section);
}

HWY_INLINE bool anyOdd(WordVector bits) {
    const auto one = hn::Set(words, 1u);
    return !hn::AllFalse(words, hn::Ne(hn::And(bits, one), hn::Zero(words)));
}

/// Few boundaries: counts those below each value.
HWY_INLINE bool countCuts(const PlanData& plan, int groups, BlockStages* stages) {
    const auto failingSections = hn::Set(words, plan.failingSections);
    const int cuts = plan.boundaryCount;
    auto failing = hn::Zero(words);
    for (int g = groups - 1; g >= 0; --g) {
        const auto value = hn::Load(floats, stages->values + g * lanes);
        auto section = hn::Zero(words);
        for (int c = 0; c < cuts; ++c)
            section = addWhereLess(section, hn::Set(floats, plan.cuts[c]), value);
        failing = hn::Or(failing, storeSections(section, failingSections, stages->offsets + g * lanes));
    }
    return anyOdd(failing);
}

/// Entry of a level of the tree: at most 16 floats.
template <int level>
HWY_INLINE FloatVector treeEntry(FloatVector lower, FloatVector upper, WordVector at) {
#if HWY_TARGET == HWY_AVX2
    const FloatVector low{_mm256_permutevar8x32_ps(lower.raw, at.raw)};
    if constexpr (level < 4)
        return low;
    const FloatVector high{_mm256_permutevar8x32_ps(upper.raw, at.raw)};
    const auto inUpper = hn::BitCast(floats, hn::ShiftLeft<28>(at));  // bit 3 becomes the sign
    return FloatVector{_mm256_blendv_ps(low.raw, high.raw, inUpper.raw)};
#else
    (void)upper;
    return FloatVector{_mm512_permutexvar_ps(at.raw, lower.raw)};
#endif
}

template <int level>
HWY_INLINE WordVector descend(WordVector at, FloatVector lower, FloatVector upper, FloatVector value) {
    return addWhereLess(hn::Add(at, at), treeEntry<level>(lower, upper, at), value);
}

/// Up to 31 boundaries: a perfect search tree, its levels held in registers and read by permutes.
template <int levels>
HWY_INLINE bool searchTree(const PlanData& plan, int groups, BlockStages* stages) {
    const auto failingSections = hn::Set(words, plan.failingSections);
    const auto root = hn::Set(floats, plan.tree[0][0]);
    const auto level1 = hn::Load(floats, plan.tree[1]);
    const auto level2 = hn::Load(floats, plan.tree[2]);
    const auto level3 = hn::Load(floats, plan.tree[3]);
    const auto level4 = hn::Load(floats, plan.tree[4]);
    const auto level4Upper = hn::Load(floats, plan.tree[4] + treeLevelSize - lanes);
    auto failing = hn::Zero(words);
    for (int g = groups - 1; g >= 0; --g) {
        const auto value = hn::Load(floats, stages->values + g * lanes);
        auto section = addWhereLess(hn::Zero(words), root, value);
        section = descend<1>(section, level1, level1, value);
        if constexpr (levels > 2)
            section = descend<2>(section, level2, level2, value);
        if constexpr (levels > 3)
            section = descend<3>(section, level3, level3, value);
        if constexpr (levels > 4)
            section = descend<4>(section, level4, level4Upper, value);
        failing = hn::Or(failing, storeSections(section, failingSections, stages->offsets + g * lanes));
    }
    return anyOdd(failing);
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
    const auto place = hn::Mul(hn::Sub(hn::Add(value, hn::Zero(floats)), hn::Set(floats, index.origin)),
                               hn::Set(floats, index.scale));
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
HWY_INLINE bool searchBuckets(const PlanData& plan, int groups, BlockStages* stages) {
    const BucketIndex& index = plan.buckets;
    for (int g = groups - 1; g >= 0; --g) {
        const auto value = hn::Load(floats, stages->values + g * lanes);
        const auto key = keysOf(value);
        const auto bucket = index.linear ? linearBuckets(index, value) : logarithmicBuckets(index, key);
        hn::Store(key, ints, stages->keys + g * lanes);
        hn::Store(bucket, words, stages->buckets + g * lanes);
    }
    return searchKeys(plan, stages->keys, stages->buckets, groups * lanes, stages->offsets);
}

/// Finds the sections of all lanes; returns whether a section that fails is among them.
HWY_INLINE bool findSections(const PlanData& plan, int groups, BlockStages* stages) {
#if HWY_TARGET != HWY_SSE4
    if (plan.search == SearchMode::Count)
        return countCuts(plan, groups, stages);
    if (plan.search == SearchMode::Tree) {
        switch (plan.treeLevels) {
            case 5:
                return searchTree<5>(plan, groups, stages);
            case 4:
                return searchTree<4>(plan, groups, stages);
            default:
                return searchTree<3>(plan, groups, stages);
        }
    }
#endif
    return searchBuckets(plan, groups, stages);
}

}  // namespace HWY_NAMESPACE
}  // namespace lys::eval
HWY_AFTER_NAMESPACE();
#endif
#endif
