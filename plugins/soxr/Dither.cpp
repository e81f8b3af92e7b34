// Noise that makes the rounding error independent of the signal.
#include "plugins/soxr/Dither.h"

#include <algorithm>

namespace {

constexpr std::uint64_t kSeed = 0x4B656C6F;

// Far enough apart that the seeds of one channel are not those of another.
constexpr std::uint64_t kSeedStep = 1000003;

// A float holds 24 random bits, and the difference of two such numbers, exactly.
constexpr int kDroppedBits = 8;
constexpr float kStep = 1.0F / 16777216.0F;

// Four values from 0 to almost 1, in steps of kStep.
__m128i Uniform(CRandomLanes& random) { return _mm_srli_epi32(random.Next(), kDroppedBits); }

CRandomLanes SeededFor(std::size_t channel) { return CRandomLanes(kSeed + kSeedStep * channel); }

}  // namespace

CDitherNoise::CDitherNoise(EDither kind, std::size_t channel)
    : m_bRectangular(kind == EDither::Rectangular), m_nChannel(channel), m_random(SeededFor(channel)) {}

void CDitherNoise::Restart() {
    m_random = SeededFor(m_nChannel);
    m_nUsed = kBlock;
}

void CDitherNoise::Refill() {
    const __m128i middle = _mm_set1_epi32(1 << (31 - kDroppedBits));
    for (std::size_t i = 0; i < kBlock; i += 4) {
        const __m128i first = Uniform(m_random);
        const __m128i noise = _mm_sub_epi32(first, m_bRectangular ? middle : Uniform(m_random));
        _mm_storeu_ps(m_noise.data() + i, _mm_mul_ps(_mm_cvtepi32_ps(noise), _mm_set1_ps(kStep)));
    }
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
