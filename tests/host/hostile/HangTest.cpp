// Signals that ask keloaudio to stop while a plug-in does not return.
#include <signal.h>

#include <chrono>

#include "tests/host/hostile/HostileFixture.h"

namespace {

constexpr int kMaxSignals = 400;

class HangingPlugin : public CBesideHostile {
protected:
    // Returns when the plug-in, which lingers, has the program in its hands.
    void WaitForHang() const {
        ASSERT_TRUE(WaitUntil([this] { return std::filesystem::exists(InWork("lingers")); }));
    }

    std::vector<std::string> WithChosen(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), KELOAUDIO);
        arguments.insert(arguments.end(), {"--plugins", PluginDirectory()});
        return arguments;
    }

    // One signal is enough, but it has to come late enough after the first.
    static void ExpectEndBy(CRunningProgram& program, int signal) {
        const auto hasEnded = [&program] { return program.WaitFor(std::chrono::milliseconds(50)); };
        for (int i = 0; i < kMaxSignals && !hasEnded(); ++i) program.Signal(signal);
        ASSERT_TRUE(hasEnded());
        EXPECT_EQ(program.Wait().m_nExit, -signal);
    }

    // The only unfinished output there.
    std::string UnfinishedIn(const std::string& directory) const {
        for (const std::string& name : NamesIn(directory)) {
            if (std::filesystem::path(name).extension() == ".part") return name;
        }
        return "";
    }
};

}  // namespace

TEST_F(HangingPlugin, LateSecondSignalEndsInfo) {
    UseHostile("LingersInOpen");
    CRunningProgram program(WithChosen({"info", kFrontCenter}), WorkDirectory());
    WaitForHang();
    const auto first = std::chrono::steady_clock::now();
    ExpectEndBy(program, SIGHUP);
    EXPECT_GE(std::chrono::steady_clock::now() - first, std::chrono::seconds(1));
}

TEST_F(HangingPlugin, LateSecondSignalEndsAConversionWhoseUnfinishedOutputStays) {
    UseHostile("LingersInRawRead");
    CRunningProgram program(WithChosen({"convert", kFrontCenter, "out.wav"}), WorkDirectory());
    WaitForHang();
    ExpectEndBy(program, SIGINT);
    EXPECT_EQ(UnfinishedIn(WorkDirectory()).rfind(".out.wav.", 0), 0u);
    EXPECT_FALSE(std::filesystem::exists(InWork("out.wav")));
}

TEST_F(HangingPlugin, SignalThatIsPassedOnToTheJobsIsNoSecondOne) {
    UseHostile("LingersInRawRead");
    for (const std::string name : {"a.wav", "b.wav"}) std::filesystem::copy_file(kFrontCenter, InWork(name));
    CRunningProgram program(WithChosen({"convert", "--to", "wav", "--out-dir", "out", "--jobs", "2", "a.wav", "b.wav"}),
                            WorkDirectory());
    WaitForHang();
    program.Signal(SIGTERM);
    EXPECT_FALSE(program.WaitFor(std::chrono::milliseconds(1500)));
    ExpectEndBy(program, SIGTERM);
}
