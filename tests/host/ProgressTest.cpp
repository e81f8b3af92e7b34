// The progress bar, on a terminal that script(1) makes.
#include <regex>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

class Progress : public CKeloAudio {
protected:
    // Silence that takes little room and some time.
    Progress() {
        RunTool({"sox", "-n", "-r", "96000", "-c", "2", "-b", "16", InWork("long.flac"), "trim", "0", "100"});
        std::filesystem::copy_file(InWork("long.flac"), InWork("again.flac"));
    }

    std::string OnTerminal(const std::string& arguments) const {
        const std::string command = std::string(KELOAUDIO) + " convert " + arguments +
                                    " --rate 44100 --quality very-high --plugins " + SoundPluginDirectory();
        return RunProgram({"script", "-qec", command, m_scratch / "typescript"}, WorkDirectory()).m_strOut;
    }

    static std::vector<int> PercentagesOf(const std::string& screen) {
        const std::regex percentage("([0-9]+)%  ");
        std::vector<int> percentages;
        for (std::sregex_iterator match(screen.begin(), screen.end(), percentage), end; match != end; ++match) {
            percentages.push_back(std::stoi((*match)[1]));
        }
        return percentages;
    }
};

}  // namespace

TEST_F(Progress, BarTellsPartSpeedAndTimeLeft) {
    const std::string screen = OnTerminal("long.flac out.wav");
    EXPECT_NE(screen.find("\r\033[K[#"), std::string::npos) << screen;
    EXPECT_NE(screen.find("x real time  0:"), std::string::npos) << screen;
    EXPECT_NE(screen.find(" left"), std::string::npos) << screen;
    // The bar is gone before the lines.
    EXPECT_NE(screen.find("\r\033[Klong.flac: 96000 Hz, 16 bits"), std::string::npos) << screen;
}

TEST_F(Progress, BarOfManyFilesCountsThem) {
    const std::string screen = OnTerminal("long.flac again.flac --to wav --out-dir out --jobs 1");
    EXPECT_NE(screen.find("0 of 2 files"), std::string::npos) << screen;
    EXPECT_NE(screen.find("1 of 2 files"), std::string::npos) << screen;
    EXPECT_NE(screen.find("\r\033[Klong.flac -> out/long.wav"), std::string::npos) << screen;
}

TEST_F(Progress, SkippedAndFailedFilesDoNotHoldTheBarBack) {
    std::filesystem::create_directory(InWork("out"));
    std::filesystem::copy_file(InWork("long.flac"), InWork("out/again.flac"));
    // Far larger than the one that is converted, and not sound.
    m_scratch.Write("work/broken.wav", std::string(40000000, 'x'));
    const std::string screen =
        OnTerminal("again.flac broken.wav long.flac --to flac --out-dir out --skip-existing --jobs 1");
    EXPECT_NE(screen.find("1 of 2 files"), std::string::npos) << screen;
    EXPECT_EQ(screen.find("0 of 2 files"), std::string::npos) << screen;
    const std::vector<int> percentages = PercentagesOf(screen);
    ASSERT_FALSE(percentages.empty()) << screen;
    EXPECT_GE(*std::min_element(percentages.begin(), percentages.end()), 80) << screen;
}

TEST_F(Progress, QuietAndJsonHaveNoBar) {
    EXPECT_EQ(OnTerminal("long.flac out.wav --quiet"), "");
    EXPECT_EQ(OnTerminal("long.flac out.wav --json").find('\033'), std::string::npos);
}

TEST_F(Progress, WithoutATerminalThereAreOnlyLines) {
    const SRunResult result = Run({"convert", "long.flac", "out.wav", "--rate", "44100", "--quality", "very-high"});
    EXPECT_EQ(result.m_strErr, "");
    EXPECT_EQ(result.m_strOut.find('\033'), std::string::npos);
}
