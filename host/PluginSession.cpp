// The manager with its plug-ins loaded.
#include "host/PluginSession.h"

#include <limits.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "com/ComponentEnum.h"
#include "com/ComponentOrder.h"
#include "com/InterfaceIds.h"
#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/PluginCall.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "stream/FileOpener.h"

namespace {

constexpr const char* kOtherDirectoryHint = " (--plugins DIR names another plug-in directory)";

// The names of the files that the manager tries. The manager itself passes over a directory that it cannot enter.
std::vector<std::string> ListCandidates(const std::string& directory) {
    std::error_code error;
    std::filesystem::directory_iterator entries(directory, error);
    if (error) throw CFailure(directory, error.message() + kOtherDirectoryHint);
    std::vector<std::string> names;
    for (const std::filesystem::directory_entry& entry : entries) {
        if (entry.path().extension() == ".so") names.push_back(entry.path().filename().string());
    }
    if (names.empty()) throw CFailure(directory, std::string("no plug-ins (*.so) here") + kOtherDirectoryHint);
    std::sort(names.begin(), names.end());
    return names;
}

// Plug-in libraries keep their path in PATH_MAX bytes.
void RequireShortPath(const std::string& directory) {
    if (directory.size() + 1 + NAME_MAX >= PATH_MAX) throw CFailure(directory, SystemErrorText(ENAMETOOLONG));
}

bool IsAskedForConversion(IAudioComponent& component) {
    const auto opener = CComPtr<IAudioFileOpener>::Query(&component, IID_IAudioFileOpener);
    return opener && (opener->GetOpenerState() & kOpenerEnabled) != 0 && (opener->GetAuxFlags() & AUX_CONVERT) != 0 &&
           CComPtr<IExtensionList>::Query(&component, IID_IExtensionList);
}

}  // namespace

CPluginSession::CPluginSession(const SPluginOptions& options)
    : m_strDirectory(std::filesystem::absolute(ChosenPluginDirectory(options)).string()) {
    m_vCandidates = ListCandidates(m_strDirectory);
    RequireShortPath(m_strDirectory);
    if (GetAudioPluginMgr(m_pManager.Out()) != 1) throw CFailure(m_strDirectory, "no plug-in manager");
    m_pManager->SetPluginDirectory(m_strDirectory.c_str());
    try {
        CallPlugins(m_strDirectory, [this] {
            m_pManager->LoadPlugins();
            RequireComponents();
        });
    } catch (const CFailure&) {
        Unload();
        throw;
    }
}

CPluginSession::~CPluginSession() { Unload(); }

std::vector<CComPtr<IAudioComponent>> CPluginSession::GetComponents() const {
    std::vector<CComPtr<IAudioComponent>> components;
    const auto registry = CComPtr<IComponentEnum>::Query(m_pManager.Get(), IID_IComponentEnum);
    for (int i = 0; i < registry->GetCount(); ++i) {
        CComPtr<IAudioComponent> component;
        if (registry->GetComponent(i, component.Out())) components.push_back(component);
    }
    return components;
}

std::string CPluginSession::GetDecoderNames() const {
    const auto order = CComPtr<IComponentOrderMgr>::Query(m_pManager.Get(), IID_IComponentOrderMgr);
    CComPtr<IComponentEnum> decoders;
    std::vector<std::string> names;
    if (!order || !order->Get(ACT_DECODER, decoders.Out())) return JoinNames(names);
    for (int i = 0; i < decoders->GetCount(); ++i) {
        CComPtr<IAudioComponent> decoder;
        if (decoders->GetComponent(i, decoder.Out()) && IsAskedForConversion(*decoder)) {
            names.push_back(NameOf(*decoder));
        }
    }
    return JoinNames(names);
}

void CPluginSession::RequireComponents() {
    if (!GetComponents().empty()) return;
    throw CFailure(m_strDirectory, "no usable plug-in here (tried: " + JoinNames(m_vCandidates) + ")");
}

void CPluginSession::Unload() {
    try {
        // A plug-in that is not ready stays until the process ends.
        m_pManager->UnloadPlugins();
    } catch (...) {
        // So does one that throws here: the work is done, and nothing is left to fail.
    }
}

std::string NameOf(IAudioComponent& component) {
    const char* const name = component.GetName();
    return name == nullptr ? "(no name)" : name;
}

std::vector<std::string> ExtensionsOf(IAudioComponent& component) {
    std::vector<std::string> extensions;
    const auto list = CComPtr<IExtensionList>::Query(&component, IID_IExtensionList);
    for (int i = 0; list && i < list->GetCount(); ++i) {
        const char* const extension = list->GetAt(i);
        if (extension != nullptr) extensions.emplace_back(extension);
    }
    return extensions;
}

std::string JoinNames(const std::vector<std::string>& names) {
    std::string joined;
    for (const std::string& name : names) joined += (joined.empty() ? "" : ", ") + name;
    return joined.empty() ? "none" : joined;
}
