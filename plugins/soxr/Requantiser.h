// Real samples to integers.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "plugins/soxr/ConversionSettings.h"
#include "plugins/soxr/Dither.h"
#include "plugins/soxr/NoiseShaper.h"

// The dither that a requantiser really adds: none to samples that fit and none to more than 16 bits, where rounding is
// far below what can be heard and played; no shaping where the rate leaves no room for it.
EDither EffectiveDither(EDither wanted, bool losesBits, int targetBits, int targetRate);

// One channel of a stream: rounds to the nearest integer, halves up, and limits to the range of the integers. Samples
// beyond full scale by more than half a step count as clipped. TSample is float or double with full scale from -1 to 1.
// One object belongs to one thread.
template <typename TSample>
class CRequantiser {
public:
    // `targetBits` is 8, 16, 24 or, with double, 32.
    CRequantiser(int targetBits, EDither dither, std::size_t channel);

    // What is not a number becomes silence.
    void Apply(const TSample* samples, std::size_t count, std::int32_t* integers);

    // Starts the dither anew.
    void Restart();

    std::uint64_t GetClippedSamples() const { return m_nClipped; }

private:
    static constexpr std::size_t kBlock = 256;  // divides by what Rounding.h takes at a time

    void Limit(std::size_t count);
    void AddDither(std::size_t count);
    void Shape(std::size_t count);

    TSample m_nFullScale;  // steps
    TSample m_nLimit;      // beyond it samples count as clipped
    EDither m_eDither;
    CDitherNoise m_noise;
    CNoiseShaper m_shaper;
    std::uint64_t m_nClipped = 0;
    std::array<TSample, kBlock> m_levels{};  // one block, in steps of the target
    std::array<std::int32_t, kBlock> m_rounded{};
};
