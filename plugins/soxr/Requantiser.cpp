// Real samples to integers.
#include "plugins/soxr/Requantiser.h"

#include <algorithm>
#include <cmath>

#include "plugins/soxr/Rounding.h"

namespace {

constexpr int kWidestDithered = 16;

}  // namespace

EDither EffectiveDither(EDither wanted, bool losesBits, int targetBits, int targetRate) {
    if (!losesBits || targetBits > kWidestDithered) return EDither::None;
    if (wanted == EDither::Shaped && targetRate < CNoiseShaper::kLowestRate) return EDither::Triangular;
    return wanted;
}

template <typename TSample>
CRequantiser<TSample>::CRequantiser(int targetBits, EDither dither, std::size_t channel)
    : m_nFullScale(static_cast<TSample>(std::ldexp(1.0, targetBits - 1))),
      m_nLimit(m_nFullScale + TSample{0.5}),
      m_eDither(dither),
      m_noise(dither, channel) {}

template <typename TSample>
void CRequantiser<TSample>::Apply(const TSample* samples, std::size_t count, std::int32_t* integers) {
    for (std::size_t done = 0; done < count; done += kBlock) {
        const std::size_t block = std::min(kBlock, count - done);
        for (std::size_t i = 0; i < block; ++i) m_levels[i] = samples[done + i] * m_nFullScale;
        std::fill(m_levels.begin() + static_cast<std::ptrdiff_t>(block), m_levels.end(), TSample{0});
        if (!AreWithin(m_levels.data(), kBlock, m_nLimit)) Limit(block);
        AddDither(block);
        RoundHalvesUp(m_levels.data(), kBlock, -m_nFullScale, m_nFullScale - 1, m_rounded.data());
        std::copy_n(m_rounded.begin(), block, integers + done);
    }
}

template <typename TSample>
void CRequantiser<TSample>::Limit(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (std::abs(m_levels[i]) <= m_nLimit) continue;
        ++m_nClipped;
        m_levels[i] = std::isnan(m_levels[i]) ? 0 : std::clamp(m_levels[i], -m_nFullScale, m_nFullScale);
    }
}

template <typename TSample>
void CRequantiser<TSample>::AddDither(std::size_t count) {
    switch (m_eDither) {
        case EDither::None:
            return;
        case EDither::Rectangular:
        case EDither::Triangular:
            return m_noise.AddTo(m_levels.data(), count);
        case EDither::Shaped:
            return Shape(count);
    }
}

// Rounds already: what is fed back is the error before the samples are limited to the range, which stays small.
template <typename TSample>
void CRequantiser<TSample>::Shape(std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const double shaped = m_shaper.Shape(m_levels[i]);
        const double rounded = std::floor(shaped + m_noise.Next() + 0.5);
        m_shaper.Keep(rounded - shaped);
        m_levels[i] = static_cast<TSample>(rounded);
    }
}

template <typename TSample>
void CRequantiser<TSample>::Restart() {
    m_noise.Restart();
    m_shaper.Restart();
}

template class CRequantiser<float>;
template class CRequantiser<double>;
