// Names, directories and feature switches.
#include <gtest/gtest.h>

#include "com/InterfaceIds.h"
#include "com/QueryTable.h"
#include "tests/pluginmgr/Manager.h"
#include "tests/pluginmgr/PluginDirectory.h"

namespace {

// A convertor factory that answers the feature question as a test says.
class CFeatureFactory : public IConvertorFactory, public IFeatureSupport {
public:
    unsigned int AddRef() override { return ++m_nReferences; }
    unsigned int Release() override { return --m_nReferences; }
    int QueryInterface(unsigned long identity, void** face) override {
        IFeatureSupport* const features = m_bHasFeatures ? this : nullptr;
        const int result = AnswerQuery(*this, identity, face, {{IID_IFeatureSupport, features}});
        if (!m_bContradicts) return result;
        return result == kInterfaceFound ? kInterfaceMissing : kInterfaceFound;
    }
    void ReservedFirst() override {}
    bool CreateConvertor(const SWavFormat*, const SWavFormat*, IAudioConvertor**, IStatus**) override { return false; }
    bool IsSupported(EAudioFeature feature) override {
        if (m_bThrows) throw std::string("features");
        return m_bSupported && feature == AF_ADVANCED_FORMATS;
    }
    bool EnableSupport(EAudioFeature, bool) override { return false; }

    bool m_bHasFeatures = true;
    bool m_bSupported = true;
    bool m_bThrows = false;
    bool m_bContradicts = false;  // the result says the opposite of what is stored
    unsigned int m_nReferences = 0;
};

TEST(Strings, AreEmptyAndNeverNullAtFirst) {
    const auto manager = ObtainManager();
    EXPECT_STREQ(manager->GetVendor(), "");
    EXPECT_STREQ(manager->GetProduct(), "");
    EXPECT_STREQ(manager->GetImagesDirectory(), "");
}

TEST(Strings, AreCopied) {
    const auto manager = ObtainManager();
    char text[] = "text";
    EXPECT_TRUE(manager->SetVendor(text, nullptr));
    EXPECT_TRUE(manager->SetProduct(text, nullptr));
    EXPECT_TRUE(manager->SetImagesDirectory(text));
    text[0] = 'n';
    EXPECT_STREQ(manager->GetVendor(), "text");
    EXPECT_STREQ(manager->GetProduct(), "text");
    EXPECT_STREQ(manager->GetImagesDirectory(), "text");
}

TEST(Strings, NullLeavesThemAsTheyWere) {
    const auto manager = ObtainManager();
    manager->SetVendor("vendor", nullptr);
    manager->SetProduct("product", nullptr);
    manager->SetImagesDirectory("images");
    EXPECT_TRUE(manager->SetVendor(nullptr, nullptr));
    EXPECT_TRUE(manager->SetProduct(nullptr, nullptr));
    EXPECT_TRUE(manager->SetImagesDirectory(nullptr));
    EXPECT_TRUE(manager->SetPluginDirectory(nullptr));
    EXPECT_STREQ(manager->GetVendor(), "vendor");
    EXPECT_STREQ(manager->GetProduct(), "product");
    EXPECT_STREQ(manager->GetImagesDirectory(), "images");
}

TEST(Strings, KeepTheirLargerBufferForAShorterText) {
    const auto manager = ObtainManager();
    manager->SetImagesDirectory("abc");
    manager->SetImagesDirectory(std::string(100, 'x').c_str());
    const char* const buffer = manager->GetImagesDirectory();
    manager->SetImagesDirectory("abc");
    EXPECT_EQ(manager->GetImagesDirectory(), buffer);
    // 202 bytes hold a text of up to 200 characters without a new buffer.
    manager->SetImagesDirectory(std::string(200, 'y').c_str());
    EXPECT_EQ(manager->GetImagesDirectory(), buffer);
    EXPECT_EQ(std::string(manager->GetImagesDirectory()), std::string(200, 'y'));
    manager->SetImagesDirectory(std::string(201, 'z').c_str());
    EXPECT_NE(manager->GetImagesDirectory(), buffer);
}

TEST(Strings, LeaveTheStatusAloneOnSuccess) {
    const auto manager = ObtainManager();
    int marker = 0;
    IStatus* const before = reinterpret_cast<IStatus*>(&marker);
    IStatus* status = before;
    EXPECT_TRUE(manager->SetVendor("vendor", &status));
    EXPECT_TRUE(manager->SetProduct("product", &status));
    EXPECT_EQ(status, before);
}

TEST(Strings, AreRefusedWhilePluginsAreLoaded) {
    const CPluginDirectory plugins({});
    const auto manager = ObtainManager();
    manager->SetVendor("old vendor", nullptr);
    manager->SetProduct("old product", nullptr);
    manager->SetPluginDirectory(plugins.Path().c_str());
    manager->LoadPlugins();

    CComPtr<IStatus> status;
    EXPECT_FALSE(manager->SetProduct("new", status.Out()));
    ASSERT_TRUE(status);
    EXPECT_EQ(status->GetAudioError(), static_cast<EAudioError>(0x80000013));
    EXPECT_FALSE(manager->SetVendor("new", status.Out()));
    ASSERT_TRUE(status);
    EXPECT_EQ(status->GetAudioError(), static_cast<EAudioError>(0x80000013));
    EXPECT_FALSE(manager->SetVendor("new", nullptr));
    EXPECT_STREQ(manager->GetVendor(), "old vendor");
    EXPECT_STREQ(manager->GetProduct(), "old product");
    EXPECT_TRUE(manager->SetImagesDirectory("new"));

    manager->UnloadPlugins();
    EXPECT_TRUE(manager->SetVendor("new", nullptr));
    EXPECT_STREQ(manager->GetVendor(), "new");
}

TEST(Features, HaveFixedNumbers) {
    EXPECT_EQ(AF_BASIC, 0U);
    EXPECT_EQ(AF_ADVANCED_FORMATS, 1U);
}

TEST(Features, AreOffAtFirst) {
    const auto manager = ObtainManager();
    EXPECT_FALSE(manager->IsSupported(AF_BASIC));
    EXPECT_FALSE(manager->IsSupported(AF_ADVANCED_FORMATS));
}

TEST(Features, AnUnknownOneIsRefused) {
    const auto manager = ObtainManager();
    EXPECT_FALSE(manager->IsSupported(static_cast<EAudioFeature>(2)));
    EXPECT_FALSE(manager->EnableSupport(static_cast<EAudioFeature>(2), true));
    EXPECT_FALSE(manager->EnableSupport(static_cast<EAudioFeature>(2), false));
    EXPECT_FALSE(manager->IsSupported(AF_BASIC));
    EXPECT_FALSE(manager->IsSupported(AF_ADVANCED_FORMATS));
    EXPECT_FALSE(manager->IsSupported(static_cast<EAudioFeature>(2)));
}

TEST(Features, BasicIsSwitchedFreely) {
    const auto manager = ObtainManager();
    EXPECT_TRUE(manager->EnableSupport(AF_BASIC, true));
    EXPECT_TRUE(manager->IsSupported(AF_BASIC));
    EXPECT_TRUE(manager->EnableSupport(AF_BASIC, false));
    EXPECT_FALSE(manager->IsSupported(AF_BASIC));
}

TEST(Features, AdvancedFormatsNeedBasicAFactoryAndItsConsent) {
    CFeatureFactory factory;
    const auto manager = ObtainManager();
    EXPECT_FALSE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    manager->EnableSupport(AF_BASIC, true);
    EXPECT_FALSE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    manager->SetConvertor(&factory, nullptr);
    factory.m_bHasFeatures = false;
    EXPECT_FALSE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    factory.m_bHasFeatures = true;
    factory.m_bSupported = false;
    EXPECT_FALSE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    EXPECT_FALSE(manager->IsSupported(AF_ADVANCED_FORMATS));
    factory.m_bSupported = true;
    EXPECT_TRUE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    EXPECT_TRUE(manager->IsSupported(AF_ADVANCED_FORMATS));
    EXPECT_EQ(factory.m_nReferences, 1U);
}

TEST(Features, AdvancedFormatsAreRefusedWithoutBasicEvenWithAWillingFactory) {
    CFeatureFactory factory;
    const auto manager = ObtainManager();
    manager->SetConvertor(&factory, nullptr);
    EXPECT_FALSE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
}

TEST(Features, AdvancedFormatsCanAlwaysBeSwitchedOff) {
    CFeatureFactory factory;
    const auto manager = ObtainManager();
    EXPECT_TRUE(manager->EnableSupport(AF_ADVANCED_FORMATS, false));
    manager->SetConvertor(&factory, nullptr);
    manager->EnableSupport(AF_BASIC, true);
    manager->EnableSupport(AF_ADVANCED_FORMATS, true);
    EXPECT_TRUE(manager->EnableSupport(AF_ADVANCED_FORMATS, false));
    EXPECT_FALSE(manager->IsSupported(AF_ADVANCED_FORMATS));
}

TEST(Features, SwitchingBasicOffLeavesAdvancedFormatsOn) {
    CFeatureFactory factory;
    const auto manager = ObtainManager();
    manager->SetConvertor(&factory, nullptr);
    manager->EnableSupport(AF_BASIC, true);
    manager->EnableSupport(AF_ADVANCED_FORMATS, true);
    manager->EnableSupport(AF_BASIC, false);
    EXPECT_TRUE(manager->IsSupported(AF_ADVANCED_FORMATS));
}

TEST(Features, ARefusalLeavesAdvancedFormatsOn) {
    CFeatureFactory factory;
    const auto manager = ObtainManager();
    manager->SetConvertor(&factory, nullptr);
    manager->EnableSupport(AF_BASIC, true);
    EXPECT_TRUE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    factory.m_bSupported = false;  // asked anew although the switch is on
    EXPECT_FALSE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    EXPECT_TRUE(manager->IsSupported(AF_ADVANCED_FORMATS));
    factory.m_bHasFeatures = false;
    EXPECT_FALSE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    EXPECT_TRUE(manager->IsSupported(AF_ADVANCED_FORMATS));
    manager->EnableSupport(AF_BASIC, false);
    EXPECT_FALSE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    EXPECT_TRUE(manager->IsSupported(AF_ADVANCED_FORMATS));
}

TEST(Features, TheInterfaceThatTheFactoryStoresCountsAndNotItsResult) {
    CFeatureFactory factory;
    factory.m_bContradicts = true;
    const auto manager = ObtainManager();
    manager->SetConvertor(&factory, nullptr);
    manager->EnableSupport(AF_BASIC, true);
    EXPECT_TRUE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
    EXPECT_EQ(factory.m_nReferences, 1U);
    factory.m_bHasFeatures = false;
    EXPECT_FALSE(manager->EnableSupport(AF_ADVANCED_FORMATS, true));
}

TEST(Features, AFactorysExceptionPassesAndItsInterfaceIsReleased) {
    CFeatureFactory factory;
    const auto manager = ObtainManager();
    factory.m_bThrows = true;
    manager->SetConvertor(&factory, nullptr);
    manager->EnableSupport(AF_BASIC, true);
    EXPECT_THROW(manager->EnableSupport(AF_ADVANCED_FORMATS, true), std::string);
    EXPECT_EQ(factory.m_nReferences, 1U);
    EXPECT_FALSE(manager->IsSupported(AF_ADVANCED_FORMATS));
}

}  // namespace
