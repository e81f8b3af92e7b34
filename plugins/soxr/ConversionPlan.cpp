// Which conversions exist.
#include "plugins/soxr/ConversionPlan.h"

#include "plugins/soxr/ChannelMap.h"

namespace {

constexpr int kHighestRate = 768000;

// Measured: libsoxr 0.1.3 never returns for slightly larger factors than this.
constexpr int kLargestRateFactor = 1 << 19;

bool IsRate(int rate) { return rate >= 1 && rate <= kHighestRate; }

bool IsWidth(int bits) { return bits == 8 || bits == 16 || bits == 24 || bits == 32; }

bool IsQualifier(int qualifier) { return qualifier == kIntegerSamples || qualifier == kFloatSamples; }

bool AreRates(int from, int to) { return IsRate(from) && IsRate(to) && to / from <= kLargestRateFactor; }

std::string CannotMap(int from, const std::string& what, int to) {
    return "cannot map " + std::to_string(from) + what + " to " + std::to_string(to);
}

}  // namespace

std::string WhyNotConvertible(const SHeldWavFormat& from, const SHeldWavFormat& to) {
    const SWavFormat& source = from.m_format;
    const SWavFormat& target = to.m_format;
    if (!IsQualifier(from.m_nQualifier) || !IsQualifier(to.m_nQualifier)) {
        return "cannot map format qualifier " + std::to_string(from.m_nQualifier) + " to " +
               std::to_string(to.m_nQualifier);
    }
    if (!AreRates(source.nSampleRate, target.nSampleRate)) {
        return CannotMap(source.nSampleRate, " Hz", target.nSampleRate);
    }
    if (!IsWidth(source.nBitsPerSample) || !IsWidth(target.nBitsPerSample)) {
        return CannotMap(source.nBitsPerSample, " bits", target.nBitsPerSample);
    }
    for (const SHeldWavFormat& format : {from, to}) {
        if (HasFloatSamples(format) && format.m_format.nBitsPerSample != 32) {
            return "cannot map float samples of " + std::to_string(format.m_format.nBitsPerSample) +
                   " bits, only of 32";
        }
    }
    if (source.nChannels > kMostChannels || target.nChannels > kMostChannels) {
        return CannotMap(source.nChannels, " channels", target.nChannels) + "; there may be at most " +
               std::to_string(kMostChannels);
    }
    if (!AreMappedChannels(source.nChannels, target.nChannels)) {
        return CannotMap(source.nChannels, " channels", target.nChannels) +
               "; channels are kept, mixed down to 2 or 1, " + "or doubled from 1 to 2";
    }
    return {};
}
