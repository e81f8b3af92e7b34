// An encoder stream at work.
#include "host/validate/Sink.h"

#include <algorithm>
#include <utility>

#include "com/InterfaceIds.h"
#include "host/FailureText.h"
#include "host/PluginSession.h"
#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"

namespace {

// What hosts most often have.
constexpr SWavFormat kCommonFormats[] = {{44100, 16, 2}, {48000, 16, 2}, {44100, 16, 1}, {8000, 16, 1}, {48000, 24, 2}};

}  // namespace

std::string SOutputCase::GetLabel() const { return m_encoder.m_strLabel + " for ." + m_strExtension; }

std::vector<SOutputCase> OutputCases(CTrial& trial) {
    TellStep("asking the encoders for their extensions");
    std::vector<SOutputCase> cases;
    for (const SComponent& encoder : trial.Components(ACT_ENCODER)) {
        if (!CComPtr<IAudioTargetOpener>::Query(encoder.m_pComponent.Get(), IID_IAudioTargetOpener)) continue;
        for (const std::string& extension : ExtensionsOf(*encoder.m_pComponent)) cases.push_back({encoder, extension});
    }
    if (cases.empty()) throw CSkipped("no encoder opens targets for an extension that it lists");
    return cases;
}

CComPtr<IAudioTarget> OpenTarget(const SOutputCase& output, const std::string& path) {
    TellStep("OpenTarget of " + output.GetLabel());
    const auto opener = CComPtr<IAudioTargetOpener>::Query(output.m_encoder.m_pComponent.Get(), IID_IAudioTargetOpener);
    Expect(static_cast<bool>(opener), "no IAudioTargetOpener");
    CComPtr<IAudioTarget> target;
    CComPtr<IStatus> status;
    const bool opened = opener->OpenTarget(path.c_str(), output.m_strExtension.c_str(), target.Out(), status.Out());
    Expect(opened, "no target: " + StatusText(status.Get(), "no reason", path));
    Expect(static_cast<bool>(target), "OpenTarget says true and stores no target");
    return target;
}

CComPtr<IUnknown> CreateStream(IAudioTarget& target) {
    TellStep("GetTargetFactory");
    IURLAudioTargetFactory* const factory = target.GetTargetFactory();
    Expect(factory != nullptr, "GetTargetFactory gives none");
    std::string reason;
    for (const SWavFormat& format : kCommonFormats) {
        TellStep("CreateTarget");
        CComPtr<IUnknown> stream;
        CComPtr<IStatus> status;
        const bool created = factory->CreateTarget(stream.Out(), format, status.Out());
        Expect(!created || stream, "CreateTarget says true and stores no stream");
        if (created) return stream;
        reason = StatusText(status.Get(), "no reason", "");
    }
    throw CFinding("CreateTarget refuses every common format, the last one so: " + reason);
}

CSink::CSink(const SOutputCase& output, const std::string& path) : CSink(OpenTarget(output, path)) {}

CSink::CSink(CComPtr<IAudioTarget> target) : CSink(target, CreateStream(*target)) {}

CSink::CSink(CComPtr<IAudioTarget> target, CComPtr<IUnknown> stream)
    : m_pTarget(std::move(target)), m_pStream(std::move(stream)) {
    TellStep("QueryInterface of an encoder stream");
    m_pProcess = CComPtr<IProcess>::Query(m_pStream.Get(), IID_IProcess);
    m_pWriter = CComPtr<IAudioRawWriter>::Query(m_pStream.Get(), IID_IAudioRawWriter);
    Expect(m_pProcess && m_pWriter, "the stream lacks one of IProcess and IAudioRawWriter");
}

SWavFormat CSink::Format() const {
    TellStep("GetRawFormat of an encoder stream");
    return m_pWriter->GetRawFormat();
}

void CSink::Start() {
    TellStep("Start of an encoder stream");
    CComPtr<IStatus> status;
    const bool started = m_pProcess->Start(status.Out());
    Expect(started, "Start says false: " + StatusText(status.Get(), "no reason", ""));
}

void CSink::Write(CBytes sound, std::int64_t blockFrames) {
    const auto blockBytes = static_cast<std::size_t>(blockFrames * BlockSizeOf(Format()));
    for (std::size_t done = 0; done < sound.size();) {
        const std::size_t size = std::min(blockBytes, sound.size() - done);
        TellStep("RawWrite of " + std::to_string(size) + " bytes");
        EAudioRawState state = done + size == sound.size() ? ARS_END : ARS_MORE;
        CComPtr<IStatus> status;
        const bool taken = m_pWriter->RawWrite(sound.data() + done, static_cast<int>(size), state, status.Out());
        Expect(taken, "RawWrite says false: " + StatusText(status.Get(), "no reason", ""));
        done += size;
    }
}

void CSink::End() {
    TellStep("End of an encoder stream");
    CComPtr<IStatus> status;
    const bool ended = m_pProcess->End(status.Out());
    Expect(ended, "End says false: " + StatusText(status.Get(), "no reason", ""));
}

void CSink::WriteSample(std::int64_t blockFrames) {
    Start();
    Write(MakeSound(Format(), kSampleFrames), blockFrames);
    End();
}

void ForEachOutput(CTrial& trial, const std::function<void(const SOutputCase&, const std::string&)>& examine) {
    int number = 0;
    for (const SOutputCase& output : OutputCases(trial)) {
        try {
            examine(output, trial.Scratch("output-" + std::to_string(number++) + "." + output.m_strExtension));
        } catch (const CFinding& finding) {
            throw CFinding(output.GetLabel() + ": " + finding.what());
        }
    }
}
