#include <colortable/model/eval/KeySearch_p.h>

namespace lys::eval {

namespace {

constexpr int together = 4;  // values searched side by side, to have their loads in flight at once

/// Boundaries below each key, starting from its bucket. Halving steps without a branch: they suffice for `levels`, and
/// a step beyond a shorter bucket meets only greater boundaries or padding.
template <int fixedLevels>
void bisect(const BucketIndex& index, const int32_t* keys, const uint32_t* buckets, uint32_t* found) {
    const int levels = fixedLevels > 0 ? fixedLevels : index.levels;
    for (int u = 0; u < together; ++u)
        found[u] = index.starts[buckets[u]];
    for (uint32_t step = 1u << (levels - 1); step != 0; step >>= 1) {
        for (int u = 0; u < together; ++u)
            found[u] += index.keys[found[u] + step - 1] < keys[u] ? step : 0u;
    }
}

/// The values, few as a rule, in buckets that hold too many boundaries for this.
void searchCrowded(const BucketIndex& index, const int32_t* keys, const uint32_t* buckets, uint32_t* found) {
    for (int u = 0; u < together; ++u) {
        uint32_t at = index.starts[buckets[u]];
        uint32_t left = index.starts[buckets[u] + 1] - at;
        if (left < 1u << index.levels) [[likely]]
            continue;
        while (left > 0) {
            const uint32_t step = left - left / 2;
            at += index.keys[at + step - 1] < keys[u] ? step : 0u;
            left -= step;
        }
        found[u] = at;
    }
}

template <int fixedLevels, bool crowded>
void searchAll(const PlanData& plan, const int32_t* keys, const uint32_t* buckets, int n, uint32_t* offsets) {
    for (int i = 0; i < n; i += together) {
        uint32_t found[together];
        bisect<fixedLevels>(plan.buckets, keys + i, buckets + i, found);
        if constexpr (crowded)
            searchCrowded(plan.buckets, keys + i, buckets + i, found);
        for (int u = 0; u < together; ++u)
            offsets[i + u] = found[u] * uint32_t{sizeof(SectionInterval)};
    }
}

template <bool crowded>
void searchByLevels(const PlanData& plan, const int32_t* keys, const uint32_t* buckets, int n, uint32_t* offsets) {
    switch (plan.buckets.levels) {
        case 1:
            return searchAll<1, crowded>(plan, keys, buckets, n, offsets);
        case 2:
            return searchAll<2, crowded>(plan, keys, buckets, n, offsets);
        case 3:
            return searchAll<3, crowded>(plan, keys, buckets, n, offsets);
        default:
            return searchAll<0, crowded>(plan, keys, buckets, n, offsets);
    }
}

}  // namespace

void searchKeys(const PlanData& plan, const int32_t* keys, const uint32_t* buckets, int n, uint32_t* offsets) {
    if (plan.buckets.crowded)
        searchByLevels<true>(plan, keys, buckets, n, offsets);
    else
        searchByLevels<false>(plan, keys, buckets, n, offsets);
}

}  // namespace lys::eval
