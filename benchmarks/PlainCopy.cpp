#include "PlainCopy.h"

#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>

namespace {

[[gnu::target("avx512f")]] void copyWide(int64_t count, const float* values, float* out) {
    const __m512i first = _mm512_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3);
    for (int64_t i = 0; i < count; i += 16) {
        const __m512 v = _mm512_loadu_ps(values + i);
        for (int part = 0; part < 4; ++part)
            _mm512_stream_ps(
                out + 4 * i + 16 * part,
                _mm512_maskz_permutexvar_ps(0xFFFF, _mm512_add_epi32(first, _mm512_set1_epi32(4 * part)), v));
    }
    _mm_sfence();
}

void copyNarrow(int64_t count, const float* values, float* out) {
    for (int64_t i = 0; i < count; ++i)
        _mm_stream_ps(out + 4 * i, _mm_set1_ps(values[i]));
    _mm_sfence();
}

}  // namespace

void plainCopy(int64_t count, const float* values, float* out) {
    static const bool wide = __builtin_cpu_supports("avx512f") != 0;
    if (wide)
        copyWide(count, values, out);
    else
        copyNarrow(count, values, out);
}

#else

void plainCopy(int64_t count, const float* values, float* out) {
    for (int64_t i = 0; i < count; ++i) {
        for (int c = 0; c < 4; ++c)
            out[4 * i + c] = values[i];
    }
}

#endif
