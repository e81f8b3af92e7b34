// keloaudio validate on plug-ins that do the worst before any check can look at them.
#include <signal.h>

#include <chrono>
#include <nlohmann/json.hpp>

#include "tests/host/hostile/HostileFixture.h"
#include "tests/support/Sanitizers.h"

namespace {

class ValidateHostile : public CBesideHostile {
protected:
    std::string Hostile(const std::string& name) const {
        UseHostile(name);
        return PluginDirectory() + "/" + name + ".so";
    }

    SRunResult Validate(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"validate", "--timeout", "60"});
        return RunPlain(std::move(arguments));
    }

    // With files of at most so many KiB; both outputs come out of one pipe, which the limit is not for.
    SRunResult ValidateWithin(int fileLimit, std::vector<std::string> arguments) const {
        const std::string limited = "set -o pipefail; (ulimit -f " + std::to_string(fileLimit) + "; \"$@\") 2>&1 | cat";
        arguments.insert(arguments.begin(), {"bash", "-c", limited, "bash", KELOAUDIO, "validate", "--timeout", "60"});
        return RunProgram(arguments);
    }

    static void ExpectText(const SRunResult& result, const std::string& text) {
        EXPECT_NE(result.m_strOut.find(text), std::string::npos) << text << " is not in " << result.m_strOut;
    }
};

}  // namespace

TEST_F(ValidateHostile, ChosenChecksRunOnAPluginWhoseSurveyFails) {
    const SRunResult crash = Validate({"--only", "source,seek", Hostile("AbortsInEntry")});
    EXPECT_EQ(crash.m_nExit, 1);
    ExpectText(crash, "AbortsInEntry.so: source/interfaces crashed (");
    ExpectText(crash,
               "AbortsInEntry.so: note: the survey did not pass: SIGABRT in KELO_PLUGIN_GetPrimaryAudioObject\n");
    const SRunResult exception = Validate({"--only", "convertor", Hostile("ThrowsErrorInEntry")});
    EXPECT_EQ(exception.m_nExit, 1);
    ExpectText(exception, "ThrowsErrorInEntry.so: convertor/creates failed (");
    ExpectText(exception, "came across the border: a hostile word\n");
}

TEST_F(ValidateHostile, ChecksAreSkippedBehindTheOnesThatACrashConcerns) {
    const SRunResult result = Validate({Hostile("AbortsInEntry")});
    EXPECT_EQ(result.m_nExit, 1);
    ExpectText(result, "AbortsInEntry.so: entry/null-out-pointer crashed (");
    ExpectText(result, "AbortsInEntry.so: entry/primary-object crashed (");
    ExpectText(result, " skipped, 2 failed\n");
}

TEST_F(ValidateHostile, ASurveyThatEndsLateLeavesOutWhatDoesNotConcernThePlugin) {
    const SRunResult result = Validate({"--only", "source,convertor", Hostile("AbortsInGetCount")});
    EXPECT_EQ(result.m_nExit, 1);
    ExpectText(result, "AbortsInGetCount.so: note: the survey did not pass: SIGABRT in ");
    EXPECT_EQ(result.m_strOut.find("convertor/"), std::string::npos) << result.m_strOut;
}

TEST_F(ValidateHostile, ACountThatOnlyALieCanBeIsOneFindingInTheValidatorsWords) {
    for (const std::string name : {"NegativeExtensions", "EndlessExtensions"}) {
        const SRunResult result = Validate({"--skip", "entry", Hostile(name)});
        EXPECT_EQ(result.m_nExit, 1);
        ExpectText(result, name + ".so: extensions/named failed (");
        ExpectText(result, " skipped, 1 failed\n");
        ExpectText(result, "the survey did not pass: Fixture: impossible count: ");
    }
    const SRunResult alone = Validate({"--only", "decoder/refuses-text", PluginDirectory() + "/NegativeExtensions.so"});
    ExpectText(alone, " ms): Fixture: impossible count: -1 extensions\n");
}

TEST_F(ValidateHostile, WhatAPluginWritesToStandardOutputIsDropped) {
    for (const std::string operation : {"Entry", "GetName", "Terminate"}) {
        const SRunResult result = Validate({"--json", "--only", "component", Hostile("SpeaksIn" + operation)});
        EXPECT_EQ(result.m_nExit, 0) << result.m_strOut;
        EXPECT_FALSE(nlohmann::json::parse(result.m_strOut, nullptr, false).is_discarded()) << result.m_strOut;
    }
}

TEST_F(ValidateHostile, ASampleThatCannotBeWrittenEndsTheRun) {
    for (const int limit : {0, 1}) {
        if (limit == 0 && support::kThreadSanitizer) continue;  // writes a file itself before the program begins
        const SRunResult result = ValidateWithin(limit, {"--only", "source,seek", KELO_PLUGINS "/sndfile.so"});
        EXPECT_EQ(result.m_nExit, 1);
        EXPECT_TRUE(IsOneLine(result.m_strOut)) << result.m_strOut;
        ExpectText(result, "/survey/samples/sample.wav: File too large\n");
    }
}

TEST_F(ValidateHostile, SignalEndsTheRunWhileTheSurveyHangs) {
    CRunningProgram program({KELOAUDIO, "validate", "--timeout", "600", Hostile("LingersInLoading")}, WorkDirectory());
    while (!std::filesystem::exists(InWork("lingers")) && !program.WaitFor(std::chrono::milliseconds(10))) {
    }
    program.Signal(SIGTERM);
    ExpectFailure(program.Wait(), {"LingersInLoading.so: stopped by a signal"}, 128 + SIGTERM);
}
