// Which conversions exist and what each takes. [any thread]
#pragma once

#include <cstdint>
#include <string>

#include "plugins/soxr/ResamplingQuality.h"
#include "stream/WavFormat.h"

// A conversion that WhyNotConvertible finds nothing against.
struct SConversionPlan {
    SWavFormat m_from;
    SWavFormat m_to;
    EResamplingQuality m_eQuality = EResamplingQuality::High;

    bool Resamples() const { return m_from.nSampleRate != m_to.nSampleRate; }
    bool MixesDown() const { return m_from.nChannels > m_to.nChannels; }
    bool Duplicates() const { return m_from.nChannels < m_to.nChannels; }

    // Channels between the mix-down and the duplication.
    int WorkingChannels() const { return Duplicates() ? m_from.nChannels : m_to.nChannels; }

    // Bits that a sample may use before it is requantised; the mean of two samples needs one more than they do.
    int WorkingBits() const {
        if (Resamples()) return 32;
        return m_from.nBitsPerSample + (MixesDown() ? 1 : 0);
    }

    // Length of the whole output: the exact quotient, halves up.
    std::uint64_t OutputFrames(std::uint64_t inputFrames) const {
        const auto from = static_cast<std::uint64_t>(m_from.nSampleRate);
        const auto to = static_cast<std::uint64_t>(m_to.nSampleRate);
        return (2 * inputFrames * to + from) / (2 * from);
    }
};

// What stands against the conversion, for a person to read; empty when it exists.
std::string WhyNotConvertible(const SHeldWavFormat& from, const SHeldWavFormat& to);
