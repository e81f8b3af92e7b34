// Formats and lengths in words.
#include "host/FormatText.h"

std::string FormatText(const SWavFormat& format) {
    return std::to_string(format.nSampleRate) + " Hz, " + std::to_string(format.nBitsPerSample) + " bits, " +
           std::to_string(format.nChannels) + (format.nChannels == 1 ? " channel" : " channels");
}

std::string LengthText(std::uint64_t frames, std::int32_t sampleRate) {
    const std::string count = std::to_string(frames) + (frames == 1 ? " frame" : " frames");
    if (sampleRate <= 0) return count;
    const auto rate = static_cast<std::uint64_t>(sampleRate);
    const std::string thousandths = std::to_string(1000 + frames % rate * 1000 / rate).substr(1);
    return count + ", " + std::to_string(frames / rate) + "." + thousandths + " s";
}
