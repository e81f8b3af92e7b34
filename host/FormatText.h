// Formats and lengths in words.
#pragma once

#include <cstdint>
#include <string>

#include "stream/WavFormat.h"

// "44100 Hz, 16 bits, 2 channels".
std::string FormatText(const SWavFormat& format);

// The same, with "32-bit float" for float samples.
std::string FormatText(const SHeldWavFormat& format);

// "1:02:03", or "2:03" below an hour; whole seconds, rounded up.
std::string ClockText(double seconds);

// "1.532"; the decimal point does not follow the locale.
std::string SecondsText(std::uint64_t frames, std::int32_t sampleRate);

// "67584 frames, 1.532 s"; `frames` are sample frames. The decimal point does not follow the locale.
std::string LengthText(std::uint64_t frames, std::int32_t sampleRate);
