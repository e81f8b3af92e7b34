// How many samples a conversion has clipped.
#pragma once

#include <cstdint>

#include "com/Unknown.h"

// Implemented by convertors that limit samples to the range of their output (asked of IAudioConvertor); called by
// hosts. [stream-thread]
class IClippingCount : public IUnknown {
public:
    // Samples of single channels since the convertor was made.
    virtual std::uint64_t GetClippedSamples() = 0;

protected:
    ~IClippingCount() = default;
};
