// Packed samples to and from samples by channel. [any thread]
#pragma once

#include <cstddef>
#include <cstdint>

// Packed integers of 8 bits are unsigned, wider ones signed little-endian; `bits` is 8, 16, 24 or 32. Packed floats
// have 32 bits. In memory a sample is a float or a double with full scale from -1 to 1.

// One address for each of `channels` channels. Exact, but for integers of 32 bits in a float, which has only 24.
template <typename TSample>
void UnpackIntegers(const unsigned char* packed, std::size_t frames, std::size_t channels, int bits,
                    TSample* const* samples);

template <typename TSample>
void UnpackFloats(const unsigned char* packed, std::size_t frames, std::size_t channels, TSample* const* samples);

// Two addresses may be the same. The integers are within the range of `bits`.
void PackIntegers(const std::int32_t* const* samples, std::size_t frames, std::size_t channels, int bits,
                  unsigned char* packed);

template <typename TSample>
void PackFloats(const TSample* const* samples, std::size_t frames, std::size_t channels, unsigned char* packed);
