// One output stream, created and written through the manager.
#pragma once

#include <string>

#include "com/ComPtr.h"
#include "host/PluginSession.h"
#include "host/RunningProcess.h"
#include "stream/AudioTargetOpener.h"
#include "stream/RawWriter.h"

// Where the encoder writes and what for.
struct STargetPlace {
    std::string m_strOutput;     // the name for messages
    std::string m_strPath;       // the file that is written
    std::string m_strExtension;  // chooses the file format
};

// Every failure is a CFailure that names the output. One thread. [stream-thread]
class CTargetStream {
public:
    // `format` is the format of the bytes that Write takes. Nothing is written before Start.
    CTargetStream(const CPluginSession& session, IAudioTargetOpener& encoder, STargetPlace place,
                  const SWavFormat& format);

    CTargetStream(const CTargetStream&) = delete;
    CTargetStream& operator=(const CTargetStream&) = delete;

    // The format of the samples in the file.
    const SWavFormat& GetFileFormat() const { return m_fileFormat; }

    void Start();

    // `data` holds whole sample frames.
    void Write(unsigned char* data, int size);

    void End();

private:
    CComPtr<IAudioTarget> OpenTarget(IAudioTargetOpener& encoder) const;
    CComPtr<IUnknown> CreateStream();
    bool Converts() const;
    void CoverConvertor() const;

    const CPluginSession& m_session;
    STargetPlace m_place;
    SWavFormat m_format;
    SWavFormat m_fileFormat{};
    // Lives longer than the encoder that its factory makes.
    CComPtr<IAudioTarget> m_pTarget;
    CComPtr<IUnknown> m_pStream;
    CComPtr<IAudioRawWriter> m_pWriter;
    CRunningProcess m_process;
};
