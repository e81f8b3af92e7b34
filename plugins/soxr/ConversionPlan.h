// Which conversions exist and what each takes. [any thread]
#pragma once

#include <algorithm>
#include <cstdint>
#include <string>

#include "plugins/soxr/ConversionSettings.h"
#include "stream/WavFormat.h"

constexpr bool HasFloatSamples(const SHeldWavFormat& format) { return format.m_nQualifier == kFloatSamples; }

// A conversion that WhyNotConvertible finds nothing against.
struct SConversionPlan {
    SHeldWavFormat m_from;
    SHeldWavFormat m_to;
    EResamplingQuality m_eQuality = EResamplingQuality::High;
    EDither m_eDither = EDither::Triangular;

    int FromRate() const { return m_from.m_format.nSampleRate; }
    int ToRate() const { return m_to.m_format.nSampleRate; }
    int FromChannels() const { return m_from.m_format.nChannels; }
    int ToChannels() const { return m_to.m_format.nChannels; }

    bool Resamples() const { return FromRate() != ToRate(); }
    bool MixesDown() const { return FromChannels() > ToChannels(); }

    // Channels between the mix-down and the duplication.
    int WorkingChannels() const { return std::min(FromChannels(), ToChannels()); }

    // Whether samples may need more bits than the target has. The mean of two samples needs one bit more than they do.
    bool LosesBits() const {
        if (HasFloatSamples(m_to)) return false;
        if (HasFloatSamples(m_from) || Resamples() || (MixesDown() && FromChannels() > 2)) return true;
        return m_from.m_format.nBitsPerSample + (MixesDown() ? 1 : 0) > m_to.m_format.nBitsPerSample;
    }

    // Length of the whole output: the exact quotient, halves up.
    std::uint64_t OutputFrames(std::uint64_t inputFrames) const {
        const auto from = static_cast<std::uint64_t>(FromRate());
        const auto to = static_cast<std::uint64_t>(ToRate());
        return (2 * inputFrames * to + from) / (2 * from);
    }
};

// What stands against the conversion, for a person to read; empty when it exists.
std::string WhyNotConvertible(const SHeldWavFormat& from, const SHeldWavFormat& to);
