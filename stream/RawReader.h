// The raw PCM face of a source, its position and its block layout.
#pragma once

#include <cstdint>

#include "com/Status.h"
#include "com/Unknown.h"
#include "stream/WavFormat.h"

// Implemented by decoder streams and by CSrcConvAggregator; called by hosts.
// One stream is driven by one thread at a time. [stream-thread]
class IAudioRawReader : public IUnknown {
public:
    // The format of the bytes that RawRead delivers; constant from open to release.
    virtual SWavFormat GetRawFormat() = 0;

    // Fills `buffer` with at most `size` bytes, always whole sample frames, and stores the count in `*read`.
    // `state` is 0 while more data follows; a read that returns no bytes and a nonzero state is the end.
    // False: nothing was read; the reason, if any, goes out through `status` (the caller releases it).
    virtual bool RawRead(unsigned char* buffer, int size, int* read, EAudioRawState& state, IStatus** status) = 0;

    // Total length in bytes of GetRawFormat(); 0 when unknown.
    virtual std::uint64_t GetRawLen() = 0;

protected:
    ~IAudioRawReader() = default;
};

// Implemented by decoder streams and by CSrcConvAggregator; called by hosts. [stream-thread]
class IAudioRawBlockInfo : public IUnknown {
public:
    // Current position in sample frames.
    virtual std::uint64_t GetPos() = 0;

    // Bytes per sample frame.
    virtual std::int64_t GetBlockSize() = 0;

    // Total length in sample frames; 0 when unknown.
    virtual std::uint64_t GetDataLength() = 0;

protected:
    ~IAudioRawBlockInfo() = default;
};
