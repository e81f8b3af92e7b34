// An encoder stream at work.
#pragma once

#include <functional>
#include <string>

#include "com/ComPtr.h"
#include "host/validate/LoadedPlugin.h"
#include "host/validate/SampleSound.h"
#include "host/validate/Trial.h"
#include "stream/AudioTargetOpener.h"
#include "stream/Process.h"
#include "stream/RawWriter.h"

// A kind of file that an encoder lists.
struct SOutputCase {
    SComponent m_encoder;
    std::string m_strExtension;

    std::string GetLabel() const;
};

// Every encoder with IAudioTargetOpener, with each extension that it lists. Throws CSkipped when there are none.
std::vector<SOutputCase> OutputCases(CTrial& trial);

// Throws CFinding when the encoder refuses.
CComPtr<IAudioTarget> OpenTarget(const SOutputCase& output, const std::string& path);

// An encoder stream for one of the common formats, the first that the target takes. Throws CFinding when it takes none.
CComPtr<IUnknown> CreateStream(IAudioTarget& target);

// A target, its stream and the two interfaces that drive it. Every operation throws CFinding when it fails.
// [stream-thread]
class CSink {
public:
    CSink(const SOutputCase& output, const std::string& path);
    explicit CSink(CComPtr<IAudioTarget> target);
    CSink(CComPtr<IAudioTarget> target, CComPtr<IUnknown> stream);

    IAudioTarget& Target() const { return *m_pTarget; }
    IUnknown& Stream() const { return *m_pStream; }
    IProcess& Process() const { return *m_pProcess; }
    IAudioRawWriter& Writer() const { return *m_pWriter; }

    SWavFormat Format() const;

    void Start();

    // In blocks of `blockFrames` frames.
    void Write(CBytes sound, std::int64_t blockFrames = 4096);

    void End();

    // The sound of kSampleFrames frames, from Start to End.
    void WriteSample(std::int64_t blockFrames = 4096);

private:
    CComPtr<IAudioTarget> m_pTarget;
    CComPtr<IUnknown> m_pStream;
    CComPtr<IProcess> m_pProcess;
    CComPtr<IAudioRawWriter> m_pWriter;
};

// Calls `examine` for every output case; findings come out with the case's label.
void ForEachOutput(CTrial& trial,
                   const std::function<void(const SOutputCase& output, const std::string& path)>& examine);
