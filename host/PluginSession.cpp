// The manager with its plug-ins loaded.
#include "host/PluginSession.h"

#include "com/ComponentEnum.h"
#include "com/ComponentOrder.h"
#include "com/FeatureSupport.h"
#include "com/InterfaceIds.h"
#include "com/NamedSettings.h"
#include "host/FailureText.h"
#include "host/PluginCall.h"
#include "host/PluginDirectory.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "stream/FileOpener.h"

namespace {

bool IsAsked(IAudioComponent& component) {
    const auto opener = CComPtr<IAudioFileOpener>::Query(&component, IID_IAudioFileOpener);
    return opener && (opener->GetOpenerState() & kOpenerEnabled) != 0 &&
           CComPtr<IExtensionList>::Query(&component, IID_IExtensionList);
}

}  // namespace

CPluginSession::CPluginSession(const SPluginOptions& options) : m_strDirectory(RequirePluginDirectory(options)) {
    if (GetAudioPluginMgr(m_pManager.Out()) != 1) throw CFailure(m_strDirectory, "no plug-in manager");
    m_pManager->SetPluginDirectory(m_strDirectory.c_str());
    try {
        CallPlugins(m_strDirectory, [this] { Load(); });
    } catch (const CFailure&) {
        Unload();
        throw;
    }
}

void CPluginSession::Load() {
    m_pManager->LoadPlugins();
    RequireComponents();
    m_convertorWatch = std::make_unique<CConvertorWatch>(*m_pManager);
    EnableFeatures();
}

// Where the convertor does not take float samples, decoders deliver integers as ever.
void CPluginSession::EnableFeatures() const {
    const auto features = CComPtr<IFeatureSupport>::Query(m_pManager.Get(), IID_IFeatureSupport);
    if (features && features->EnableSupport(AF_BASIC, true)) features->EnableSupport(AF_ADVANCED_FORMATS, true);
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

std::vector<CComPtr<IAudioComponent>> CPluginSession::GetDecoders() const {
    const auto order = CComPtr<IComponentOrderMgr>::Query(m_pManager.Get(), IID_IComponentOrderMgr);
    CComPtr<IComponentEnum> listed;
    std::vector<CComPtr<IAudioComponent>> decoders;
    if (!order || !order->Get(ACT_DECODER, listed.Out())) return decoders;
    for (int i = 0; i < listed->GetCount(); ++i) {
        CComPtr<IAudioComponent> decoder;
        if (listed->GetComponent(i, decoder.Out()) && IsAsked(*decoder)) decoders.push_back(decoder);
    }
    return decoders;
}

std::string CPluginSession::GetDecoderNames() const {
    std::vector<std::string> names;
    for (const CComPtr<IAudioComponent>& decoder : GetDecoders()) names.push_back(NameOf(*decoder));
    return JoinNames(names);
}

std::vector<std::string> CPluginSession::GetDecoderExtensions() const {
    std::vector<std::string> all;
    std::vector<std::string> failures;
    for (const CComPtr<IAudioComponent>& decoder : GetDecoders()) {
        const std::vector<std::string> extensions = ExtensionsOf(*decoder, failures);
        all.insert(all.end(), extensions.begin(), extensions.end());
    }
    for (const std::string& failure : failures) ReportFailure(nullptr, failure.c_str());
    return all;
}

void CPluginSession::SetConvertorSetting(const std::string& name, const std::string& value) const {
    const std::string option = "--" + name + " " + value;
    CallPlugins(option, [&] {
        const auto settings = CComPtr<INamedSettings>::Query(m_convertorWatch->GetFactory(), IID_INamedSettings);
        if (!settings || settings->GetSetting(name.c_str()) == nullptr) {
            throw CFailure(option, "no plug-in's convertor has this setting",
                           " (plug-ins from " + m_strDirectory + ")");
        }
        CComPtr<IStatus> status;
        if (settings->SetSetting(name.c_str(), value.c_str(), status.Out())) return;
        throw CFailure(option, StatusText(status.Get(), "the convertor does not take it", ""));
    });
}

void CPluginSession::RequireComponents() const {
    if (GetComponents().empty()) throw CNoUsablePlugin(m_strDirectory);
}

void CPluginSession::Unload() {
    try {
        m_convertorWatch.reset();
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

bool IsPossibleCount(int count) {
    constexpr int kMostEntries = 10000;
    return count >= 0 && count <= kMostEntries;
}

void RequireCount(const std::string& subject, int count, const char* what) {
    if (IsPossibleCount(count)) return;
    throw CFailure(subject, "impossible count: " + std::to_string(count) + " " + what);
}

std::vector<std::string> ExtensionsOf(IAudioComponent& component) {
    std::vector<std::string> extensions;
    const auto list = CComPtr<IExtensionList>::Query(&component, IID_IExtensionList);
    const int count = list ? list->GetCount() : 0;
    // Names are asked of the liar alone: any component's code may fail.
    if (!IsPossibleCount(count)) RequireCount(NameOf(component), count, "extensions");
    for (int i = 0; i < count; ++i) {
        const char* const extension = list->GetAt(i);
        if (extension != nullptr) extensions.emplace_back(extension);
    }
    return extensions;
}

std::vector<std::string> ExtensionsOf(IAudioComponent& component, std::vector<std::string>& failures) {
    try {
        return ExtensionsOf(component);
    } catch (const CFailure& failure) {
        failures.emplace_back(failure.what());
        return {};
    }
}
