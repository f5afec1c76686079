#include <colortable/model/eval/BucketIndex_p.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lys::eval {

namespace {

constexpr int64_t bucketsPerBoundary = 4;
constexpr int64_t maxBuckets = 65536;
constexpr int64_t maxStart = UINT16_MAX;
constexpr int64_t goodEnoughSteps = 4;  // see setLevels; no second spacing is tried up to here
constexpr int64_t rareShare = 64;

void setLinear(const float* positions, int64_t boundaryCount, int64_t bucketCount, BucketIndex* index) {
    const float* end = positions + boundaryCount;
    const float* first = std::find_if(positions, end, [](float p) { return std::isfinite(p); });
    const float* last = end;
    while (last != first && !std::isfinite(last[-1]))
        --last;
    index->linear = true;
    index->lastBucket = static_cast<int32_t>(bucketCount - 1);
    index->origin = first != last ? *first + 0.0f : 0.0f;
    const float width = first != last ? last[-1] - *first : 0.0f;
    const float scale = static_cast<float>(bucketCount) / width;
    index->scale = std::isfinite(scale) ? scale : 0.0f;
}

void setLogarithmic(const int32_t* keys, int64_t boundaryCount, int64_t bucketCount, BucketIndex* index) {
    index->linear = false;
    index->lastBucket = static_cast<int32_t>(bucketCount - 1);
    index->firstKey = keys[0];
    index->lastKey = keys[boundaryCount - 1];
    const uint32_t span = static_cast<uint32_t>(index->lastKey) - static_cast<uint32_t>(index->firstKey);
    index->shift = 0;
    while ((span >> index->shift) >= static_cast<uint32_t>(bucketCount))
        ++index->shift;
}

/// Writes each bucket's start; a lowered first boundary may stay in the bucket of its own value.
void fillStarts(const float* positions, int64_t boundaryCount, int64_t bucketCount, const int32_t* keys,
                const BucketIndex& index, uint16_t* starts) {
    int64_t bucket = -1;  // last bucket whose start is written
    for (int64_t k = 0; k < boundaryCount; ++k) {
        const int64_t here = bucketOf(index, positions[k], keys[k]);
        while (bucket < here)
            starts[++bucket] = static_cast<uint16_t>(k);
    }
    while (bucket < bucketCount)
        starts[++bucket] = static_cast<uint16_t>(boundaryCount);
}

int32_t levelsFor(int64_t boundaries) {
    return std::max(1, static_cast<int32_t>(std::bit_width(static_cast<uint64_t>(boundaries))));
}

/// Chooses the steps that finish the search in all buckets but one of `rareShare`; values in crowded buckets take more
/// time each. Returns what the index costs: steps of a value anywhere and of one that is where the boundaries are, per
/// boundary.
int64_t setLevels(int64_t boundaryCount, int64_t bucketCount, BucketIndex* index) {
    constexpr int maxLevels = 32;
    int64_t buckets[maxLevels] = {};  // by the steps that they need
    int64_t stepsAmongBoundaries = 0;
    for (int64_t b = 0; b < bucketCount; ++b) {
        const int64_t boundaries = index->starts[b + 1] - index->starts[b];
        ++buckets[levelsFor(boundaries)];
        stepsAmongBoundaries += boundaries * levelsFor(boundaries);
    }
    index->levels = levelsFor(boundaryCount);
    int64_t crowded = 0;
    while (index->levels > 1 && crowded + buckets[index->levels] <= bucketCount / rareShare)
        crowded += buckets[index->levels--];
    index->crowded = crowded > 0;
    return index->levels * boundaryCount + stepsAmongBoundaries;
}

int64_t spaceLinearly(const float* positions, int64_t boundaryCount, int64_t bucketCount, const int32_t* keys,
                      uint16_t* starts, BucketIndex* index) {
    setLinear(positions, boundaryCount, bucketCount, index);
    fillStarts(positions, boundaryCount, bucketCount, keys, *index, starts);
    return setLevels(boundaryCount, bucketCount, index);
}

int64_t spaceLogarithmically(const float* positions, int64_t boundaryCount, int64_t bucketCount, const int32_t* keys,
                             uint16_t* starts, BucketIndex* index) {
    setLogarithmic(keys, boundaryCount, bucketCount, index);
    fillStarts(positions, boundaryCount, bucketCount, keys, *index, starts);
    return setLevels(boundaryCount, bucketCount, index);
}

}  // namespace

int64_t bucketCountFor(int64_t boundaryCount) {
    if (boundaryCount > maxStart)
        return 1;
    const auto wanted = static_cast<uint64_t>(boundaryCount * bucketsPerBoundary);
    return std::min(maxBuckets, static_cast<int64_t>(std::bit_ceil(wanted)));
}

int64_t paddedKeyCount(int64_t boundaryCount) {
    return boundaryCount + (int64_t{1} << levelsFor(boundaryCount));
}

void buildBucketIndex(const float* positions, int64_t boundaryCount, int32_t* keys, uint16_t* starts,
                      BucketIndex* index) {
    for (int64_t k = 0; k < boundaryCount; ++k)
        keys[k] = boundaryKey(positions, k);
    std::fill(keys + boundaryCount, keys + paddedKeyCount(boundaryCount), INT32_MAX);
    index->keys = keys;
    index->starts = starts;
    const int64_t bucketCount = bucketCountFor(boundaryCount);
    if (bucketCount == 1) {  // more boundaries than starts can number
        *index = {keys, starts};
        index->levels = levelsFor(boundaryCount);
        starts[0] = 0;
        return;
    }
    const int64_t linear = spaceLinearly(positions, boundaryCount, bucketCount, keys, starts, index);
    if (linear <= boundaryCount * goodEnoughSteps)
        return;
    if (spaceLogarithmically(positions, boundaryCount, bucketCount, keys, starts, index) > linear)
        spaceLinearly(positions, boundaryCount, bucketCount, keys, starts, index);
}

}  // namespace lys::eval
