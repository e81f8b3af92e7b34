// The named settings of the convertor component.
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

TEST(SoxrSettings, AreQualityAndDitherWithTheirValuesAndDefaults) {
    const CPluginUnderTest plugin;
    const auto settings = plugin.Settings();
    ASSERT_TRUE(settings);
    ASSERT_EQ(settings->GetSettingCount(), 2);
    EXPECT_STREQ(settings->GetSettingName(0), "quality");
    EXPECT_STREQ(settings->GetSettingValues(0), "quick|high|very-high");
    EXPECT_STREQ(settings->GetSetting("quality"), "high");
    EXPECT_STREQ(settings->GetSettingName(1), "dither");
    EXPECT_STREQ(settings->GetSettingValues(1), "none|rectangular|triangular|shaped");
    EXPECT_STREQ(settings->GetSetting("dither"), "triangular");
    for (const int n : {-1, 2}) {
        EXPECT_EQ(settings->GetSettingName(n), nullptr);
        EXPECT_EQ(settings->GetSettingValues(n), nullptr);
    }
    EXPECT_EQ(settings->GetSetting("loudness"), nullptr);
    EXPECT_EQ(settings->GetSetting(nullptr), nullptr);
}

TEST(SoxrSettings, EachValueIsTaken) {
    const CPluginUnderTest plugin;
    const auto settings = plugin.Settings();
    for (const char* const quality : {"quick", "high", "very-high"}) {
        EXPECT_TRUE(settings->SetSetting("quality", quality, nullptr));
        EXPECT_STREQ(settings->GetSetting("quality"), quality);
    }
    for (const char* const dither : {"none", "rectangular", "triangular", "shaped"}) {
        EXPECT_TRUE(settings->SetSetting("dither", dither, nullptr));
        EXPECT_STREQ(settings->GetSetting("dither"), dither);
    }
}

TEST(SoxrSettings, UnknownNamesAndValuesAreRefusedAndChangeNothing) {
    const CPluginUnderTest plugin;
    const auto settings = plugin.Settings();
    CComPtr<IStatus> status;
    EXPECT_FALSE(settings->SetSetting("quality", "best", status.Out()));
    EXPECT_STREQ(status->GetDescription(), "no quality \"best\"; it takes quick|high|very-high");
    EXPECT_FALSE(settings->SetSetting("dither", "", status.Out()));
    EXPECT_STREQ(status->GetDescription(), "no dither \"\"; it takes none|rectangular|triangular|shaped");
    EXPECT_FALSE(settings->SetSetting("loudness", "high", status.Out()));
    EXPECT_STREQ(status->GetDescription(), "no setting \"loudness\"; there is quality, dither");
    EXPECT_FALSE(settings->SetSetting(nullptr, "high", status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_FALSE(settings->SetSetting("quality", nullptr, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_FALSE(settings->SetSetting("quality", "best", nullptr));
    EXPECT_STREQ(settings->GetSetting("quality"), "high");
    EXPECT_STREQ(settings->GetSetting("dither"), "triangular");
}

TEST(SoxrSettings, HoldForLaterConvertorsOnly) {
    const CPluginUnderTest plugin;
    const SHeldWavFormat from = Held(44100, 16, 1);
    const SHeldWavFormat to = Held(48000, 16, 1);
    const CBytes input = RandomBytes(8000);
    const CBytes usual = ConvertAll(plugin, from, to, input);
    for (const auto& change : {std::pair("quality", "quick"), std::pair("dither", "none")}) {
        const auto earlier = plugin.Create(from, to);
        const std::string before = plugin.Settings()->GetSetting(change.first);
        plugin.Set(change.first, change.second);
        EXPECT_EQ(ConvertAll(*earlier, input), usual) << change.first;
        EXPECT_NE(ConvertAll(plugin, from, to, input), usual) << change.first;
        plugin.Set(change.first, before.c_str());
        EXPECT_EQ(ConvertAll(plugin, from, to, input), usual) << change.first;
    }
}

TEST(SoxrSettings, AreForgottenWithThePlugin) {
    {
        const CPluginUnderTest plugin;
        plugin.Set("quality", "quick");
        plugin.Set("dither", "none");
    }
    const CPluginUnderTest plugin;
    EXPECT_STREQ(plugin.Settings()->GetSetting("quality"), "high");
    EXPECT_STREQ(plugin.Settings()->GetSetting("dither"), "triangular");
}

}  // namespace
