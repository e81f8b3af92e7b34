// One conversion: what the author of a convertor writes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "sdk/ByteQueue.h"
#include "stream/WavFormat.h"

// Takes frames of one format and appends frames of another to `output`. Every operation may throw: what() is the reason
// that a person reads, and the stream is broken until Restart. [stream-thread]
class CConversion {
public:
    CConversion() = default;
    virtual ~CConversion() = default;

    CConversion(const CConversion&) = delete;
    CConversion& operator=(const CConversion&) = delete;

    // Appends what is ready; the rest may wait inside.
    virtual void Write(const unsigned char* data, std::int64_t frames, CByteQueue& output) = 0;

    // The input is at its end. Appends what waits inside, and may stop as soon as `output` holds `frames` frames: it is
    // called again while somebody asks for more. Appends nothing once all is out.
    virtual void Finish(std::int64_t /*frames*/, CByteQueue& /*output*/) {}

    // A new stream begins; what waits inside is dropped.
    virtual void Restart() {}

    // Samples of single channels that were limited to the range of the output.
    virtual std::uint64_t GetClippedSamples() const { return 0; }
};
