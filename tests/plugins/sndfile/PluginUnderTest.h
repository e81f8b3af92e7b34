// The built plug-in, loaded as the manager loads it, and short roads to its components and streams.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "com/Aggregatable.h"
#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/ComponentEnum.h"
#include "com/InterfaceIds.h"
#include "portable/DynamicLibrary.h"
#include "stream/FileOpener.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"

struct SPluginEntries {
    bool (*m_pGetPrimary)(IAudioComponent**);
    bool (*m_pReadyToFinish)();
};

inline SPluginEntries LoadPlugin() {
    void* const module = LoadLibrary(KELO_SNDFILE_PLUGIN);
    const auto primary = GetProcAddress(module, "KELO_PLUGIN_GetPrimaryAudioObject");
    const auto ready = GetProcAddress(module, "KELO_PLUGIN_ReadyToFinish");
    return {reinterpret_cast<bool (*)(IAudioComponent**)>(primary), reinterpret_cast<bool (*)()>(ready)};
}

inline const SPluginEntries& Plugin() {
    static const SPluginEntries entries = LoadPlugin();
    return entries;
}

// Member `index` of the plug-in's collection: 0 the decoder, 1 the encoder.
inline CComPtr<IAudioComponent> Component(int index) {
    CComPtr<IAudioComponent> primary;
    CComPtr<IAudioComponent> member;
    EXPECT_TRUE(Plugin().m_pGetPrimary(primary.Out()));
    EXPECT_TRUE(CComPtr<IComponentEnum>::Query(primary.Get(), IID_IComponentEnum)->GetComponent(index, member.Out()));
    return member;
}

// Runs an operation with a status pointer; the result is the description of the status it stored, "" when none.
inline std::string ReasonOf(const std::function<bool(IStatus**)>& operation, bool expected = false) {
    CComPtr<IStatus> status;
    EXPECT_EQ(operation(status.Out()), expected);
    return status ? status->GetDescription() : "";
}

inline EAudioError ErrorOf(const std::function<bool(IStatus**)>& operation) {
    CComPtr<IStatus> status;
    EXPECT_FALSE(operation(status.Out()));
    return status ? status->GetAudioError() : AE_NONE;
}

inline bool OpenSource(const std::string& path, IUnknown** stream, IStatus** status) {
    const auto opener = CComPtr<IAudioFileOpener>::Query(Component(0).Get(), IID_IAudioFileOpener);
    return opener->Open(path.c_str(), stream, AUX_CONVERT, AUX_NONE, status);
}

// The reason why the decoder does not open a file.
inline std::string RefusalOf(const std::string& path) {
    CComPtr<IUnknown> stream;
    return ReasonOf([&](IStatus** status) { return OpenSource(path, stream.Out(), status); });
}

// An open decoder stream and its faces.
struct SSource {
    explicit SSource(const std::string& path) {
        CComPtr<IStatus> status;
        EXPECT_TRUE(OpenSource(path, m_stream.Out(), status.Out())) << (status ? status->GetDescription() : "");
        m_process = CComPtr<IProcess>::Query(m_stream.Get(), IID_IProcess);
        m_reader = CComPtr<IAudioRawReader>::Query(m_stream.Get(), IID_IAudioRawReader);
        m_blocks = CComPtr<IAudioRawBlockInfo>::Query(m_stream.Get(), IID_IAudioRawBlockInfo);
        m_seekable = CComPtr<ISeekable>::Query(m_stream.Get(), IID_ISeekable);
    }

    CComPtr<IUnknown> m_stream;
    CComPtr<IProcess> m_process;
    CComPtr<IAudioRawReader> m_reader;
    CComPtr<IAudioRawBlockInfo> m_blocks;
    CComPtr<ISeekable> m_seekable;
};

// Reads to the end, at most `most` bytes, in requests of `request` bytes.
inline std::string ReadOn(SSource& source, int request = 4096, std::size_t most = ~std::size_t{0}) {
    std::string samples;
    std::string buffer(static_cast<std::size_t>(request), '\0');
    EAudioRawState state = ARS_MORE;
    while (samples.size() < most) {
        int count = 0;
        CComPtr<IStatus> status;
        const bool success = source.m_reader->RawRead(reinterpret_cast<unsigned char*>(buffer.data()), request, &count,
                                                      state, status.Out());
        EXPECT_TRUE(success) << (status ? status->GetDescription() : "");
        if (!success || count == 0) break;
        EXPECT_EQ(state, ARS_MORE);
        samples.append(buffer, 0, static_cast<std::size_t>(count));
    }
    return samples.substr(0, most);
}

// All samples of a file.
inline std::string Decoded(const std::string& path) {
    SSource source(path);
    EXPECT_TRUE(source.m_process->Start(nullptr));
    return ReadOn(source);
}
