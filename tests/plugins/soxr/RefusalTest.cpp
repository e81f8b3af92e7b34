// Conversions that do not exist, and bad arguments.
#include "tests/plugins/soxr/PluginUnderTest.h"

namespace {

struct SRefusal {
    SHeldWavFormat m_from;
    SHeldWavFormat m_to;
    const char* m_pText;
};

TEST(SoxrRefusal, NamesWhatCannotBeMapped) {
    const SRefusal refusals[] = {
        {Held(44100, 16, 1), Held(44100, 16, 3), "cannot map 1 channels to 3"},
        {Held(44100, 16, 2), Held(44100, 16, 6), "cannot map 2 channels to 6"},
        {Held(44100, 16, 8), Held(44100, 16, 6), "cannot map 8 channels to 6"},
        {Held(44100, 16, 9), Held(44100, 16, 9), "cannot map 9 channels to 9"},
        {Held(44100, 16, 9), Held(44100, 16, 2), "cannot map 9 channels to 2"},
        {Held(44100, 12, 2), Held(44100, 16, 2), "cannot map 12 bits to 16"},
        {Held(44100, 16, 2), Held(44100, 20, 2), "cannot map 16 bits to 20"},
        {Held(44100, 16, 2), Held(44100, 64, 2), "cannot map 16 bits to 64"},
        {Held(44100, 16, 2), Held(768001, 16, 2), "cannot map 44100 Hz to 768001"},
        {Held(1, 16, 2), Held(768000, 16, 2), "cannot map 1 Hz to 768000"},
        {Held(44100, 16, 2, 2), Held(44100, 16, 2), "cannot map format qualifier 2 to 0"},
        {HeldFloat(44100, 2), Held(44100, 16, 2, 7), "cannot map format qualifier 1 to 7"},
        {Held(44100, 16, 2, kFloatSamples), Held(44100, 16, 2), "cannot map float samples of 16 bits, only of 32"},
        {Held(44100, 16, 2), Held(44100, 24, 2, kFloatSamples), "cannot map float samples of 24 bits, only of 32"},
        {Held(44100, 16, 0), Held(44100, 16, 0), "no conversion for 44100 Hz, 16 bits, 0 channels"},
        {Held(44100, 16, 2), Held(44100, 16, -1), "no conversion for 44100 Hz, 16 bits, -1 channels"},
        {Held(44100, 0, 2), Held(44100, 16, 2), "no conversion for 44100 Hz, 0 bits, 2 channels"},
        {Held(0, 16, 2), Held(44100, 16, 2), "no conversion for 0 Hz, 16 bits, 2 channels"},
        {kUnsetWavFormat, Held(44100, 16, 2), "no conversion for -1 Hz, -1 bits, -1 channels"},
    };
    const CPluginUnderTest plugin;
    for (const SRefusal& refusal : refusals) {
        CComPtr<IStatus> status;
        EXPECT_FALSE(plugin.Create(refusal.m_from, refusal.m_to, status.Out())) << refusal.m_pText;
        ASSERT_TRUE(status) << refusal.m_pText;
        const std::string text = status->GetDescription();
        EXPECT_EQ(text.substr(0, text.find(';')), refusal.m_pText);
        EXPECT_EQ(status->GetAudioError(), AE_NONE);
    }
}

TEST(SoxrRefusal, SaysWhichChannelsCanBeMapped) {
    const CPluginUnderTest plugin;
    CComPtr<IStatus> status;
    EXPECT_FALSE(plugin.Create(Held(44100, 16, 2), Held(44100, 16, 6), status.Out()));
    EXPECT_STREQ(status->GetDescription(),
                 "cannot map 2 channels to 6; channels are kept, mixed down to 2 or 1, or doubled from 1 to 2");
}

TEST(SoxrRefusal, SaysHowManyChannelsThereMayBe) {
    const CPluginUnderTest plugin;
    CComPtr<IStatus> status;
    EXPECT_FALSE(plugin.Create(Held(44100, 16, 9), Held(44100, 16, 9), status.Out()));
    EXPECT_STREQ(status->GetDescription(), "cannot map 9 channels to 9; there may be at most 8");
}

TEST(SoxrRefusal, WorksWithoutAStatus) {
    const CPluginUnderTest plugin;
    EXPECT_FALSE(plugin.Create(Held(44100, 16, 2), Held(44100, 16, 6)));
}

TEST(SoxrRefusal, ReturnsFalseAndClearsTheConvertor) {
    const CPluginUnderTest plugin;
    const SHeldWavFormat from = Held(44100, 16, 2);
    const SHeldWavFormat to = Held(44100, 16, 6);
    int somewhere = 0;
    auto* convertor = reinterpret_cast<IAudioConvertor*>(&somewhere);
    EXPECT_FALSE(plugin.Factory().CreateConvertor(&from.m_format, &to.m_format, &convertor, nullptr));
    EXPECT_EQ(convertor, nullptr);
}

TEST(SoxrRefusal, NullArgumentsOfTheFactoryAreBadArguments) {
    const CPluginUnderTest plugin;
    const SHeldWavFormat format = Held(44100, 16, 2);
    const SWavFormat* const record = &format.m_format;
    int somewhere = 0;
    auto* convertor = reinterpret_cast<IAudioConvertor*>(&somewhere);
    CComPtr<IStatus> status;
    EXPECT_FALSE(plugin.Factory().CreateConvertor(nullptr, record, &convertor, status.Out()));
    EXPECT_EQ(convertor, nullptr);
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_FALSE(plugin.Factory().CreateConvertor(record, nullptr, &convertor, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_FALSE(plugin.Factory().CreateConvertor(record, record, nullptr, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
}

TEST(SoxrRefusal, NullDataAndNegativeSizesOfTheConvertorAreBadArguments) {
    const CPluginUnderTest plugin;
    const auto convertor = plugin.Create(Held(44100, 16, 2), Held(44100, 24, 2));
    CBytes frame(4);
    ASSERT_TRUE(convertor->Convert(frame.data(), 4, 0, nullptr));
    CComPtr<IStatus> status;
    EXPECT_FALSE(convertor->Convert(nullptr, 4, 0, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
    EXPECT_LT(convertor->GetOutputLength(), 0) << "an aggregator asks nothing else";
    EXPECT_FALSE(convertor->Convert(frame.data(), -4, 0, status.Out()));
    EXPECT_EQ(status->GetAudioError(), AE_BAD_ARGUMENT);
}

TEST(SoxrRefusal, ExtremesThatExistAreAccepted) {
    const CPluginUnderTest plugin;
    EXPECT_TRUE(plugin.Create(Held(768000, 32, 8), Held(1, 8, 8)));
    EXPECT_TRUE(plugin.Create(Held(1, 8, 1), Held(1 << 19, 32, 2)));
    EXPECT_TRUE(plugin.Create(Held(2, 8, 1), Held(768000, 32, 2)));
    for (int channels = 1; channels <= 8; ++channels) {
        EXPECT_TRUE(plugin.Create(Held(44100, 16, channels), Held(48000, 24, channels))) << channels;
    }
}

}  // namespace
