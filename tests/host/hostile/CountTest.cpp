// keloaudio convert and info beside plug-ins whose counts only a lie can be.
#include "tests/host/hostile/HostileFixture.h"

namespace {

class WrongCount : public CBesideHostile {
protected:
    void UseSndfile() const { UsePlugin(KELO_PLUGINS, "sndfile.so"); }
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
    UseHostile("NegativeIndexPoints");
    ExpectFailure(RunWithChosen({"info", kFrontCenter}),
                  {std::string("keloaudio: ") + kFrontCenter + ": impossible count: -1 index points\n"});
}
