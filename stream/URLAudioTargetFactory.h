// Creation of encoder streams.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"
#include "stream/WavFormat.h"

// Implemented by hosts and encoder plug-ins; called by the manager's CreateURLAudioTarget. Not counted: it lives as
// long as whoever supplies it says.
class IURLAudioTargetFactory {
public:
    // Never called.
    virtual void ReservedFirst() = 0;
    virtual void ReservedSecond() = 0;

    // Stores an encoder stream, with one reference that the caller owns, for samples of `format`. The encoder may
    // accept another format and says so through GetRawFormat; the target aggregator converts.
    // False: the reason goes out through `status` (the caller releases it). [stream-thread]
    virtual bool CreateTarget(IUnknown** stream, const SWavFormat& format, IStatus** status) = 0;

protected:
    ~IURLAudioTargetFactory() = default;
};
