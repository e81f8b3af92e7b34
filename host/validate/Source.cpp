// A decoder stream at work.
#include "host/validate/Source.h"

#include <algorithm>
#include <utility>

#include "host/Encoders.h"
#include "host/FailureText.h"
#include "host/PluginSession.h"
#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"
#include "stream/FileOpener.h"

namespace {

// A decoder may deliver nothing for a while, but not for good.
constexpr int kMostEmptyReads = 1000;
constexpr std::size_t kMostBytes = std::size_t{1} << 28;

// Behind the buffer of each read.
constexpr std::size_t kGuardBytes = 64;
constexpr unsigned char kGuard = 0xA5;

bool IsEnabled(IAudioComponent& decoder) {
    const auto opener = CComPtr<IAudioFileOpener>::Query(&decoder, IID_IAudioFileOpener);
    return opener && (opener->GetOpenerState() & kOpenerEnabled) != 0;
}

struct SDecoder {
    SComponent m_component;
    std::vector<std::string> m_vExtensions;
};

std::vector<SDecoder> EnabledDecoders(CTrial& trial) {
    TellStep("asking the decoders for their extensions");
    std::vector<SDecoder> decoders;
    for (const SComponent& decoder : trial.Components(ACT_DECODER)) {
        if (!IsEnabled(*decoder.m_pComponent)) continue;
        decoders.push_back({decoder, ExtensionsOf(*decoder.m_pComponent)});
    }
    if (decoders.empty()) throw CSkipped("no decoder is enabled");
    return decoders;
}

std::vector<SSampleCase> CasesOf(const std::string& sample, const std::vector<SDecoder>& decoders) {
    std::vector<SSampleCase> listing;
    std::vector<SSampleCase> others;
    for (const SDecoder& decoder : decoders) {
        const bool lists = HasExtension(decoder.m_vExtensions, ExtensionOf(sample));
        (lists ? listing : others).push_back({decoder.m_component, sample});
    }
    return listing.empty() ? others : listing;
}

}  // namespace

std::string SSampleCase::GetLabel() const {
    return m_decoder.m_strLabel + " on " + m_strPath.substr(m_strPath.rfind('/') + 1);
}

bool ListsExtensionOf(const std::string& path, IAudioComponent& component) {
    return HasExtension(ExtensionsOf(component), ExtensionOf(path));
}

std::vector<SSampleCase> SampleCases(CTrial& trial) {
    const std::vector<SDecoder> decoders = EnabledDecoders(trial);
    std::vector<SSampleCase> cases;
    for (const std::string& sample : trial.Around().m_vSamples) {
        const std::vector<SSampleCase> further = CasesOf(sample, decoders);
        cases.insert(cases.end(), further.begin(), further.end());
    }
    if (cases.empty()) throw CSkipped("no sample for its decoders (--sample FILE names one)");
    return cases;
}

CComPtr<IUnknown> OpenSample(const SSampleCase& sample) {
    TellStep("Open of " + sample.GetLabel());
    const auto opener = CComPtr<IAudioFileOpener>::Query(sample.m_decoder.m_pComponent.Get(), IID_IAudioFileOpener);
    Expect(static_cast<bool>(opener), "no IAudioFileOpener");
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    const bool opened = opener->Open(sample.m_strPath.c_str(), stream.Out(), AUX_NONE, AUX_NONE, status.Out());
    Expect(opened, "not opened: " + StatusText(status.Get(), "no reason", sample.m_strPath));
    Expect(static_cast<bool>(stream), "Open says true and stores no stream");
    return stream;
}

CSource::CSource(CComPtr<IUnknown> stream) : m_pStream(std::move(stream)) {
    TellStep("QueryInterface of a source");
    m_pProcess = Face<IProcess>(IID_IProcess);
    m_pReader = Face<IAudioRawReader>(IID_IAudioRawReader);
    m_pBlocks = Face<IAudioRawBlockInfo>(IID_IAudioRawBlockInfo);
    Expect(m_pProcess && m_pReader && m_pBlocks,
           "the stream lacks one of IProcess, IAudioRawReader and IAudioRawBlockInfo");
}

SWavFormat CSource::Format() const {
    TellStep("GetRawFormat of a source");
    return m_pReader->GetRawFormat();
}

void CSource::Start() {
    TellStep("Start of a source");
    CComPtr<IStatus> status;
    const bool started = m_pProcess->Start(status.Out());
    Expect(started, "Start says false: " + StatusText(status.Get(), "no reason", ""));
}

void CSource::End() {
    TellStep("End of a source");
    CComPtr<IStatus> status;
    const bool ended = m_pProcess->End(status.Out());
    Expect(ended, "End says false: " + StatusText(status.Get(), "no reason", ""));
}

SReadResult CSource::Read(int size, CBytes& bytes) {
    TellStep("RawRead of " + std::to_string(size) + " bytes");
    const auto asked = static_cast<std::size_t>(size);
    bytes.assign(asked + kGuardBytes, kGuard);
    SReadResult result;
    CComPtr<IStatus> status;
    result.m_bDone = m_pReader->RawRead(bytes.data(), size, &result.m_nBytes, result.m_eState, status.Out());
    result.m_bKeptBounds =
        std::all_of(bytes.begin() + size, bytes.end(), [](unsigned char byte) { return byte == kGuard; });
    if (!result.m_bDone) {
        result.m_nBytes = 0;
        result.m_strReason = StatusText(status.Get(), "no reason", "");
    }
    Expect(result.m_nBytes >= 0 && result.m_nBytes <= size,
           "a read of " + std::to_string(size) + " bytes counts " + std::to_string(result.m_nBytes));
    bytes.resize(static_cast<std::size_t>(result.m_nBytes));
    return result;
}

CBytes CSource::ReadToEnd(const std::vector<int>& sizes) {
    CBytes sound;
    CBytes block;
    std::size_t turn = 0;
    for (int emptyReads = 0; emptyReads < kMostEmptyReads;) {
        const SReadResult result = Read(sizes[turn++ % sizes.size()], block);
        Expect(result.m_bDone,
               "RawRead says false after " + std::to_string(sound.size()) + " bytes: " + result.m_strReason);
        if (result.m_nBytes == 0 && result.m_eState != ARS_MORE) return sound;
        sound.insert(sound.end(), block.begin(), block.end());
        Expect(sound.size() <= kMostBytes, "no end after " + std::to_string(sound.size()) + " bytes");
        emptyReads = result.m_nBytes == 0 ? emptyReads + 1 : 0;
    }
    throw CFinding("after " + std::to_string(sound.size()) +
                   " bytes each read delivers nothing, and the state stays 0, which says that more follows");
}

CBytes CSource::ReadSome(std::size_t bytes) {
    CBytes sound;
    CBytes block;
    while (sound.size() < bytes) {
        const SReadResult result = Read(static_cast<int>(bytes - sound.size()), block);
        if (!result.m_bDone || result.m_nBytes == 0) break;
        sound.insert(sound.end(), block.begin(), block.end());
    }
    return sound;
}

void ForEachSample(CTrial& trial, const std::function<void(const SSampleCase&)>& examine) {
    for (const SSampleCase& sample : SampleCases(trial)) {
        try {
            examine(sample);
        } catch (const CFinding& finding) {
            throw CFinding(sample.GetLabel() + ": " + finding.what());
        }
    }
}

void ForEachSource(CTrial& trial, const std::function<void(CSource&)>& examine) {
    ForEachSample(trial, [&](const SSampleCase& sample) {
        CSource source(OpenSample(sample));
        examine(source);
    });
}

CBytes LinearSound(const SSampleCase& sample) {
    CSource source(OpenSample(sample));
    source.Start();
    CBytes sound = source.ReadToEnd();
    source.End();
    return sound;
}
