// A convertor at work.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "com/ComPtr.h"
#include "host/validate/LoadedPlugin.h"
#include "host/validate/SampleSound.h"
#include "host/validate/Trial.h"
#include "stream/Convertor.h"

// One conversion that a factory may offer.
struct SConversionCase {
    SHeldWavFormat m_from;
    SHeldWavFormat m_to;

    std::string GetLabel() const;

    // Frames of the whole output for kSampleFrames frames of input, exactly.
    double ExpectedFrames() const;
};

// A conversion that keeps the format.
constexpr SConversionCase kSameFormat = {{{44100, 16, 2}, 0}, {{44100, 16, 2}, 0}};

CComPtr<IConvertorFactory> FactoryOf(const SComponent& convertor);

// Empty when the factory refuses; what it says goes into `reason`.
CComPtr<IAudioConvertor> CreateConvertor(IConvertorFactory& factory, const SConversionCase& conversion,
                                         std::string& reason);

// The first of the common conversions that the factory offers; the convertor that was made to find out is not given
// back. Throws CFinding when it offers none of them.
SConversionCase FirstOffered(IConvertorFactory& factory);

// All of them.
std::vector<SConversionCase> OfferedConversions(IConvertorFactory& factory);

// Output of one call, checked: a length below 0, output without data and broken frames are findings.
CBytes ConvertOnce(IAudioConvertor& convertor, const SConversionCase& conversion, const unsigned char* data, int size);

// What comes out at the end of the input, call by call until a call yields nothing.
CBytes ConvertTail(IAudioConvertor& convertor, const SConversionCase& conversion);

// The sample sound in pieces of `pieceBytes` bytes, with the tail.
CBytes ConvertSample(IAudioConvertor& convertor, const SConversionCase& conversion, int pieceBytes);

// One frame more or less than expected is none too few or too many.
void ExpectLength(const CBytes& output, const SConversionCase& conversion);

// Calls `examine` with a fresh convertor for each offered conversion of each convertor component; findings come out
// with the names of both.
void ForEachConversion(
    CTrial& trial, const std::function<void(IConvertorFactory& factory, const SConversionCase& conversion)>& examine);

// Calls `examine` for the factory of each convertor component.
void ForEachFactory(CTrial& trial, const std::function<void(IConvertorFactory& factory)>& examine);
