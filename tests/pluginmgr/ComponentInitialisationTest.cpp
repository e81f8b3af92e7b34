// The pass that initialises what was registered, and what the manager takes from it.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "com/InterfaceIds.h"
#include "tests/pluginmgr/LoadedManager.h"
#include "tests/support/ExpectedLeaks.h"
#include "tests/support/FakeComponents.h"

namespace {

TEST(LoadPlugins, AnExceptionOfAnInitialisationPassesWithTheCreationLockStillHeld) {
    const CPluginDirectory plugins({"initialize_throws"});
    const CExpectedLeaks leaks;  // the library never gets unloaded
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    EXPECT_THROW(manager->LoadPlugins(), std::runtime_error);
    EXPECT_FALSE(IsCreationLockFree());
    m_sectPMCreation.Unlock();

    std::filesystem::remove(plugins.File("initialize_throws.so"));
    EXPECT_THROW(manager->LoadPlugins(), std::runtime_error);
    m_sectPMCreation.Unlock();
}

TEST(LoadPlugins, DropsAComponentThatRefusesToInitialiseAndGoesOnWithTheNext) {
    const CPluginDirectory plugins({"initialize_fails"});
    const CLoadedManager manager(plugins);
    EXPECT_EQ(ComponentNames(*manager), (Lines{"before", "after"}));
    EXPECT_EQ(plugins.Log(), (Lines{"before initialised", "refusing initialised", "refusing released",
                                    "refusing status released", "after initialised", "after status released"}));
}

TEST(LoadPlugins, KeepsIdentitiesWithTheirComponentsWhenOneIsDropped) {
    const CPluginDirectory plugins({"initialize_fails"});
    const CLoadedManager manager(plugins);
    ASSERT_EQ(manager->GetCount(), 2);
    Lines identities;
    for (int i = 0; i < 2; ++i) {
        CComPtr<IAudioComponent> component;
        manager->GetComponent(i, component.Out());
        identities.emplace_back(manager->GetComponentStringID(component.Get()).GetText());
    }
    EXPECT_EQ(identities, (Lines{"initialize_fails.so*0", "initialize_fails.so*2"}));
}

TEST(LoadPlugins, PassesOverAConvertorThatIsNoFactory) {
    const CPluginDirectory plugins({"convertor_without_factory"});
    const CLoadedManager manager(plugins);
    IConvertorFactory* factory = nullptr;
    manager->GetConvertor(&factory);
    EXPECT_NE(factory, nullptr);
    EXPECT_EQ(plugins.Log().back(), "second convertor asked for its factory");
}

// A convertor that stores its factory and answers as if it had none.
class CContradictingConvertor final : public support::CFakeComponent {
public:
    CContradictingConvertor() : CFakeComponent("contradicting", ACT_CONVERTOR) {}
    int QueryInterface(unsigned long identity, void** face) override {
        *face = identity == IID_IConvertorFactory ? static_cast<IConvertorFactory*>(&m_factory) : nullptr;
        if (*face != nullptr) m_factory.AddRef();
        return kInterfaceMissing;
    }

    CHostFactory m_factory;
};

TEST(LoadPlugins, TakesTheFactoryThatAConvertorStoresWhateverItsResult) {
    CContradictingConvertor convertor;
    const auto manager = ObtainManager();
    convertor.AddRef();
    manager->AddComponent(&convertor, "contradicting.so", 0);
    manager->SetPluginDirectory("/no/such/directory");
    manager->LoadPlugins();
    IConvertorFactory* factory = nullptr;
    manager->GetConvertor(&factory);
    EXPECT_EQ(factory, &convertor.m_factory);
    EXPECT_EQ(convertor.m_factory.m_nReferences, 1);
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(convertor.m_factory.m_nReferences, 0);
}

// A component that registers another one while it is initialised.
class CRegisteringComponent final : public support::CFakeComponent {
public:
    explicit CRegisteringComponent(IAudioComponent& other)
        : CFakeComponent("registering", ACT_ENCODER), m_other(other) {}
    bool Initialize(IAudioPluginMgr* manager, IStatus**) override {
        m_other.AddRef();
        static_cast<CAudioPluginMgr*>(manager)->AddComponent(&m_other, "late.so", 0);
        return true;
    }

private:
    IAudioComponent& m_other;
};

TEST(LoadPlugins, DoesNotInitialiseWhatIsRegisteredDuringAnInitialisation) {
    support::CFakePlainComponent late("late", ACT_ENCODER);
    late.m_initialize.m_eOutcome = support::EOutcome::Fails;
    CRegisteringComponent registering(late);
    const auto manager = ObtainManager();
    registering.AddRef();
    manager->AddComponent(&registering, "registering.so", 0);
    manager->SetPluginDirectory("/no/such/directory");
    manager->LoadPlugins();
    EXPECT_EQ(ComponentNames(*manager), (Lines{"registering", "late"}));
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(late.m_nTerminations, 1);
}

TEST(LoadPlugins, LetsComponentsReadTheHostsNamesWhileTheyInitialise) {
    const CPluginDirectory plugins({"reads_profile"});
    const auto manager = ObtainManager();
    manager->SetVendor("Vendor", nullptr);
    manager->SetProduct("Product", nullptr);
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    EXPECT_EQ(plugins.Log().front(), "Vendor/Product");
    manager->UnloadPlugins();
}

TEST(LoadPlugins, TakesTheFirstConvertorOfTheRegistryAsFactory) {
    const CPluginDirectory plugins({});
    plugins.Add("convertor", "a.so");
    plugins.Add("convertor", "b.so");
    const CLoadedManager manager(plugins);
    ASSERT_EQ(manager->GetCount(), 2);
    CComPtr<IAudioComponent> first;
    manager->GetComponent(0, first.Out());
    void* face = nullptr;
    first->QueryInterface(IID_IConvertorFactory, &face);
    static_cast<IConvertorFactory*>(face)->Release();
    IConvertorFactory* factory = nullptr;
    EXPECT_TRUE(manager->GetConvertor(&factory));
    EXPECT_EQ(factory, face);
}

TEST(LoadPlugins, KeepsTheHostsFactoryBeforeAnyConvertorPlugin) {
    const CPluginDirectory plugins({"convertor"});
    CHostFactory own;
    const auto manager = ObtainManager();
    manager->SetConvertor(&own, nullptr);
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    IConvertorFactory* factory = nullptr;
    manager->GetConvertor(&factory);
    EXPECT_EQ(factory, &own);
    EXPECT_EQ(own.m_nReferences, 1);
    EXPECT_TRUE(manager->UnloadPlugins());
}

TEST(LoadPlugins, AsksOnlyTheFirstURLHandlerForItsService) {
    const CPluginDirectory plugins({});
    plugins.Add("url_handler", "a.so");
    plugins.Add("url_handler", "b.so");
    const CLoadedManager manager(plugins);
    const Lines log = plugins.Log();
    EXPECT_EQ(std::count(log.begin(), log.end(), "url handler asked for its handler"), 1);
}

}  // namespace
