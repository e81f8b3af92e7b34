// The names of unfinished outputs, by which whoever cleans up after killed runs finds them.
#include <signal.h>
#include <sys/stat.h>

#include <regex>

#include "tests/host/KeloAudio.h"

namespace {

class TemporaryName : public CKeloAudio {
protected:
    TemporaryName() {
        UseFixture("ScriptedDecoder.so");
        UsePlugin(KELO_PLUGINS, "sndfile.so");
        m_scratch.Write("work/in.endless", "x");
    }

    static std::vector<std::string> Unfinished(const std::string& directory) {
        std::vector<std::string> names = NamesIn(directory);
        const auto isFinished = [](const std::string& name) {
            return std::filesystem::path(name).extension() != ".part";
        };
        names.erase(std::remove_if(names.begin(), names.end(), isFinished), names.end());
        return names;
    }

    // There come to be so many, all for their owner alone and with such names.
    static void ExpectUnfinished(const std::string& directory, std::size_t count, const std::string& pattern) {
        EXPECT_TRUE(WaitUntil([&] { return Unfinished(directory).size() == count; }));
        for (const std::string& name : Unfinished(directory)) {
            EXPECT_TRUE(std::regex_match(name, std::regex(pattern))) << name;
            struct stat entry = {};
            EXPECT_EQ(stat((directory + "/" + name).c_str(), &entry), 0) << name;
            EXPECT_EQ(entry.st_mode & 07777U, 0600U) << name;
        }
    }

    // The line that the guide for clusters gives, for this directory.
    static std::string CleaningCommand(const std::string& directory) {
        const std::string guide = ReadWholeFile(KELO_SOURCE_DIR "/doc/cluster.md");
        std::smatch line;
        if (!std::regex_search(guide, line, std::regex("`(find )/archive/flac( [^`]*)`"))) return "false";
        return line.str(1) + directory + line.str(2);
    }
};

}  // namespace

TEST_F(TemporaryName, EveryRunHasItsOwnAndTheGuideFindsThemAll) {
    const std::vector<std::string> command = {KELOAUDIO, "convert",   "in.endless",
                                              "out.wav", "--plugins", PluginDirectory()};
    CRunningProgram first(command, WorkDirectory());
    CRunningProgram second(command, WorkDirectory());
    ExpectUnfinished(WorkDirectory(), 2, R"(\.out\.wav\.kelo-.{6}\.part)");
    for (CRunningProgram* const program : {&first, &second}) {
        program->Signal(SIGKILL);
        EXPECT_EQ(program->Wait().m_nExit, -SIGKILL);
    }
    EXPECT_EQ(Unfinished(WorkDirectory()).size(), 2u);
    m_scratch.Write("work/theirs.part", "x");
    const SRunResult cleaned = RunProgram({"bash", "-c", CleaningCommand(WorkDirectory())});
    EXPECT_EQ(cleaned.m_nExit, 0) << cleaned.m_strErr;
    EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"in.endless", "theirs.part"}));
}

TEST_F(TemporaryName, StandardOutputIsKeptInTheTemporaryDirectory) {
    const std::string temporaries = m_scratch / "tmp";
    std::filesystem::create_directory(temporaries);
    CRunningProgram program({"env", "TMPDIR=" + temporaries, KELOAUDIO, "convert", "in.endless", "--stdout",
                             "--plugins", PluginDirectory()},
                            WorkDirectory());
    ExpectUnfinished(temporaries, 1, R"(\.keloaudio\.kelo-.{6}\.part)");
    program.Signal(SIGTERM);
    ExpectFailure(program.Wait(), {"standard output: interrupted, nothing is written"}, 128 + SIGTERM);
    EXPECT_EQ(NamesIn(temporaries), std::vector<std::string>{});
}
