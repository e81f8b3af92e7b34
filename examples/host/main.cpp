// A complete host: reads a sound as 48 kHz, 16 bits, stereo, whatever it holds, and writes the samples to standard
// output. Usage: minimal-host PLUGIN-DIRECTORY SOUND > samples.raw
#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "com/ComPtr.h"
#include "com/InterfaceIds.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "stream/Process.h"
#include "stream/RawReader.h"

namespace {

constexpr SWavFormat kWanted{48000, 16, 2};

// The manager takes absolute paths and addresses. A path that cannot be made absolute is empty, which it refuses.
std::string SourceName(const std::string& sound) {
    std::error_code error;
    return sound.find("://") != std::string::npos ? sound : std::filesystem::absolute(sound, error).string();
}

// A status has words, or the system's error number, or the library's.
std::string ReasonOf(IStatus* status) {
    if (status == nullptr) return "failed";
    if (*status->GetDescription() != '\0') return status->GetDescription();
    const unsigned int system = status->GetSysError();
    if (system != 0) return std::generic_category().message(static_cast<int>(system));
    return status->GetAudioError() == AE_NO_DECODER ? "no decoder opened it" : "failed";
}

int Fail(const std::string& what, IStatus* status) {
    std::fprintf(stderr, "%s: %s\n", what.c_str(), ReasonOf(status).c_str());
    return 1;
}

// A read that returns no bytes and a state other than ARS_MORE is the end, unless it fails or leaves a status.
int Play(IAudioPluginMgr& manager, const std::string& sound) {
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    if (!manager.OpenURLAudioFile(SourceName(sound).c_str(), &kWanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE,
                                  status.Out())) {
        return Fail(sound, status.Get());
    }
    const auto process = CComPtr<IProcess>::Query(stream.Get(), IID_IProcess);
    const auto reader = CComPtr<IAudioRawReader>::Query(stream.Get(), IID_IAudioRawReader);
    if (!process->Start(status.Out())) return Fail(sound, status.Get());
    static unsigned char buffer[65532];
    EAudioRawState state = ARS_MORE;
    bool good = true;
    for (int read = 0; good && (read > 0 || state == ARS_MORE);) {
        good = reader->RawRead(buffer, sizeof(buffer), &read, state, status.Out()) && !status;
        const auto bytes = static_cast<std::size_t>(good ? read : 0);
        if (std::fwrite(buffer, 1, bytes, stdout) != bytes) return Fail("standard output", nullptr);
    }
    good = process->End(good ? status.Out() : nullptr) && good;
    if (std::fflush(stdout) != 0) return Fail("standard output", nullptr);
    return good ? 0 : Fail(sound, status.Get());
}

}  // namespace

int main(int argc, char** argv) {
    CComPtr<IAudioPluginMgr> manager;
    if (argc != 3 || GetAudioPluginMgr(manager.Out()) != 1 || !manager->SetPluginDirectory(argv[1])) return 2;
    manager->LoadPlugins();
    const int result = Play(*manager, argv[2]);  // every stream is released before the plug-ins go
    manager->UnloadPlugins();
    return result;
}
