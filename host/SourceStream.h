// One source, opened and read through the manager.
#pragma once

#include <cstdint>

#include "com/ComPtr.h"
#include "host/PluginSession.h"
#include "host/RunningProcess.h"
#include "host/SourceName.h"
#include "stream/RawReader.h"

// Every failure is a CFailure that names the source. One thread. [stream-thread]
class CSourceStream {
public:
    // `wanted` is the format to deliver, null for the source's own.
    CSourceStream(const CPluginSession& session, const CSourceName& name, const SWavFormat* wanted);

    // The format that Read delivers.
    SWavFormat GetFormat() const { return m_pReader->GetRawFormat(); }

    // Announced length in sample frames of GetFormat(), 0 when unknown. The manager computes it in single precision:
    // beyond 2^24 frames it is rounded.
    std::uint64_t GetAnnouncedFrames() const { return m_pBlockInfo->GetDataLength(); }

    void Start();

    // Fills the buffer with the next bytes and returns their count; 0 is the end.
    int Read(unsigned char* buffer, int size);

    void End();

private:
    static CComPtr<IUnknown> Open(const CPluginSession& session, const CSourceName& name, const SWavFormat* wanted);

    CSourceStream(const CSourceName& name, const CComPtr<IUnknown>& stream);

    const CSourceName& m_name;
    CComPtr<IAudioRawReader> m_pReader;
    CComPtr<IAudioRawBlockInfo> m_pBlockInfo;
    CRunningProcess m_process;
};
