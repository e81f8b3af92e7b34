// Convertor factories: what they make and what they refuse.
#include "com/FeatureSupport.h"
#include "com/InterfaceIds.h"
#include "host/validate/Checks.h"
#include "host/validate/ConvertorRun.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"
#include "host/validate/Steps.h"

namespace {

CComPtr<IAudioConvertor> Create(IConvertorFactory& factory, const SConversionCase& conversion) {
    std::string reason;
    CComPtr<IAudioConvertor> convertor = CreateConvertor(factory, conversion, reason);
    Expect(static_cast<bool>(convertor), "refused: " + reason);
    return convertor;
}

// Made without ever giving a convertor back: whether references come with them is another check's question.
void ForEachMade(CTrial& trial, const std::function<void(IAudioConvertor* convertor)>& examine) {
    ForEachFactory(trial, [&](IConvertorFactory& factory) {
        const SConversionCase conversion = FirstOffered(factory);
        examine(Create(factory, conversion).Detach());
    });
}

void CreatesConvertors(CTrial& trial) {
    ForEachMade(trial, [](IAudioConvertor* /*convertor*/) {});
}

void GivesReference(CTrial& trial) {
    ForEachMade(trial, [](IAudioConvertor* convertor) { ExpectOwnReference(*convertor); });
}

void EndsWithLastRelease(CTrial& trial) {
    ForEachMade(trial, [](IAudioConvertor* convertor) { ExpectLastRelease(convertor); });
}

void RefusesNullArguments(CTrial& trial) {
    ForEachFactory(trial, [](IConvertorFactory& factory) {
        const SConversionCase conversion = FirstOffered(factory);
        const SWavFormat* const from = &conversion.m_from.m_format;
        const SWavFormat* const to = &conversion.m_to.m_format;
        IAudioConvertor* convertor = nullptr;
        TellStep("CreateConvertor with a null first format");
        Expect(!factory.CreateConvertor(nullptr, to, &convertor, nullptr), "true for a null first format");
        TellStep("CreateConvertor with a null second format");
        Expect(!factory.CreateConvertor(from, nullptr, &convertor, nullptr), "true for a null second format");
        TellStep("CreateConvertor with a null out-pointer");
        Expect(!factory.CreateConvertor(from, to, nullptr, nullptr), "true for a null out-pointer");
    });
}

constexpr SHeldWavFormat kPossible = {{44100, 16, 2}, 0};
constexpr SHeldWavFormat kImpossible[] = {
    {{0, 16, 2}, 0}, {{-1, -1, -1}, 0}, {{44100, 0, 2}, 0}, {{44100, 16, 0}, 0}, {{44100, 16, 2}, 12345}};

void ExpectRefused(IConvertorFactory& factory, const SConversionCase& conversion) {
    TellStep("CreateConvertor from " + conversion.GetLabel());
    const std::string label = conversion.GetLabel() + ": ";
    const SWavFormat* const from = &conversion.m_from.m_format;
    const SWavFormat* const to = &conversion.m_to.m_format;
    IAudioConvertor* convertor = nullptr;
    CComPtr<IStatus> status;
    Expect(!factory.CreateConvertor(from, to, &convertor, status.Out()), label + "true");
    Expect(convertor == nullptr, label + "refused, and a convertor is stored all the same");
    Expect(static_cast<bool>(status), label + "refused without a status");
    Expect(!factory.CreateConvertor(from, to, &convertor, nullptr), label + "true when nobody asks for a status");
}

void RefusesImpossibleFormats(CTrial& trial) {
    ForEachFactory(trial, [](IConvertorFactory& factory) {
        for (const SHeldWavFormat& impossible : kImpossible) {
            ExpectRefused(factory, {impossible, kPossible});
            ExpectRefused(factory, {kPossible, impossible});
        }
    });
}

void TellsFeatures(CTrial& trial) {
    constexpr auto kUnknownFeature = static_cast<EAudioFeature>(99);
    bool found = false;
    ForEachFactory(trial, [&](IConvertorFactory& factory) {
        const auto features = CComPtr<IFeatureSupport>::Query(&factory, IID_IFeatureSupport);
        if (!features) return;
        found = true;
        TellStep("IsSupported and EnableSupport");
        Expect(!features->IsSupported(kUnknownFeature), "IsSupported says true for feature 99");
        Expect(!features->EnableSupport(kUnknownFeature, true), "EnableSupport says true for feature 99");
    });
    if (!found) throw CSkipped("its factories have no IFeatureSupport");
}

// What AF_ADVANCED_FORMATS promises: the manager lets sources of float samples come then.
void ConvertsWhatItSupports(CTrial& trial) {
    constexpr SHeldWavFormat kFloat = {{44100, 32, 2}, kFloatSamples};
    bool found = false;
    ForEachFactory(trial, [&](IConvertorFactory& factory) {
        const auto features = CComPtr<IFeatureSupport>::Query(&factory, IID_IFeatureSupport);
        if (!features || !features->IsSupported(AF_ADVANCED_FORMATS)) return;
        found = true;
        std::string reason;
        Expect(static_cast<bool>(CreateConvertor(factory, {kFloat, kPossible}, reason)),
               "supports advanced formats and refuses float samples: " + reason);
    });
    if (!found) throw CSkipped("its factories do not support advanced formats");
}

}  // namespace

CCheckList ConvertorChecks() {
    return {
        {"convertor/creates", "The factory creates a convertor for a common pair of formats.", CONCERN_CONVERTOR,
         "component/initialize", CreatesConvertors},
        {"convertor/reference", "A convertor comes with a reference that the caller owns.", CONCERN_CONVERTOR,
         "convertor/creates", GivesReference},
        {"convertor/last-release", "A convertor ends with its last Release, which answers 0.", CONCERN_CONVERTOR,
         "convertor/reference", EndsWithLastRelease},
        {"convertor/null-arguments", "The factory refuses null formats and a null out-pointer.", CONCERN_CONVERTOR,
         "convertor/last-release", RefusesNullArguments},
        {"convertor/impossible-formats", "The factory refuses formats that nothing can have, with a status.",
         CONCERN_CONVERTOR, "convertor/last-release", RefusesImpossibleFormats},
        {"convertor/features", "The factory supports no feature that it does not know.", CONCERN_CONVERTOR,
         "convertor/last-release", TellsFeatures},
        {"convertor/advanced-formats", "A factory that supports advanced formats converts float samples.",
         CONCERN_CONVERTOR, "convertor/last-release", ConvertsWhatItSupports},
    };
}
