// Noise that makes the rounding error independent of the signal.
#include "plugins/soxr/Dither.h"

#include <algorithm>

namespace {

constexpr std::uint64_t kSeed = 0x4B656C6F;

// Far enough apart that the seeds of one channel are not those of another.
constexpr std::uint64_t kSeedStep = 1000003;

// Each half of 32 random bits is an evenly spread number.
constexpr int kHalf = 16;
constexpr float kStep = 1.0F / (1 << kHalf);

__m128i Upper(__m128i random) { return _mm_srli_epi32(random, kHalf); }
__m128i Lower(__m128i random) { return _mm_and_si128(random, _mm_set1_epi32((1 << kHalf) - 1)); }

CRandomLanes SeededFor(std::size_t channel) { return CRandomLanes(kSeed + kSeedStep * channel); }

}  // namespace

CDitherNoise::CDitherNoise(EDither kind, std::size_t channel)
    : m_bRectangular(kind == EDither::Rectangular), m_nChannel(channel), m_random(SeededFor(channel)) {}

void CDitherNoise::Restart() {
    m_random = SeededFor(m_nChannel);
    m_nUsed = kBlock;
}

void CDitherNoise::Refill() {
    const __m128i middle = _mm_set1_epi32(1 << (kHalf - 1));
    CRandomLanes random = m_random;  // stays in registers
    for (std::size_t i = 0; i < kBlock; i += 4) {
        const __m128i bits = random.Next();
        const __m128i noise = _mm_sub_epi32(Upper(bits), m_bRectangular ? middle : Lower(bits));
        _mm_storeu_ps(m_noise.data() + i, _mm_mul_ps(_mm_cvtepi32_ps(noise), _mm_set1_ps(kStep)));
    }
    m_random = random;
    m_nUsed = 0;
}

template <typename TSample>
void CDitherNoise::AddTo(TSample* levels, std::size_t count) {
    while (count > 0) {
        if (m_nUsed == kBlock) Refill();
        const std::size_t ready = std::min(count, kBlock - m_nUsed);
        const float* const noise = m_noise.data() + m_nUsed;
        for (std::size_t i = 0; i < ready; ++i) levels[i] += static_cast<TSample>(noise[i]);
        levels += ready;
        count -= ready;
        m_nUsed += ready;
    }
}

template void CDitherNoise::AddTo(float*, std::size_t);
template void CDitherNoise::AddTo(double*, std::size_t);
