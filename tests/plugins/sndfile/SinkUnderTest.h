// Encoder streams of the plug-in for the tests.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "com/NamedSettings.h"
#include "stream/AudioTargetOpener.h"
#include "stream/RawWriter.h"
#include "stream/TargetTags.h"
#include "tests/plugins/sndfile/PluginUnderTest.h"

// A target that is about to be written, and its faces.
struct STarget {
    STarget(const std::string& path, const std::string& extension) {
        const auto opener = CComPtr<IAudioTargetOpener>::Query(Component(1).Get(), IID_IAudioTargetOpener);
        EXPECT_TRUE(opener->OpenTarget(path.c_str(), extension.c_str(), m_target.Out(), nullptr));
        m_tags = CComPtr<ITargetTags>::Query(m_target.Get(), IID_ITargetTags);
        m_settings = CComPtr<INamedSettings>::Query(m_target.Get(), IID_INamedSettings);
    }

    void Set(const std::string& name, const std::string& value) const {
        CComPtr<IStatus> status;
        EXPECT_TRUE(m_settings->SetSetting(name.c_str(), value.c_str(), status.Out()))
            << (status ? status->GetDescription() : "");
    }

    bool CreateStream(const SWavFormat& format, IUnknown** stream, IStatus** status) const {
        return m_target->GetTargetFactory()->CreateTarget(stream, format, status);
    }

    CComPtr<IAudioTarget> m_target;
    CComPtr<ITargetTags> m_tags;
    CComPtr<INamedSettings> m_settings;
};

inline bool OpenSink(const std::string& path, const std::string& extension, const SWavFormat& format, IUnknown** stream,
                     IStatus** status) {
    const auto opener = CComPtr<IAudioTargetOpener>::Query(Component(1).Get(), IID_IAudioTargetOpener);
    CComPtr<IAudioTarget> target;
    return opener->OpenTarget(path.c_str(), extension.c_str(), target.Out(), status) &&
           target->GetTargetFactory()->CreateTarget(stream, format, status);
}

// An encoder stream that is not started, and its faces.
struct SSink {
    SSink(const std::string& path, const std::string& extension, const SWavFormat& format)
        : SSink(STarget(path, extension), format) {}

    SSink(const STarget& target, const SWavFormat& format) {
        CComPtr<IStatus> status;
        EXPECT_TRUE(target.CreateStream(format, m_stream.Out(), status.Out()))
            << (status ? status->GetDescription() : "");
        m_process = CComPtr<IProcess>::Query(m_stream.Get(), IID_IProcess);
        m_writer = CComPtr<IAudioRawWriter>::Query(m_stream.Get(), IID_IAudioRawWriter);
    }

    bool Write(const std::string& samples, IStatus** status = nullptr) {
        EAudioRawState state = ARS_MORE;
        std::string data = samples;
        return m_writer->RawWrite(reinterpret_cast<unsigned char*>(data.data()), static_cast<int>(data.size()), state,
                                  status);
    }

    // Start, all samples in blocks of `frames`, End.
    void WriteAll(const std::string& samples, std::size_t frames = 7001) {
        CComPtr<IStatus> status;
        const auto reason = [&status] { return status ? status->GetDescription() : ""; };
        ASSERT_TRUE(m_process->Start(status.Out())) << reason();
        const std::size_t block = static_cast<std::size_t>(BlockSizeOf(m_writer->GetRawFormat())) * frames;
        for (std::size_t at = 0; at < samples.size(); at += block) {
            ASSERT_TRUE(Write(samples.substr(at, block), status.Out())) << reason();
        }
        ASSERT_TRUE(m_process->End(status.Out())) << reason();
    }

    CComPtr<IUnknown> m_stream;
    CComPtr<IProcess> m_process;
    CComPtr<IAudioRawWriter> m_writer;
};

using CNamedValues = std::vector<std::pair<std::string, std::string>>;

// Writes a whole file; `format` must be one that the file takes.
inline void WriteSound(const std::string& path, const std::string& extension, const SWavFormat& format,
                       const std::string& samples, const CNamedValues& settings = {}) {
    const STarget target(path, extension);
    for (const auto& setting : settings) target.Set(setting.first, setting.second);
    SSink(target, format).WriteAll(samples);
}
