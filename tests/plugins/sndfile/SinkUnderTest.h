// Encoder streams of the plug-in for the tests.
#pragma once

#include <string>

#include "stream/AudioTargetOpener.h"
#include "stream/RawWriter.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"

inline bool OpenSink(const std::string& path, const std::string& extension, const SWavFormat& format, IUnknown** stream,
                     IStatus** status) {
    const auto opener = CComPtr<IAudioTargetOpener>::Query(Component(1).Get(), IID_IAudioTargetOpener);
    CComPtr<IAudioTarget> target;
    return opener->OpenTarget(path.c_str(), extension.c_str(), target.Out(), status) &&
           target->GetTargetFactory()->CreateTarget(stream, format, status);
}

// An encoder stream that is not started, and its faces.
struct SSink {
    SSink(const std::string& path, const std::string& extension, const SWavFormat& format) {
        EXPECT_TRUE(OpenSink(path, extension, format, m_stream.Out(), nullptr));
        m_process = CComPtr<IProcess>::Query(m_stream.Get(), IID_IProcess);
        m_writer = CComPtr<IAudioRawWriter>::Query(m_stream.Get(), IID_IAudioRawWriter);
    }

    bool Write(const std::string& samples, IStatus** status = nullptr) {
        EAudioRawState state = ARS_MORE;
        std::string data = samples;
        return m_writer->RawWrite(reinterpret_cast<unsigned char*>(data.data()), static_cast<int>(data.size()), state,
                                  status);
    }

    CComPtr<IUnknown> m_stream;
    CComPtr<IProcess> m_process;
    CComPtr<IAudioRawWriter> m_writer;
};
