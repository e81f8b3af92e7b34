// Which conversions exist.
#include "plugins/soxr/ConversionPlan.h"

namespace {

constexpr int kHighestRate = 768000;
constexpr int kMostChannels = 8;

// Measured: libsoxr 0.1.3 never returns for slightly larger factors than this.
constexpr int kLargestRateFactor = 1 << 19;

bool IsRate(int rate) { return rate >= 1 && rate <= kHighestRate; }

bool IsWidth(int bits) { return bits == 8 || bits == 16 || bits == 24 || bits == 32; }

bool AreRates(int from, int to) { return IsRate(from) && IsRate(to) && to / from <= kLargestRateFactor; }

bool AreChannels(int from, int to) {
    if (from == to) return from >= 1 && from <= kMostChannels;
    return (from == 1 && to == 2) || (from == 2 && to == 1);
}

std::string CannotMap(int from, const std::string& what, int to) {
    return "cannot map " + std::to_string(from) + what + " to " + std::to_string(to);
}

}  // namespace

std::string WhyNotConvertible(const SHeldWavFormat& from, const SHeldWavFormat& to) {
    const SWavFormat& source = from.m_format;
    const SWavFormat& target = to.m_format;
    if (from.m_nQualifier != 0 || to.m_nQualifier != 0) {
        return "cannot map format qualifier " + std::to_string(from.m_nQualifier) + " to " +
               std::to_string(to.m_nQualifier);
    }
    if (!AreRates(source.nSampleRate, target.nSampleRate)) {
        return CannotMap(source.nSampleRate, " Hz", target.nSampleRate);
    }
    if (!IsWidth(source.nBitsPerSample) || !IsWidth(target.nBitsPerSample)) {
        return CannotMap(source.nBitsPerSample, " bits", target.nBitsPerSample);
    }
    if (!AreChannels(source.nChannels, target.nChannels)) {
        return CannotMap(source.nChannels, " channels", target.nChannels);
    }
    return {};
}
