// The built plug-in, loaded as the manager loads it, and short roads to its decoder and streams.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "portable/DynamicLibrary.h"
#include "stream/FileOpener.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"
#include "tests/plugins/sndfile/AudioFiles.h"

struct SPluginEntries {
    bool (*m_pGetPrimary)(IAudioComponent**);
    bool (*m_pReadyToFinish)();
};

inline const SPluginEntries& Plugin() {
    static const SPluginEntries entries = [] {
        void* const module = LoadLibrary(KELO_LIBAV_PLUGIN);
        const auto primary = GetProcAddress(module, "KELO_PLUGIN_GetPrimaryAudioObject");
        const auto ready = GetProcAddress(module, "KELO_PLUGIN_ReadyToFinish");
        return SPluginEntries{reinterpret_cast<bool (*)(IAudioComponent**)>(primary),
                              reinterpret_cast<bool (*)()>(ready)};
    }();
    return entries;
}

inline CComPtr<IAudioComponent> Decoder() {
    CComPtr<IAudioComponent> decoder;
    EXPECT_TRUE(Plugin().m_pGetPrimary(decoder.Out()));
    return decoder;
}

// A file that make-media has made.
inline std::string Media(const std::string& name) { return std::string(KELO_MEDIA "/") + name; }

// Runs an operation with a status pointer; the result is the description of the status it stored, "" when none.
inline std::string ReasonOf(const std::function<bool(IStatus**)>& operation, bool expected = false) {
    CComPtr<IStatus> status;
    EXPECT_EQ(operation(status.Out()), expected);
    return status ? status->GetDescription() : "";
}

inline bool OpenSource(const std::string& path, IUnknown** stream, IStatus** status) {
    const auto opener = CComPtr<IAudioFileOpener>::Query(Decoder().Get(), IID_IAudioFileOpener);
    return opener->Open(path.c_str(), stream, AUX_CONVERT, AUX_NONE, status);
}

// The reason why the decoder does not open a file.
inline std::string RefusalOf(const std::string& path) {
    CComPtr<IUnknown> stream;
    return ReasonOf([&](IStatus** status) { return OpenSource(path, stream.Out(), status); });
}

// An open decoder stream that has been started, and its faces.
struct SSource {
    explicit SSource(const std::string& path) {
        CComPtr<IStatus> status;
        EXPECT_TRUE(OpenSource(path, m_stream.Out(), status.Out())) << (status ? status->GetDescription() : "");
        m_process = CComPtr<IProcess>::Query(m_stream.Get(), IID_IProcess);
        m_reader = CComPtr<IAudioRawReader>::Query(m_stream.Get(), IID_IAudioRawReader);
        m_blocks = CComPtr<IAudioRawBlockInfo>::Query(m_stream.Get(), IID_IAudioRawBlockInfo);
        m_seekable = CComPtr<ISeekable>::Query(m_stream.Get(), IID_ISeekable);
        m_info = CComPtr<IInfoReader>::Query(m_stream.Get(), IID_IInfoReader);
        m_index = CComPtr<IIndexArray>::Query(m_stream.Get(), IID_IIndexArray);
        EXPECT_TRUE(m_process->Start(nullptr));
    }

    // At most `most` bytes, fewer at the end and where a read fails; the reason goes to m_strFailure.
    std::string ReadOn(std::size_t most = ~std::size_t{0}) {
        const auto block = static_cast<std::size_t>(m_blocks->GetBlockSize());
        std::string samples;
        std::string buffer(4099 * block, '\0');
        m_strFailure.clear();
        while (samples.size() < most) {
            const int size = static_cast<int>(std::min(most - samples.size(), buffer.size()));
            int count = 0;
            EAudioRawState state = ARS_MORE;
            CComPtr<IStatus> status;
            if (!m_reader->RawRead(reinterpret_cast<unsigned char*>(buffer.data()), size, &count, state,
                                   status.Out())) {
                m_strFailure = status ? status->GetDescription() : "no reason";
                break;
            }
            EXPECT_EQ(state, count == 0 ? ARS_END : ARS_MORE);
            if (count == 0) break;
            samples.append(buffer, 0, static_cast<std::size_t>(count));
        }
        return samples;
    }

    CComPtr<IUnknown> m_stream;
    CComPtr<IProcess> m_process;
    CComPtr<IAudioRawReader> m_reader;
    CComPtr<IAudioRawBlockInfo> m_blocks;
    CComPtr<ISeekable> m_seekable;
    CComPtr<IInfoReader> m_info;
    CComPtr<IIndexArray> m_index;
    std::string m_strFailure;
};
