#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

#include <colortable/model/eval/PlanData_p.h>

namespace lys::eval {

/// The order of floats as integers; -0 is +0, NaN comes before everything. Without a branch, for compilers to
/// vectorise.
inline int32_t orderedKey(float value) {
    const int32_t bits = std::bit_cast<int32_t>(value + 0.0f);
    const int32_t key = bits ^ (bits >> 31 & INT32_MAX);
    return value == value ? key : INT32_MIN;
}

/// The boundary list's keys for a search that counts keys below a value's: a value equal to a finite first boundary
/// counts as above it and its twins, so these lie one step lower.
inline int32_t boundaryKey(const float* positions, int64_t k) {
    const int32_t key = orderedKey(positions[k]);
    return positions[k] == positions[0] && std::isfinite(positions[0]) ? key - 1 : key;
}

/// Bucket of a value and its key. The vector kernels take the same single-precision steps: equal values, equal buckets.
inline uint32_t bucketOf(const BucketIndex& index, float value, int32_t key) {
    if (index.linear) {
        const float place = ((value + 0.0f) - index.origin) * index.scale;
        const float last = static_cast<float>(index.lastBucket);
        const float positive = place > 0.0f ? place : 0.0f;
        return static_cast<uint32_t>(static_cast<int32_t>(positive < last ? positive : last));
    }
    const int32_t inside = key < index.firstKey ? index.firstKey : key > index.lastKey ? index.lastKey : key;
    return (static_cast<uint32_t>(inside) - static_cast<uint32_t>(index.firstKey)) >> index.shift;
}

/// Number of buckets that an index over so many boundaries takes, a power of two.
int64_t bucketCountFor(int64_t boundaryCount);

/// Number of keys with the padding that any bisection may reach.
int64_t paddedKeyCount(int64_t boundaryCount);

/// Fills keys (paddedKeyCount) and starts (one more than bucketCountFor) from ascending boundaries, in the spacing that
/// leaves the shorter buckets.
void buildBucketIndex(const float* positions, int64_t boundaryCount, int32_t* keys, uint16_t* starts,
                      BucketIndex* index);

}  // namespace lys::eval
