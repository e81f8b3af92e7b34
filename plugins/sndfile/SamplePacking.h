// Samples of the codec as packed little-endian PCM and back.
#pragma once

#include <cstddef>

// The upper `bytes` bytes of each sample, lowest first; 8-bit samples are unsigned in `out`.
void PackIntegers(const int* samples, std::size_t count, int bytes, unsigned char* out);

// Rounded to 16 bits; what is beyond full scale is clipped and what is no number is silence.
void PackRounded(const float* samples, std::size_t count, unsigned char* out);

// IEEE 754 binary32.
void PackFloats(const float* samples, std::size_t count, unsigned char* out);

// Samples of `bytes` bytes moved to the top of integers; 8-bit samples are unsigned in `data`.
void UnpackIntegers(const unsigned char* data, std::size_t count, int bytes, int* samples);

// The same as numbers from -1 to below 1.
void UnpackFloats(const unsigned char* data, std::size_t count, int bytes, float* samples);
