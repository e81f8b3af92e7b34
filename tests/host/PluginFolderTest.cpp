// Plug-in directories with nothing usable in them.
#include "tests/host/KeloAudio.h"

namespace {

class PluginFolder : public CKeloAudio {
protected:
    void ExpectRefused(const std::string& words) const {
        ExpectFailure(RunWithChosen({"list"}), {PluginDirectory() + ": " + words});
        ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.wav"}), {PluginDirectory() + ": " + words});
        EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
    }

    // With this value of the environment variable.
    static SRunResult ListWithVariable(const std::string& directory, std::vector<std::string> options) {
        options.insert(options.begin(), {"env", "KELO_AUDIO_PLUGINS=" + directory, KELOAUDIO, "list"});
        return RunProgram(options);
    }
};

}  // namespace

TEST_F(PluginFolder, Missing) {
    std::filesystem::remove(PluginDirectory());
    ExpectRefused("No such file or directory");
}

TEST_F(PluginFolder, AFile) {
    std::filesystem::remove(PluginDirectory());
    m_scratch.Write("plugins", "no directory");
    ExpectRefused("Not a directory");
}

TEST_F(PluginFolder, Empty) { ExpectRefused("no plug-ins (*.so) here"); }

TEST_F(PluginFolder, TextNamedAsPlugin) {
    m_scratch.Write("plugins/text.so", "These are words, no code.\n");
    ExpectRefused("no usable plug-in here (tried: text.so)");
}

TEST_F(PluginFolder, PluginWithoutReadyToFinish) {
    UseFixture("LacksReadyToFinish.so");
    ExpectRefused("no usable plug-in here (tried: LacksReadyToFinish.so)");
}

TEST_F(PluginFolder, PluginWithoutGetPrimaryAudioObject) {
    UseFixture("LacksGetPrimaryAudioObject.so");
    ExpectRefused("no usable plug-in here (tried: LacksGetPrimaryAudioObject.so)");
}

TEST_F(PluginFolder, UnusableNeighboursDoNotHarm) {
    m_scratch.Write("plugins/text.so", "These are words, no code.\n");
    UseFixture("LacksReadyToFinish.so");
    UseFixture("LacksGetPrimaryAudioObject.so");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    ExpectConverted(RunWithChosen({"convert", kFrontCenter, "out.wav"}), "out.wav: 48000 Hz");
}

TEST_F(PluginFolder, RelativeDirectoryIsFoundFromTheCurrentOne) {
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    ExpectConverted(Run({"convert", kFrontCenter, "out.wav", "--plugins", "../plugins"}), "out.wav: 48000 Hz");
}

TEST_F(PluginFolder, OptionComesBeforeTheVariable) {
    const SRunResult result = ListWithVariable(PluginDirectory(), {"--plugins", SoundPluginDirectory()});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    ExpectFailure(ListWithVariable(SoundPluginDirectory(), {"--plugins", PluginDirectory()}),
                  {PluginDirectory() + ": no plug-ins (*.so) here"});
}

TEST_F(PluginFolder, VariableComesBeforeTheInstalledOne) {
    ExpectFailure(ListWithVariable(PluginDirectory(), {}), {PluginDirectory() + ": no plug-ins (*.so) here"});
}

TEST_F(PluginFolder, EmptyVariableMeansTheInstalledOne) {
    const SRunResult result = ListWithVariable("", {"--trust-plugins"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(result.m_strOut, RunPlain({"list", "--trust-plugins"}).m_strOut);
}

TEST_F(PluginFolder, WithoutAConvertorNothingConverts) {
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.wav", "--rate", "8000"}),
                  {"Front_Center.wav: no conversion from 48000 Hz, 16 bits, 1 channel to 8000 Hz, 16 bits, 1 channel: "
                   "no plug-in converts it"});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
}
