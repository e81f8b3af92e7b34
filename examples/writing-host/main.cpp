// A complete host that writes: converts a sound into a file, by the encoder that lists the file's extension.
// Usage: writing-host PLUGIN-DIRECTORY SOUND FILE
#include <strings.h>

#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "com/AudioComponent.h"
#include "com/ComPtr.h"
#include "com/ComponentEnum.h"
#include "com/InterfaceIds.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "stream/AudioTargetOpener.h"
#include "stream/FileOpener.h"
#include "stream/Process.h"
#include "stream/RawReader.h"
#include "stream/RawWriter.h"

namespace {

namespace fs = std::filesystem;

// What is converted into what; the names are for messages too.
struct SConversion {
    IAudioPluginMgr& m_manager;
    std::string m_strSound;
    fs::path m_file;
    fs::path m_part;  // has the file's name only when it is whole
};

// A status has words, or the system's error number, or the library's.
[[noreturn]] void Fail(const std::string& what, IStatus* status) {
    std::string reason = "failed";
    if (status != nullptr && *status->GetDescription() != '\0') {
        reason = status->GetDescription();
    } else if (status != nullptr && status->GetSysError() != 0) {
        reason = std::generic_category().message(static_cast<int>(status->GetSysError()));
    } else if (status != nullptr && status->GetAudioError() == AE_NO_DECODER) {
        reason = "no decoder opened it";
    }
    throw std::runtime_error(what + ": " + reason);
}

bool Lists(IAudioComponent* component, const std::string& extension) {
    const auto list = CComPtr<IExtensionList>::Query(component, IID_IExtensionList);
    for (int i = 0; list && i < list->GetCount(); ++i) {
        if (strcasecmp(list->GetAt(i), extension.c_str()) == 0) return true;
    }
    return false;
}

CComPtr<IAudioTargetOpener> FindEncoder(IAudioPluginMgr& manager, const std::string& extension) {
    const auto components = CComPtr<IComponentEnum>::Query(&manager, IID_IComponentEnum);
    for (int i = 0; i < components->GetCount(); ++i) {
        CComPtr<IAudioComponent> component;
        if (!components->GetComponent(i, component.Out()) || component->GetType() != ACT_ENCODER) continue;
        auto encoder = CComPtr<IAudioTargetOpener>::Query(component.Get(), IID_IAudioTargetOpener);
        if (encoder && Lists(component.Get(), extension)) return encoder;
    }
    throw std::runtime_error("no encoder lists \"" + extension + "\"");
}

CComPtr<IAudioTarget> OpenTarget(const SConversion& conversion) {
    const std::string extension = conversion.m_file.extension().string();
    const std::string withoutDot = extension.substr(extension.empty() ? 0 : 1);
    CComPtr<IAudioTarget> target;
    CComPtr<IStatus> status;
    const auto encoder = FindEncoder(conversion.m_manager, withoutDot);
    const std::string path = fs::absolute(conversion.m_part).string();
    if (encoder->OpenTarget(path.c_str(), withoutDot.c_str(), target.Out(), status.Out())) return target;
    Fail(conversion.m_file, status.Get());
}

// In its own format where none is wanted. The manager takes absolute paths and addresses.
CComPtr<IUnknown> OpenSource(const SConversion& conversion, const SWavFormat* wanted) {
    const std::string& sound = conversion.m_strSound;
    const std::string name = sound.find("://") != std::string::npos ? sound : fs::absolute(sound).string();
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    if (conversion.m_manager.OpenURLAudioFile(name.c_str(), wanted, stream.Out(), -1, AUX_CONVERT, AUX_NONE,
                                              status.Out())) {
        return stream;
    }
    Fail(sound, status.Get());
}

// The format that the file will have. The encoder's own stream tells it; around that, the manager's stream knows the
// host's format alone. Nothing is written by a stream that does not start. The sound is opened once for its format and
// once for its samples, so that one behind an address is fetched twice.
SWavFormat FileFormat(const SConversion& conversion, IURLAudioTargetFactory& factory) {
    const auto source = OpenSource(conversion, nullptr);
    const auto reader = CComPtr<IAudioRawReader>::Query(source.Get(), IID_IAudioRawReader);
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    if (!factory.CreateTarget(stream.Out(), reader->GetRawFormat(), status.Out())) {
        Fail(conversion.m_file, status.Get());
    }
    return CComPtr<IAudioRawWriter>::Query(stream.Get(), IID_IAudioRawWriter)->GetRawFormat();
}

// A read that returns no bytes and a state other than ARS_MORE is the end, unless it fails or leaves a status.
void PassSamples(const SConversion& conversion, IUnknown* source, IUnknown* target, int bufferSize) {
    const auto reader = CComPtr<IAudioRawReader>::Query(source, IID_IAudioRawReader);
    const auto writer = CComPtr<IAudioRawWriter>::Query(target, IID_IAudioRawWriter);
    std::vector<unsigned char> buffer(static_cast<std::size_t>(bufferSize));
    EAudioRawState state = ARS_MORE;
    for (int read = 0; read > 0 || state == ARS_MORE;) {
        CComPtr<IStatus> status;
        if (!reader->RawRead(buffer.data(), bufferSize, &read, state, status.Out()) || status) {
            Fail(conversion.m_strSound, status.Get());
        }
        EAudioRawState more = ARS_MORE;
        if (read > 0 && (!writer->RawWrite(buffer.data(), read, more, status.Out()) || status)) {
            Fail(conversion.m_file, status.Get());
        }
    }
}

void Convert(const SConversion& conversion) {
    const auto opened = OpenTarget(conversion);  // lives longer than the streams of its factory
    const SWavFormat format = FileFormat(conversion, *opened->GetTargetFactory());
    const auto source = OpenSource(conversion, &format);
    CComPtr<IUnknown> target;
    CComPtr<IStatus> status;
    if (!conversion.m_manager.CreateURLAudioTarget(opened->GetTargetFactory(), target.Out(), format, status.Out())) {
        Fail(conversion.m_file, status.Get());
    }
    const auto reading = CComPtr<IProcess>::Query(source.Get(), IID_IProcess);
    const auto writing = CComPtr<IProcess>::Query(target.Get(), IID_IProcess);
    if (!reading->Start(status.Out())) Fail(conversion.m_strSound, status.Get());
    if (!writing->Start(status.Out())) Fail(conversion.m_file, status.Get());
    constexpr int kFrames = 16384;
    PassSamples(conversion, source.Get(), target.Get(), kFrames * static_cast<int>(BlockSizeOf(format)));
    if (!reading->End(status.Out())) Fail(conversion.m_strSound, status.Get());
    if (!writing->End(status.Out())) Fail(conversion.m_file, status.Get());
}

int TellFailure(const std::string& words) {
    std::fprintf(stderr, "%s\n", words.c_str());
    return 1;
}

// No half file stands under the real name.
int WriteFile(IAudioPluginMgr& manager, const std::string& sound, const std::string& file) {
    const SConversion conversion{manager, sound, file, file + ".part"};
    std::error_code ignored;
    if (fs::exists(conversion.m_part, ignored)) return TellFailure(conversion.m_part.string() + ": is there already");
    try {
        Convert(conversion);
        fs::rename(conversion.m_part, conversion.m_file);
        return 0;
    } catch (const std::exception& failure) {
        fs::remove(conversion.m_part, ignored);
        return TellFailure(failure.what());
    }
}

}  // namespace

int main(int argc, char** argv) {
    CComPtr<IAudioPluginMgr> manager;
    if (argc != 4 || GetAudioPluginMgr(manager.Out()) != 1 || !manager->SetPluginDirectory(argv[1])) return 2;
    manager->LoadPlugins();
    const int result = WriteFile(*manager, argv[2], argv[3]);  // every stream is released before the plug-ins go
    manager->UnloadPlugins();
    return result;
}
