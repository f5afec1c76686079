// Registers, lane order and loads that the vector stages share. Included once for each instruction set.
#if defined(LYS_EVAL_VECTOR_BASE_INL) == defined(HWY_TARGET_TOGGLE)
#ifdef LYS_EVAL_VECTOR_BASE_INL
#undef LYS_EVAL_VECTOR_BASE_INL
#else
#define LYS_EVAL_VECTOR_BASE_INL
#endif

#include <hwy/highway.h>

#include <colortable/model/eval/BlockStages_p.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_SSE4
HWY_BEFORE_NAMESPACE();
namespace lys::eval {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

using FloatTag = hn::ScalableTag<float>;
using IntTag = hn::RebindToSigned<FloatTag>;
using WordTag = hn::RebindToUnsigned<FloatTag>;
using FloatVector = hn::Vec<FloatTag>;
using IntVector = hn::Vec<IntTag>;
using WordVector = hn::Vec<WordTag>;

constexpr FloatTag floats;
constexpr IntTag ints;
constexpr WordTag words;

constexpr int lanes = static_cast<int>(sizeof(FloatVector) / sizeof(float));
constexpr int colorsInVector = lanes / channelCount;  // whole colours that one register holds
constexpr int offsetShift = 4;                        // a section's byte offset is its index * 16

/// Where value i of a block lies in the stages. Within a group, lane 4j + k holds value k * lanes / 4 + j: interleaving
/// four channels inside their 128-bit parts then yields colours in the order of memory.
constexpr int laneOf(int i) {
    const int inGroup = i % lanes;
    return i - inGroup + channelCount * (inGroup % colorsInVector) + inGroup / colorsInVector;
}

struct LaneOrder {
    alignas(64) int32_t valueOfLane[lanes] = {};
    constexpr LaneOrder() {
        for (int i = 0; i < lanes; ++i)
            valueOfLane[laneOf(i)] = i;
    }
};
constexpr LaneOrder laneOrder;

HWY_INLINE FloatVector inLaneOrder(FloatVector v) {
    return hn::TableLookupLanes(v, hn::SetTableIndices(floats, laneOrder.valueOfLane));
}

/// Calls work(values, first lane) for each group in lane order. The last group is filled up with the last value.
template <class Work>
HWY_INLINE void forEachGroup(const float* values, int n, const Work& work) {
    const int rest = n % lanes;
    const int whole = n - rest;
    for (int i = 0; i < whole; i += lanes)
        work(inLaneOrder(hn::LoadU(floats, values + i)), i);
    if (rest != 0) {
        alignas(64) float last[lanes];
        for (int i = 0; i < lanes; ++i)
            last[i] = values[whole + (i < rest ? i : rest - 1)];
        work(inLaneOrder(hn::Load(floats, last)), whole);
    }
}

/// Four floats of colorsInVector records side by side; the records' byte offsets are 4 entries apart.
HWY_INLINE FloatVector loadRecords(const void* table, const uint32_t* offsets) {
    const char* base = static_cast<const char*>(table);
    const auto record = [base](uint32_t offset) { return reinterpret_cast<const float*>(base + offset); };
#if HWY_TARGET == HWY_AVX3
    __m256 lower = _mm256_castps128_ps256(_mm_load_ps(record(offsets[0])));
    lower = _mm256_insertf128_ps(lower, _mm_load_ps(record(offsets[4])), 1);
    __m256 upper = _mm256_castps128_ps256(_mm_load_ps(record(offsets[8])));
    upper = _mm256_insertf128_ps(upper, _mm_load_ps(record(offsets[12])), 1);
    return FloatVector{_mm512_insertf32x8(_mm512_castps256_ps512(lower), upper, 1)};
#elif HWY_TARGET == HWY_AVX2
    const __m256 lower = _mm256_castps128_ps256(_mm_load_ps(record(offsets[0])));
    return FloatVector{_mm256_insertf128_ps(lower, _mm_load_ps(record(offsets[4])), 1)};
#else
    return FloatVector{_mm_load_ps(record(offsets[0]))};
#endif
}

/// Start and end colours of colorsInVector sections side by side.
struct Ends {
    FloatVector start;
    FloatVector end;
};

/// From records of both ends, twice as long as the offsets say.
HWY_INLINE Ends loadEnds(const void* table, const uint32_t* offsets) {
    const char* base = static_cast<const char*>(table);
    const auto record = [base](uint32_t offset) { return reinterpret_cast<const float*>(base + 2 * size_t{offset}); };
#if HWY_TARGET == HWY_AVX3
    const __m512 lower = _mm512_insertf32x8(_mm512_castps256_ps512(_mm256_load_ps(record(offsets[0]))),
                                            _mm256_load_ps(record(offsets[4])), 1);
    const __m512 upper = _mm512_insertf32x8(_mm512_castps256_ps512(_mm256_load_ps(record(offsets[8]))),
                                            _mm256_load_ps(record(offsets[12])), 1);
    return {FloatVector{_mm512_shuffle_f32x4(lower, upper, 0x88)},
            FloatVector{_mm512_shuffle_f32x4(lower, upper, 0xDD)}};
#elif HWY_TARGET == HWY_AVX2
    const __m256 first = _mm256_load_ps(record(offsets[0]));
    const __m256 second = _mm256_load_ps(record(offsets[4]));
    return {FloatVector{_mm256_permute2f128_ps(first, second, 0x20)},
            FloatVector{_mm256_permute2f128_ps(first, second, 0x31)}};
#else
    return {FloatVector{_mm_load_ps(record(offsets[0]))}, FloatVector{_mm_load_ps(record(offsets[0]) + channelCount)}};
#endif
}

#if HWY_TARGET != HWY_SSE4
/// A table of floats in one register or two, looked up by the low bits of each lane.
template <int registers>
struct LaneTable {
    explicit LaneTable(const float* table)
        : lower(hn::Load(floats, table)), upper(hn::Load(floats, table + lanes * (registers - 1))) {}

    HWY_INLINE FloatVector at(WordVector index) const {
#if HWY_TARGET == HWY_AVX3
        if constexpr (registers == 1)
            return FloatVector{_mm512_permutexvar_ps(index.raw, lower.raw)};
        else
            return FloatVector{_mm512_permutex2var_ps(lower.raw, index.raw, upper.raw)};
#else
        const __m256 low = _mm256_permutevar8x32_ps(lower.raw, index.raw);
        if constexpr (registers == 1)
            return FloatVector{low};
        const __m256 high = _mm256_permutevar8x32_ps(upper.raw, index.raw);
        const auto inUpper = hn::BitCast(floats, hn::ShiftLeft<28>(index));  // bit 3 becomes the sign
        return FloatVector{_mm256_blendv_ps(low, high, inUpper.raw)};
#endif
    }

    FloatVector lower;
    FloatVector upper;
};
#endif

/// The lower (upper) 64-bit halves of two vectors in turn, within each 128-bit part.
HWY_INLINE FloatVector lowerHalves(FloatVector a, FloatVector b) {
    const hn::Repartition<double, FloatTag> pairs;
    return hn::BitCast(floats, hn::InterleaveLower(pairs, hn::BitCast(pairs, a), hn::BitCast(pairs, b)));
}

HWY_INLINE FloatVector upperHalves(FloatVector a, FloatVector b) {
    const hn::Repartition<double, FloatTag> pairs;
    return hn::BitCast(floats, hn::InterleaveUpper(pairs, hn::BitCast(pairs, a), hn::BitCast(pairs, b)));
}

}  // namespace HWY_NAMESPACE
}  // namespace lys::eval
HWY_AFTER_NAMESPACE();
#endif
#endif
