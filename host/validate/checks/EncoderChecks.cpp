// How encoders open targets and make streams.
#include <filesystem>

#include "com/Aggregatable.h"
#include "com/InterfaceIds.h"
#include "host/FormatText.h"
#include "host/validate/Checks.h"
#include "host/validate/FormatRules.h"
#include "host/validate/Outcome.h"
#include "host/validate/References.h"
#include "host/validate/Sink.h"
#include "host/validate/Steps.h"

namespace {

void OpensTargets(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) { OpenTarget(output, path).Detach(); });
}

void RefusesOtherExtensions(CTrial& trial) {
    ForEachOutput(trial, [&](const SOutputCase& output, const std::string& /*path*/) {
        const auto opener =
            CComPtr<IAudioTargetOpener>::Query(output.m_encoder.m_pComponent.Get(), IID_IAudioTargetOpener);
        TellStep("OpenTarget for an extension that nobody lists");
        const std::string path = trial.Scratch("x.kelo-no-such");
        IAudioTarget* target = nullptr;
        CComPtr<IStatus> status;
        Expect(!opener->OpenTarget(path.c_str(), "kelo-no-such", &target, status.Out()),
               "opens a target for \"kelo-no-such\"");
        Expect(target == nullptr, "refuses \"kelo-no-such\" and stores a target all the same");
        Expect(static_cast<bool>(status), "refuses \"kelo-no-such\" without a status");
        Expect(!opener->OpenTarget(path.c_str(), "kelo-no-such", &target, nullptr),
               "opens a target for \"kelo-no-such\" when nobody asks for a status");
    });
}

void GivesTargetReference(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        ExpectOwnReference(*OpenTarget(output, path).Detach());
    });
}

void KeepsFactory(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        const CComPtr<IAudioTarget> target = OpenTarget(output, path);
        TellStep("GetTargetFactory");
        IURLAudioTargetFactory* const factory = target->GetTargetFactory();
        Expect(factory != nullptr, "GetTargetFactory gives none");
        Expect(target->GetTargetFactory() == factory, "GetTargetFactory gives another one the second time");
    });
}

void CreatesStreams(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        CreateStream(*OpenTarget(output, path).Detach()).Detach();
    });
}

void GivesStreamReference(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        ExpectOwnReference(*CreateStream(*OpenTarget(output, path).Detach()).Detach());
    });
}

void EndsWithLastRelease(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        IAudioTarget* const target = OpenTarget(output, path).Detach();
        ExpectLastRelease(CreateStream(*target).Detach());
        ExpectLastRelease(target);
    });
}

void HasInterfaces(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        const CSink sink(output, path);
        Expect(static_cast<bool>(CComPtr<IAggregatable>::Query(&sink.Stream(), IID_IAggregatable)),
               "the stream lacks IAggregatable");
    });
}

void HasSaneFormat(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        ExpectSaneFormat(CSink(output, path).Format());
    });
}

constexpr SWavFormat kImpossibleFormats[] = {{0, 16, 2},     {-1, -1, -1},        {44100, 0, 2},
                                             {44100, 16, 0}, {44100, 16, 100000}, {2147483647, 16, 2}};

// A target may also take an impossible format and accept a possible one instead.
void ExpectRefusedOrMended(IURLAudioTargetFactory& factory, const SWavFormat& format) {
    TellStep("CreateTarget for " + FormatText(format));
    const std::string label = FormatText(format) + ": ";
    IUnknown* stream = nullptr;
    CComPtr<IStatus> status;
    if (factory.CreateTarget(&stream, format, status.Out())) {
        Expect(stream != nullptr, label + "true, and no stream is stored");
        const auto writer = CComPtr<IAudioRawWriter>::Query(stream, IID_IAudioRawWriter);
        Expect(static_cast<bool>(writer), label + "its stream lacks interface " + std::to_string(IID_IAudioRawWriter));
        ExpectSaneFormat(writer->GetRawFormat());
        return;
    }
    Expect(stream == nullptr, label + "refused, and a stream is stored all the same");
    Expect(static_cast<bool>(status), label + "refused without a status");
    Expect(!factory.CreateTarget(&stream, format, nullptr), label + "taken when nobody asks for a status");
}

void RefusesImpossibleFormats(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        const CComPtr<IAudioTarget> target = OpenTarget(output, path);
        for (const SWavFormat& format : kImpossibleFormats) {
            ExpectRefusedOrMended(*target->GetTargetFactory(), format);
        }
    });
}

void WritesNothingBeforeStart(CTrial& trial) {
    ForEachOutput(trial, [](const SOutputCase& output, const std::string& path) {
        const CSink sink(output, path);
        Expect(!std::filesystem::exists(path), "the file is there before Start");
    });
}

}  // namespace

CCheckList EncoderChecks() {
    return {
        {"encoder/opens-target", "An encoder opens a target for every extension that it lists.", CONCERN_ENCODER,
         "extensions/named", OpensTargets},
        {"encoder/unknown-extension", "An encoder refuses other extensions with a status and stores no target.",
         CONCERN_ENCODER, "encoder/opens-target", RefusesOtherExtensions},
        {"encoder/target-reference", "A target comes with a reference that the caller owns.", CONCERN_ENCODER,
         "encoder/opens-target", GivesTargetReference},
        {"encoder/factory", "A target has one factory.", CONCERN_ENCODER, "encoder/target-reference", KeepsFactory},
        {"encoder/creates-stream", "The factory creates a stream for a common format.", CONCERN_ENCODER,
         "encoder/factory", CreatesStreams},
        {"encoder/stream-reference", "A created stream comes with a reference that the caller owns.", CONCERN_ENCODER,
         "encoder/creates-stream", GivesStreamReference},
        {"encoder/last-release", "Stream and target end with their last Release, which answers 0.", CONCERN_ENCODER,
         "encoder/stream-reference", EndsWithLastRelease},
        {"encoder/interfaces", "A stream has IProcess, IAudioRawWriter and IAggregatable.", CONCERN_ENCODER,
         "encoder/last-release", HasInterfaces},
        {"encoder/format", "The accepted format has a rate, whole bytes in its samples and channels.", CONCERN_ENCODER,
         "encoder/interfaces", HasSaneFormat},
        {"encoder/impossible-formats",
         "A format that nothing can have is refused with a status, or a possible one is accepted instead.",
         CONCERN_ENCODER, "encoder/format", RefusesImpossibleFormats},
        {"encoder/nothing-before-start", "No file is there before the stream starts.", CONCERN_ENCODER,
         "encoder/format", WritesNothingBeforeStart},
    };
}
