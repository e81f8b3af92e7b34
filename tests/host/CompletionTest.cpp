// The completion for bash, and the manual page.
#include <algorithm>
#include <sstream>

#include "tests/host/KeloAudio.h"
#include "tests/host/SoundTools.h"

namespace {

constexpr const char* kCompletion = KELO_SOURCE_DIR "/host/completion/keloaudio.bash";

class Completion : public CKeloAudio {
protected:
    // What bash offers for the last of these words.
    std::vector<std::string> Offered(const std::vector<std::string>& words) const {
        std::string array;
        for (const std::string& word : words) array += " '" + word + "'";
        const std::string script = std::string("source '") + kCompletion + "'; COMP_WORDS=(keloaudio" + array +
                                   "); COMP_CWORD=" + std::to_string(words.size()) +
                                   "; $(complete -p keloaudio | sed -E 's/.*-F (\\S+).*/\\1/')"
                                   "; printf '%s\\n' \"${COMPREPLY[@]}\"";
        const SRunResult result = RunProgram({"bash", "-c", script}, WorkDirectory());
        EXPECT_EQ(result.m_strErr, "");
        std::istringstream lines(result.m_strOut);
        std::vector<std::string> offered;
        for (std::string line; std::getline(lines, line);) {
            if (!line.empty()) offered.push_back(line);
        }
        std::sort(offered.begin(), offered.end());
        return offered;
    }

    // The long options that the help of a command names.
    std::vector<std::string> OptionsInHelp(const std::string& command) const {
        std::istringstream words(RunPlain({command, "--help"}).m_strOut);
        std::vector<std::string> options;
        for (std::string line; std::getline(words, line);) {
            const std::size_t at = line.find("--");
            if (line.rfind("  -", 0) != 0 || at == std::string::npos) continue;
            options.push_back(line.substr(at, line.find_first_of(" ,", at) - at));
        }
        std::sort(options.begin(), options.end());
        return options;
    }
};

using CWords = std::vector<std::string>;

}  // namespace

TEST_F(Completion, OffersCommands) {
    EXPECT_EQ(Offered({""}), (CWords{"--help", "--version", "convert", "info", "list", "settings", "validate"}));
    EXPECT_EQ(Offered({"co"}), CWords{"convert"});
}

TEST_F(Completion, OffersTheOptionsThatTheHelpNames) {
    for (const std::string command : {"list", "info", "convert", "settings"}) {
        SCOPED_TRACE(command);
        EXPECT_FALSE(OptionsInHelp(command).empty());
        EXPECT_EQ(Offered({command, "--"}), OptionsInHelp(command));
    }
}

TEST_F(Completion, OffersValues) {
    EXPECT_EQ(Offered({"convert", "a.wav", "--quality", ""}), (CWords{"high", "quick", "very-high"}));
    EXPECT_EQ(Offered({"convert", "a.wav", "--bits", "2"}), CWords{"24"});
    EXPECT_EQ(Offered({"convert", "a.wav", "--start", ""}), CWords{});
}

TEST_F(Completion, OffersFilesAndDirectories) {
    m_scratch.Write("work/song.wav", "x");
    std::filesystem::create_directory(InWork("songs"));
    EXPECT_EQ(Offered({"convert", "so"}), (CWords{"song.wav", "songs"}));
    EXPECT_EQ(Offered({"convert", "song.wav", "--out-dir", "so"}), CWords{"songs"});
    EXPECT_EQ(Offered({"list", "so"}), CWords{});
}

TEST_F(Completion, ManualPageNamesEveryOptionAndHasNoWarnings) {
    const std::string page = ReadWholeFile(KELO_SOURCE_DIR "/doc/keloaudio.1");
    for (const std::string command : {"list", "info", "convert", "settings", "validate"}) {
        for (const std::string& option : OptionsInHelp(command)) {
            // Alone, or behind its short form.
            const bool named = page.find("Fl " + option.substr(1)) != std::string::npos ||
                               page.find(" , " + option.substr(1)) != std::string::npos;
            EXPECT_TRUE(named) << option;
        }
    }
    const SRunResult result =
        RunProgram({"groff", "-mandoc", "-Tutf8", "-ww", "-z", KELO_SOURCE_DIR "/doc/keloaudio.1"});
    EXPECT_EQ(result.m_nExit, 0);
    EXPECT_EQ(result.m_strErr, "");
}
