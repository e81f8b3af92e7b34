// keloaudio convert and info beside plug-ins whose counts only a lie can be.
#include <map>

#include "tests/host/hostile/HostileFixture.h"
#include "tests/host/hostile/MarkedSound.h"

namespace {

class WrongCount : public CBesideHostile {
protected:
    void UseSndfile() const { UsePlugin(KELO_PLUGINS, "sndfile.so"); }

    // Plug-ins, each with its count of these.
    static std::map<std::string, std::string> Lies(const std::string& what) {
        return {{"Endless" + what, "2147483647"}, {"Negative" + what, "-1"}};
    }

    void Forget(const std::string& plugin) const { std::filesystem::remove(PluginDirectory() + "/" + plugin + ".so"); }
};

}  // namespace

TEST_F(WrongCount, OfADecodersExtensionsIsReportedAndTheOthersConvertAFolder) {
    std::filesystem::create_directory(InWork("in"));
    std::filesystem::copy_file(kFrontCenter, InWork("in/a.wav"));
    UseHostile("NegativeExtensions");
    UseSndfile();
    const SRunResult result = RunWithChosen({"convert", "-r", "in", "--to", "flac", "--out-dir", "out"});
    EXPECT_EQ(result.m_nExit, 0);
    EXPECT_EQ(result.m_strErr, "keloaudio: Fixture: impossible count: -1 extensions\n");
    EXPECT_EQ(NamesIn(InWork("out")), std::vector<std::string>{"a.flac"});
}

TEST_F(WrongCount, OfADecodersExtensionsDoesNotKeepItFromBeingNamed) {
    UseHostile("NegativeExtensions");
    const SRunResult result = RunWithChosen({"info", kFrontCenter});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_NE(result.m_strOut.find("decoder   Fixture (NegativeExtensions.so)\n"), std::string::npos)
        << result.m_strOut;
}

TEST_F(WrongCount, OfAnEncodersExtensionsIsNamedWhereNoOtherListsTheWantedOne) {
    UseHostile("EncoderNegativeExtensions");
    ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.wav"}),
                  {"out.wav: no encoder lists \".wav\" (listed: none; Fixture: impossible count: -1 extensions; "});
    UseSndfile();
    ExpectConverted(RunWithChosen({"convert", kFrontCenter, "out.wav"}), "out.wav: 48000 Hz");
}

TEST_F(WrongCount, OfIndexPointsIsAFailureOfTheFile) {
    for (const auto& [plugin, count] : Lies("IndexPoints")) {
        UseHostile(plugin);
        ExpectFailure(RunWithChosen({"info", kFrontCenter}),
                      {std::string("keloaudio: ") + kFrontCenter + ": impossible count: " + count + " index points\n"});
        Forget(plugin);
    }
}

TEST_F(WrongCount, OfAnEncodersSettingsStandsInTheirPlace) {
    for (const auto& [plugin, count] : Lies("Settings")) {
        UseHostile(plugin);
        ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.wav", "--set", "other=1"}),
                      {"keloaudio: out.wav: --set other=1: its encoder has no such setting (settings: an impossible "
                       "count of them, " +
                       count + ")\n"});
        Forget(plugin);
    }
}

TEST_F(WrongCount, OfAConvertorsOutputIsAFailureOfTheFile) {
    m_scratch.Write("work/in.wav", MarkedSound());
    UseHostileConvertor("NegativeOutputLength");
    UseSndfile();
    ExpectFailure(RunWithChosen({"convert", "in.wav", "out.wav", "--rate", "24000"}),
                  {"keloaudio: in.wav: reading failed: its decoder tells no reason (asked: "});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{"in.wav"});
}

TEST_F(WrongCount, OfFramesIsToldAndDoesNotKeepTheSoundFromBeingConverted) {
    m_scratch.Write("work/in.wav", MarkedSound());
    UseHostile("EndlessLength");
    UseHostileConvertor("Harmless");
    const SRunResult told = RunWithChosen({"info", "in.wav"});
    EXPECT_EQ(told.m_nExit, 0) << told.m_strErr;
    EXPECT_NE(told.m_strOut.find("length    18446744073709551615 frames, "), std::string::npos) << told.m_strOut;
    for (const std::vector<std::string>& options : std::vector<std::vector<std::string>>{{}, {"--rate", "24000"}}) {
        std::vector<std::string> command = {"convert", "in.wav", "out.wav"};
        command.insert(command.end(), options.begin(), options.end());
        const SRunResult result = RunWithChosen(command);
        EXPECT_EQ(result.m_nExit, 0);
        EXPECT_EQ(result.m_strErr,
                  "keloaudio: in.wav: ended early: 18446744073709551615 frames announced, about 24000 delivered\n");
        EXPECT_NE(result.m_strOut.find(" frames, 0.500 s\n"), std::string::npos) << result.m_strOut;
    }
}
