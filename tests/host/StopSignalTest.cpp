// Signals that stop a conversion.
#include <signal.h>
#include <sys/stat.h>

#include <chrono>
#include <thread>

#include "tests/host/KeloAudio.h"

namespace {

constexpr int kMaxSignals = 50;

class StopSignal : public CKeloAudio {
protected:
    StopSignal() {
        UseFixture("ScriptedDecoder.so");
        UsePlugin(KELO_PLUGINS, "sndfile.so");
        m_scratch.Write("work/in.endless", "x");
        m_scratch.Write("work/out.wav", "the old content");
    }

    // Waits until something has been written beside the output.
    void WaitForTemporary() const {
        for (int i = 0; i < 3000; ++i) {
            for (const auto& entry : std::filesystem::directory_iterator(WorkDirectory())) {
                if (entry.path().extension() == ".part" && entry.file_size() > 0) return;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        ADD_FAILURE() << "nothing is written";
    }

    void ExpectStopped(int signal) const {
        CRunningProgram program({KELOAUDIO, "convert", "in.endless", "out.wav", "--plugins", PluginDirectory()},
                                WorkDirectory());
        WaitForTemporary();
        program.Signal(signal);
        ExpectFailure(program.Wait(), {"out.wav: interrupted"}, 128 + signal);
        EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"in.endless", "out.wav"}));
        EXPECT_EQ(ReadWholeFile(InWork("out.wav")), "the old content");
    }
};

}  // namespace

TEST_F(StopSignal, InterruptLeavesNothingBehind) { ExpectStopped(SIGINT); }

TEST_F(StopSignal, TerminationLeavesNothingBehind) { ExpectStopped(SIGTERM); }

TEST_F(StopSignal, HangUpLeavesNothingBehind) { ExpectStopped(SIGHUP); }

TEST_F(StopSignal, InterruptEndsTheWaitForAPipe) {
    ASSERT_EQ(mkfifo(InWork("pipe.wav").c_str(), 0600), 0);
    CRunningProgram program({KELOAUDIO, "convert", "pipe.wav", "out.wav"}, WorkDirectory());
    // The signal may come before the wait begins; then the next one ends it.
    for (int i = 0; i < kMaxSignals && !program.WaitFor(std::chrono::milliseconds(100)); ++i) program.Signal(SIGINT);
    ExpectFailure(program.Wait(), {"pipe.wav: Interrupted system call"}, 128 + SIGINT);
}

TEST_F(StopSignal, IgnoredHangUpStaysIgnored) {
    const std::string command =
        std::string("trap '' HUP; exec ") + KELOAUDIO + " convert in.endless out.wav --plugins " + PluginDirectory();
    CRunningProgram program({"bash", "-c", command}, WorkDirectory());
    WaitForTemporary();
    program.Signal(SIGHUP);
    EXPECT_FALSE(program.WaitFor(std::chrono::milliseconds(200)));
    program.Signal(SIGTERM);
    ExpectFailure(program.Wait(), {"out.wav: interrupted"}, 128 + SIGTERM);
}
