// The samples' way through one conversion.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "plugins/soxr/ByteQueue.h"
#include "plugins/soxr/ConversionPlan.h"
#include "plugins/soxr/Requantiser.h"
#include "plugins/soxr/Resampler.h"

// Packed bytes in; unpack, mix down, resample, requantise, duplicate, pack; packed bytes out, into a queue.
// Throws std::runtime_error when the resampler fails and std::bad_alloc; Restart makes the object usable again.
// One object belongs to one thread.
class CConversion {
public:
    explicit CConversion(const SConversionPlan& plan);

    // Converts what is ready; the start of a frame waits for its rest.
    void Write(const unsigned char* data, std::size_t bytes);

    // The input is at its end: makes output until `frames` frames wait or all of the stream is out.
    void Finish(std::size_t frames);

    // Begins a new stream; what waits is dropped.
    void Restart();

    std::size_t FramesWaiting() const { return m_queue.Size() / m_nOutputBytes; }

    // Hands out the first `frames` waiting frames, valid until the next Write or Finish.
    unsigned char* Take(std::size_t frames) { return m_queue.Take(frames * m_nOutputBytes); }

private:
    static constexpr std::size_t kLargestFrame = 32;  // 8 channels of 32 bits

    std::size_t CompletePartialFrame(const unsigned char* data, std::size_t bytes);
    void ConvertFrames(const unsigned char* data, std::size_t frames);
    void ResampleBlock(const std::int32_t* samples, std::size_t frames);
    void Emit(std::vector<std::int32_t>& samples, std::size_t frames);

    SConversionPlan m_plan;
    std::size_t m_nInputBytes;   // per frame
    std::size_t m_nOutputBytes;  // per frame
    std::optional<CResampler> m_resampler;
    CRequantiser m_requantiser;
    std::vector<std::int32_t> m_input;
    std::vector<std::int32_t> m_output;
    CByteQueue m_queue;
    std::array<unsigned char, kLargestFrame> m_partialFrame{};
    std::size_t m_nPartialBytes = 0;
    std::uint64_t m_nFramesIn = 0;
    std::uint64_t m_nFramesOut = 0;
};
