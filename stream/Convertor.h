// Sample format convertors and their factory.
#pragma once

#include "com/Status.h"
#include "com/Unknown.h"
#include "stream/WavFormat.h"

// Implemented by convertor plug-ins; driven by one aggregator. [stream-thread]
class IAudioConvertor : public IUnknown {
public:
    // Takes `size` bytes of input; `data` is only read and `flags` is 0. The aggregators ignore the result.
    // 0 bytes say that the input is at its end: each such call hands out a further piece of what is still inside.
    virtual bool Convert(unsigned char* data, int size, int flags, IStatus** status) = 0;

    // Bytes of output that the last Convert made; a negative number after a failure makes the aggregator's read or
    // write fail as well.
    virtual int GetOutputLength() = 0;

    // Those bytes, owned by the convertor, valid until its next Convert.
    virtual unsigned char* GetOutputData() = 0;

protected:
    ~IAudioConvertor() = default;
};

// Implemented by convertor plug-ins or by the host; held by the manager, one at a time.
class IConvertorFactory : public IUnknown {
public:
    // Never called.
    virtual void ReservedFirst() = 0;

    // Builds a convertor, which the caller releases. Both formats are held formats: the format qualifier stands
    // directly behind each record. False or no convertor: the formats cannot be converted. [stream-thread]
    virtual bool CreateConvertor(const SWavFormat* from, const SWavFormat* to, IAudioConvertor** convertor,
                                 IStatus** status) = 0;

protected:
    ~IConvertorFactory() = default;
};
