// Readiness and unloading of plug-ins, with real shared objects.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <utility>

#include "com/InterfaceIds.h"
#include "portable/DirEntry.h"
#include "portable/PortableFile.h"
#include "stream/LiveAggregators.h"
#include "tests/pluginmgr/LoadedManager.h"
#include "tests/pluginmgr/RegisteredComponents.h"
#include "tests/support/ExpectedLeaks.h"

namespace {

TEST(UnloadPlugins, ReleasesTheHostsFactoryAtTheLastUnload) {
    const CPluginDirectory plugins({});
    CHostFactory own;
    const auto manager = ObtainManager();
    manager->SetConvertor(&own, nullptr);
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    manager->LoadPlugins();
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(own.m_nReferences, 1);
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(own.m_nReferences, 0);
    IConvertorFactory* factory = &own;
    EXPECT_TRUE(manager->GetConvertor(&factory));
    EXPECT_EQ(factory, nullptr);
}

TEST(CanUnloadPlugins, IsFalseWithNothingLoaded) {
    const auto manager = ObtainManager();
    EXPECT_FALSE(manager->CanUnloadPlugins());
    EXPECT_FALSE(manager->UnloadPlugins());
}

TEST(CanUnloadPlugins, AsksNoPluginWhileAnAggregatorIsAlive) {
    const CPluginDirectory plugins({"decoder"});
    const CLoadedManager manager(plugins);
    plugins.ClearLog();
    pthread_mutex_lock(&g_AggregatorsMutex);
    ++g_lAggregators;
    pthread_mutex_unlock(&g_AggregatorsMutex);
    EXPECT_FALSE(manager->CanUnloadPlugins());
    EXPECT_FALSE(manager->UnloadPlugins());
    EXPECT_TRUE(plugins.Log().empty());
    EXPECT_EQ(manager->GetCount(), 1);
    pthread_mutex_lock(&g_AggregatorsMutex);
    --g_lAggregators;
    pthread_mutex_unlock(&g_AggregatorsMutex);
    EXPECT_TRUE(manager->CanUnloadPlugins());
    EXPECT_EQ(plugins.Log(), Lines{"decoder asked"});
}

TEST(CanUnloadPlugins, WaitsForAnAggregatorThatIsBeingBuiltOrDestroyed) {
    const CPluginDirectory plugins({});
    const CLoadedManager manager(plugins);
    std::atomic<bool> built{false};
    pthread_mutex_lock(&g_AggregatorsMutex);
    std::thread other([&] {
        EXPECT_TRUE(manager->CanUnloadPlugins());
        EXPECT_TRUE(built);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    built = true;
    pthread_mutex_unlock(&g_AggregatorsMutex);
    other.join();
}

TEST(CanUnloadPlugins, IsFalseWhileAPluginIsNotReady) {
    const CPluginDirectory plugins({"not_ready"});
    const std::string busy = plugins.Path() + "/busy";
    setenv("KELO_FIXTURE_BUSY", busy.c_str(), 1);
    const CLoadedManager manager(plugins);
    std::ofstream(busy) << "x";
    EXPECT_FALSE(manager->CanUnloadPlugins());
    EXPECT_FALSE(manager->UnloadPlugins());
    EXPECT_FALSE(manager->SetPluginDirectory("/elsewhere"));
    std::filesystem::remove(busy);
    EXPECT_TRUE(manager->CanUnloadPlugins());
}

TEST(CanUnloadPlugins, AnIntOfAPluginCountsAsNotReady) {
    const CPluginDirectory plugins({"ready_throws_int"});
    const CExpectedLeaks leaks;  // the library never gets unloaded
    const CLoadedManager manager(plugins);
    EXPECT_FALSE(manager->CanUnloadPlugins());
    EXPECT_TRUE(IsCreationLockFree());
}

TEST(CanUnloadPlugins, StopsAtTheFirstPluginThatIsNotReady) {
    const CPluginDirectory plugins({});
    const CExpectedLeaks leaks;  // the libraries never get unloaded
    for (const char* const name : {"a.so", "b.so", "c.so", "d.so"}) plugins.Add("decoder", name);
    plugins.Add("ready_throws_int", "e.so");
    const CLoadedManager manager(plugins);
    plugins.ClearLog();
    EXPECT_FALSE(manager->CanUnloadPlugins());
    const std::size_t asked = plugins.Log().size();
    // The order is that of the directory: what stands behind the plug-in that is not ready is never asked.
    std::size_t before = 0;
    const std::unique_ptr<CDirEntry> search(CPortableFile::FindFirst((plugins.Path() + "/*.so").c_str(), 0, 0, 0, 2));
    for (; std::filesystem::path(search->GetFile().GetName()).filename() != "e.so"; search->Next()) ++before;
    EXPECT_EQ(asked, before);
}

TEST(CanUnloadPlugins, AnotherExceptionPassesAndTheReferencesAreTakenBack) {
    const CPluginDirectory plugins({"convertor", "ready_throws_exception"});
    const CExpectedLeaks leaks;  // the libraries never get unloaded
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    EXPECT_THROW(manager->CanUnloadPlugins(), std::runtime_error);
    IConvertorFactory* factory = nullptr;
    manager->GetConvertor(&factory);
    EXPECT_NE(factory, nullptr);
    EXPECT_TRUE(IsCreationLockFree());
}

TEST(CanUnloadPlugins, GivesUpItsOwnReferencesWhilePluginsAreAskedAndTakesThemBack) {
    const CPluginDirectory plugins({"convertor"});
    const CLoadedManager manager(plugins);
    plugins.ClearLog();
    EXPECT_TRUE(manager->CanUnloadPlugins());
    EXPECT_EQ(plugins.Log(), (Lines{"convertor count 1", "convertor asked", "convertor count 2"}));
    IConvertorFactory* factory = nullptr;
    manager->GetConvertor(&factory);
    EXPECT_NE(factory, nullptr);
}

// A host that sets another factory whenever an event arrives.
class CFactorySetter : public IEventReceiver {
public:
    explicit CFactorySetter(CAudioPluginMgr& manager) : m_manager(manager) {}

    unsigned int AddRef() override { return 1; }
    unsigned int Release() override { return 1; }
    int QueryInterface(unsigned long, void** face) override {
        *face = nullptr;
        return kInterfaceMissing;
    }
    bool OnEvent(unsigned int, IUnknown*) override { return m_manager.SetConvertor(&m_factory, nullptr); }

    CHostFactory m_factory;

private:
    CAudioPluginMgr& m_manager;
};

TEST(CanUnloadPlugins, PutsItsFactoryBackInPlaceOfOneThatWasSetMeanwhile) {
    const CPluginDirectory plugins({"ready_sends_event"});
    CHostFactory own;
    const auto manager = ObtainManager();
    manager->SetConvertor(&own, nullptr);
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    CFactorySetter setter(*manager);
    manager->SubscribeToEvents(&setter);
    EXPECT_TRUE(manager->CanUnloadPlugins());
    manager->UnsubscribeToEvents(&setter);
    IConvertorFactory* factory = nullptr;
    manager->GetConvertor(&factory);
    EXPECT_EQ(factory, &own);
    EXPECT_EQ(own.m_nReferences, 1);
    EXPECT_EQ(setter.m_factory.m_nReferences, 0);
    EXPECT_TRUE(manager->UnloadPlugins());
}

TEST(CanUnloadPlugins, GivesUpTheURLHandlerAsWell) {
    const CPluginDirectory plugins({"url_handler"});
    const CLoadedManager manager(plugins);
    plugins.ClearLog();
    EXPECT_TRUE(manager->CanUnloadPlugins());
    EXPECT_EQ(plugins.Log(), (Lines{"url handler count 1", "url handler count 2"}));
}

TEST(UnloadPlugins, ReleasesTheFactoryBeforeItTerminatesTheComponents) {
    const CPluginDirectory plugins({"convertor"});
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    plugins.ClearLog();
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(plugins.Log(), (Lines{"convertor count 1", "convertor asked", "convertor count 2", "convertor count 1",
                                    "convertor terminated", "convertor released", "convertor count 0"}));
}

TEST(UnloadPlugins, GivesUpTheFactoryBeforeTheURLHandlerInThePollAndAtTheEnd) {
    const CPluginDirectory plugins({"convertor", "url_handler"});
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    plugins.ClearLog();
    EXPECT_TRUE(manager->UnloadPlugins());
    Lines log = plugins.Log();
    log.resize(7);  // without the components' own end
    EXPECT_EQ(log, (Lines{"convertor count 1", "url handler count 1", "convertor asked", "convertor count 2",
                          "url handler count 2", "convertor count 1", "url handler count 1"}));
}

TEST(UnloadPlugins, EndsComponentAfterComponentAndThenClosesTheLibraries) {
    const CPluginDirectory plugins({"decoder", "ready_sends_event"});
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    // The order is that of the directory.
    const Lines names = ComponentNames(*manager);
    ASSERT_EQ(names.size(), 2U);
    plugins.ClearLog();
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(plugins.Log(),
              (Lines{"decoder asked", names[0] + " terminated", names[0] + " released", names[1] + " terminated",
                     names[1] + " released", names[0] + " unloaded", names[1] + " unloaded"}));
}

// Does at its end what the test says.
class CEndingComponent final : public CCountedComponent {
public:
    explicit CEndingComponent(std::function<void()> onTerminate)
        : CCountedComponent(ACT_DECODER, "ending"), m_onTerminate(std::move(onTerminate)) {}

    void Terminate() override { m_onTerminate(); }

    std::function<void()> m_onTerminate;
};

TEST(UnloadPlugins, ListsNoComponentThatHasBeenReleased) {
    const auto manager = ObtainManager();
    CCountedComponent first(ACT_DECODER);
    Lines listed;
    bool known = true;
    CEndingComponent second([&] {
        for (int i = 0; i < manager->GetCount(); ++i) {
            CComPtr<IAudioComponent> component;
            if (manager->GetComponent(i, component.Out())) listed.emplace_back(component->GetName());
        }
        COMPONENT_INFO info;
        known = manager->GetComponentInfo(nullptr, &info);
    });
    manager->AddComponent(first.HandOver(), "first.so", 0);
    manager->AddComponent(second.HandOver(), "second.so", 0);
    manager->SetPluginDirectory("/no/such/directory");
    ASSERT_TRUE(manager->LoadPlugins());
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(listed, Lines{"ending"});
    EXPECT_FALSE(known) << "the empty place of the released one is none";
    EXPECT_EQ(manager->GetCount(), 0);
    EXPECT_EQ(second.m_nReferences, 0U);
}

TEST(UnloadPlugins, ForgetsWhatItReleasedBeforeAComponentThrew) {
    const auto manager = ObtainManager();
    CCountedComponent first(ACT_DECODER);
    CEndingComponent second([] { throw 5; });
    manager->AddComponent(first.HandOver(), "first.so", 0);
    manager->AddComponent(second.HandOver(), "second.so", 0);
    manager->SetPluginDirectory("/no/such/directory");
    ASSERT_TRUE(manager->LoadPlugins());
    EXPECT_THROW(manager->UnloadPlugins(), int);
    second.m_onTerminate = [] {};
    ASSERT_TRUE(manager->LoadPlugins());
    EXPECT_EQ(ComponentNames(*manager), Lines{"ending"});
    EXPECT_STREQ(manager->GetComponentStringID(&second).GetText(), "second.so*0");
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(first.m_nReferences, 0U);
    EXPECT_EQ(second.m_nReferences, 0U);
}

// Puts another factory in its place when it ends.
class CEndingFactory final : public CHostFactory {
public:
    CEndingFactory(CAudioPluginMgr& manager, IConvertorFactory& successor)
        : m_manager(manager), m_successor(successor) {}

    unsigned int Release() override {
        const unsigned int count = CHostFactory::Release();
        if (count == 0) m_manager.SetConvertor(&m_successor, nullptr);
        return count;
    }

private:
    CAudioPluginMgr& m_manager;
    IConvertorFactory& m_successor;
};

TEST(SetConvertor, KeepsTheNewFactoryWhenTheOldOneInstallsAnotherAtItsEnd) {
    CHostFactory successor;
    CHostFactory next;
    const auto manager = ObtainManager();
    CEndingFactory old(*manager, successor);
    manager->SetConvertor(&old, nullptr);
    EXPECT_TRUE(manager->SetConvertor(&next, nullptr));
    IConvertorFactory* installed = nullptr;
    manager->GetConvertor(&installed);
    EXPECT_EQ(installed, &next);
    EXPECT_EQ(old.m_nReferences, 0);
    EXPECT_EQ(successor.m_nReferences, 0);
    EXPECT_EQ(next.m_nReferences, 1);
}

TEST(UnloadPlugins, AsksEveryPluginAtEachOfSeveralUnloadsAndCountsNoRefusal) {
    const CPluginDirectory plugins({"decoder", "not_ready"});
    const std::string busy = plugins.Path() + "/busy";
    setenv("KELO_FIXTURE_BUSY", busy.c_str(), 1);
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    manager->LoadPlugins();
    std::ofstream(busy) << "x";
    EXPECT_FALSE(manager->UnloadPlugins());
    std::filesystem::remove(busy);
    plugins.ClearLog();
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(plugins.Log(), Lines{"decoder asked"});
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_FALSE(manager->UnloadPlugins());
}

TEST(UnloadPlugins, LeavesTheCreationLockFree) {
    const CPluginDirectory plugins({"decoder"});
    { const CLoadedManager manager(plugins); }
    EXPECT_TRUE(IsCreationLockFree());
}

TEST(DestroyedManager, LeavesPluginsLoaded) {
    const CPluginDirectory plugins({"decoder"});
    {
        const CExpectedLeaks leaks;  // the library objects stay behind
        const auto manager = ObtainManager();
        manager->SetPluginDirectory(plugins.Path().c_str());
        manager->LoadPlugins();
        plugins.ClearLog();
    }
    EXPECT_TRUE(plugins.Log().empty());
    EXPECT_TRUE(IsMapped(plugins.File("decoder.so")));
}

}  // namespace
