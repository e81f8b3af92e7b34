// What every component is asked for: type, name, interfaces, initialisation.
#include "com/Configurable.h"
#include "com/FeatureSupport.h"
#include "com/InterfaceIds.h"
#include "host/FailureText.h"
#include "host/validate/Checks.h"
#include "host/validate/Outcome.h"
#include "host/validate/Steps.h"
#include "host/validate/Texts.h"
#include "host/validate/Trial.h"

namespace {

struct SNeededInterface {
    EAudioComponentType m_eType;
    unsigned long m_nIdentity;
    const char* m_szName;
};

constexpr SNeededInterface kNeededInterfaces[] = {
    {ACT_COLLECTION, IID_IComponentEnum, "IComponentEnum"},
    {ACT_DECODER, IID_IAudioFileOpener, "IAudioFileOpener"},
    {ACT_DECODER, IID_IExtensionList, "IExtensionList"},
    {ACT_CONVERTOR, IID_IConvertorFactory, "IConvertorFactory"},
    {ACT_URL_HANDLER, IID_IURLSourceHandler, "IURLSourceHandler"},
};

bool IsKnownType(EAudioComponentType type) { return type >= ACT_COLLECTION && type <= ACT_URL_HANDLER; }

void HasKnownType(CTrial& trial) {
    for (const SComponent& component : trial.Loaded().GetEverything()) {
        Expect(IsKnownType(component.m_eType),
               "type " + std::to_string(static_cast<unsigned int>(component.m_eType)) + " is none of 2 to 6");
    }
}

void KeepsType(CTrial& trial) {
    for (const SComponent& component : trial.Plugin().GetEverything()) {
        for (int again = 0; again < 3; ++again) {
            TellStep("GetType");
            const EAudioComponentType type = component.m_pComponent->GetType();
            Expect(type == component.m_eType, "first " + TypeText(component.m_eType) + ", then " + TypeText(type));
        }
    }
}

void HasName(CTrial& trial) {
    for (const SComponent& component : trial.Loaded().GetEverything()) {
        TellStep("GetName");
        const char* const name = component.m_pComponent->GetName();
        Expect(name != nullptr, component.m_strLabel + " has a null name");
        Expect(*name != '\0', component.m_strLabel + " has an empty name");
        Expect(IsUtf8(name), component.m_strLabel + " has a name that is not UTF-8");
    }
}

void KeepsName(CTrial& trial) {
    std::vector<std::string> names;
    for (const SComponent& component : trial.Loaded().GetEverything()) {
        names.push_back(TextOf(component.m_pComponent->GetName()));
    }
    const CComponents& components = trial.Plugin().GetEverything();
    for (std::size_t i = 0; i < components.size(); ++i) {
        TellStep("GetName");
        const std::string name = TextOf(components[i].m_pComponent->GetName());
        Expect(name == names[i], "first \"" + names[i] + "\", then \"" + name + "\"");
    }
}

void OffersInterfacesOfType(CTrial& trial) {
    for (const SComponent& component : trial.Loaded().GetEverything()) {
        for (const SNeededInterface& needed : kNeededInterfaces) {
            if (needed.m_eType != component.m_eType) continue;
            TellStep(std::string("QueryInterface for ") + needed.m_szName);
            void* face = nullptr;
            component.m_pComponent->QueryInterface(needed.m_nIdentity, &face);
            Expect(face != nullptr, component.m_strLabel + " has no " + needed.m_szName + ", so nobody can use it");
        }
    }
}

void Initializes(CTrial& trial) { trial.Plugin(); }

void InitializesWithoutStatus(CTrial& trial) {
    for (const SComponent& component : trial.Loaded().GetRegistered()) {
        TellStep("Initialize of " + component.m_strLabel + " with a null status pointer");
        Expect(component.m_pComponent->Initialize(&trial.Manager(), nullptr), component.m_strLabel + " refuses");
    }
}

void InitializesAgain(CTrial& trial) {
    trial.Plugin().Terminate();
    trial.Loaded().Initialize(trial.Manager());
    trial.Loaded().Terminate();
}

void TellsAbout(CTrial& trial) {
    for (const SComponent& component : trial.Plugin().GetRegistered()) {
        const auto about = CComPtr<IComponentAbout>::Query(component.m_pComponent.Get(), IID_IComponentAbout);
        if (!about) continue;
        TellStep("GetVendor and HasAbout of " + component.m_strLabel);
        const char* const vendor = about->GetVendor();
        Expect(vendor != nullptr, component.m_strLabel + " has a null vendor");
        Expect(IsUtf8(vendor), component.m_strLabel + " has a vendor that is not UTF-8");
        about->HasAbout();
    }
}

}  // namespace

CCheckList ComponentChecks() {
    return {
        {"component/type", "Each component has one of the types 2 to 6.", CONCERN_ANY, "collection/nesting",
         HasKnownType},
        {"component/name", "Each component has a name in UTF-8 that is not empty.", CONCERN_ANY, "component/type",
         HasName},
        {"component/interfaces", "Each component has the interfaces through which its type is used.", CONCERN_ANY,
         "component/type", OffersInterfacesOfType},
        {"component/initialize", "Each component initialises itself with the library's manager.", CONCERN_ANY,
         "component/interfaces", Initializes},
        {"component/null-status", "Initialize does its work with a null status pointer.", CONCERN_ANY,
         "component/initialize", InitializesWithoutStatus},
        {"component/initialize-again", "After Terminate a component can be initialised and terminated again.",
         CONCERN_ANY, "component/initialize", InitializesAgain},
        {"component/type-stable", "A component tells the same type each time, initialised or not.", CONCERN_ANY,
         "component/initialize", KeepsType},
        {"component/name-stable", "A component tells the same name each time, initialised or not.", CONCERN_ANY,
         "component/initialize", KeepsName},
        {"component/about", "A component with an about box tells its vendor.", CONCERN_ANY, "component/initialize",
         TellsAbout},
    };
}
