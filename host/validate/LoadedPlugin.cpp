// A plug-in with its components.
#include "host/validate/LoadedPlugin.h"

#include <utility>

#include "com/ComponentEnum.h"
#include "com/InterfaceIds.h"
#include "host/FailureText.h"
#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"

namespace {

// Collections that hold themselves never end.
constexpr int kMostNesting = 8;
constexpr std::size_t kMostComponents = 1000;

CComPtr<IAudioComponent> PrimaryOf(const CPluginFile& file) {
    IAudioComponent* primary = nullptr;
    Expect(file.GetPrimaryObject(&primary) && primary != nullptr, "no primary object");
    return CComPtr<IAudioComponent>::Adopt(primary);
}

}  // namespace

std::string TypeText(EAudioComponentType type) {
    switch (type) {
        case ACT_COLLECTION:
            return "collection";
        case ACT_DECODER:
            return "decoder";
        case ACT_ENCODER:
            return "encoder";
        case ACT_CONVERTOR:
            return "convertor";
        case ACT_URL_HANDLER:
            return "URL handler";
    }
    return "component of type " + std::to_string(static_cast<unsigned int>(type));
}

CLoadedPlugin::CLoadedPlugin(const std::string& path, bool asksNames) : m_file(path), m_bAsksNames(asksNames) {
    List(PrimaryOf(m_file), 0, 0);
}

void CLoadedPlugin::List(CComPtr<IAudioComponent> component, int index, int depth) {
    if (m_vEverything.size() >= kMostComponents) return;
    TellStep("GetType");
    const EAudioComponentType type = component->GetType();
    IAudioComponent& listed = *component;
    m_vEverything.push_back({std::move(component), type, LabelOf(listed, type, index)});
    if (type == ACT_COLLECTION && depth < kMostNesting) ListMembers(listed, depth + 1);
}

void CLoadedPlugin::ListMembers(IAudioComponent& collection, int depth) {
    TellStep("asking a collection for its members");
    const auto members = CComPtr<IComponentEnum>::Query(&collection, IID_IComponentEnum);
    const int count = members ? members->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        CComPtr<IAudioComponent> member;
        if (members->GetComponent(i, member.Out()) && member) List(std::move(member), i, depth);
    }
}

std::string CLoadedPlugin::LabelOf(IAudioComponent& component, EAudioComponentType type, int index) const {
    const char* const name = m_bAsksNames ? component.GetName() : nullptr;
    if (name != nullptr) return TypeText(type) + " \"" + name + "\"";
    return TypeText(type) + " " + std::to_string(index);
}

CComponents CLoadedPlugin::GetRegistered() const {
    CComponents registered;
    for (const SComponent& component : m_vEverything) {
        if (component.m_eType != ACT_COLLECTION) registered.push_back(component);
    }
    return registered;
}

CComponents CLoadedPlugin::GetRegistered(EAudioComponentType type) const {
    CComponents registered;
    for (const SComponent& component : m_vEverything) {
        if (component.m_eType == type) registered.push_back(component);
    }
    return registered;
}

void CLoadedPlugin::Initialize(IAudioPluginMgr& manager) {
    for (const SComponent& component : GetRegistered()) {
        TellStep("Initialize of " + component.m_strLabel);
        CComPtr<IStatus> status;
        if (component.m_pComponent->Initialize(&manager, status.Out())) continue;
        throw CFinding(component.m_strLabel + " refuses: " + StatusText(status.Get(), "no reason", ""));
    }
}

void CLoadedPlugin::Terminate() {
    for (const SComponent& component : GetRegistered()) {
        TellStep("Terminate of " + component.m_strLabel);
        component.m_pComponent->Terminate();
    }
}

void CLoadedPlugin::Release() {
    TellStep("releasing the components");
    m_vEverything.clear();
}
