// Packed PCM to and from 32-bit samples. [any thread]
#pragma once

#include <cstddef>
#include <cstdint>

// 8-bit samples are unsigned, wider ones signed little-endian; `bits` is 8, 16, 24 or 32.
// In memory a sample is left-justified: full scale is that of std::int32_t at every width.

// Exact at every width.
void UnpackSamples(const unsigned char* packed, std::size_t count, int bits, std::int32_t* samples);

// Keeps the upper `bits` bits and drops the rest; exact for samples that were requantised to `bits`.
void PackSamples(const std::int32_t* samples, std::size_t count, int bits, unsigned char* packed);
