// Signals that stop a conversion.
#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <thread>

#include "tests/host/KeloAudio.h"

namespace {

constexpr const char* kNobodyTells = "/proc does not tell what other processes wait for";

class StopSignal : public CKeloAudio {
protected:
    StopSignal() {
        UseFixture("ScriptedDecoder.so");
        UsePlugin(KELO_PLUGINS, "sndfile.so");
        std::filesystem::create_directory(InWork("in"));
        m_scratch.Write("work/in.endless", "x");
        m_scratch.Write("work/out.wav", "the old content");
    }

    // Waits until something has been written beside the output, in a directory that may not be there yet.
    void WaitForTemporary(const std::string& directory = "") const {
        for (int i = 0; i < 3000; ++i) {
            std::error_code missing;
            for (const auto& entry : std::filesystem::directory_iterator(InWork(directory), missing)) {
                if (entry.path().extension() == ".part" && entry.file_size() > 0) return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        ADD_FAILURE() << "nothing is written";
    }

    // Whether so many threads wait for the other end of a pipe: whoever opens a file that is there does not stay in it.
    static bool ComesToWaitForPipes(const CRunningProgram& program, int count) {
        constexpr int kLasting = 25;
        int seen = 0;
        return WaitUntil([&] {
            seen = program.CountOpening() == count ? seen + 1 : 0;
            return seen == kLasting;
        });
    }

    static void WaitUntilFull(int pipe) {
        int held = 0;
        for (int i = 0; i < 3000 && held < fcntl(pipe, F_GETPIPE_SZ); ++i) {
            ioctl(pipe, FIONREAD, &held);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }

    // Reads up to `most` bytes, or to the end.
    static std::size_t Take(int pipe, std::size_t most) {
        std::vector<char> block(4096);
        std::size_t taken = 0;
        while (taken < most) {
            const ssize_t read = ::read(pipe, block.data(), block.size());
            if (read <= 0) break;
            taken += static_cast<std::size_t>(read);
        }
        return taken;
    }

    void ExpectStopped(int signal) const {
        CRunningProgram program({KELOAUDIO, "convert", "in.endless", "out.wav", "--plugins", PluginDirectory()},
                                WorkDirectory());
        WaitForTemporary();
        program.Signal(signal);
        ExpectFailure(program.Wait(), {"out.wav: interrupted"}, 128 + signal);
        EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"in", "in.endless", "out.wav"}));
        EXPECT_EQ(ReadWholeFile(InWork("out.wav")), "the old content");
    }
};

}  // namespace

TEST_F(StopSignal, InterruptLeavesNothingBehind) { ExpectStopped(SIGINT); }

TEST_F(StopSignal, TerminationLeavesNothingBehind) { ExpectStopped(SIGTERM); }

TEST_F(StopSignal, HangUpLeavesNothingBehind) { ExpectStopped(SIGHUP); }

TEST_F(StopSignal, InterruptEndsTheWayToAFarStart) {
    m_scratch.Write("work/in.tells", "x");
    CRunningProgram program(
        {KELOAUDIO, "convert", "in.tells", "out.wav", "--start", "1000:00:00", "--plugins", PluginDirectory()},
        WorkDirectory());
    EXPECT_TRUE(WaitUntil([this] { return std::filesystem::exists(InWork("in.tells.reached")); }));
    program.Signal(SIGINT);
    ExpectFailure(program.Wait(), {"in.tells: interrupted"}, 128 + SIGINT);
    EXPECT_EQ(ReadWholeFile(InWork("out.wav")), "the old content");
}

TEST_F(StopSignal, InterruptEndsTheWaitForAPipe) {
    ASSERT_EQ(mkfifo(InWork("pipe.wav").c_str(), 0600), 0);
    CRunningProgram program({KELOAUDIO, "convert", "pipe.wav", "out.wav", "--plugins", PluginDirectory()},
                            WorkDirectory());
    if (!program.CanCountOpening()) GTEST_SKIP() << kNobodyTells;
    EXPECT_TRUE(ComesToWaitForPipes(program, 1));
    program.Signal(SIGINT);
    ExpectFailure(program.Wait(), {"pipe.wav: Interrupted system call"}, 128 + SIGINT);
}

TEST_F(StopSignal, IgnoredHangUpStaysIgnored) {
    const std::string command =
        std::string("trap '' HUP; exec '") + KELOAUDIO + "' convert in.endless out.wav --plugins " + PluginDirectory();
    CRunningProgram program({"bash", "-c", command}, WorkDirectory());
    WaitForTemporary();
    program.Signal(SIGHUP);
    EXPECT_FALSE(program.WaitFor(std::chrono::milliseconds(200)));
    program.Signal(SIGTERM);
    ExpectFailure(program.Wait(), {"out.wav: interrupted"}, 128 + SIGTERM);
}

TEST_F(StopSignal, InterruptEndsEveryJobAndLeavesNoUnfinishedFile) {
    for (const std::string name : {"a", "b", "c"}) m_scratch.Write("work/in/" + name + ".endless", "x");
    CRunningProgram program({KELOAUDIO, "convert", "-r", "in", "--to", "wav", "--out-dir", "out", "--jobs", "2",
                             "--plugins", PluginDirectory()},
                            WorkDirectory());
    WaitForTemporary("out");
    program.Signal(SIGINT);
    ExpectFailure(program.Wait(), {"keloaudio: interrupted: 0 of 3 files converted"}, 128 + SIGINT);
    EXPECT_EQ(NamesIn(InWork("out")), std::vector<std::string>{});
}

TEST_F(StopSignal, FilesThatWereCompleteStay) {
    m_scratch.Write("work/in/a.wide", "x");
    m_scratch.Write("work/in/b.endless", "x");
    CRunningProgram program({KELOAUDIO, "convert", "-r", "in", "--to", "wav", "--out-dir", "out", "--jobs", "1",
                             "--quiet", "--plugins", PluginDirectory()},
                            WorkDirectory());
    EXPECT_TRUE(WaitUntil([this] { return std::filesystem::exists(InWork("out/a.wav")); }));
    program.Signal(SIGTERM);
    ExpectFailure(program.Wait(), {"keloaudio: interrupted: 1 of 2 files converted"}, 128 + SIGTERM);
    EXPECT_EQ(NamesIn(InWork("out")), std::vector<std::string>{"a.wav"});
}

TEST_F(StopSignal, InterruptReachesJobsThatWaitForPipes) {
    std::vector<std::string> command = {KELOAUDIO, "convert", "--to", "flac",      "--out-dir",
                                        "out",     "--jobs",  "4",    "--plugins", PluginDirectory()};
    for (const std::string name : {"a", "b", "c", "d"}) {
        const std::string pipe = InWork("in/" + name + ".wav");
        ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
        command.push_back(pipe);
    }
    CRunningProgram program(command, WorkDirectory());
    if (!program.CanCountOpening()) GTEST_SKIP() << kNobodyTells;
    EXPECT_TRUE(ComesToWaitForPipes(program, 4));
    program.Signal(SIGINT);
    const SRunResult result = program.Wait();
    EXPECT_EQ(result.m_nExit, 128 + SIGINT);
    EXPECT_NE(result.m_strErr.find("keloaudio: interrupted: 0 of 4 files converted\n"), std::string::npos)
        << result.m_strErr;
}

TEST_F(StopSignal, InterruptEndsWhatAPipeTakesSlowly) {
    ASSERT_EQ(mkfifo(InWork("pipe").c_str(), 0600), 0);
    const std::string command = std::string("exec '") + KELOAUDIO +
                                "' convert in.endless --end 10 --stdout --plugins " + PluginDirectory() + " >pipe";
    CRunningProgram program({"bash", "-c", command}, WorkDirectory());
    const int pipe = open(InWork("pipe").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_GE(pipe, 0);
    WaitUntilFull(pipe);
    // A wait that has written something ends without an error.
    std::size_t taken = Take(pipe, 8192);
    WaitUntilFull(pipe);
    program.Signal(SIGINT);
    EXPECT_TRUE(program.WaitFor(std::chrono::seconds(10)));
    taken += Take(pipe, 4 * 44100 * 10);
    close(pipe);
    ExpectFailure(program.Wait(), {"keloaudio: standard output: interrupted, not all of it is written"}, 128 + SIGINT);
    EXPECT_LT(taken, 4u * 44100u * 10u);
}
