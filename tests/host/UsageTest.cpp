// Wrong usage: one line that names the option, exit status 2.
#include "tests/host/KeloAudio.h"

namespace {

class Usage : public CKeloAudio {};

struct SBadNumber {
    const char* m_szOption;
    const char* m_szNumber;
};

}  // namespace

TEST_F(Usage, BadNumbersAreRefusedByName) {
    for (const SBadNumber& bad :
         {SBadNumber{"--rate", "0"}, SBadNumber{"--rate", "-48000"}, SBadNumber{"--rate", "fast"},
          SBadNumber{"--rate", "48000Hz"}, SBadNumber{"--rate", "44.1"}, SBadNumber{"--rate", "99999999999999999999"},
          SBadNumber{"--rate", ""}, SBadNumber{"--bits", "0"}, SBadNumber{"--bits", "12"}, SBadNumber{"--bits", "many"},
          SBadNumber{"--channels", "0"}, SBadNumber{"--channels", "65"}, SBadNumber{"--channels", "two"}}) {
        SCOPED_TRACE(std::string(bad.m_szOption) + " " + bad.m_szNumber);
        ExpectFailure(Run({"convert", kFrontCenter, "out.wav", bad.m_szOption, bad.m_szNumber}), {bad.m_szOption}, 2);
        EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
    }
}

TEST_F(Usage, MissingOperandsAreNamed) {
    ExpectFailure(Run({"convert"}), {"INPUT"}, 2);
    ExpectFailure(Run({"convert", kFrontCenter}), {"OUTPUT"}, 2);
}

TEST_F(Usage, EmptyNamesAreRefused) {
    ExpectFailure(Run({"convert", "", "out.wav"}), {"keloaudio: INPUT: an empty name"}, 2);
    ExpectFailure(Run({"convert", kFrontCenter, ""}), {"keloaudio: OUTPUT: an empty name"}, 2);
    ExpectFailure(Run({"convert", kFrontCenter, "out.wav", "--plugins", ""}), {"--plugins: an empty name"}, 2);
    ExpectFailure(Run({"list", "--plugins="}), {"--plugins: "}, 2);
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
}

TEST_F(Usage, OptionWithAnEmptyValueDoesNotTakeTheNextArgument) {
    for (const std::string option : {"--plugins", "--rate", "--start", "--set", "--shard", "--quality"}) {
        ExpectFailure(Run({"convert", option + "=", "0/2", kFrontCenter, "--to", "wav", "--dry-run"}), {option}, 2);
    }
    for (const std::string flag : {"--quiet=", "--json="}) {
        ExpectConverted(Run({"convert", "--plugins", SoundPluginDirectory(), flag, kFrontCenter, "flag.wav"}), "");
        EXPECT_TRUE(std::filesystem::remove(InWork("flag.wav"))) << "a flag has no value that could be empty";
    }
    std::filesystem::copy_file(kFrontCenter, InWork("--to="));
    ExpectConverted(Run({"convert", "--plugins", SoundPluginDirectory(), "--", "--to=", "out.wav"}), "out.wav: ");
}

TEST_F(Usage, UnknownCommandOrOptionIsRefused) {
    ExpectFailure(Run({}), {"subcommand"}, 2);
    ExpectFailure(Run({"play"}), {"subcommand"}, 2);
    ExpectFailure(Run({"list", "--loud"}), {"--loud"}, 2);
}

TEST_F(Usage, HelpAndVersionSucceed) {
    EXPECT_NE(Run({"--help"}).m_strOut.find("convert"), std::string::npos);
    EXPECT_NE(Run({"convert", "--help"}).m_strOut.find("--rate"), std::string::npos);
    EXPECT_EQ(Run({"--version"}).m_strOut.rfind("keloaudio ", 0), 0u);
    EXPECT_EQ(Run({"--help"}).m_nExit, 0);
}
