#include <colortable/model/eval/BucketIndex_p.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace lys::eval {

namespace {

constexpr int64_t bucketsPerBoundary = 4;
constexpr int64_t maxBuckets = 65536;
constexpr int64_t maxStart = UINT16_MAX;
constexpr int goodEnoughLevels = 2;  // no second spacing is tried below this

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

/// Writes each bucket's start (a lowered first boundary may stay in the bucket of its own value) and returns the number of boundaries in the fullest bucket.
int64_t fillStarts(const float* positions, int64_t boundaryCount, int64_t bucketCount, const int32_t* keys,
                   const BucketIndex& index, uint16_t* starts) {
    int64_t fullest = 0;
    int64_t bucket = -1;  // last bucket whose start is written
    for (int64_t k = 0; k < boundaryCount; ++k) {
        const int64_t here = bucketOf(index, positions[k], keys[k]);
        while (bucket < here)
            starts[++bucket] = static_cast<uint16_t>(k);
        fullest = std::max(fullest, k + 1 - starts[here]);
    }
    while (bucket + 1 < bucketCount)
        starts[++bucket] = static_cast<uint16_t>(boundaryCount);
    return fullest;
}

int32_t levelsFor(int64_t boundaries) {
    return std::max(1, static_cast<int32_t>(std::bit_width(static_cast<uint64_t>(boundaries))));
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

void buildBucketIndex(const float* positions, int64_t boundaryCount, int32_t* keys, uint16_t* starts, BucketIndex* index) {
    for (int64_t k = 0; k < boundaryCount; ++k)
        keys[k] = boundaryKey(positions, k);
    std::fill(keys + boundaryCount, keys + paddedKeyCount(boundaryCount), INT32_MAX);
    const int64_t bucketCount = bucketCountFor(boundaryCount);
    setLinear(positions, boundaryCount, bucketCount, index);
    int64_t fullest = fillStarts(positions, boundaryCount, bucketCount, keys, *index, starts);
    if (levelsFor(fullest) > goodEnoughLevels && bucketCount > 1) {
        BucketIndex other = *index;
        setLogarithmic(keys, boundaryCount, bucketCount, &other);
        const int64_t otherFullest = fillStarts(positions, boundaryCount, bucketCount, keys, other, starts);
        if (levelsFor(otherFullest) < levelsFor(fullest)) {
            *index = other;
            fullest = otherFullest;
        } else {
            fillStarts(positions, boundaryCount, bucketCount, keys, *index, starts);
        }
    }
    index->keys = keys;
    index->starts = starts;
    index->levels = levelsFor(fullest);
}

}  // namespace lys::eval
