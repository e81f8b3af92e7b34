// keloaudio convert and info beside hostile plug-ins.
#include <signal.h>
#include <stdlib.h>

#include <nlohmann/json.hpp>

#include "tests/host/hostile/HostileFixture.h"
#include "tests/host/hostile/MarkedSound.h"
#include "tests/support/Sanitizers.h"

namespace {

class ConvertBesideHostile : public CBesideHostile {
protected:
    // False where the system has no sources of locales.
    bool MakeCommaLocale() const {
        std::filesystem::create_directory(m_scratch / "locales");
        const std::string locale = m_scratch / "locales/comma";
        RunProgram({"localedef", "-i", "de_DE", "-f", "ISO-8859-15", locale});
        return std::filesystem::exists(locale + "/LC_NUMERIC");
    }

    SRunResult RunInCommaLocale(std::vector<std::string> arguments,
                                const std::vector<std::string>& options = {}) const {
        arguments.insert(arguments.begin(), {"env", "LOCPATH=" + (m_scratch / "locales"), "LC_ALL=comma", KELOAUDIO});
        arguments.insert(arguments.end(), {"--plugins", PluginDirectory()});
        arguments.insert(arguments.end(), options.begin(), options.end());
        return RunProgram(arguments, WorkDirectory());
    }

    static nlohmann::json Parse(const SRunResult& result) {
        EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
        return nlohmann::json::parse(result.m_strOut);
    }

    void ExpectLastWord(const std::vector<std::string>& arguments, int signal) const {
        const SRunResult result = RunWithChosen(arguments);
        // The sanitizers have their own ends for a crash, which come after the last word.
        const int ownEnd = support::kAddressSanitizer ? 1 : 66;
        EXPECT_EQ(result.m_nExit, support::kSanitized && signal == SIGSEGV ? ownEnd : -signal) << result.m_strErr;
        EXPECT_NE(
            result.m_strErr.find("keloaudio: " + PluginDirectory() + ": crashed while these plug-ins were loaded"),
            std::string::npos)
            << result.m_strErr;
        EXPECT_FALSE(std::filesystem::exists(InWork("out.wav")));
    }
};

class MovingPlugin : public ConvertBesideHostile, public testing::WithParamInterface<const char*> {};

}  // namespace

TEST_P(MovingPlugin, ChangesNeitherInputsNorOutputs) {
    std::filesystem::create_directory(m_scratch / "elsewhere");
    std::filesystem::copy_file(kFrontCenter, InWork("in.wav"));
    UseHostile(std::string("MovesAwayIn") + GetParam());
    const SRunResult result = RunWithChosen({"convert", "--jobs", "1", "in.wav", "out.wav"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"in.wav", "out.wav"}));
    EXPECT_EQ(NamesIn(m_scratch / "elsewhere"), std::vector<std::string>{});
}

TEST_P(MovingPlugin, ChangesNoFolders) {
    std::filesystem::create_directories(m_scratch / "elsewhere/in");
    std::filesystem::create_directory(InWork("in"));
    std::filesystem::copy_file(kFrontCenter, InWork("in/a.wav"));
    UseHostile(std::string("MovesAwayIn") + GetParam());
    const SRunResult result = RunWithChosen({"convert", "--jobs", "1", "-r", "in", "--to", "wav", "--out-dir", "out"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(NamesIn(InWork("out")), std::vector<std::string>{"a.wav"});
    EXPECT_EQ(NamesIn(m_scratch / "elsewhere"), std::vector<std::string>{"in"});
    EXPECT_EQ(result.m_strOut.rfind("in/a.wav -> out/a.wav: ", 0), 0u) << result.m_strOut;
}

INSTANTIATE_TEST_SUITE_P(Convert, MovingPlugin,
                         testing::Values("Entry", "Initialize", "GetAt", "Open", "Start", "RawRead", "OpenTarget",
                                         "EncoderStart", "RawWrite", "End"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(ConvertBesideHostile, CrashLeavesALastWordAndNoOutput) {
    UseHostile("CrashesInRawRead");
    ExpectLastWord({"convert", kFrontCenter, "out.wav"}, SIGSEGV);
}

TEST_F(ConvertBesideHostile, AbortWhileLoadingLeavesALastWord) {
    UseHostile("AbortsInEntry");
    ExpectLastWord({"info", kFrontCenter}, SIGABRT);
}

TEST_F(ConvertBesideHostile, TagThatIsNotThereLeavesALastWord) {
    UseHostile("DanglingTitle");
    ExpectLastWord({"info", kFrontCenter}, SIGSEGV);
    ExpectLastWord({"convert", kFrontCenter, "out.wav"}, SIGSEGV);
}

TEST_F(ConvertBesideHostile, FullStackLeavesALastWord) {
    if (support::kSanitized) GTEST_SKIP() << "the sanitizers have their own ends for a full stack";
    UseImpolite("CollectionHoldsItself");
    ExpectLastWord({"info", kFrontCenter}, SIGSEGV);
}

TEST_F(ConvertBesideHostile, PluginThatRefusesToFinishDoesNotHoldUpTheEnd) {
    UseHostile("NeverReady");
    // What stays loaded is no leak.
    setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
    ExpectConverted(RunWithChosen({"convert", kFrontCenter, "out.wav"}), "out.wav: 48000 Hz");
    unsetenv("LSAN_OPTIONS");
}

TEST_F(ConvertBesideHostile, ThreadThatAPluginLeavesDoesNotHoldUpTheEnd) {
    UseImpolite("LeavesThread");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    ExpectConverted(RunWithChosen({"convert", kFrontCenter, "out.wav"}), "out.wav: 48000 Hz");
}

TEST_F(ConvertBesideHostile, NumbersKeepTheirPointInALocaleWithACommaThatAPluginAdopts) {
    if (!MakeCommaLocale()) GTEST_SKIP() << "no sources of locales";
    m_scratch.Write("work/in.wav", MarkedSound());
    UseHostile("AdoptsLocaleInInitialize");
    UsePlugin(KELO_PLUGINS, "sndfile.so");
    const SRunResult text = RunInCommaLocale({"info", "in.wav"});
    EXPECT_NE(text.m_strOut.find(" 24000 frames, 0.500 s\n"), std::string::npos) << text.m_strOut << text.m_strErr;
    EXPECT_NE(text.m_strOut.find("index     0.020 s\n"), std::string::npos) << text.m_strOut;
    EXPECT_EQ(Parse(RunInCommaLocale({"info", "--json", "in.wav"})).at("sources").at(0).at("seconds"), 0.5);
    const std::vector<std::string> convert = {"convert", "in.wav", "out.oga", "--end", "0.25", "--set", "quality=6.5"};
    ExpectConverted(RunInCommaLocale(convert), "out.oga: 48000 Hz, 16 bits, 2 channels, 12000 frames, 0.250 s\n");
    EXPECT_EQ(Parse(RunInCommaLocale(convert, {"--json"})).at("target").at("seconds"), 0.25);
}

TEST_F(ConvertBesideHostile, NamesOfComponentsAreNotAskedFor) {
    UseHostile("ThrowsIntInGetName");
    std::filesystem::create_directory(InWork("in"));
    std::filesystem::copy_file(kFrontCenter, InWork("in/a.wav"));
    const SRunResult result = RunWithChosen({"convert", "-r", "in", "--to", "wav", "--out-dir", "out"});
    EXPECT_EQ(result.m_nExit, 0);
    EXPECT_EQ(result.m_strErr, "");
}

TEST_F(ConvertBesideHostile, OpeningThatGivesNoStreamIsAFailure) {
    UseHostile("OpensNothing");
    ExpectFailure(RunWithChosen({"convert", kFrontCenter, "out.wav"}), {"keloaudio: "});
    EXPECT_EQ(NamesIn(WorkDirectory()), std::vector<std::string>{});
}

TEST_F(ConvertBesideHostile, LoaderThatIsLockedForOtherThreadsLeavesOneThread) {
    if (support::kThreadSanitizer) GTEST_SKIP() << "it keeps counts over dlopen that an exception upsets";
    if (!std::filesystem::exists(KELO_PLUGINS "/libav.so")) GTEST_SKIP() << "no plug-in that loads at its first use";
    UseHostile("ThrowsIntInLoading");
    for (const std::string name : {"libav.so", "sndfile.so"}) UsePlugin(KELO_PLUGINS, name);
    for (const std::string name : {"a.wv", "b.wv"}) {
        ASSERT_EQ(RunProgram({"ffmpeg", "-loglevel", "error", "-i", kFrontCenter, InWork(name)}).m_nExit, 0);
    }
    const SRunResult result = RunWithChosen({"convert", "--to", "wav", "--jobs", "2", "a.wv", "b.wv"});
    EXPECT_EQ(result.m_nExit, 0) << result.m_strErr;
    EXPECT_EQ(NamesIn(WorkDirectory()), (std::vector<std::string>{"a.wav", "a.wv", "b.wav", "b.wv"}));
}
