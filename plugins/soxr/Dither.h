// Noise that makes the rounding error independent of the signal.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "plugins/soxr/ConversionSettings.h"
#include "plugins/soxr/RandomLanes.h"

// White noise in steps of the target, one value per sample. Each channel has a series of its own, the same after each
// Restart. One object belongs to one thread.
class CDitherNoise {
public:
    // Rectangular noise is spread evenly over half a step on either side of 0; any other is triangular, the sum of two
    // such values: the mean is 0, the peak just below one step.
    CDitherNoise(EDither kind, std::size_t channel);

    void Restart();

    double Next() {
        if (m_nUsed == m_noise.size()) Refill();
        return static_cast<double>(m_noise[m_nUsed++]);
    }

    // Adds the next value to each of `levels`.
    template <typename TSample>
    void AddTo(TSample* levels, std::size_t count);

private:
    static constexpr std::size_t kBlock = 256;

    void Refill();

    bool m_bRectangular;
    std::size_t m_nChannel;
    CRandomLanes m_random;
    std::array<float, kBlock> m_noise{};
    std::size_t m_nUsed = kBlock;
};
