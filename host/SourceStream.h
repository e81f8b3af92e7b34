// One source, opened and read through the manager.
#pragma once

#include <cstdint>
#include <string>

#include "com/ComPtr.h"
#include "host/PluginSession.h"
#include "host/RunningProcess.h"
#include "host/SourceName.h"
#include "stream/RawReader.h"

// Every failure is a CFailure that names the source, the reason and, once decoders were asked, who they are.
// One thread. [stream-thread]
class CSourceStream {
public:
    // `wanted` is the format to deliver, null for the source's own.
    CSourceStream(const CPluginSession& session, const CSourceName& name, const SWavFormat* wanted);

    // The format that Read delivers.
    SWavFormat GetFormat() const;

    // Announced length in sample frames of GetFormat(), 0 when unknown. The manager computes it in single precision:
    // beyond 2^24 frames it is rounded.
    std::uint64_t GetAnnouncedFrames() const;

    void Start();

    // Fills the buffer with the next bytes and returns their count; 0 is the end.
    int Read(unsigned char* buffer, int size);

    void End();

private:
    static CComPtr<IUnknown> Open(const CPluginSession& session, const CSourceName& name, const SWavFormat* wanted);

    CSourceStream(const CPluginSession& session, const CSourceName& name, const CComPtr<IUnknown>& stream);

    template <typename TCall>
    auto Ask(const TCall& call) const;

    int ReadOnce(unsigned char* buffer, int size, EAudioRawState& state);

    [[noreturn]] void Fail(const std::string& reason) const;

    const CPluginSession& m_session;
    const CSourceName& m_name;
    CComPtr<IAudioRawReader> m_pReader;
    CComPtr<IAudioRawBlockInfo> m_pBlockInfo;
    CRunningProcess m_process;
};
