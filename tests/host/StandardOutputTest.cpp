// convert --stdout.
#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class StandardOutput : public CKeloAudio {
protected:
    void ExpectSameAsFile(const std::vector<std::string>& options, const std::string& file) const {
        std::vector<std::string> toFile = {"convert", kFrontCenter, file};
        std::vector<std::string> toOutput = {"convert", kFrontCenter, "--stdout", "--to",
                                             std::filesystem::path(file).extension().string().substr(1)};
        toFile.insert(toFile.end(), options.begin(), options.end());
        toOutput.insert(toOutput.end(), options.begin(), options.end());
        Run(toFile);
        const SRunResult result = Run(toOutput);
        EXPECT_EQ(result.m_nExit, 0);
        EXPECT_EQ(result.m_strErr, "");
        EXPECT_FALSE(result.m_strOut.empty());
        EXPECT_TRUE(result.m_strOut == ReadWholeFile(InWork(file)));
    }
};

}  // namespace

TEST_F(StandardOutput, HoldsTheFileAndNothingElse) {
    ExpectSameAsFile({}, "out.wav");
    ExpectSameAsFile({"--rate", "44100"}, "out.flac");
}

TEST_F(StandardOutput, IsWavUnlessSaidOtherwise) {
    EXPECT_EQ(Run({"convert", kFrontCenter, "--stdout"}).m_strOut.substr(0, 4), "RIFF");
}

TEST_F(StandardOutput, StaysEmptyWhenTheSourceFails) {
    m_scratch.Write("work/cut.wav", ReadWholeFile(kFrontCenter).substr(0, 100000));
    ExpectFailure(Run({"convert", "cut.wav", "--stdout"}), {"cut.wav: reading failed: "});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"cut.wav"});
}

TEST_F(StandardOutput, ThatTakesNothingIsAFailure) {
    const std::string command = std::string("exec '") + KELOAUDIO + "' convert " + kFrontCenter +
                                " --stdout --plugins " + SoundPluginDirectory();
    ExpectFailure(RunProgram({"bash", "-c", command + " >/dev/full"}), {"standard output: No space left on device"});
    ExpectFailure(RunProgram({"bash", "-c", "set -o pipefail; (" + command + ") | true"}),
                  {"standard output: Broken pipe"});
}

TEST_F(StandardOutput, LeavesNoTemporaryFileBehind) {
    const std::string temporaries = m_scratch / "tmp";
    std::filesystem::create_directory(temporaries);
    const SRunResult result = RunProgram({"env", "TMPDIR=" + temporaries, KELOAUDIO, "convert", kFrontCenter,
                                          "--stdout", "--plugins", SoundPluginDirectory()});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(NamesIn(temporaries), std::vector<std::string>{});
}

TEST_F(StandardOutput, GoesWithOneInputAndNoOtherOutput) {
    ExpectFailure(Run({"convert", kFrontCenter, kComplete, "--stdout"}), {"--stdout: takes exactly one input"}, 2);
    for (const std::string option :
         {"--out-dir=x", "--skip-existing", "--recursive", "--json", "--dry-run", "--shard=0/2"}) {
        ExpectFailure(Run({"convert", kFrontCenter, "--stdout", option}), {"does not go with --stdout"}, 2);
    }
}
