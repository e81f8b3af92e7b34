// Conversions of real sounds, compared with other programs' reading of the same files.
#include <sys/stat.h>

#include <cmath>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class Convert : public CKeloAudio {
protected:
    void ExpectFormat(const std::string& path, int rate, int bits, int channels) const {
        EXPECT_EQ(AskSoxi("-r", InWork(path)), std::to_string(rate));
        EXPECT_EQ(AskSoxi("-b", InWork(path)), std::to_string(bits));
        EXPECT_EQ(AskSoxi("-c", InWork(path)), std::to_string(channels));
    }
};

}  // namespace

TEST_F(Convert, WavToWavKeepsFormatAndEverySample) {
    ExpectConverted(Run({"convert", kFrontCenter, "out.wav"}),
                    "out.wav: 48000 Hz, 16 bits, 1 channel, 68545 frames, 1.428 s");
    ExpectFormat("out.wav", 48000, 16, 1);
    EXPECT_EQ(SoxSamples(InWork("out.wav"), 16), SoxSamples(kFrontCenter, 16));
}

TEST_F(Convert, EveryInstalledWavKeepsItsSamplesInFlac) {
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/usr/share/sounds/alsa")) {
        if (entry.path().extension() != ".wav") continue;
        SCOPED_TRACE(entry.path());
        ++files;
        ExpectConverted(Run({"convert", entry.path(), "out.flac"}), "out.flac: ");
        const std::string expected = SoxSamples(entry.path(), 16);
        ASSERT_FALSE(expected.empty());
        EXPECT_TRUE(FlacSamples(InWork("out.flac")) == expected);
    }
    EXPECT_GE(files, 1);
}

TEST_F(Convert, OggToWavAgreesWithOggdec) {
    ExpectConverted(Run({"convert", kComplete, "out.wav"}), "out.wav: 44100 Hz, 16 bits, 2 channels");
    const std::string raw = m_scratch / "oggdec.raw";
    RunTool({"oggdec", "-Q", "-R", "-o", raw, kComplete});
    const std::string expected = ReadWholeFile(raw);
    ASSERT_FALSE(expected.empty());
    const std::string samples = SoxSamples(InWork("out.wav"), 16);
    ASSERT_EQ(samples.size(), expected.size());
    EXPECT_LE(LargestDifference(samples, expected), 1);
}

TEST_F(Convert, PrintsTheSourceFirst) {
    const SRunResult result = Run({"convert", kFrontCenter, "out.wav"});
    const std::string first = std::string(kFrontCenter) + ": 48000 Hz, 16 bits, 1 channel, 68545 frames, 1.428 s\n";
    EXPECT_EQ(result.m_strOut.substr(0, first.size()), first);
}

TEST_F(Convert, RateChangeGivesTheRoundedNumberOfFrames) {
    for (const int rate : {8000, 11025, 22050, 44100, 48000, 96000}) {
        SCOPED_TRACE(rate);
        ExpectConverted(Run({"convert", kComplete, "out.wav", "--rate", std::to_string(rate)}), "out.wav: ");
        const long frames = std::lround(std::stod(AskSoxi("-s", kComplete)) * rate / 44100);
        EXPECT_EQ(AskSoxi("-s", InWork("out.wav")), std::to_string(frames));
        EXPECT_EQ(AskSoxi("-r", InWork("out.wav")), std::to_string(rate));
    }
}

TEST_F(Convert, RateWidthAndChannelsChangeTogether) {
    ExpectConverted(Run({"convert", kComplete, "out.flac", "--rate", "48000", "--bits", "24", "--channels", "1"}),
                    "out.flac: 48000 Hz, 24 bits, 1 channel");
    ExpectFormat("out.flac", 48000, 24, 1);
}

TEST_F(Convert, WideningKeepsEverySample) {
    for (const int bits : {24, 32}) {
        SCOPED_TRACE(bits);
        ExpectConverted(Run({"convert", kFrontCenter, "out.wav", "--bits", std::to_string(bits)}), "out.wav: ");
        ExpectFormat("out.wav", 48000, bits, 1);
        EXPECT_EQ(SoxSamples(InWork("out.wav"), bits), SoxSamples(kFrontCenter, bits));
    }
}

TEST_F(Convert, ThirtyTwoBitsBecomeTheTwentyFourOfFlac) {
    ExpectConverted(Run({"convert", kFrontCenter, "out.flac", "--bits", "32"}),
                    "out.flac: 48000 Hz, 24 bits, 1 channel");
    EXPECT_EQ(FlacSamples(InWork("out.flac")), SoxSamples(kFrontCenter, 24));
}

TEST_F(Convert, EncoderIsChosenInAnyCaseOfLetters) {
    ExpectConverted(Run({"convert", kFrontCenter, "OUT.FlaC"}), "OUT.FlaC: 48000 Hz, 16 bits");
    EXPECT_EQ(ReadWholeFile(InWork("OUT.FlaC")).substr(0, 4), "fLaC");
}

TEST_F(Convert, RelativeInputIsFoundInTheCurrentDirectory) {
    std::filesystem::copy_file(kFrontCenter, InWork("in file.wav"));
    ExpectConverted(Run({"convert", "in file.wav", "./out.wav"}), "in file.wav: 48000 Hz");
    ExpectConverted(Run({"convert", "../work/in file.wav", "out.wav"}), "./work/in file.wav: 48000 Hz");
}

TEST_F(Convert, NothingButTheOutputIsLeft) {
    Run({"convert", kFrontCenter, "out.wav"});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"out.wav"});
}

TEST_F(Convert, ExistingOutputIsReplaced) {
    m_scratch.Write("work/out.wav", "the old content");
    ExpectConverted(Run({"convert", kFrontCenter, "out.wav"}), "out.wav: ");
    EXPECT_EQ(SoxSamples(InWork("out.wav"), 16), SoxSamples(kFrontCenter, 16));
}

TEST_F(Convert, ExistingOutputIsKeptOnRequest) {
    m_scratch.Write("work/out.wav", "the old content");
    EXPECT_EQ(Run({"convert", kFrontCenter, "out.wav", "--skip-existing"}).m_strOut,
              std::string(kFrontCenter) + " -> out.wav: skipped, it is there\n");
    EXPECT_EQ(ReadWholeFile(InWork("out.wav")), "the old content");
    std::filesystem::remove(InWork("out.wav"));
    ExpectConverted(Run({"convert", kFrontCenter, "out.wav", "--skip-existing"}), "out.wav: 48000 Hz");
}

TEST_F(Convert, LinkToTheOutputStaysALink) {
    m_scratch.Write("work/real.wav", "the old content");
    std::filesystem::create_symlink("real.wav", InWork("out.wav"));
    ExpectConverted(Run({"convert", kFrontCenter, "out.wav"}), "out.wav: ");
    EXPECT_TRUE(std::filesystem::is_symlink(InWork("out.wav")));
    EXPECT_EQ(AskSoxi("-s", InWork("real.wav")), "68545");
}

TEST_F(Convert, OutputHasTheModeThatTheMaskLeaves) {
    const mode_t before = umask(027);
    Run({"convert", kFrontCenter, "out.wav"});
    umask(before);
    struct stat entry = {};
    ASSERT_EQ(stat(InWork("out.wav").c_str(), &entry), 0);
    EXPECT_EQ(entry.st_mode & 0777, 0640u);
}

TEST_F(Convert, LongestFileNameWorks) {
    const std::string name = std::string(251, 'n') + ".wav";
    ExpectConverted(Run({"convert", kFrontCenter, name}), name + ": 48000 Hz");
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{name});
}

TEST_F(Convert, SoundWithoutFramesStaysEmpty) {
    RunTool({"sox", "-n", "-r", "44100", "-b", "16", "-c", "2", InWork("none.wav"), "trim", "0", "0"});
    ExpectConverted(Run({"convert", "none.wav", "out.wav"}),
                    "out.wav: 44100 Hz, 16 bits, 2 channels, 0 frames, 0.000 s");
}
