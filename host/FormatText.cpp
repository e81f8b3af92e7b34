// Formats and lengths in words.
#include "host/FormatText.h"

#include <cmath>

namespace {

std::string RateText(const SWavFormat& format) { return std::to_string(format.nSampleRate) + " Hz, "; }

std::string ChannelsText(const SWavFormat& format) {
    return std::to_string(format.nChannels) + (format.nChannels == 1 ? " channel" : " channels");
}

std::string TwoDigits(long long number) { return std::to_string(100 + number).substr(1); }

}  // namespace

std::string FormatText(const SWavFormat& format) {
    return RateText(format) + std::to_string(format.nBitsPerSample) + " bits, " + ChannelsText(format);
}

std::string FormatText(const SHeldWavFormat& format) {
    if (format.m_nQualifier != kFloatSamples) return FormatText(format.m_format);
    return RateText(format.m_format) + "32-bit float, " + ChannelsText(format.m_format);
}

std::string ClockText(double seconds) {
    const auto whole = static_cast<long long>(std::ceil(seconds));
    const std::string minutesAndSeconds = std::to_string(whole / 60 % 60) + ":" + TwoDigits(whole % 60);
    if (whole < 3600) return minutesAndSeconds;
    return std::to_string(whole / 3600) + ":" + TwoDigits(whole / 60 % 60) + ":" + TwoDigits(whole % 60);
}

std::string SecondsText(std::uint64_t frames, std::int32_t sampleRate) {
    const auto rate = static_cast<std::uint64_t>(sampleRate);
    return std::to_string(frames / rate) + "." + std::to_string(1000 + frames % rate * 1000 / rate).substr(1);
}

std::string LengthText(std::uint64_t frames, std::int32_t sampleRate) {
    const std::string count = std::to_string(frames) + (frames == 1 ? " frame" : " frames");
    return sampleRate <= 0 ? count : count + ", " + SecondsText(frames, sampleRate) + " s";
}
