// The manager's tables of operations, read slot by slot from a live object.
#include <gtest/gtest.h>

#include "com/InterfaceIds.h"
#include "pluginmgr/AudioPluginLib.h"
#include "tests/pluginmgr/Manager.h"
#include "tests/support/ClassTable.h"
#include "tests/support/SlotTable.h"

namespace {

using support::ExpectSlots;
using support::TableOf;

TEST(ManagerSlots, OfThePrimaryFaceStandInOrder) {
    const auto manager = ObtainManager();
    ExpectSlots(
        TableOf(static_cast<IAudioPluginMgr*>(manager.Get())),
        {
            "_ZN15CAudioPluginMgr6AddRefEv",
            "_ZN15CAudioPluginMgr7ReleaseEv",
            "_ZN15CAudioPluginMgr14QueryInterfaceEmPPv",
            "_ZN15CAudioPluginMgr18SetPluginDirectoryEPKc",
            "_ZN15CAudioPluginMgr18SetImagesDirectoryEPKc",
            "_ZN15CAudioPluginMgr18GetImagesDirectoryEv",
            "_ZN15CAudioPluginMgr11LoadPluginsEv",
            "_ZN15CAudioPluginMgr16CanUnloadPluginsEv",
            "_ZN15CAudioPluginMgr13UnloadPluginsEv",
            "_ZN15CAudioPluginMgr12SetConvertorEP17IConvertorFactoryPP7IStatus",
            "_ZN15CAudioPluginMgr12GetConvertorEPP17IConvertorFactory",
            "_ZN15CAudioPluginMgr24GetUnsupportedComponentsEPP14IComponentEnum",
            "_ZN15CAudioPluginMgr9SendEventEjP8IUnknown",
            "_ZN15CAudioPluginMgr17SubscribeToEventsEP14IEventReceiver",
            "_ZN15CAudioPluginMgr19UnsubscribeToEventsEP14IEventReceiver",
            "_ZN15CAudioPluginMgr16OpenURLAudioFileEPKcPK10SWavFormatPP8IUnknowni9EAuxFlagsS8_PP7IStatus",
            "_ZN15CAudioPluginMgr20CreateURLAudioTargetEP22IURLAudioTargetFactoryPP8IUnknownRK10SWavFormatPP7IStatus",
            "_ZN15CAudioPluginMgr15AttachAuxObjectEPvP8IUnknown",
            "_ZN15CAudioPluginMgr15DetachAuxObjectEPv",
            "_ZN15CAudioPluginMgr12GetAuxObjectEPvPP8IUnknown",
            "_ZN15CAudioPluginMgrD1Ev",
            "_ZN15CAudioPluginMgrD0Ev",
            "_ZN15CAudioPluginMgr8GetCountEv",
            "_ZN15CAudioPluginMgr12GetComponentEiPP15IAudioComponent",
            "_ZN15CAudioPluginMgr9SetVendorEPKcPP7IStatus",
            "_ZN15CAudioPluginMgr9GetVendorEv",
            "_ZN15CAudioPluginMgr10SetProductEPKcPP7IStatus",
            "_ZN15CAudioPluginMgr10GetProductEv",
            "_ZN15CAudioPluginMgr9ConfigureEv",
            "_ZN15CAudioPluginMgr16GetComponentInfoEP15IAudioComponentP14COMPONENT_INFO",
            "_ZN15CAudioPluginMgr3SetEPP15IAudioComponenti",
            "_ZN15CAudioPluginMgr3GetE19EAudioComponentTypePP14IComponentEnum",
            "_ZN15CAudioPluginMgr12SetAppWindowEP10_GtkWindow",
            "_ZN15CAudioPluginMgr12GetAppWindowEv",
            "_ZN15CAudioPluginMgr11IsSupportedE13EAudioFeature",
            "_ZN15CAudioPluginMgr13EnableSupportE13EAudioFeatureb",
            "_ZN15CAudioPluginMgr12AddComponentEP15IAudioComponentPKci",
            "_ZN15CAudioPluginMgr13DoLoadPluginsEv",
            "_ZN15CAudioPluginMgr17GetReceiverNumberEP14IEventReceiver",
            "_ZN15CAudioPluginMgr10GetURLTypeEPKc",
            "_ZN15CAudioPluginMgr20GetComponentStringIDEP15IAudioComponent",
            "_ZN15CAudioPluginMgr16OpenURLAudioFileEPKcPP8IUnknowni9EAuxFlagsS5_PP7IStatus",
        });
}

TEST(ManagerSlots, OfTheSecondaryFacesLeadToThePrimaryOperations) {
    const auto manager = ObtainManager();
    CAudioPluginMgr* const object = manager.Get();
    ExpectSlots(TableOf(static_cast<IComponentEnum*>(object)),
                {"_ZThn8_N15CAudioPluginMgr6AddRefEv", "_ZThn8_N15CAudioPluginMgr7ReleaseEv",
                 "_ZThn8_N15CAudioPluginMgr14QueryInterfaceEmPPv", "_ZThn8_N15CAudioPluginMgr8GetCountEv",
                 "_ZThn8_N15CAudioPluginMgr12GetComponentEiPP15IAudioComponent"});
    ExpectSlots(TableOf(static_cast<IProfile*>(object)),
                {"_ZThn16_N15CAudioPluginMgr6AddRefEv", "_ZThn16_N15CAudioPluginMgr7ReleaseEv",
                 "_ZThn16_N15CAudioPluginMgr14QueryInterfaceEmPPv",
                 "_ZThn16_N15CAudioPluginMgr9SetVendorEPKcPP7IStatus", "_ZThn16_N15CAudioPluginMgr9GetVendorEv",
                 "_ZThn16_N15CAudioPluginMgr10SetProductEPKcPP7IStatus", "_ZThn16_N15CAudioPluginMgr10GetProductEv"});
    ExpectSlots(TableOf(static_cast<IConfigurable*>(object)),
                {"_ZThn24_N15CAudioPluginMgr6AddRefEv", "_ZThn24_N15CAudioPluginMgr7ReleaseEv",
                 "_ZThn24_N15CAudioPluginMgr14QueryInterfaceEmPPv", "_ZThn24_N15CAudioPluginMgr9ConfigureEv"});
    ExpectSlots(TableOf(static_cast<IAudioPluginMgrInternal*>(object)),
                {"_ZThn32_N15CAudioPluginMgr6AddRefEv", "_ZThn32_N15CAudioPluginMgr7ReleaseEv",
                 "_ZThn32_N15CAudioPluginMgr14QueryInterfaceEmPPv",
                 "_ZThn32_N15CAudioPluginMgr16GetComponentInfoEP15IAudioComponentP14COMPONENT_INFO"});
    ExpectSlots(
        TableOf(static_cast<IComponentOrderMgr*>(object)),
        {"_ZThn40_N15CAudioPluginMgr6AddRefEv", "_ZThn40_N15CAudioPluginMgr7ReleaseEv",
         "_ZThn40_N15CAudioPluginMgr14QueryInterfaceEmPPv", "_ZThn40_N15CAudioPluginMgr3SetEPP15IAudioComponenti",
         "_ZThn40_N15CAudioPluginMgr3GetE19EAudioComponentTypePP14IComponentEnum"});
    ExpectSlots(
        TableOf(static_cast<IAppWindow*>(object)),
        {"_ZThn48_N15CAudioPluginMgr6AddRefEv", "_ZThn48_N15CAudioPluginMgr7ReleaseEv",
         "_ZThn48_N15CAudioPluginMgr14QueryInterfaceEmPPv", "_ZThn48_N15CAudioPluginMgr12SetAppWindowEP10_GtkWindow",
         "_ZThn48_N15CAudioPluginMgr12GetAppWindowEv"});
    ExpectSlots(
        TableOf(static_cast<IFeatureSupport*>(object)),
        {"_ZThn56_N15CAudioPluginMgr6AddRefEv", "_ZThn56_N15CAudioPluginMgr7ReleaseEv",
         "_ZThn56_N15CAudioPluginMgr14QueryInterfaceEmPPv", "_ZThn56_N15CAudioPluginMgr11IsSupportedE13EAudioFeature",
         "_ZThn56_N15CAudioPluginMgr13EnableSupportE13EAudioFeatureb"});
}

TEST(ManagerSlots, AreAllThatItsTablesHold) {
    support::ExpectTableLengths("_ZTV15CAudioPluginMgr", {42, 5, 7, 4, 4, 5, 5, 5});
}

TEST(AuxObjectSlots, AreTheDestructorAlone) {
    const CAudioPluginMgr::AUXOBJECT entry(nullptr, nullptr);
    ExpectSlots(TableOf(&entry), {"_ZN15CAudioPluginMgr9AUXOBJECTD1Ev", "_ZN15CAudioPluginMgr9AUXOBJECTD0Ev"});
    support::ExpectTableLengths("_ZTVN15CAudioPluginMgr9AUXOBJECTE", {2});
}

TEST(LibrarySlots, AreTheDestructorAlone) {
    const CAudioPluginLib library(nullptr, nullptr);
    ExpectSlots(TableOf(&library), {"_ZN15CAudioPluginLibD1Ev", "_ZN15CAudioPluginLibD0Ev"});
    support::ExpectTableLengths("_ZTV15CAudioPluginLib", {2});
}

// An encoder that the registry may forget.
class CStillComponent : public IAudioComponent {
public:
    unsigned int AddRef() override { return 1; }
    unsigned int Release() override { return 1; }
    int QueryInterface(unsigned long, void** face) override {
        *face = nullptr;
        return kInterfaceMissing;
    }
    const char* GetName() override { return "still"; }
    EAudioComponentType GetType() override { return ACT_ENCODER; }
    bool Initialize(IAudioPluginMgr*, IStatus**) override { return true; }
    void Terminate() override {}
};

// Each slot of a component writes its number.
std::string g_calledSlots;

template <char Number, int Result>
void* Slot(void* /*component*/) {
    g_calledSlots += Number;
    return reinterpret_cast<void*>(Result);
}

TEST(ComponentSlots, AreNameTypeInitializeTerminate) {
    void* (*const table[])(void*) = {Slot<'0', 1>, Slot<'1', 1>, Slot<'2', 2>, Slot<'3', 0>,
                                     Slot<'4', 4>, Slot<'5', 1>, Slot<'6', 0>};
    const void* object = static_cast<const void*>(table);
    auto* const component = reinterpret_cast<IAudioComponent*>(&object);
    component->GetName();
    EXPECT_EQ(component->GetType(), ACT_ENCODER);
    EXPECT_TRUE(component->Initialize(nullptr, nullptr));
    component->Terminate();
    EXPECT_EQ(g_calledSlots, "3456");
}

TEST(ComponentTypes, HaveFixedNumbers) {
    EXPECT_EQ(ACT_COLLECTION, 2U);
    EXPECT_EQ(ACT_DECODER, 3U);
    EXPECT_EQ(ACT_ENCODER, 4U);
    EXPECT_EQ(ACT_CONVERTOR, 5U);
    EXPECT_EQ(ACT_URL_HANDLER, 6U);
}

TEST(ComponentInfo, HasFileNameThenIndex) {
    static_assert(sizeof(COMPONENT_INFO) == 32);
    COMPONENT_INFO info;
    const auto* const start = reinterpret_cast<const char*>(&info);
    EXPECT_EQ(reinterpret_cast<const char*>(&info.m_strLibraryFileName) - start, 0);
    EXPECT_EQ(reinterpret_cast<const char*>(&info.m_nIndex) - start, 24);
}

class SecondaryFaces : public testing::Test {
protected:
    void* Face(unsigned long identity) {
        void* face = nullptr;
        m_manager->QueryInterface(identity, &face);
        return face;
    }
    void TearDown() override {
        while (m_manager->AddRef() > 2) {
            m_manager->Release();
            m_manager->Release();
        }
        m_manager->Release();
    }

    CStillComponent m_component;
    CComPtr<CAudioPluginMgr> m_manager = ObtainManager();
};

TEST_F(SecondaryFaces, BeginWithTheThreeCommonOperations) {
    for (const unsigned long identity : {16UL, 19UL, 33UL, 64UL, 65UL, 63UL, 45UL}) {
        void* const face = Face(identity);
        EXPECT_EQ(CallSlot<unsigned int>(face, 0), 3U) << identity;
        EXPECT_EQ(CallSlot<unsigned int>(face, 1), 2U) << identity;
        void* other = nullptr;
        EXPECT_EQ((CallSlot<int, unsigned long, void**>(face, 2, 19, &other)), 0) << identity;
        EXPECT_EQ(other, static_cast<IProfile*>(m_manager.Get()));
        m_manager->Release();
        m_manager->Release();
    }
}

TEST_F(SecondaryFaces, ComponentEnumHasCountThenComponent) {
    void* const face = Face(16);
    m_manager->AddComponent(&m_component, "enc.so", 0);
    m_manager->AddComponent(&m_component, "enc.so", 1);
    EXPECT_EQ(CallSlot<int>(face, 3), 2);
    IAudioComponent* component = nullptr;
    EXPECT_TRUE((CallSlot<bool, int, IAudioComponent**>(face, 4, 1, &component)));
    EXPECT_EQ(component, &m_component);
}

TEST_F(SecondaryFaces, ProfileHasVendorThenProduct) {
    void* const face = Face(19);
    EXPECT_TRUE((CallSlot<bool, const char*, IStatus**>(face, 3, "vendor", nullptr)));
    EXPECT_STREQ(CallSlot<const char*>(face, 4), "vendor");
    EXPECT_TRUE((CallSlot<bool, const char*, IStatus**>(face, 5, "product", nullptr)));
    EXPECT_STREQ(CallSlot<const char*>(face, 6), "product");
}

TEST_F(SecondaryFaces, InternalHasComponentInfo) {
    m_manager->AddComponent(&m_component, "enc.so", 4);
    COMPONENT_INFO info;
    EXPECT_TRUE((CallSlot<bool, IAudioComponent*, COMPONENT_INFO*>(Face(64), 3, &m_component, &info)));
    EXPECT_STREQ(info.m_strLibraryFileName.GetText(), "enc.so");
    EXPECT_EQ(info.m_nIndex, 4);
}

TEST_F(SecondaryFaces, ComponentOrderHasSetThenGet) {
    void* const face = Face(65);
    EXPECT_FALSE((CallSlot<bool, IAudioComponent**, int>(face, 3, nullptr, 0)));
    IComponentEnum* components = nullptr;
    EXPECT_TRUE((CallSlot<bool, EAudioComponentType, IComponentEnum**>(face, 4, ACT_DECODER, &components)));
    ASSERT_NE(components, nullptr);
    EXPECT_EQ(components->Release(), 0U);
}

TEST_F(SecondaryFaces, AppWindowHasSetThenGet) {
    void* const face = Face(63);
    void* words[8] = {};
    CallSlot<void, _GtkWindow*>(face, 3, reinterpret_cast<_GtkWindow*>(words));
    EXPECT_EQ(CallSlot<_GtkWindow*>(face, 4), nullptr);
}

TEST_F(SecondaryFaces, FeatureSupportHasIsSupportedThenEnableSupport) {
    void* const face = Face(45);
    EXPECT_FALSE((CallSlot<bool, EAudioFeature>(face, 3, AF_BASIC)));
    EXPECT_TRUE((CallSlot<bool, EAudioFeature, bool>(face, 4, AF_BASIC, true)));
    EXPECT_TRUE((CallSlot<bool, EAudioFeature>(face, 3, AF_BASIC)));
}

TEST_F(SecondaryFaces, StandSideBySideInTheOrderOfTheBases) {
    const auto address = [](void* face) { return reinterpret_cast<std::uintptr_t>(face); };
    const std::uintptr_t base = address(static_cast<IAudioPluginMgr*>(m_manager.Get()));
    int place = 1;
    for (const unsigned long identity : {16UL, 19UL, 33UL, 64UL, 65UL, 63UL, 45UL}) {
        EXPECT_EQ(address(Face(identity)), base + 8 * static_cast<std::uintptr_t>(place)) << identity;
        ++place;
    }
}

}  // namespace
