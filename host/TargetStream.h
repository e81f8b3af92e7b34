// One output stream, created and written through the manager.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "com/ComPtr.h"
#include "host/PluginSession.h"
#include "host/RunningProcess.h"
#include "host/Tags.h"
#include "stream/AudioTargetOpener.h"
#include "stream/RawWriter.h"

// Names and values for the encoder's INamedSettings, in the order of the command line.
using CTargetSettings = std::vector<std::pair<std::string, std::string>>;

// What is written, where and by whom.
struct STargetRequest {
    CComPtr<IAudioTargetOpener> m_pEncoder;
    std::string m_strOutput;     // the name for messages
    std::string m_strPath;       // the file that is written
    std::string m_strExtension;  // chooses the file format
    CTargetSettings m_settings;
    CTagTexts m_tags;
};

// Opens the target and gives it the settings. Throws CFailure, naming the output. Nothing is written. [stream-thread]
CComPtr<IAudioTarget> OpenTarget(const STargetRequest& request);

// Every failure is a CFailure that names the output. One thread. [stream-thread]
class CTargetStream {
public:
    // `format` is the format of the bytes that Write takes. Nothing is written before Start.
    CTargetStream(const CPluginSession& session, STargetRequest request, const SWavFormat& format);

    CTargetStream(const CTargetStream&) = delete;
    CTargetStream& operator=(const CTargetStream&) = delete;

    // The format of the samples in the file.
    const SWavFormat& GetFileFormat() const { return m_fileFormat; }

    // What is lost besides the samples; empty for nothing.
    const std::string& GetWarning() const { return m_strWarning; }

    void Start();

    // `data` holds whole sample frames.
    void Write(unsigned char* data, int size);

    void End();

private:
    CComPtr<IAudioTarget> Open();
    CComPtr<IUnknown> CreateStream();

    // `what` comes before the reason that the status tells.
    [[noreturn]] void Fail(const std::string& what, IStatus* status,
                           const std::string& otherwise = "its encoder tells no reason") const;

    const CPluginSession& m_session;
    STargetRequest m_request;
    SWavFormat m_format;
    SWavFormat m_fileFormat{};
    std::string m_strWarning;
    // Lives longer than the encoder that its factory makes.
    CComPtr<IAudioTarget> m_pTarget;
    CComPtr<IUnknown> m_pStream;
    CComPtr<IAudioRawWriter> m_pWriter;
    CRunningProcess m_process;
};
