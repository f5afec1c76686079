#include <colortable/model/eval/KeySearch_p.h>

namespace lys::eval {

namespace {

constexpr int together = 4;  // values searched side by side, to have their loads in flight at once

/// Boundaries below each key, starting from its bucket. Halving steps without a branch: the longest bucket decides how
/// many there are, and a step beyond a shorter bucket meets only greater boundaries or padding.
template <int fixedLevels>
void bisect(const BucketIndex& index, const int32_t* keys, const uint32_t* buckets, uint32_t* found) {
    const int levels = fixedLevels > 0 ? fixedLevels : index.levels;
    uint32_t at[together];
    for (int u = 0; u < together; ++u)
        at[u] = index.starts[buckets[u]];
    for (uint32_t step = 1u << (levels - 1); step != 0; step >>= 1) {
        for (int u = 0; u < together; ++u)
            at[u] += index.keys[at[u] + step - 1] < keys[u] ? step : 0u;
    }
    for (int u = 0; u < together; ++u)
        found[u] = at[u];
}

template <int fixedLevels>
int32_t searchAll(const PlanData& plan, const int32_t* keys, const uint32_t* buckets, int n, uint32_t* offsets) {
    const bool mayFail = (plan.kinds & failingKind) != 0;
    int32_t kinds = 0;
    for (int i = n - together; i >= 0; i -= together) {
        uint32_t found[together];
        bisect<fixedLevels>(plan.buckets, keys + i, buckets + i, found);
        for (int u = 0; u < together; ++u) {
            if (mayFail)
                kinds |= plan.interval[found[u]].kind;
            offsets[i + u] = found[u] * uint32_t{sizeof(SectionInterval)};
        }
    }
    return kinds;
}

}  // namespace

bool searchKeys(const PlanData& plan, const int32_t* keys, const uint32_t* buckets, int n, uint32_t* offsets) {
    int32_t kinds = 0;
    switch (plan.buckets.levels) {
        case 1:
            kinds = searchAll<1>(plan, keys, buckets, n, offsets);
            break;
        case 2:
            kinds = searchAll<2>(plan, keys, buckets, n, offsets);
            break;
        case 3:
            kinds = searchAll<3>(plan, keys, buckets, n, offsets);
            break;
        default:
            kinds = searchAll<0>(plan, keys, buckets, n, offsets);
            break;
    }
    return (kinds & failingKind) != 0;
}

}  // namespace lys::eval
