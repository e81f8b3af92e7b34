// Reduction of 32-bit samples to a narrower width.
#include "plugins/soxr/Requantiser.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int kWidestDithered = 16;

// Rounds each sample plus `noise()` to a multiple of 2^dropped, halves up.
template <typename TNoise>
void Round(std::int32_t* samples, std::size_t count, unsigned dropped, TNoise noise) {
    const std::int64_t step = std::int64_t{1} << dropped;
    const std::int64_t half = step / 2;
    const std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    const std::int64_t highest = std::numeric_limits<std::int32_t>::max() - (step - 1);
    for (std::size_t i = 0; i < count; ++i) {
        const std::int64_t rounded = (samples[i] + half + noise()) & -step;
        samples[i] = static_cast<std::int32_t>(std::clamp(rounded, lowest, highest));
    }
}

}  // namespace

CRequantiser::CRequantiser(int workingBits, int targetBits)
    : m_nDropped(workingBits > targetBits ? static_cast<unsigned>(32 - targetBits) : 0),
      m_bDithers(targetBits <= kWidestDithered) {}

void CRequantiser::Apply(std::int32_t* samples, std::size_t count) {
    if (m_nDropped == 0) return;
    if (m_bDithers) {
        Round(samples, count, m_nDropped, [this] { return m_dither.Next(m_nDropped); });
    } else {
        Round(samples, count, m_nDropped, [] { return std::int64_t{0}; });
    }
}
