// A codec's samples as packed little-endian PCM.
#pragma once

#include <cstdint>

#include "plugins/libav/LibavObjects.h"
#include "stream/WavFormat.h"

// Writes `count` frames of the block, from its frame `first` on, in the format that OutputFormatOf gave for such
// blocks. Integers keep their upper bytes; floats are rounded to the nearest of 16 bits and clipped, without dither.
void PackSamples(const AVFrame& block, std::int64_t first, std::int64_t count, const SHeldWavFormat& format,
                 unsigned char* out);
