// Levels to integers, several at a time: SSE2 is part of every x86-64, and compilers do not get there by themselves.
// [any thread]
#pragma once

#include <emmintrin.h>

#include <cstddef>
#include <cstdint>

// All of these take a count that divides by four. The arrays need no alignment.

// Whether all of `levels` are numbers within `limit` on either side of 0.
inline bool AreWithin(const float* levels, std::size_t count, float limit) {
    __m128 beyond = _mm_setzero_ps();
    for (std::size_t i = 0; i < count; i += 4) {
        const __m128 magnitude = _mm_andnot_ps(_mm_set1_ps(-0.0F), _mm_loadu_ps(levels + i));
        beyond = _mm_or_ps(beyond, _mm_cmpnle_ps(magnitude, _mm_set1_ps(limit)));
    }
    return _mm_movemask_ps(beyond) == 0;
}

inline bool AreWithin(const double* levels, std::size_t count, double limit) {
    __m128d beyond = _mm_setzero_pd();
    for (std::size_t i = 0; i < count; i += 2) {
        const __m128d magnitude = _mm_andnot_pd(_mm_set1_pd(-0.0), _mm_loadu_pd(levels + i));
        beyond = _mm_or_pd(beyond, _mm_cmpnle_pd(magnitude, _mm_set1_pd(limit)));
    }
    return _mm_movemask_pd(beyond) == 0;
}

// Limits numbers to `lowest` and `highest`, which are integers of 32 bits, and rounds them to the nearest, halves up.
inline void RoundHalvesUp(const float* levels, std::size_t count, float lowest, float highest, std::int32_t* integers) {
    for (std::size_t i = 0; i < count; i += 4) {
        const __m128 atLeast = _mm_max_ps(_mm_loadu_ps(levels + i), _mm_set1_ps(lowest));
        const __m128 raised = _mm_add_ps(_mm_min_ps(atLeast, _mm_set1_ps(highest)), _mm_set1_ps(0.5F));
        const __m128i truncated = _mm_cvttps_epi32(raised);
        // All ones, which is -1, where truncation went up: below 0.
        const __m128i up = _mm_castps_si128(_mm_cmpgt_ps(_mm_cvtepi32_ps(truncated), raised));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(integers + i), _mm_add_epi32(truncated, up));
    }
}

inline void RoundHalvesUp(const double* levels, std::size_t count, double lowest, double highest,
                          std::int32_t* integers) {
    for (std::size_t i = 0; i < count; i += 2) {
        const __m128d atLeast = _mm_max_pd(_mm_loadu_pd(levels + i), _mm_set1_pd(lowest));
        const __m128d raised = _mm_add_pd(_mm_min_pd(atLeast, _mm_set1_pd(highest)), _mm_set1_pd(0.5));
        const __m128i truncated = _mm_cvttpd_epi32(raised);
        const __m128i up = _mm_castpd_si128(_mm_cmpgt_pd(_mm_cvtepi32_pd(truncated), raised));
        const __m128i rounded = _mm_add_epi32(truncated, _mm_shuffle_epi32(up, _MM_SHUFFLE(3, 1, 2, 0)));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(integers + i), rounded);
    }
}
