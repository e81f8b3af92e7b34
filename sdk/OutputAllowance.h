// How much output one call may hand out.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "stream/WavFormat.h"

// A converting source with a buffer of `size` bytes asks its decoder for n <= (size - 16) * (from byte rate / to byte
// rate) bytes, computed in single precision, and drops the block when the output is longer than `size`. The n bytes
// of one call therefore permit n * (to byte rate / from byte rate) + 15 bytes of output, in whole frames.
// Constant after construction. [any thread]
class COutputAllowance {
public:
    // Both formats have frames of at least one byte and a positive rate.
    COutputAllowance(const SWavFormat& from, const SWavFormat& to)
        : m_nFromByteRate(ByteRateOf(from)), m_nToByteRate(ByteRateOf(to)), m_nFrameBytes(BlockSizeOf(to)) {}

    // Frames for a call with `inputBytes` bytes of input.
    std::int64_t Frames(int inputBytes) const {
        const std::int64_t scaled = inputBytes * m_nToByteRate;
        const std::int64_t headroom = std::max<std::int64_t>(0, kHeadroom - (scaled / m_nFromByteRate >> kFloatBits));
        const std::int64_t frames = (scaled + headroom * m_nFromByteRate) / (m_nFromByteRate * m_nFrameBytes);
        return std::min(frames, std::numeric_limits<int>::max() / m_nFrameBytes);
    }

    // Frames for a call at the end of the input, when the last call before it had `inputBytes` bytes: never less than
    // the smallest converting read permits, and never none.
    std::int64_t TailFrames(int inputBytes) const {
        return std::max({std::int64_t{1}, Frames(kSmallestRead), Frames(inputBytes)});
    }

private:
    // A converting source refuses to read when its buffer permits less than this.
    static constexpr int kSmallestRead = 16;

    // 16 bytes are kept free, one of them for the single-precision error, which grows by up to one byte every
    // 2^22 bytes of output.
    static constexpr std::int64_t kHeadroom = 15;
    static constexpr unsigned kFloatBits = 22;

    std::int64_t m_nFromByteRate;
    std::int64_t m_nToByteRate;
    std::int64_t m_nFrameBytes;
};
