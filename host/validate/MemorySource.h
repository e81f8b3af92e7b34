// The validator's own source, for convertors.
#pragma once

#include "com/ComPtr.h"
#include "com/Unknown.h"
#include "stream/WavFormat.h"

// A decoder stream over MakeSound(format, frames) that the library can wrap.
CComPtr<IUnknown> MakeMemorySource(const SWavFormat& format, std::int64_t frames);
