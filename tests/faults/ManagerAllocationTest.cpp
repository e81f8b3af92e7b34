// The manager without memory: its life, loading and unloading, settings, events.
#include <gmock/gmock.h>

#include <thread>

#include "com/EventReceiver.h"
#include "tests/faults/EachLibraryAllocation.h"
#include "tests/pluginmgr/LoadedManager.h"
#include "tests/pluginmgr/RegisteredComponents.h"

namespace {

class CReceiver final : public IEventReceiver {
public:
    unsigned int AddRef() override { return 1; }
    unsigned int Release() override { return 1; }
    int QueryInterface(unsigned long /*identity*/, void** /*face*/) override { return kInterfaceMissing; }
    bool OnEvent(unsigned int /*event*/, IUnknown* /*parameter*/) override { return ++m_nEvents > 0; }

    int m_nEvents = 0;
};

// The creation lock stays held where loading or creation ends with an exception, and nowhere else.
void GiveCreationLockBack(bool held) {
    EXPECT_EQ(IsCreationLockFree(), !held);
    if (held) m_sectPMCreation.Unlock();
}

// One without the room that the last scenario has left in it.
void Renew(CComPtr<CAudioPluginMgr>& manager) {
    manager.Reset();
    manager = ObtainManager();
}

Lines Decoders(CAudioPluginMgr& manager) {
    CComPtr<IComponentEnum> decoders;
    EXPECT_TRUE(manager.Get(ACT_DECODER, decoders.Out()));
    Lines names;
    for (int i = 0; i < decoders->GetCount(); ++i) {
        CComPtr<IAudioComponent> decoder;
        EXPECT_TRUE(decoders->GetComponent(i, decoder.Out()));
        names.emplace_back(decoder->GetName());
    }
    return names;
}

}  // namespace

TEST(ManagerAllocation, AManagerThatCannotBeMadeIsNotPublished) {
    EXPECT_GT(FailEachLibraryAllocation([] { const auto manager = ObtainManager(); },
                                        [](bool thrown) {
                                            GiveCreationLockBack(thrown);
                                            const auto manager = ObtainManager();
                                            EXPECT_NE(manager.Get(), nullptr);
                                            EXPECT_EQ(manager->AddRef(), 2u);
                                            manager->Release();
                                        }),
              5);
}

TEST(ManagerAllocation, PluginsOfALoadThatFailsAreUnloadedByTheNext) {
    const CPluginDirectory plugins({"collection", "convertor", "lacks_ready"});
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    const auto before = std::filesystem::current_path();
    const int allocations = FailEachLibraryAllocation([&] { manager->LoadPlugins(); },
                                                      [&](bool thrown) {
                                                          EXPECT_EQ(std::filesystem::current_path(), before);
                                                          GiveCreationLockBack(thrown);
                                                          if (thrown) manager->LoadPlugins();
                                                          EXPECT_TRUE(manager->UnloadPlugins());
                                                          EXPECT_EQ(manager->GetCount(), 0);
                                                          EXPECT_FALSE(IsMapped(plugins.Path()));
                                                      });
    EXPECT_GT(allocations, 50);
}

TEST(ManagerAllocation, UnloadingNeedsNoMemory) {
    const CPluginDirectory plugins({"decoder", "collection", "convertor"});
    const auto manager = ObtainManager();
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();
    const CFailingLibraryAllocation failing(1, true);
    EXPECT_TRUE(manager->UnloadPlugins());
    EXPECT_EQ(failing.GetCount(), 0);
}

TEST(ManagerAllocation, SettingsKeepTheirOldTextOrTakeTheNew) {
    auto manager = ObtainManager();
    const std::string text(300, 'x');
    FailEachLibraryAllocation(
        [&] {
            manager->SetVendor(text.c_str(), nullptr);
            manager->SetProduct(text.c_str(), nullptr);
            manager->SetImagesDirectory(text.c_str());
            manager->SetPluginDirectory(text.c_str());
        },
        [&](bool /*thrown*/) {
            for (const std::string held :
                 {manager->GetVendor(), manager->GetProduct(), manager->GetImagesDirectory()}) {
                EXPECT_TRUE(held.empty() || held == text) << held;
            }
            Renew(manager);
        });
    const auto fresh = [&] {
        manager->SetVendor("a", nullptr);
        const CFailingLibraryAllocation failing(1);
        const std::string longer(2000, 'y');
        EXPECT_THROW(manager->SetVendor(longer.c_str(), nullptr), std::bad_alloc);
    };
    fresh();
    EXPECT_STREQ(manager->GetVendor(), "a");
}

TEST(ManagerAllocation, ReceiversAreSubscribedOrNot) {
    auto manager = ObtainManager();
    CReceiver receivers[9];
    FailEachLibraryAllocation(
        [&] {
            for (CReceiver& receiver : receivers) manager->SubscribeToEvents(&receiver);
            manager->SendEvent(1, nullptr);
        },
        [&](bool thrown) {
            std::thread([&] { EXPECT_TRUE(manager->SendEvent(2, nullptr)); }).join();  // the lock is free
            int subscribed = 0;
            for (CReceiver& receiver : receivers) subscribed += manager->UnsubscribeToEvents(&receiver) ? 1 : 0;
            EXPECT_TRUE(thrown || subscribed == 9) << subscribed;
            Renew(manager);
        });
}

TEST(ManagerAllocation, AuxiliaryObjectsAreAttachedWithOneReferenceOrNone) {
    auto manager = ObtainManager();
    CHostFactory object;
    char keys[9];
    FailEachLibraryAllocation(
        [&] {
            for (char& key : keys) manager->AttachAuxObject(&key, &object);
        },
        [&](bool /*thrown*/) {
            int attached = 0;
            for (char& key : keys) attached += manager->GetAuxObject(&key, nullptr) ? 1 : 0;
            EXPECT_EQ(object.m_nReferences, attached);
            for (char& key : keys) manager->DetachAuxObject(&key);
            EXPECT_EQ(object.m_nReferences, 0);
            Renew(manager);
        });
}

TEST(ManagerAllocation, TheComponentOrderIsKeptOrReplacedAndItsLockFree) {
    const auto manager = ObtainManager();
    CCountedComponent components[] = {CCountedComponent(ACT_DECODER, "a"), CCountedComponent(ACT_DECODER, "b"),
                                      CCountedComponent(ACT_DECODER, "c")};
    for (CCountedComponent& component : components) manager->AddComponent(component.HandOver(), component.GetName(), 0);
    const char* const kept[] = {"c*0", "a*0", "b*0"};
    const char* const wanted[] = {"b*0", "c*0", "a*0"};
    manager->SetComponentOrder(kept, 3);
    FailEachLibraryAllocation(
        [&] {
            manager->SetComponentOrder(wanted, 3);
            CComPtr<IComponentEnum> decoders;
            manager->Get(ACT_DECODER, decoders.Out());
        },
        [&](bool /*thrown*/) {
            std::thread([&] {
                EXPECT_THAT(Decoders(*manager), testing::AnyOf(Lines{"c", "a", "b"}, Lines{"b", "c", "a"}));
            }).join();
            for (const CCountedComponent& component : components) EXPECT_EQ(component.m_nReferences, 1U);
            manager->SetComponentOrder(kept, 3);
        });
}
