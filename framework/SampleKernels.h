// Small per-sample kernels written four samples at a time where the target has SSE2: at the build's
// optimisation level the compiler leaves plain loops of unknown length scalar (one sample per store
// or per compare). Each vector operation rounds as its scalar twin does, so the samples are the same.
#pragma once

#include <cstdint>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define BR_SAMPLE_SSE2 1
#endif

namespace BR {

// out[i] = value.
inline void FillSamples(float* out, uint32_t count, float value) {
    uint32_t i = 0;
#ifdef BR_SAMPLE_SSE2
    const __m128 v = _mm_set1_ps(value);
    for (; i + 8 <= count; i += 8) {
        _mm_storeu_ps(out + i, v);
        _mm_storeu_ps(out + i + 4, v);
    }
#endif
    for (; i < count; ++i)
        out[i] = value;
}

// out[i] = out[i] * scale + offset, a multiply then an add, each rounded.
inline void ScaleOffsetSamples(float* out, uint32_t count, float scale, float offset) {
    uint32_t i = 0;
#ifdef BR_SAMPLE_SSE2
    const __m128 s = _mm_set1_ps(scale), o = _mm_set1_ps(offset);
    for (; i + 4 <= count; i += 4)
        _mm_storeu_ps(out + i, _mm_add_ps(_mm_mul_ps(_mm_loadu_ps(out + i), s), o));
#endif
    for (; i < count; ++i)
        out[i] = out[i] * scale + offset;
}

// The first index in [from, count) whose sample is not at or above `level` (a not-a-number sample
// included), or `count`.
inline uint32_t FirstNotAtOrAbove(const float* x, uint32_t from, uint32_t count, float level) {
    uint32_t i = from;
#ifdef BR_SAMPLE_SSE2
    const __m128 l = _mm_set1_ps(level);
    // Sixteen samples a test while all hold (a gate stays open for thousands), then eight, then one.
    for (; i + 16 <= count; i += 16) {
        const __m128 a =
            _mm_and_ps(_mm_cmpge_ps(_mm_loadu_ps(x + i), l), _mm_cmpge_ps(_mm_loadu_ps(x + i + 4), l));
        const __m128 b =
            _mm_and_ps(_mm_cmpge_ps(_mm_loadu_ps(x + i + 8), l), _mm_cmpge_ps(_mm_loadu_ps(x + i + 12), l));
        if (_mm_movemask_ps(_mm_and_ps(a, b)) != 15) break;
    }
    for (; i + 8 <= count; i += 8) {
        const int held = _mm_movemask_ps(_mm_cmpge_ps(_mm_loadu_ps(x + i), l)) &
                         _mm_movemask_ps(_mm_cmpge_ps(_mm_loadu_ps(x + i + 4), l));
        if (held != 15) break;
    }
#endif
    while (i < count && x[i] >= level)
        ++i;
    return i;
}

// The first index in [from, count) whose sample is above `level`, or `count`.
inline uint32_t FirstAbove(const float* x, uint32_t from, uint32_t count, float level) {
    uint32_t i = from;
#ifdef BR_SAMPLE_SSE2
    const __m128 l = _mm_set1_ps(level);
    // Sixteen samples a test while none rises (a gate stays closed for thousands), then eight, then one.
    for (; i + 16 <= count; i += 16) {
        const __m128 a =
            _mm_or_ps(_mm_cmpgt_ps(_mm_loadu_ps(x + i), l), _mm_cmpgt_ps(_mm_loadu_ps(x + i + 4), l));
        const __m128 b =
            _mm_or_ps(_mm_cmpgt_ps(_mm_loadu_ps(x + i + 8), l), _mm_cmpgt_ps(_mm_loadu_ps(x + i + 12), l));
        if (_mm_movemask_ps(_mm_or_ps(a, b)) != 0) break;
    }
    for (; i + 8 <= count; i += 8) {
        const int above = _mm_movemask_ps(_mm_cmpgt_ps(_mm_loadu_ps(x + i), l)) |
                          _mm_movemask_ps(_mm_cmpgt_ps(_mm_loadu_ps(x + i + 4), l));
        if (above != 0) break;
    }
#endif
    while (i < count && !(x[i] > level))
        ++i;
    return i;
}

}  // namespace BR
