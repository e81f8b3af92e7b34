// How many files are converted at a time, told by decoders that go on only when all are at work.
#include <sched.h>

#include "tests/host/KeloAudio.h"

namespace {

class Jobs : public CKeloAudio {
protected:
    Jobs() {
        UseFixture("ScriptedDecoder.so");
        UsePlugin(KELO_PLUGINS, "sndfile.so");
    }

    static int UsableCores() {
        const cpu_set_t cores = Affinity();
        return CPU_COUNT(&cores);
    }

    static std::string FirstUsableCore() {
        const cpu_set_t cores = Affinity();
        std::size_t core = 0;
        while (!CPU_ISSET(core, &cores)) ++core;
        return std::to_string(core);
    }

    // So many files are converted at a time.
    void ExpectTogether(int files, const std::vector<std::string>& options) const {
        const SRunResult result = Convert(files, "meets", {}, options);
        EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    }

    // So many are too many at a time. `prefix` comes before the command.
    void ExpectApart(int files, const std::vector<std::string>& options, std::vector<std::string> prefix = {}) const {
        const SRunResult result = Convert(files, "misses", std::move(prefix), options);
        const std::string count = std::to_string(files);
        EXPECT_EQ(result.m_nExit, 1);
        EXPECT_NE(result.m_strErr.find("\nkeloaudio: " + count + " of " + count + " files failed: "), std::string::npos)
            << result.m_strErr;
        EXPECT_NE(result.m_strErr.find("the others do not come"), std::string::npos) << result.m_strErr;
    }

private:
    static cpu_set_t Affinity() {
        cpu_set_t cores;
        EXPECT_EQ(sched_getaffinity(0, sizeof(cores), &cores), 0);
        return cores;
    }

    SRunResult Convert(int files, const std::string& script, std::vector<std::string> command,
                       const std::vector<std::string>& options) const {
        std::filesystem::create_directory(InWork(script));
        for (int i = 0; i < files; ++i) m_scratch.Write("work/" + script + "/" + std::to_string(i) + "." + script, "x");
        command.insert(command.end(), {KELOAUDIO, "convert", "-r", script, "--to", "wav", "--out-dir", "out",
                                       "--plugins", PluginDirectory()});
        command.insert(command.end(), options.begin(), options.end());
        return RunProgram(command, WorkDirectory());
    }
};

}  // namespace

TEST_F(Jobs, AreAsManyAsTheOptionSays) {
    ExpectTogether(2, {"--jobs", "2"});
    ExpectApart(3, {"--jobs", "2"});
}

TEST_F(Jobs, OneTakesOneFileAtATime) { ExpectApart(2, {"--jobs", "1"}); }

TEST_F(Jobs, AreAsManyAsUsableCoresWithoutTheOption) {
    ExpectTogether(UsableCores(), {});
    ExpectApart(UsableCores() + 1, {});
}

TEST_F(Jobs, CoresThatMayNotBeUsedDoNotCount) { ExpectApart(2, {}, {"taskset", "-c", FirstUsableCore()}); }
