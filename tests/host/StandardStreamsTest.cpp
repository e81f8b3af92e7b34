// Standard streams that are closed or take nothing.
#include "tests/host/KeloAudio.h"

namespace {

class StandardStreams : public CKeloAudio {
protected:
    StandardStreams() {
        UseFixture("ScriptedDecoder.so");
        UsePlugin(KELO_PLUGINS, "sndfile.so");
        std::filesystem::create_directory(InWork("in"));
    }

    // With the plug-ins that the test chose.
    SRunResult RunRedirected(const std::string& arguments, const std::string& redirection) const {
        const std::string command =
            "KELO_AUDIO_PLUGINS=" + PluginDirectory() + " exec '" + KELOAUDIO + "' " + arguments + " " + redirection;
        return RunProgram({"bash", "-c", command}, WorkDirectory());
    }
};

}  // namespace

TEST_F(StandardStreams, WordsForAClosedStandardErrorAreInNoOutput) {
    m_scratch.Write("work/in.speaks", "x");
    const SRunResult plain = RunRedirected("convert in.speaks plain.flac", "");
    EXPECT_EQ(plain.m_strErr, "a word of the decoder\n");
    for (const std::string redirection : {"2>&-", "<&- 2>&-", "<&- >&- 2>&-"}) {
        const SRunResult closed = RunRedirected("convert in.speaks out.flac --quiet", redirection);
        EXPECT_EQ(closed.m_nExit, 0) << redirection;
        EXPECT_TRUE(ReadWholeFile(InWork("out.flac")) == ReadWholeFile(InWork("plain.flac"))) << redirection;
    }
}

TEST_F(StandardStreams, WarningsForAClosedStandardErrorAreInNoOutputOfAnotherJob) {
    constexpr int kFiles = 100;
    for (int i = 0; i < kFiles; ++i) m_scratch.Write("work/in/" + std::to_string(i) + ".short", "x");
    EXPECT_NE(RunRedirected("convert in/0.short plain.flac", "").m_strErr.find("ended early"), std::string::npos);
    const SRunResult closed = RunRedirected("convert -r in --to flac --out-dir out --jobs 8", "2>&-");
    EXPECT_EQ(closed.m_nExit, 0);
    const std::string plain = ReadWholeFile(InWork("plain.flac"));
    for (int i = 0; i < kFiles; ++i) {
        EXPECT_TRUE(ReadWholeFile(InWork("out/" + std::to_string(i) + ".flac")) == plain) << i;
    }
}

TEST_F(StandardStreams, WhatStandardOutputDoesNotTakeIsToldOnce) {
    m_scratch.Write("work/in.wide", "x");
    for (const std::string arguments : {"--version", "--help", "convert --help", "list", "list --json",
                                        "validate --list-checks", "info in.wide", "convert in.wide out.wav --json"}) {
        SCOPED_TRACE(arguments);
        ExpectFailure(RunRedirected(arguments, ">/dev/full"), {"keloaudio: standard output: "});
        ExpectFailure(RunRedirected(arguments, ">&-"), {"keloaudio: standard output: "});
    }
}

TEST_F(StandardStreams, WhatStandardOutputDoesNotTakeIsToldBesideOtherFailures) {
    m_scratch.Write("work/in.wide", "x");
    for (const std::string arguments : {"info missing.wav --json", "info in.wide missing.wav",
                                        "convert missing.wav out.wav --json", "convert missing.wav --to wav --json"}) {
        SCOPED_TRACE(arguments);
        const SRunResult result = RunRedirected(arguments, ">/dev/full");
        EXPECT_EQ(result.m_nExit, 1);
        EXPECT_EQ(result.m_strErr,
                  "keloaudio: missing.wav: No such file or directory\n"
                  "keloaudio: standard output: No space left on device\n");
    }
}
