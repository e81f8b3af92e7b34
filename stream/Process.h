// The life of a stream.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"

// Implemented by decoder and encoder streams and by both aggregators; called by hosts.
// One stream is driven by one thread at a time. [stream-thread]
class IProcess : public IUnknown {
public:
    // Prepares for reading or writing. A reason for failure goes out through `status` (the caller releases it).
    virtual bool Start(IStatus** status) = 0;

    // Finishes and releases what Start acquired; called once per successful Start.
    virtual bool End(IStatus** status) = 0;

    // Whether the stream is between Start and End.
    virtual bool IsInProcess() = 0;

protected:
    ~IProcess() = default;
};
