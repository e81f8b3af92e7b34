// A convertor at work.
#include "host/validate/ConvertorRun.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "com/InterfaceIds.h"
#include "host/FailureText.h"
#include "host/FormatText.h"
#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"

namespace {

constexpr SConversionCase kCommonConversions[] = {
    {{{44100, 16, 2}, 0}, {{48000, 16, 2}, 0}}, {{{48000, 16, 2}, 0}, {{44100, 16, 2}, 0}},
    {{{44100, 16, 2}, 0}, {{44100, 24, 2}, 0}}, {{{44100, 24, 2}, 0}, {{44100, 16, 2}, 0}},
    {{{44100, 16, 2}, 0}, {{44100, 16, 1}, 0}}, {{{44100, 8, 1}, 0}, {{96000, 32, 2}, 0}},
};

// Input of no bytes comes with a pointer too.
constexpr unsigned char kNothing = 0;

constexpr int kMostTailCalls = 100000;
constexpr std::size_t kMostBytes = std::size_t{1} << 26;

std::string NumberText(std::size_t number) { return std::to_string(number); }

}  // namespace

std::string SConversionCase::GetLabel() const {
    return FormatText(m_from.m_format) + " to " + FormatText(m_to.m_format);
}

double SConversionCase::ExpectedFrames() const {
    return static_cast<double>(kSampleFrames) * m_to.m_format.nSampleRate / m_from.m_format.nSampleRate;
}

CComPtr<IConvertorFactory> FactoryOf(const SComponent& convertor) {
    const auto factory = CComPtr<IConvertorFactory>::Query(convertor.m_pComponent.Get(), IID_IConvertorFactory);
    Expect(static_cast<bool>(factory), "no IConvertorFactory");
    return factory;
}

CComPtr<IAudioConvertor> CreateConvertor(IConvertorFactory& factory, const SConversionCase& conversion,
                                         std::string& reason) {
    TellStep("CreateConvertor from " + conversion.GetLabel());
    CComPtr<IAudioConvertor> convertor;
    CComPtr<IStatus> status;
    const bool created =
        factory.CreateConvertor(&conversion.m_from.m_format, &conversion.m_to.m_format, convertor.Out(), status.Out());
    Expect(!created || convertor, "CreateConvertor says true and stores no convertor");
    reason = StatusText(status.Get(), "no reason", "");
    return created ? convertor : nullptr;
}

SConversionCase FirstOffered(IConvertorFactory& factory) {
    std::string reason;
    for (const SConversionCase& conversion : kCommonConversions) {
        if (CreateConvertor(factory, conversion, reason).Detach() != nullptr) return conversion;
    }
    throw CFinding("CreateConvertor refuses every common conversion, the last one so: " + reason);
}

std::vector<SConversionCase> OfferedConversions(IConvertorFactory& factory) {
    std::vector<SConversionCase> offered;
    std::string reason;
    for (const SConversionCase& conversion : kCommonConversions) {
        if (CreateConvertor(factory, conversion, reason)) offered.push_back(conversion);
    }
    return offered;
}

CBytes ConvertOnce(IAudioConvertor& convertor, const SConversionCase& conversion, const unsigned char* data, int size) {
    // The contract only reads the data.
    auto* const input = const_cast<unsigned char*>(data);
    CComPtr<IStatus> status;
    const bool done = convertor.Convert(input, size, 0, status.Out());
    Expect(done, "Convert says false: " + StatusText(status.Get(), "no reason", ""));
    const int length = convertor.GetOutputLength();
    Expect(length >= 0, "an output of " + std::to_string(length) + " bytes");
    const unsigned char* const output = convertor.GetOutputData();
    Expect(length == 0 || output != nullptr, "an output of " + std::to_string(length) + " bytes without data");
    const std::int64_t block = BlockSizeOf(conversion.m_to.m_format);
    Expect(length % block == 0,
           "an output of " + std::to_string(length) + " bytes in frames of " + std::to_string(block));
    return length == 0 ? CBytes() : CBytes(output, output + length);
}

CBytes ConvertTail(IAudioConvertor& convertor, const SConversionCase& conversion) {
    TellStep("Convert of no bytes, at the end of the input");
    CBytes tail;
    for (int call = 0; call < kMostTailCalls && tail.size() < kMostBytes; ++call) {
        const CBytes piece = ConvertOnce(convertor, conversion, &kNothing, 0);
        if (piece.empty()) return tail;
        tail.insert(tail.end(), piece.begin(), piece.end());
    }
    throw CFinding("after the end of the input no call yields nothing; " + NumberText(tail.size()) +
                   " bytes came out so far");
}

CBytes ConvertSample(IAudioConvertor& convertor, const SConversionCase& conversion, int pieceBytes) {
    const CBytes sound = MakeSound(conversion.m_from.m_format, kSampleFrames);
    TellStep("Convert of pieces of " + std::to_string(pieceBytes) + " bytes");
    CBytes output;
    for (std::size_t done = 0; done < sound.size();) {
        const std::size_t size = std::min(static_cast<std::size_t>(pieceBytes), sound.size() - done);
        const CBytes piece = ConvertOnce(convertor, conversion, sound.data() + done, static_cast<int>(size));
        output.insert(output.end(), piece.begin(), piece.end());
        done += size;
    }
    const CBytes tail = ConvertTail(convertor, conversion);
    output.insert(output.end(), tail.begin(), tail.end());
    return output;
}

void ExpectLength(const CBytes& output, const SConversionCase& conversion) {
    const auto block = static_cast<std::size_t>(BlockSizeOf(conversion.m_to.m_format));
    const std::size_t frames = output.size() / block;
    const double expected = conversion.ExpectedFrames();
    Expect(std::fabs(static_cast<double>(frames) - expected) <= 1,
           NumberText(frames) + " frames come out where " + std::to_string(std::lround(expected)) + " belong");
}

void ForEachFactory(CTrial& trial, const std::function<void(IConvertorFactory&)>& examine) {
    for (const SComponent& convertor : trial.Components(ACT_CONVERTOR)) {
        try {
            examine(*FactoryOf(convertor));
        } catch (const CFinding& finding) {
            throw CFinding(convertor.m_strLabel + ": " + finding.what());
        }
    }
}

void ForEachConversion(CTrial& trial, const std::function<void(IConvertorFactory&, const SConversionCase&)>& examine) {
    ForEachFactory(trial, [&](IConvertorFactory& factory) {
        for (const SConversionCase& conversion : OfferedConversions(factory)) {
            try {
                examine(factory, conversion);
            } catch (const CFinding& finding) {
                throw CFinding(conversion.GetLabel() + ": " + finding.what());
            }
        }
    });
}
