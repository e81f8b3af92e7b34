// What convertors deliver.
#include "com/InterfaceIds.h"
#include "host/validate/Checks.h"
#include "host/validate/ConvertorRun.h"
#include "host/validate/FormatRules.h"
#include "host/validate/MemorySource.h"
#include "host/validate/Outcome.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"
#include "stream/ClippingCount.h"
#include "stream/SrcConvAggregator.h"

namespace {

constexpr int kUsualPiece = 12 * 1024;

CComPtr<IAudioConvertor> Create(IConvertorFactory& factory, const SConversionCase& conversion) {
    std::string reason;
    return CreateConvertor(factory, conversion, reason);
}

void DeliversWholeFrames(CTrial& trial) {
    ForEachConversion(trial, [](IConvertorFactory& factory, const SConversionCase& conversion) {
        const CComPtr<IAudioConvertor> convertor = Create(factory, conversion);
        const CBytes sound = MakeSound(conversion.m_from.m_format, kSampleFrames);
        TellStep("Convert of " + std::to_string(sound.size()) + " bytes");
        ConvertOnce(*convertor, conversion, sound.data(), static_cast<int>(sound.size()));
    });
}

void EndsItsTail(CTrial& trial) {
    ForEachConversion(trial, [](IConvertorFactory& factory, const SConversionCase& conversion) {
        ConvertSample(*Create(factory, conversion), conversion, kUsualPiece);
    });
}

void KeepsLength(CTrial& trial) {
    ForEachConversion(trial, [](IConvertorFactory& factory, const SConversionCase& conversion) {
        ExpectLength(ConvertSample(*Create(factory, conversion), conversion, kUsualPiece), conversion);
    });
}

void TakesAnyPieces(CTrial& trial) {
    ForEachConversion(trial, [](IConvertorFactory& factory, const SConversionCase& conversion) {
        for (const int piece : {1, 1021}) {
            try {
                ExpectLength(ConvertSample(*Create(factory, conversion), conversion, piece), conversion);
            } catch (const CFinding& finding) {
                throw CFinding("in pieces of " + std::to_string(piece) + " bytes, " + finding.what());
            }
        }
    });
}

void KeepsSameFormat(CTrial& trial) {
    bool found = false;
    ForEachFactory(trial, [&](IConvertorFactory& factory) {
        const CComPtr<IAudioConvertor> convertor = Create(factory, kSameFormat);
        if (!convertor) return;
        found = true;
        const CBytes sound = MakeSound(kSameFormat.m_from.m_format, kSampleFrames);
        const CBytes output = ConvertSample(*convertor, kSameFormat, kUsualPiece);
        Expect(output == sound, "with the format kept, " + DifferenceText(sound, output));
    });
    if (!found) throw CSkipped("no factory offers a conversion that keeps the format");
}

void LeavesInputAlone(CTrial& trial) {
    ForEachConversion(trial, [](IConvertorFactory& factory, const SConversionCase& conversion) {
        const CBytes sound = MakeSound(conversion.m_from.m_format, kSampleFrames);
        const CBytes before = sound;
        ConvertOnce(*Create(factory, conversion), conversion, sound.data(), static_cast<int>(sound.size()));
        Expect(sound == before, "of the input, " + DifferenceText(before, sound));
    });
}

// Convertors may dither: only one that repeats itself alone can be held to it beside another.
void KeepsConvertorsApart(CTrial& trial) {
    ForEachConversion(trial, [](IConvertorFactory& factory, const SConversionCase& conversion) {
        const CBytes alone = ConvertSample(*Create(factory, conversion), conversion, kUsualPiece);
        const bool repeats = alone == ConvertSample(*Create(factory, conversion), conversion, kUsualPiece);
        const CComPtr<IAudioConvertor> other = Create(factory, conversion);
        const CBytes sound = MakeSound(conversion.m_from.m_format, 2000);
        ConvertOnce(*other, conversion, sound.data(), static_cast<int>(sound.size()));
        const CBytes beside = ConvertSample(*Create(factory, conversion), conversion, kUsualPiece);
        Expect(beside.size() == alone.size() && (!repeats || beside == alone),
               "beside another convertor, " + DifferenceText(alone, beside));
    });
}

CBytes ReadConverted(CTrial& trial, const SConversionCase& conversion, int size) {
    IUnknown* stream = MakeMemorySource(conversion.m_from.m_format, kSampleFrames).Detach();
    TellStep("wrapping a source");
    auto* const wrapped = new CSrcConvAggregator(&trial.Manager(), &stream, &conversion.m_to.m_format);
    Expect(wrapped->IsValid(), "the library's source does not come about");
    CSource source(CComPtr<IUnknown>::Adopt(stream));
    source.Start();
    CBytes output = source.ReadToEnd({size});
    source.End();
    return output;
}

void WorksInsideSource(CTrial& trial) {
    ForEachConversion(trial, [&](IConvertorFactory& factory, const SConversionCase& conversion) {
        trial.Manager().SetConvertor(&factory, nullptr);
        for (const int size : {65532, 1000}) {
            try {
                ExpectLength(ReadConverted(trial, conversion, size), conversion);
            } catch (const CFinding& finding) {
                throw CFinding("read through the library's source in portions of " + std::to_string(size) + " bytes, " +
                               finding.what());
            }
        }
    });
}

// The sample sound stays at half of full scale.
void CountsNoClipping(CTrial& trial) {
    bool found = false;
    ForEachConversion(trial, [&](IConvertorFactory& factory, const SConversionCase& conversion) {
        const CComPtr<IAudioConvertor> convertor = Create(factory, conversion);
        const auto count = CComPtr<IClippingCount>::Query(convertor.Get(), IID_IClippingCount);
        if (!count) return;
        found = true;
        ConvertSample(*convertor, conversion, kUsualPiece);
        TellStep("GetClippedSamples");
        const std::uint64_t clipped = count->GetClippedSamples();
        Expect(clipped == 0, std::to_string(clipped) + " samples of a sound at half of full scale are clipped");
    });
    if (!found) throw CSkipped("its convertors have no IClippingCount");
}

}  // namespace

CCheckList ConversionChecks() {
    return {
        {"convertor/output", "The output has a length of whole frames, with data for them.", CONCERN_CONVERTOR,
         "convertor/last-release", DeliversWholeFrames},
        {"convertor/tail", "After the end of the input, what is left comes out in a finite number of calls.",
         CONCERN_CONVERTOR, "convertor/output", EndsItsTail},
        {"convertor/length", "As much sound comes out as goes in, to one frame.", CONCERN_CONVERTOR, "convertor/tail",
         KeepsLength},
        {"convertor/any-pieces", "Nothing is lost when the input comes in pieces of any size, down to one byte.",
         CONCERN_CONVERTOR, "convertor/length", TakesAnyPieces},
        {"convertor/same-format", "A conversion that keeps the format keeps every byte.", CONCERN_CONVERTOR,
         "convertor/length", KeepsSameFormat},
        {"convertor/input-untouched", "Convert only reads its input.", CONCERN_CONVERTOR, "convertor/length",
         LeavesInputAlone},
        {"convertor/convertors-apart", "Two convertors do not disturb each other.", CONCERN_CONVERTOR,
         "convertor/length", KeepsConvertorsApart},
        {"convertor/inside-source", "Inside the library's source every read succeeds and no frame is lost.",
         CONCERN_CONVERTOR, "convertor/length", WorksInsideSource},
        {"convertor/clipping", "A sound at half of full scale clips nowhere.", CONCERN_CONVERTOR, "convertor/length",
         CountsNoClipping},
    };
}
