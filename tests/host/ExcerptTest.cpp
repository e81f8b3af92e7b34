// Parts of sounds, by --start and --end.
#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class Excerpt : public CKeloAudio {
protected:
    // The frames of a 16-bit mono file that the excerpt has, from the whole.
    void ExpectFrames(const std::vector<std::string>& options, std::size_t first, std::size_t end) const {
        std::vector<std::string> arguments = {"convert", kFrontCenter, "out.wav"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        ExpectConverted(Run(arguments), ", " + std::to_string(end - first) + " frames, ");
        const std::string whole = SoxSamples(kFrontCenter, 16);
        EXPECT_TRUE(SoxSamples(InWork("out.wav"), 16) == whole.substr(first * 2, (end - first) * 2));
    }
};

constexpr std::size_t kFrames = 68545;

}  // namespace

TEST_F(Excerpt, EndsAreSecondsClocksOrFrames) {
    ExpectFrames({"--start", "0.5", "--end", "1"}, 24000, 48000);
    ExpectFrames({"--start", "0:00.25", "--end", "0:00:01.25"}, 12000, 60000);
    ExpectFrames({"--start", "1001f", "--end", "40001f"}, 1001, 40001);
    ExpectFrames({"--start", "1001f", "--end", "1"}, 1001, 48000);
    ExpectFrames({"--start", "0.0000104"}, 0, kFrames);
    ExpectFrames({"--start", "0.0000105"}, 1, kFrames);
}

TEST_F(Excerpt, OneEndIsEnough) {
    ExpectFrames({"--start", "1"}, 48000, kFrames);
    ExpectFrames({"--end", "1"}, 0, 48000);
}

TEST_F(Excerpt, EndBehindTheSoundIsItsEnd) { ExpectFrames({"--start", "1", "--end", "1:00"}, 48000, kFrames); }

TEST_F(Excerpt, ResampledExcerptHasTheRoundedLength) {
    ExpectConverted(Run({"convert", kFrontCenter, "out.wav", "--rate", "44100", "--start", "0.5", "--end", "1"}),
                    "out.wav: 44100 Hz, 16 bits, 1 channel, 22050 frames, 0.500 s");
}

TEST_F(Excerpt, LossySourceIsCutAtTheFrame) {
    RunTool({"oggdec", "-Q", "-o", m_scratch / "whole.wav", kComplete});
    ExpectConverted(Run({"convert", kComplete, "out.wav", "--start", "20000f", "--end", "30000f", "--dither", "none"}),
                    "10000 frames");
    const std::string whole = SoxSamples(m_scratch / "whole.wav", 16);
    EXPECT_LE(LargestDifference(SoxSamples(InWork("out.wav"), 16), whole.substr(80000, 40000)), 1);
}

TEST_F(Excerpt, SourceThatDoesNotSeekIsReadUpToTheStart) {
    UseFixture("ScriptedDecoder.so");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    m_scratch.Write("work/in.lateblock", "x");
    ExpectConverted(RunWithChosen({"convert", "in.lateblock", "all.wav"}), "300 frames");
    ExpectConverted(RunWithChosen({"convert", "in.lateblock", "out.wav", "--start", "150f", "--end", "275f"}),
                    "out.wav: 44100 Hz, 16 bits, 2 channels, 125 frames");
    EXPECT_TRUE(SoxSamples(InWork("out.wav"), 16) == SoxSamples(InWork("all.wav"), 16).substr(600, 500));
}

TEST_F(Excerpt, EndlessSourceEndsWhereTheExcerptDoes) {
    UseFixture("ScriptedDecoder.so");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    m_scratch.Write("work/in.endless", "x");
    ExpectConverted(RunWithChosen({"convert", "in.endless", "out.wav", "--end", "2"}), "88200 frames, 2.000 s");
}

TEST_F(Excerpt, StartBehindTheEndIsRefused) {
    ExpectCleanFailure(kFrontCenter, "out.wav",
                       {"Front_Center.wav: --start, 96000 frames, 2.000 s, is behind its end (68545 frames, 1.428 s)"},
                       {"--start", "2"});
    ExpectCleanFailure(kFrontCenter, "out.wav", {"--end, frame 48000, is not after --start, frame 50000"},
                       {"--start", "50000f", "--end", "1"});
}

TEST_F(Excerpt, StartBehindAnEndThatNobodyAnnouncedIsRefused) {
    UseFixture("ScriptedDecoder.so");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    m_scratch.Write("work/in.lateblock", "x");
    for (const std::string start : {"1000f", "300f"}) {
        ExpectFailure(RunWithChosen({"convert", "in.lateblock", "out.wav", "--start", start}),
                      {"in.lateblock: --start is behind its end"});
    }
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"in.lateblock"});
}

TEST_F(Excerpt, LengthThatShrinksBelowTheStartIsNoShortfall) {
    UseFixture("ScriptedDecoder.so");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    m_scratch.Write("work/in.shrinks", "x");
    ExpectConverted(RunWithChosen({"convert", "in.shrinks", "out.wav", "--start", "150f"}), "out.wav: 44100 Hz");
}

TEST_F(Excerpt, WhatIsNoTimeIsWrongUsage) {
    for (const std::string text : {"", "x", "-1", "1:60", "1:2:3:4", "1.", ".5", "1.2.3", "4800 f", "f", "1,5", "1e3",
                                   "9999999999", "9999999999999f"}) {
        SCOPED_TRACE(text);
        ExpectFailure(Run({"convert", kFrontCenter, "out.wav", "--start=" + text}), {"--start"}, 2);
    }
    ExpectFailure(Run({"convert", kFrontCenter, "out.wav", "--start", "1", "--end", "1"}), {"--end: is not after"}, 2);
}
