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

/// Where value i of a block lies in the stages. Within a group, lane 4j + k holds value k * lanes / 4 + j: interleaving
/// four channels inside their 128-bit parts then yields colours in the order of memory.
HWY_INLINE int laneOf(int i) {
    const int inGroup = i % lanes;
    return i - inGroup + channelCount * (inGroup % colorsInVector) + inGroup / colorsInVector;
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
