// Random numbers, four at a time.
#pragma once

#include <emmintrin.h>

#include <cstdint>

// Four independent generators "xor128" side by side: Marsaglia, "Xorshift RNGs", Journal of Statistical Software 8
// (14), 2003. One object belongs to one thread.
class CRandomLanes {
public:
    explicit CRandomLanes(std::uint64_t seed)
        : m_x(Seeded(seed)), m_y(Seeded(seed)), m_z(Seeded(seed)), m_w(Seeded(seed)) {}

    // Four numbers of 32 random bits.
    __m128i Next() {
        const __m128i t = _mm_xor_si128(m_x, _mm_slli_epi32(m_x, 11));
        m_x = m_y;
        m_y = m_z;
        m_z = m_w;
        const __m128i mixed = _mm_xor_si128(t, _mm_srli_epi32(t, 8));
        m_w = _mm_xor_si128(_mm_xor_si128(m_w, _mm_srli_epi32(m_w, 19)), mixed);
        return m_w;
    }

private:
    // SplitMix64: Steele, Lea, Flood, "Fast splittable pseudorandom number generators", OOPSLA 2014.
    static long long NextSeed(std::uint64_t& seed) {
        std::uint64_t z = seed += 0x9E3779B97F4A7C15U;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return static_cast<long long>(z ^ (z >> 31));
    }

    static __m128i Seeded(std::uint64_t& seed) {
        const long long lower = NextSeed(seed);
        return _mm_set_epi64x(NextSeed(seed), lower);
    }

    __m128i m_x;
    __m128i m_y;
    __m128i m_z;
    __m128i m_w;
};
