// Where keloaudio keeps files while it works.
#include "tests/host/KeloAudio.h"

namespace {

class TemporaryPlace : public CKeloAudio {
protected:
    // With TMPDIR and the plug-ins on libsndfile and soxr.
    SRunResult RunIn(const std::string& place, std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"env", "TMPDIR=" + place, KELOAUDIO});
        return RunProgram(arguments, WorkDirectory());
    }

    void ExpectRefused(const std::string& place, const std::string& reason) const {
        const std::string line = "keloaudio: " + place + ": there is no temporary directory (TMPDIR): " + reason + "\n";
        ExpectFailure(RunIn(place, {"validate", SoundPluginDirectory() + "/soxr.so"}), {line});
        ExpectFailure(RunIn(place, {"convert", "--stdout", kFrontCenter, "--plugins", SoundPluginDirectory()}), {line});
    }
};

}  // namespace

TEST_F(TemporaryPlace, OneThatIsNotThereIsNamed) {
    ExpectRefused(m_scratch / "missing", "No such file or directory");
    ExpectRefused(m_scratch.Write("file", "words"), "Not a directory");
}

TEST_F(TemporaryPlace, EmptyVariableIsNone) {
    const SRunResult result = RunIn("", {"convert", "--stdout", kFrontCenter, "--plugins", SoundPluginDirectory()});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
}

TEST_F(TemporaryPlace, OneThatTakesNoDirectoryIsNamed) {
    // Nobody makes directories among the processes.
    ExpectFailure(RunIn("/proc", {"validate", SoundPluginDirectory() + "/soxr.so"}),
                  {"keloaudio: /proc: no directory can be made in it (TMPDIR): "});
}
