// The component, its faces, and what keeps the plug-in loaded.
#include "com/Configurable.h"
#include "com/FeatureSupport.h"
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

TEST(SoxrLifetime, ComponentIsAConvertorWithAName) {
    const CPluginUnderTest plugin;
    EXPECT_EQ(plugin.Component().GetType(), ACT_CONVERTOR);
    EXPECT_STREQ(plugin.Component().GetName(), "SoX Resampler Convertor");
    EXPECT_TRUE(plugin.Component().Initialize(nullptr, nullptr));
    plugin.Component().Terminate();
}

TEST(SoxrLifetime, EntrySymbolHandsOverOneReference) {
    void* const module = LoadLibrary(KELO_SOXR_PLUGIN);
    ASSERT_NE(module, nullptr);
    const auto getPrimary =
        reinterpret_cast<bool (*)(IAudioComponent**)>(GetProcAddress(module, "KELO_PLUGIN_GetPrimaryAudioObject"));
    ASSERT_NE(getPrimary, nullptr);
    EXPECT_FALSE(getPrimary(nullptr));
    IAudioComponent* first = nullptr;
    IAudioComponent* second = nullptr;
    ASSERT_TRUE(getPrimary(&first));
    ASSERT_TRUE(getPrimary(&second));
    EXPECT_EQ(first, second);
    EXPECT_EQ(second->Release(), 1U);
    EXPECT_EQ(first->Release(), 0U);
    EXPECT_EQ(FreeLibrary(module), 0);
}

TEST(SoxrLifetime, ComponentAnswersItsFacesWithOneReferenceEach) {
    const CPluginUnderTest plugin;
    IAudioComponent& component = plugin.Component();
    const unsigned int before = component.AddRef();
    component.Release();
    for (const unsigned long identity : {IID_IUnknown, IID_IConvertorFactory, IID_IFeatureSupport, IID_IConfigurable,
                                         IID_IComponentAbout, IID_INamedSettings}) {
        void* face = nullptr;
        ASSERT_EQ(component.QueryInterface(identity, &face), kInterfaceFound) << identity;
        EXPECT_EQ(static_cast<IUnknown*>(face)->Release(), before - 1) << identity;
    }
    void* face = &component;
    EXPECT_EQ(component.QueryInterface(IID_IComponentEnum, &face), kInterfaceMissing);
    EXPECT_EQ(face, nullptr);
    EXPECT_EQ(component.QueryInterface(IID_IUnknown, nullptr), kInterfaceNoOutPointer);
}

TEST(SoxrLifetime, BasicAndAdvancedFormatsAreSupportedAndNothingCanBeSwitched) {
    const CPluginUnderTest plugin;
    const auto features = CComPtr<IFeatureSupport>::Query(&plugin.Factory(), IID_IFeatureSupport);
    ASSERT_TRUE(features);
    EXPECT_TRUE(features->IsSupported(AF_BASIC));
    EXPECT_TRUE(features->IsSupported(AF_ADVANCED_FORMATS));
    EXPECT_FALSE(features->IsSupported(static_cast<EAudioFeature>(2)));
    EXPECT_FALSE(features->EnableSupport(AF_BASIC, true));
    EXPECT_FALSE(features->EnableSupport(AF_ADVANCED_FORMATS, false));
}

TEST(SoxrDialogs, AreNotThereWithoutGtk) {
    const CPluginUnderTest plugin;
    const auto about = CComPtr<IComponentAbout>::Query(&plugin.Component(), IID_IComponentAbout);
    ASSERT_TRUE(about);
    EXPECT_STREQ(about->GetVendor(), "Kelo Audio");
    EXPECT_FALSE(about->HasAbout());
    about->About();
    const auto settings = CComPtr<IConfigurable>::Query(&plugin.Component(), IID_IConfigurable);
    ASSERT_TRUE(settings);
    EXPECT_FALSE(settings->Configure());
}

TEST(SoxrLifetime, PluginIsNotReadyToFinishWhileAConvertorLives) {
    const CPluginUnderTest plugin;
    EXPECT_TRUE(plugin.ReadyToFinish());
    auto first = plugin.Create(Held(44100, 16, 2), Held(48000, 16, 2));
    auto second = plugin.Create(Held(44100, 16, 2), Held(44100, 24, 2));
    EXPECT_FALSE(plugin.ReadyToFinish());
    first.Reset();
    EXPECT_FALSE(plugin.ReadyToFinish());
    second.Reset();
    EXPECT_TRUE(plugin.ReadyToFinish());
}

TEST(SoxrLifetime, RefusedConversionLeavesThePluginReadyToFinish) {
    const CPluginUnderTest plugin;
    EXPECT_FALSE(plugin.Create(Held(44100, 16, 2), Held(44100, 16, 6)));
    EXPECT_TRUE(plugin.ReadyToFinish());
}

TEST(SoxrLifetime, ConvertorStartsWithOneReferenceAndCountsItsClipping) {
    const CPluginUnderTest plugin;
    IAudioConvertor* const convertor = plugin.Create(Held(44100, 16, 2), Held(48000, 16, 2)).Detach();
    ASSERT_NE(convertor, nullptr);
    EXPECT_EQ(convertor->AddRef(), 2U);
    EXPECT_EQ(convertor->Release(), 1U);
    void* face = nullptr;
    EXPECT_EQ(convertor->QueryInterface(IID_IUnknown, &face), kInterfaceFound);
    EXPECT_EQ(face, convertor);
    EXPECT_EQ(convertor->Release(), 1U);
    EXPECT_EQ(convertor->QueryInterface(IID_IClippingCount, &face), kInterfaceFound);
    EXPECT_EQ(static_cast<IClippingCount*>(face)->Release(), 1U);
    EXPECT_EQ(convertor->QueryInterface(IID_IConvertorFactory, &face), kInterfaceMissing);
    EXPECT_EQ(convertor->Release(), 0U);
    EXPECT_TRUE(plugin.ReadyToFinish());
}

TEST(SoxrLifetime, ConvertorsTakeNoReferenceOnTheFactory) {
    const CPluginUnderTest plugin;
    const unsigned int before = plugin.Factory().AddRef();
    plugin.Factory().Release();
    const auto convertor = plugin.Create(Held(44100, 16, 2), Held(48000, 16, 2));
    EXPECT_EQ(plugin.Factory().AddRef(), before);
    plugin.Factory().Release();
}

TEST(SoxrLifetime, AReleaseTooManyOfTheComponentReturnsZeroAndDoesNotWait) {
    const CPluginUnderTest plugin;
    IAudioComponent& component = plugin.Component();
    component.AddRef();
    unsigned int held = component.Release();
    unsigned int given = held;
    for (; given > 0; --given) component.Release();
    EXPECT_EQ(component.Release(), 0U);
    EXPECT_EQ(component.AddRef(), 1U);
    while (++given < held) component.AddRef();
}

}  // namespace
