// The raw PCM face of a target.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"
#include "stream/WavFormat.h"

// Implemented by encoder streams and by CTargetAggregator; called by hosts.
// One stream is driven by one thread at a time. [stream-thread]
class IAudioRawWriter : public IUnknown {
public:
    // Takes `size` bytes of GetRawFormat(), whole sample frames; `data` is only read. `state` is the host's mark of
    // the last block (nonzero) and may be answered by the encoder.
    // False: the bytes were not taken; the reason goes out through `status` (the caller releases it).
    virtual bool RawWrite(unsigned char* data, int size, EAudioRawState& state, IStatus** status) = 0;

    // The format that RawWrite accepts; constant from creation to release.
    virtual SWavFormat GetRawFormat() = 0;

protected:
    ~IAudioRawWriter() = default;
};
