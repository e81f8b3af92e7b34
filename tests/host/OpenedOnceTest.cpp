// A source is opened, and a remote one fetched, once for a conversion.
#include <stdlib.h>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class OpenedOnce : public CKeloAudio {
protected:
    OpenedOnce() {
        UseFixture("CountedFetch.so");
        UsePlugin(KELO_PLUGINS, "sndfile.so");
        UsePlugin(KELO_PLUGINS, "soxr.so");
        setenv("KELO_TEST_WEB_ROOT", "/usr/share/sounds/alsa", 1);
        setenv("KELO_TEST_COUNT_FILE", Counts().c_str(), 1);
    }
    ~OpenedOnce() override {
        unsetenv("KELO_TEST_WEB_ROOT");
        unsetenv("KELO_TEST_COUNT_FILE");
    }

    std::string Counts() const { return m_scratch / "counts"; }
};

constexpr const char* kAddress = "http://localhost/Front_Center.wav";

}  // namespace

TEST_F(OpenedOnce, RemoteSourceIsFetchedOnceForACopy) {
    ExpectConverted(RunWithChosen({"convert", kAddress, "out.wav"}), "out.wav: 48000 Hz, 16 bits, 1 channel");
    EXPECT_EQ(ReadWholeFile(Counts()), "fetched\n");
    EXPECT_EQ(SoxSamples(InWork("out.wav"), 16), SoxSamples(kFrontCenter, 16));
}

TEST_F(OpenedOnce, RemoteSourceIsFetchedOnceForAConversion) {
    ExpectConverted(RunWithChosen({"convert", kAddress, "out.flac", "--rate", "44100", "--bits", "24"}),
                    "out.flac: 44100 Hz, 24 bits, 1 channel");
    EXPECT_EQ(ReadWholeFile(Counts()), "fetched\n");
}

TEST_F(OpenedOnce, RemoteSourceIsFetchedOnceForItsDescription) {
    EXPECT_NE(RunWithChosen({"info", kAddress}).m_strOut.find("68545 frames"), std::string::npos);
    EXPECT_EQ(ReadWholeFile(Counts()), "fetched\n");
}

TEST_F(OpenedOnce, RemoteSourcesOfABatchAreNamedAfterTheirLastPart) {
    const SRunResult result =
        RunWithChosen({"convert", "http://localhost/Noise.wav?version=2", "--to", "flac", "--out-dir", "out"});
    EXPECT_EQ(result.m_nExit, 1);  // the fixture takes the question for a part of the name
    EXPECT_NE(result.m_strErr.find("Noise.wav?version=2: No such file"), std::string::npos) << result.m_strErr;
    ExpectConverted(RunWithChosen({"convert", kAddress, "--to", "flac", "--out-dir", "out"}),
                    "-> out/Front_Center.flac: 48000 Hz");
    ExpectFailure(RunWithChosen({"convert", "http://localhost/", "--to", "flac"}),
                  {"http://localhost/: no file name in it for the output"});
}

TEST_F(OpenedOnce, DecoderThatCanBeWrappedIsTakenWhereAnEarlierOneCannot) {
    UseFixture("LonerBeforeTwin.so");
    m_scratch.Write("work/in.twin", "x");
    ExpectConverted(RunWithChosen({"convert", "in.twin", "out.wav", "--bits", "24"}),
                    "out.wav: 48000 Hz, 24 bits, 1 channel, 100 frames");
    EXPECT_EQ(SoxSamples(InWork("out.wav"), 16), std::string(200, '\x11'));
}

TEST_F(OpenedOnce, LengthOfTheOtherDecoderIsThatOfTheSource) {
    UseFixture("LonerBeforeTwin.so");
    m_scratch.Write("work/in.twin", "x");
    const SRunResult result = RunWithChosen({"convert", "in.twin", "out.wav", "--rate", "96000"});
    ExpectConverted(result, "in.twin: 48000 Hz, 16 bits, 1 channel, 100 frames");
    ExpectFailure(RunWithChosen({"convert", "in.twin", "out.wav", "--rate", "96000", "--start", "150f"}),
                  {"is behind its end (100 frames"});
}

TEST_F(OpenedOnce, EarlierDecoderIsReadAsItIsWhereNothingIsConverted) {
    UseFixture("LonerBeforeTwin.so");
    m_scratch.Write("work/in.twin", "x");
    ExpectConverted(RunWithChosen({"convert", "in.twin", "out.wav"}),
                    "out.wav: 48000 Hz, 16 bits, 1 channel, 100 frames");
    EXPECT_EQ(SoxSamples(InWork("out.wav"), 16), std::string(200, '\0'));
}
