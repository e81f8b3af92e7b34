// Formats and lengths in words.
#pragma once

#include <cstdint>
#include <string>

#include "stream/WavFormat.h"

// "44100 Hz, 16 bits, 2 channels".
std::string FormatText(const SWavFormat& format);

// "67584 frames, 1.532 s"; `frames` are sample frames. The decimal point does not follow the locale.
std::string LengthText(std::uint64_t frames, std::int32_t sampleRate);
