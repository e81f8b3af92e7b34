// The progress bar, on a terminal that script(1) makes.
#include <regex>

#include "tests/host/KeloAudio.h"

namespace {

class Progress : public CKeloAudio {
protected:
    // Sounds that take longer than the time without a bar, however fast the machine is.
    Progress() {
        UseFixture("ScriptedDecoder.so");
        UsePlugin(KELO_PLUGINS, "sndfile.so");
        for (const std::string name : {"long.slow", "again.slow"}) m_scratch.Write("work/" + name, "x");
    }

    std::string OnTerminal(const std::string& arguments) const {
        const std::string command =
            "'" + std::string(KELOAUDIO) + "' convert " + arguments + " --plugins " + PluginDirectory();
        return RunProgram({"script", "-qec", command, m_scratch / "typescript"}, WorkDirectory()).m_strOut;
    }

    // In bars that count the files like this.
    static std::vector<int> PercentagesBeside(const std::string& count, const std::string& screen) {
        const std::regex percentage("([0-9]+)%  " + count);
        std::vector<int> percentages;
        for (std::sregex_iterator match(screen.begin(), screen.end(), percentage), end; match != end; ++match) {
            percentages.push_back(std::stoi((*match)[1]));
        }
        return percentages;
    }
};

}  // namespace

TEST_F(Progress, BarTellsPartSpeedAndTimeLeft) {
    const std::string screen = OnTerminal("long.slow out.wav");
    EXPECT_NE(screen.find("\r\033[K[#"), std::string::npos) << screen;
    EXPECT_NE(screen.find("x real time  0:"), std::string::npos) << screen;
    EXPECT_NE(screen.find(" left"), std::string::npos) << screen;
    // The bar is gone before the lines.
    EXPECT_NE(screen.find("\r\033[Klong.slow: 44100 Hz, 16 bits"), std::string::npos) << screen;
}

TEST_F(Progress, BarOfManyFilesCountsThem) {
    const std::string screen = OnTerminal("long.slow again.slow --to wav --out-dir out --jobs 1");
    EXPECT_NE(screen.find("0 of 2 files"), std::string::npos) << screen;
    EXPECT_NE(screen.find("1 of 2 files"), std::string::npos) << screen;
    EXPECT_NE(screen.find("\r\033[Klong.slow -> out/long.wav"), std::string::npos) << screen;
}

TEST_F(Progress, SkippedAndFailedFilesDoNotHoldTheBarBack) {
    std::filesystem::create_directory(InWork("out"));
    m_scratch.Write("work/out/again.wav", "x");
    // Far larger than the one that is converted.
    m_scratch.Write("work/broken.refuses", std::string(100000, 'x'));
    const std::string screen =
        OnTerminal("again.slow broken.refuses long.slow --to wav --out-dir out --skip-existing --jobs 1");
    const std::vector<int> percentages = PercentagesBeside("1 of 2 files", screen);
    ASSERT_FALSE(percentages.empty()) << screen;
    EXPECT_GE(*std::min_element(percentages.begin(), percentages.end()), 80) << screen;
}

TEST_F(Progress, QuietAndJsonHaveNoBar) {
    EXPECT_EQ(OnTerminal("long.slow out.wav --quiet"), "");
    EXPECT_EQ(OnTerminal("long.slow out.wav --json").find('\033'), std::string::npos);
}

TEST_F(Progress, WithoutATerminalThereAreOnlyLines) {
    const SRunResult result = RunWithChosen({"convert", "long.slow", "out.wav"});
    EXPECT_EQ(result.m_nExit, 0);
    EXPECT_EQ(result.m_strErr, "");
    EXPECT_EQ(result.m_strOut.find('\033'), std::string::npos);
}
