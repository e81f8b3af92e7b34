// Reading 4 KiB of a source that converts nothing beside the same read of its decoder.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "bench/CountedIterations.h"
#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/SourceDetails.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr int kReadBytes = 4096;
constexpr std::uint32_t kDataBytes = 64 << 20;

std::string Bytes(std::uint32_t number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift);
    return bytes;
}

// Silence of 16 bits, stereo.
std::string WavFile() {
    return "RIFF" + Bytes(36 + kDataBytes) + "WAVEfmt " + Bytes(16) + Bytes(2 << 16 | 1) + Bytes(44100) +
           Bytes(4 * 44100) + Bytes(16 << 16 | 4) + "data" + Bytes(kDataBytes) + std::string(kDataBytes, '\0');
}

// The plug-ins, loaded for the length of a benchmark.
class CLoadedManager {
public:
    CLoadedManager() {
        GetAudioPluginMgr(m_pManager.Out());
        m_pManager->SetPluginDirectory(KELO_PLUGIN_DIRECTORY);
        m_pManager->LoadPlugins();
    }
    ~CLoadedManager() { m_pManager->UnloadPlugins(); }

    CLoadedManager(const CLoadedManager&) = delete;
    CLoadedManager& operator=(const CLoadedManager&) = delete;

    // Started. Empty when it does not open.
    CComPtr<IAudioRawReader> Open(const std::string& path, EAuxFlags flags) const {
        CComPtr<IUnknown> stream;
        m_pManager->OpenURLAudioFile(path.c_str(), nullptr, stream.Out(), -1, flags, AUX_NONE, nullptr);
        const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
        if (!process || !process->Start(nullptr)) return nullptr;
        return CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
    }

private:
    CComPtr<IAudioPluginMgr> m_pManager;
};

void Read(benchmark::State& state, EAuxFlags flags) {
    const CScratchDirectory scratch;
    const std::string path = scratch.Write("silence.wav", WavFile());
    const CLoadedManager manager;
    const auto reader = manager.Open(path, flags);
    const auto seekable = CComPtr<ISeekable>::Query(reader.Get(), IID_ISeekable);
    if (!reader || !seekable) return state.SkipWithError("silence.wav does not open");
    alignas(16) unsigned char buffer[kReadBytes];
    std::uint32_t left = kDataBytes;
    for (auto _ : state) {
        int read = 0;
        EAudioRawState more = ARS_MORE;
        if (left == 0) seekable->Seek(0, nullptr);
        if (left == 0) left = kDataBytes;
        if (!reader->RawRead(buffer, kReadBytes, &read, more, nullptr) || read != kReadBytes) {
            return state.SkipWithError("a read came short");
        }
        left -= kReadBytes;
    }
}

}  // namespace

BENCHMARK_CAPTURE(Read, Decoder, AUX_NONE)->Apply(CountedIterations);
BENCHMARK_CAPTURE(Read, Source, AUX_CONVERT)->Apply(CountedIterations);
