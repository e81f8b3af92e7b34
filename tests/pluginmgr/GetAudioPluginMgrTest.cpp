// The entry point, the manager's life and its faces.
#include <gtest/gtest.h>
#include <libintl.h>

#include <clocale>
#include <filesystem>
#include <new>
#include <thread>

#include "com/InterfaceIds.h"
#include "pluginmgr/GetAudioPluginMgr.h"
#include "tests/pluginmgr/Manager.h"
#include "tests/support/CallLog.h"
#include "tests/support/FakeComponents.h"
#include "tests/support/FakeConvertor.h"
#include "tests/support/Heap.h"
#include "tests/support/ScratchDirectory.h"

namespace {

TEST(GetAudioPluginMgr, GivesTheSameManagerAtEveryCall) {
    IAudioPluginMgr* first = nullptr;
    IAudioPluginMgr* second = nullptr;
    EXPECT_EQ(GetAudioPluginMgr(&first), 1);
    EXPECT_EQ(GetAudioPluginMgr(&second), 1);
    EXPECT_EQ(first, second);
    EXPECT_EQ(first->AddRef(), 3U);
    EXPECT_EQ(first->Release(), 2U);
    EXPECT_EQ(first->Release(), 1U);
    EXPECT_EQ(first->Release(), 0U);
}

TEST(GetAudioPluginMgr, AnswersZeroForANullOutPointer) { EXPECT_EQ(GetAudioPluginMgr(nullptr), 0); }

TEST(GetAudioPluginMgr, PublishesTheManagerUntilItsLastRelease) {
    EXPECT_EQ(g_pAudioPluginMgr, nullptr);
    {
        const auto manager = ObtainManager();
        EXPECT_EQ(g_pAudioPluginMgr, manager.Get());
    }
    EXPECT_EQ(g_pAudioPluginMgr, nullptr);
}

TEST(GetAudioPluginMgr, BuildsANewManagerWithDefaultsAfterTheLastRelease) {
    {
        const auto manager = ObtainManager();
        manager->SetVendor("vendor", nullptr);
        manager->SetProduct("product", nullptr);
        manager->SetImagesDirectory("/images");
        manager->EnableSupport(AF_BASIC, true);
    }
    const auto manager = ObtainManager();
    EXPECT_STREQ(manager->GetVendor(), "");
    EXPECT_STREQ(manager->GetProduct(), "");
    EXPECT_STREQ(manager->GetImagesDirectory(), "");
    EXPECT_FALSE(manager->IsSupported(AF_BASIC));
    EXPECT_EQ(manager->GetCount(), 0);
}

TEST(GetAudioPluginMgr, ForgetsThePluginDirectoryWithTheOldManager) {
    const CScratchDirectory scratch;
    ObtainManager()->SetPluginDirectory("/no/such/directory");
    const auto manager = ObtainManager();
    // "." is scanned when no directory is set, so that the current directory is entered and left.
    std::filesystem::copy_file(std::string(KELO_FIXTURE_DIRECTORY) + "/encoder.so", scratch / "encoder.so");
    std::filesystem::current_path(scratch.Path());
    manager->LoadPlugins();
    EXPECT_EQ(manager->GetCount(), 1);
    EXPECT_TRUE(manager->UnloadPlugins());
}

TEST(GetAudioPluginMgr, PropagatesAFailedConstructionWithNothingPublishedAndTheLockHeld) {
    if (!kHeapIsReplaced) GTEST_SKIP() << kHeapIsTaken;
    IAudioPluginMgr* manager = nullptr;
    {
        const CFailingAllocation failing(3);
        EXPECT_THROW(GetAudioPluginMgr(&manager), std::bad_alloc);
    }
    EXPECT_EQ(g_pAudioPluginMgr, nullptr);
    int locked = 1;
    std::thread([&] { locked = m_sectPMCreation.Lock(0); }).join();
    EXPECT_EQ(locked, 0);
    m_sectPMCreation.Unlock();
    EXPECT_EQ(GetAudioPluginMgr(&manager), 1);
    EXPECT_EQ(manager->Release(), 0U);
}

TEST(GetAudioPluginMgr, SetsTheLocaleFromTheEnvironmentAtEveryCall) {
    setenv("LC_ALL", "C.UTF-8", 1);
    const auto manager = ObtainManager();
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C.UTF-8");
    std::setlocale(LC_ALL, "C");
    const auto again = ObtainManager();
    EXPECT_STREQ(std::setlocale(LC_ALL, nullptr), "C.UTF-8");
}

TEST(GetAudioPluginMgr, BindsTheTextDomainAtEveryCall) {
    const auto manager = ObtainManager();
    EXPECT_STREQ(bindtextdomain("keloaudiopluginmgr", nullptr), "/usr/share/locale");
    EXPECT_STREQ(bind_textdomain_codeset("keloaudiopluginmgr", nullptr), "UTF-8");
    bindtextdomain("keloaudiopluginmgr", "/tmp");
    bind_textdomain_codeset("keloaudiopluginmgr", "ISO-8859-1");
    const auto again = ObtainManager();
    EXPECT_STREQ(bindtextdomain("keloaudiopluginmgr", nullptr), "/usr/share/locale");
    EXPECT_STREQ(bind_textdomain_codeset("keloaudiopluginmgr", nullptr), "UTF-8");
}

TEST(GetAudioPluginMgr, LeavesTheCreationLockFree) {
    const auto manager = ObtainManager();
    int locked = 0;
    std::thread([&] {
        locked = m_sectPMCreation.Lock(0);
        if (locked != 0) m_sectPMCreation.Unlock();
    }).join();
    EXPECT_EQ(locked, 1);
}

TEST(GetAudioPluginMgr, WaitsForTheCreationLock) {
    m_sectPMCreation.Lock(kInfiniteTimeout);
    IAudioPluginMgr* manager = nullptr;
    std::thread other([&] { GetAudioPluginMgr(&manager); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(g_pAudioPluginMgr, nullptr);
    m_sectPMCreation.Unlock();
    other.join();
    ASSERT_NE(manager, nullptr);
    EXPECT_EQ(manager->Release(), 0U);
}

TEST(LastRelease, WaitsForTheCreationLock) {
    IAudioPluginMgr* manager = nullptr;
    GetAudioPluginMgr(&manager);
    m_sectPMCreation.Lock(kInfiniteTimeout);
    std::thread other([&] { manager->Release(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(g_pAudioPluginMgr, manager);
    m_sectPMCreation.Unlock();
    other.join();
    EXPECT_EQ(g_pAudioPluginMgr, nullptr);
}

TEST(LastRelease, ReleasesTheAuxiliaryObjectsThenTheURLHandlerThenTheFactory) {
    support::CCallLog log;
    support::CFakeConvertorFactory factory;
    factory.m_convertor.m_pLog = &log;
    support::CFakeURLHandler handler("handler", URL_HTTP);
    handler.m_onCall = [&log](const char* call) { log.Note(call); };
    support::CFakePlainComponent object("auxiliary object", ACT_DECODER);
    object.m_onCall = [&log](const char* call) { log.Note("auxiliary object: " + std::string(call)); };
    auto manager = ObtainManager();
    manager->SetConvertor(&factory, nullptr);
    handler.AddRef();
    manager->AddComponent(&handler, "handler.so", 0);
    manager->SetPluginDirectory("/no/such/directory");
    manager->LoadPlugins();
    manager->AttachAuxObject(&object, static_cast<IAudioComponent*>(&object));
    log.Clear();
    manager.Reset();
    EXPECT_EQ(log.Lines(),
              (std::vector<std::string>{"auxiliary object: release component", "release handler", "release factory"}));
}

TEST(CreationLock, IsRecursive) {
    EXPECT_EQ(m_sectPMCreation.Lock(kInfiniteTimeout), 1);
    EXPECT_EQ(m_sectPMCreation.Lock(0), 1);
    EXPECT_EQ(m_sectPMCreation.Unlock(), 1);
    EXPECT_EQ(m_sectPMCreation.Unlock(), 1);
}

struct SFaceCase {
    unsigned long m_nIdentity;
    void* (*m_pFace)(CAudioPluginMgr&);
};

template <typename TFace>
void* FaceOf(CAudioPluginMgr& manager) {
    return static_cast<TFace*>(&manager);
}

class ManagerFaces : public testing::TestWithParam<SFaceCase> {};

TEST_P(ManagerFaces, AreAnsweredWithOneReference) {
    const auto manager = ObtainManager();
    void* face = nullptr;
    EXPECT_EQ(manager->QueryInterface(GetParam().m_nIdentity, &face), 0);
    EXPECT_EQ(face, GetParam().m_pFace(*manager));
    EXPECT_EQ(static_cast<IUnknown*>(face)->Release(), 1U);
}

INSTANTIATE_TEST_SUITE_P(Identities, ManagerFaces,
                         testing::Values(SFaceCase{0, FaceOf<IComponentEnum>}, SFaceCase{16, FaceOf<IComponentEnum>},
                                         SFaceCase{19, FaceOf<IProfile>}, SFaceCase{33, FaceOf<IConfigurable>},
                                         SFaceCase{64, FaceOf<IAudioPluginMgrInternal>},
                                         SFaceCase{65, FaceOf<IComponentOrderMgr>}, SFaceCase{63, FaceOf<IAppWindow>},
                                         SFaceCase{45, FaceOf<IFeatureSupport>}),
                         [](const auto& face) { return std::to_string(face.param.m_nIdentity); });

TEST(ManagerQuery, IUnknownIsTheComponentEnumAndNotThePrimaryFace) {
    const auto manager = ObtainManager();
    void* face = nullptr;
    manager->QueryInterface(0, &face);
    EXPECT_EQ(face, static_cast<IComponentEnum*>(manager.Get()));
    EXPECT_NE(face, static_cast<void*>(static_cast<IAudioPluginMgr*>(manager.Get())));
    static_cast<IUnknown*>(face)->Release();
}

TEST(ManagerQuery, ANullOutPointerGivesThree) {
    const auto manager = ObtainManager();
    EXPECT_EQ(manager->QueryInterface(16, nullptr), 3);
    EXPECT_EQ(manager->QueryInterface(9999, nullptr), 3);
    EXPECT_EQ(manager->AddRef(), 2U);
    manager->Release();
}

TEST(ManagerQuery, AnUnknownIdentityGivesTwoAndNull) {
    const auto manager = ObtainManager();
    for (const unsigned long identity : {1UL, 2UL, 6UL, 13UL, 34UL, 43UL, 1000UL}) {
        void* face = manager.Get();
        EXPECT_EQ(manager->QueryInterface(identity, &face), 2) << identity;
        EXPECT_EQ(face, nullptr) << identity;
    }
}

TEST(ManagerQuery, EveryFaceReachesTheOneImplementation) {
    const auto manager = ObtainManager();
    const auto order = CComPtr<IComponentOrderMgr>::Query(manager.Get(), IID_IComponentOrderMgr);
    const auto profile = CComPtr<IProfile>::Query(order.Get(), IID_IProfile);
    ASSERT_TRUE(profile);
    EXPECT_TRUE(profile->SetVendor("vendor", nullptr));
    EXPECT_STREQ(manager->GetVendor(), "vendor");
    EXPECT_EQ(profile->AddRef(), 4U);
    EXPECT_EQ(order->Release(), 3U);
}

}  // namespace
