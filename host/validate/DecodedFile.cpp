// A file that an encoder has written, read back.
#include "host/validate/DecodedFile.h"

#include <filesystem>
#include <utility>

#include "com/InterfaceIds.h"
#include "host/FailureText.h"
#include "host/validate/Outcome.h"
#include "host/validate/Source.h"
#include "host/validate/Steps.h"

namespace {

namespace fs = std::filesystem;

SDecodedFile ReadAll(CComPtr<IUnknown> stream) {
    CSource source(std::move(stream));
    SDecodedFile decoded;
    decoded.m_format = source.Format();
    if (const auto tags = source.Face<IInfoReader>(IID_IInfoReader)) decoded.m_tags = ReadTags(*tags);
    source.Start();
    decoded.m_sound = source.ReadToEnd();
    source.End();
    return decoded;
}

// Links to the other plug-ins, in a directory that the manager may load.
std::string LinkOthers(const CTrial& trial) {
    const std::string directory = trial.Scratch("others");
    fs::create_directories(directory);
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(trial.Around().m_strOtherPlugins, error)) {
        std::error_code unknown;
        if (entry.path().extension() != ".so" || fs::equivalent(entry.path(), trial.Around().m_strPlugin, unknown)) {
            continue;
        }
        fs::create_symlink(fs::absolute(entry.path()), directory + "/" + entry.path().filename().string(), error);
    }
    return directory;
}

std::optional<SDecodedFile> DecodeWithOthers(CTrial& trial, const std::string& path) {
    TellStep("loading the other plug-ins");
    IAudioPluginMgr& manager = trial.Manager();
    if (manager.SetPluginDirectory(LinkOthers(trial).c_str())) manager.LoadPlugins();
    constexpr int kListed = 0;
    CComPtr<IUnknown> stream;
    CComPtr<IStatus> status;
    if (manager.OpenURLAudioFile(path.c_str(), nullptr, stream.Out(), kListed, AUX_NONE, AUX_NONE, status.Out())) {
        return ReadAll(std::move(stream));
    }
    if (status && status->GetAudioError() == AE_NO_DECODER) return std::nullopt;
    throw CFinding("the file does not decode: " + StatusText(status.Get(), "no reason", path));
}

}  // namespace

std::optional<SDecodedFile> DecodeFile(CTrial& trial, const std::string& path) {
    for (const SComponent& decoder : trial.Plugin().GetRegistered(ACT_DECODER)) {
        if (ListsExtensionOf(path, *decoder.m_pComponent)) return ReadAll(OpenSample({decoder, path}));
    }
    return DecodeWithOthers(trial, path);
}
