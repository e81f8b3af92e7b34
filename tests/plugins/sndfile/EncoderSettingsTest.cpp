// The settings of each format that is written, and what they change.
#include "tests/plugins/sndfile/AudioFiles.h"
#include "tests/plugins/sndfile/SinkUnderTest.h"
#include "tests/support/ScratchDirectory.h"

namespace {

constexpr SWavFormat kStereo{44100, 16, 2};

// "name=value (values)" of each setting.
std::vector<std::string> SettingsOf(const std::string& extension) {
    const STarget target("/nowhere/x", extension);
    std::vector<std::string> settings;
    for (int i = 0; i < target.m_settings->GetSettingCount(); ++i) {
        const std::string name = target.m_settings->GetSettingName(i);
        settings.push_back(name + "=" + target.m_settings->GetSetting(name.c_str()) + " (" +
                           target.m_settings->GetSettingValues(i) + ")");
    }
    return settings;
}

std::string SettingRefusal(const std::string& extension, const std::string& name, const std::string& value) {
    const STarget target("/nowhere/x", extension);
    return ReasonOf([&](IStatus** s) { return target.m_settings->SetSetting(name.c_str(), value.c_str(), s); });
}

std::string Music(const CScratchDirectory& scratch, const SWavFormat& format) {
    RunTool("sox -R -M " + kVoice + " " + kNoise + " -b 16 -c " + std::to_string(format.nChannels) + " " +
            scratch / "music.wav" + " rate " + std::to_string(format.nSampleRate) + " gain -3");
    return Decoded(scratch / "music.wav");
}

// Bytes of a file of ten seconds.
std::size_t SizeWith(const std::string& extension, const SWavFormat& format, const CNamedValues& settings) {
    const CScratchDirectory scratch;
    RunTool("sox -R -n -b 16 -r " + std::to_string(format.nSampleRate) + " -c " + std::to_string(format.nChannels) +
            " " + scratch / "noise.wav" + " synth 10 pinknoise gain -6");
    WriteSound(scratch / "x", extension, format, Decoded(scratch / "noise.wav"), settings);
    return Content(scratch / "x").size();
}

std::string Probed(const CScratchDirectory& scratch, const std::string& entry) {
    RunTool("ffprobe -v error -show_entries stream=" + entry + " -of default=noprint_wrappers=1:nokey=1 " +
            scratch / "x" + " > " + scratch / "entry");
    return Content(scratch / "entry");
}

}  // namespace

TEST(SndfileSettings, AreThoseOfTheFormat) {
    const std::vector<std::string> samples = {"samples=integer (integer|float)"};
    for (const char* const extension : {"wav", "rf64", "w64", "aiff", "aif", "caf", "au"}) {
        EXPECT_EQ(SettingsOf(extension), samples) << extension;
    }
    EXPECT_EQ(SettingsOf("flac"), (std::vector<std::string>{"compression=5 (0|1|2|3|4|5|6|7|8)"}));
    EXPECT_EQ(SettingsOf("ogg"), (std::vector<std::string>{"quality=4 (0 to 10)"}));
    EXPECT_EQ(SettingsOf("opus"),
              (std::vector<std::string>{"quality=2 (0 to 10)", "bitrate= (6 to 256 kbit/s for each channel)"}));
    EXPECT_EQ(SettingsOf("mp3"),
              (std::vector<std::string>{"quality=7 (0 to 10)", "bitrate= (8 to 320 kbit/s, as MP3 has them)"}));
}

TEST(SndfileSettings, HaveNoneOutsideTheList) {
    const STarget target("/nowhere/x", "mp3");
    EXPECT_EQ(target.m_settings->GetSettingName(-1), nullptr);
    EXPECT_EQ(target.m_settings->GetSettingName(2), nullptr);
    EXPECT_EQ(target.m_settings->GetSettingValues(2), nullptr);
    EXPECT_EQ(target.m_settings->GetSetting("samples"), nullptr);
    EXPECT_EQ(target.m_settings->GetSetting(nullptr), nullptr);
}

TEST(SndfileSettings, RefuseNamesAndValuesThatTheFormatDoesNotHave) {
    EXPECT_EQ(SettingRefusal("flac", "quality", "5"), "x: no setting \"quality\"; there is compression");
    EXPECT_EQ(SettingRefusal("ogg", "bitrate", "128"), "x: no setting \"bitrate\"; there is quality");
    EXPECT_EQ(SettingRefusal("mp3", "samples", "float"), "x: no setting \"samples\"; there is quality, bitrate");
    EXPECT_EQ(SettingRefusal("flac", "compression", "9"), "x: no compression \"9\"; it takes 0|1|2|3|4|5|6|7|8");
    for (const char* const value : {"11", "-1", "good", "", "5 ", "nan", "1e", "0x5"}) {
        EXPECT_EQ(SettingRefusal("ogg", "quality", value),
                  "x: no quality \"" + std::string(value) + "\"; Ogg Vorbis takes 0 to 10");
    }
    for (const char* const value : {"129", "7", "321", "128k", "-128"}) {
        EXPECT_EQ(SettingRefusal("mp3", "bitrate", value),
                  "x: no bitrate \"" + std::string(value) + "\"; MP3 takes 8 to 320 kbit/s, as MP3 has them");
    }
    EXPECT_EQ(SettingRefusal("opus", "bitrate", "5"),
              "x: no bitrate \"5\"; Opus takes 6 to 256 kbit/s for each channel");
    EXPECT_EQ(SettingRefusal("wav", "samples", "double"), "x: no samples \"double\"; it takes integer|float");
}

TEST(SndfileSettings, KeepTheirValueWhenAnotherIsRefused) {
    const STarget target("/nowhere/x", "mp3");
    target.Set("quality", "2.5");
    target.Set("bitrate", "192");
    EXPECT_FALSE(target.m_settings->SetSetting("quality", "12", nullptr));
    EXPECT_STREQ(target.m_settings->GetSetting("quality"), "2.5");
    EXPECT_STREQ(target.m_settings->GetSetting("bitrate"), "192");
    target.Set("bitrate", "");
    EXPECT_STREQ(target.m_settings->GetSetting("bitrate"), "");
}

TEST(SndfileSettings, CompressionMakesFlacSmaller) {
    const CScratchDirectory scratch;
    std::vector<std::size_t> sizes;
    for (const char* const level : {"0", "5", "8"}) {
        WriteSound(scratch / "x.flac", "flac", kStereo, Music(scratch, kStereo), {{"compression", level}});
        RunTool("flac -s -t " + scratch / "x.flac");
        sizes.push_back(Content(scratch / "x.flac").size());
    }
    EXPECT_GT(sizes[0], sizes[1]);
    EXPECT_GT(sizes[1], sizes[2]);
}

TEST(SndfileSettings, QualityMakesLossyFilesLarger) {
    for (const char* const extension : {"ogg", "opus", "mp3"}) {
        const SWavFormat format{48000, 16, 2};
        std::vector<std::size_t> sizes;
        for (const char* const quality : {"0", "2.5", "5", "10"}) {
            sizes.push_back(SizeWith(extension, format, {{"quality", quality}}));
        }
        for (std::size_t i = 1; i < sizes.size(); ++i) EXPECT_GT(sizes[i], sizes[i - 1]) << extension << i;
    }
}

TEST(SndfileSettings, BitRateOfMp3IsConstantAndExact) {
    const CScratchDirectory scratch;
    const std::string samples = Music(scratch, kStereo);
    for (const char* const bitRate : {"32", "40", "96", "112", "128", "192", "256", "320"}) {
        WriteSound(scratch / "x", "mp3", kStereo, samples, {{"bitrate", bitRate}});
        EXPECT_EQ(Probed(scratch, "bit_rate"), std::string(bitRate) + "000\n");
    }
    const SWavFormat low{22050, 16, 1};
    for (const char* const bitRate : {"8", "24", "144", "160"}) {
        WriteSound(scratch / "x", "mp3", low, Music(scratch, low), {{"bitrate", bitRate}});
        EXPECT_EQ(Probed(scratch, "bit_rate"), std::string(bitRate) + "000\n");
    }
}

TEST(SndfileSettings, BitRateOfOpusIsKeptOnAverage) {
    for (const int channels : {1, 2}) {
        for (const int bitRate : {24, 64, 160}) {
            const std::size_t bytes = SizeWith("opus", {48000, 16, channels}, {{"bitrate", std::to_string(bitRate)}});
            const double kilobits = static_cast<double>(bytes) * 8 / 10 / 1000;
            EXPECT_NEAR(kilobits, bitRate, 0.2 * bitRate) << channels;
        }
    }
}

TEST(SndfileSettings, BitRatesThatTheSampleRateOrTheChannelsDoNotHaveAreRefused) {
    const STarget mp3("/nowhere/x", "mp3");
    mp3.Set("bitrate", "320");
    CComPtr<IUnknown> stream;
    EXPECT_EQ(ReasonOf([&](IStatus** s) {
                  return mp3.CreateStream({22050, 16, 2}, stream.Out(), s);
              }),
              "x: MP3 has no 320 kbit/s at 22050 Hz; there are 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, "
              "160");
    const STarget opus("/nowhere/x", "opus");
    opus.Set("bitrate", "300");
    EXPECT_EQ(ReasonOf([&](IStatus** s) {
                  return opus.CreateStream({48000, 16, 1}, stream.Out(), s);
              }),
              "x: Opus has no 300 kbit/s for 1 channels; it takes 6 to 256");
    EXPECT_TRUE(opus.CreateStream({48000, 16, 2}, stream.Out(), nullptr));
}

TEST(SndfileSettings, FloatSamplesTakeIntegersOf32BitsAndKeep24OfThem) {
    const CScratchDirectory scratch;
    std::string samples = RandomBytes(40000);
    // What a float of 24 significant bits holds in any case.
    for (std::size_t i = 0; i < samples.size(); i += 4) samples[i] = '\0';
    for (const char* const extension : {"wav", "rf64", "w64", "aiff", "caf", "au"}) {
        const STarget target(scratch / "x", extension);
        target.Set("samples", "float");
        SSink sink(target, {48000, 16, 2});
        EXPECT_EQ(sink.m_writer->GetRawFormat().nBitsPerSample, 32) << extension;
        sink.WriteAll(samples);
        EXPECT_EQ(Probed(scratch, "sample_fmt"), "flt\n") << extension;
        RunTool("ffmpeg -y -v error -i " + scratch / "x" + " -f s32le " + scratch / "x.raw");
        EXPECT_TRUE(Content(scratch / "x.raw") == samples) << extension;
    }
}

TEST(SndfileSettings, HoldForTheStreamsThatAreMadeAfterwards) {
    const CScratchDirectory scratch;
    const STarget target(scratch / "x", "wav");
    SSink before(target, {48000, 16, 2});
    target.Set("samples", "float");
    EXPECT_EQ(before.m_writer->GetRawFormat().nBitsPerSample, 16);
    before.WriteAll(RandomBytes(400));
    EXPECT_EQ(Probed(scratch, "sample_fmt"), "s16\n");
}
