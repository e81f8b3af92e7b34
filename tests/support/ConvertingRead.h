// What a converting source asks of its decoder, in the source's own arithmetic.
#pragma once

#include "stream/WavFormat.h"

constexpr int kLargestConvertingRead = 215040;
constexpr int kSmallestConvertingRead = 12;

// Bytes of `from` for a caller's buffer of `size` bytes of `to`; 0 when the buffer is refused as too small.
inline int ConvertingReadRequest(const SWavFormat& from, const SWavFormat& to, int size) {
    const float byteRatio = static_cast<float>(ByteRateOf(from)) / static_cast<float>(ByteRateOf(to));
    const float request = static_cast<float>(size - 16) * byteRatio;
    if (request > static_cast<float>(kLargestConvertingRead)) return kLargestConvertingRead;
    if (request < 16) return 0;
    return static_cast<int>(request) / 12 * 12;
}
