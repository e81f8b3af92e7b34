// keloaudio list names the plug-in that fails and lists the others.
#include <signal.h>
#include <sys/resource.h>

#include <chrono>
#include <map>
#include <nlohmann/json.hpp>

#include "tests/host/hostile/HostileFixture.h"
#include "tests/support/Sanitizers.h"

namespace {

class ListBesideHostile : public CBesideHostile {
protected:
    std::string FailureLine(const std::string& name, const std::string& ending) const {
        return "keloaudio: " + PluginDirectory() + "/" + name + ".so: " + ending + "\n";
    }

    // The healthy plug-in is listed.
    void ExpectOthers(const SRunResult& result) const {
        EXPECT_NE(result.m_strOut.find("  ScriptedDecoder.so 0  "), std::string::npos) << result.m_strOut;
    }

    // What the plug-in itself or the runtime writes to standard error may stand before the line.
    void ExpectNamed(const std::string& name, const std::string& ending) const {
        UseHealthy();
        const SRunResult result = RunWithChosen({"list"});
        EXPECT_EQ(result.m_nExit, 1);
        ExpectOthers(result);
        const std::string line = FailureLine(name, ending);
        EXPECT_NE(result.m_strErr.find(line), std::string::npos) << result.m_strErr;
        EXPECT_EQ(result.m_strErr.find(".so: "), result.m_strErr.rfind(".so: ")) << result.m_strErr;
    }

    // What is said of a plug-in alone, which is "It" there.
    std::string ListingsOf(const std::string& name) const {
        UseHostile(name);
        std::string said = RunWithChosen({"list"}).m_strOut + RunWithChosen({"list", "--json"}).m_strOut;
        std::filesystem::remove(PluginDirectory() + "/" + name + ".so");
        for (std::size_t at = said.find(name); at != std::string::npos; at = said.find(name)) {
            said.replace(at, name.size(), "It");
        }
        return said;
    }

    void ExpectListed(const std::string& text) const {
        UseHealthy();
        const SRunResult result = RunWithChosen({"list"});
        EXPECT_EQ(result.m_nExit, 0);
        EXPECT_EQ(result.m_strErr, "");
        ExpectOthers(result);
        EXPECT_NE(result.m_strOut.find(text), std::string::npos) << result.m_strOut;
    }
};

struct SEnding {
    const char* m_szPlugin;
    const char* m_szEnding;
};

void PrintTo(const SEnding& ending, std::ostream* out) { *out << ending.m_szPlugin; }

class HostilePlugin : public ListBesideHostile, public testing::WithParamInterface<SEnding> {};

std::string NameOf(const testing::TestParamInfo<SEnding>& test) { return test.param.m_szPlugin; }

}  // namespace

TEST_P(HostilePlugin, IsNamedWithItsEndAndTheOthersAreListed) {
    UseHostile(GetParam().m_szPlugin);
    ExpectNamed(GetParam().m_szPlugin, GetParam().m_szEnding);
}

INSTANTIATE_TEST_SUITE_P(
    List, HostilePlugin,
    testing::Values(
        SEnding{"AbortsInEntry", "aborted (signal 6)"}, SEnding{"AbortsInGetName", "aborted (signal 6)"},
        SEnding{"AbortsInLoading", "aborted (signal 6)"}, SEnding{"ThrowsErrorInLoading", "threw: a hostile word"},
        SEnding{"AbortsInTerminate", "aborted (signal 6)"}, SEnding{"AbortsInReady", "aborted (signal 6)"},
        SEnding{"CrashesInInitialize", "crashed (signal 11)"}, SEnding{"DanglingName", "crashed (signal 11)"},
        SEnding{"ExitsInEntry", "ended the process with status 0"},
        SEnding{"ExitsInGetAt", "ended the process with status 0"},
        SEnding{"EndlessExtensions", "Fixture: impossible count: 2147483647 extensions"},
        SEnding{"NegativeExtensions", "Fixture: impossible count: -1 extensions"},
        SEnding{"EndlessSettings", "Fixture: impossible count: 2147483647 settings"},
        SEnding{"NegativeSettings", "Fixture: impossible count: -1 settings"},
        SEnding{"ThrowsErrorInEntry", "threw: a hostile word"},
        SEnding{"ThrowsErrorInInitialize", "threw: a hostile word"},
        SEnding{"ThrowsErrorInGetCount", "threw: a hostile word"},
        SEnding{"ThrowsErrorInOpenTarget", "threw: a hostile word"},
        SEnding{"ThrowsErrorInHasTag", "threw: a hostile word"},
        SEnding{"ThrowsErrorInGetSettingCount", "threw: a hostile word"},
        SEnding{"ThrowsErrorInGetSettingName", "threw: a hostile word"},
        SEnding{"ThrowsErrorInGetSettingValues", "threw: a hostile word"},
        SEnding{"ThrowsErrorInGetSetting", "threw: a hostile word"},
        SEnding{"ThrowsErrorInQueryInterface", "threw: a hostile word"},
        SEnding{"ThrowsIntInInitialize", "threw: an exception of type int"},
        SEnding{"ThrowsIntInGetName", "threw: an exception of type int"},
        SEnding{"ThrowsOtherInGetType", "threw: an exception of type (anonymous namespace)::SOther"},
        SEnding{"ThrowsOtherInGetOpenerState", "threw: an exception of type (anonymous namespace)::SOther"}),
    NameOf);

TEST_F(ListBesideHostile, ConvertorsAreNamedWithTheirEnds) {
    const std::map<std::string, std::string> endings = {
        {"EndlessSettings", "Fixture: impossible count: 2147483647 settings"},
        {"ThrowsErrorInGetSetting", "threw: a hostile word"},
        {"ThrowsErrorInIsSupported", "threw: a hostile word"},
    };
    for (const auto& [plugin, ending] : endings) UseHostileConvertor(plugin);
    UseHealthy();
    const SRunResult result = RunWithChosen({"list"});
    EXPECT_EQ(result.m_nExit, 1);
    ExpectOthers(result);
    for (const auto& [plugin, ending] : endings) {
        EXPECT_NE(result.m_strErr.find(FailureLine(plugin, ending)), std::string::npos) << result.m_strErr;
    }
}

TEST_F(ListBesideHostile, PluginsThatHangAreAllNamedAfterOneMoreWait) {
    for (const std::string name : {"HangsInEntry", "HangsInGetName", "HangsInTerminate"}) UseHostile(name);
    UseHealthy();
    const SRunResult result = RunWithChosen({"list", "--timeout", "2"});
    EXPECT_EQ(result.m_nExit, 1);
    ExpectOthers(result);
    for (const std::string name : {"HangsInEntry", "HangsInGetName", "HangsInTerminate"}) {
        EXPECT_NE(result.m_strErr.find(FailureLine(name, "did not answer within 2 s")), std::string::npos)
            << result.m_strErr;
    }
}

// Each of them waits for the other two.
TEST_F(ListBesideHostile, PluginsAreLookedAtSideBySide) {
    for (const std::string name : {"MeetsInInitialize", "MeetsInGetName", "MeetsInTerminate"}) UseHostile(name);
    const SRunResult result = RunWithChosen({"list", "--timeout", "60"});
    for (const std::string name : {"MeetsInInitialize", "MeetsInGetName", "MeetsInTerminate"}) {
        EXPECT_NE(result.m_strOut.find("  " + name + ".so 0  "), std::string::npos) << result.m_strOut;
    }
    EXPECT_EQ(result.m_strErr, "keloaudio: " + PluginDirectory() +
                                   ": aborted (signal 6) with all plug-ins loaded, but with none of them alone\n");
}

TEST_F(ListBesideHostile, SignalEndsTheWaitForAPluginThatHangs) {
    UseHostile("LingersInEntry");
    CRunningProgram program({KELOAUDIO, "list", "--timeout", "3600", "--plugins", PluginDirectory()}, WorkDirectory());
    const std::string presence = PluginDirectory() + "/lingers";
    while (!std::filesystem::exists(presence) && !program.WaitFor(std::chrono::milliseconds(10))) {
    }
    program.Signal(SIGINT);
    ExpectFailure(program.Wait(), {PluginDirectory() + ": stopped by a signal"}, 128 + SIGINT);
}

TEST_F(ListBesideHostile, WhoeverStartsItMayIgnoreTheEndOfProcesses) {
    UseHostile("AbortsInEntry");
    UseHealthy();
    const SRunResult result =
        RunProgram({"env", "--ignore-signal=CHLD", KELOAUDIO, "list", "--plugins", PluginDirectory()});
    EXPECT_EQ(result.m_nExit, 1);
    ExpectOthers(result);
    EXPECT_EQ(result.m_strErr, FailureLine("AbortsInEntry", "aborted (signal 6)"));
}

TEST_F(ListBesideHostile, PluginsThatFailOnlyTogetherAreListedWithAWarning) {
    UseHostile("QuarrelsInEntry");
    UseHostile("QuarrelsInInitialize");
    const SRunResult result = RunWithChosen({"list"});
    EXPECT_EQ(result.m_nExit, 1);
    EXPECT_NE(result.m_strOut.find("QuarrelsInEntry.so 0"), std::string::npos) << result.m_strOut;
    EXPECT_NE(result.m_strOut.find("QuarrelsInInitialize.so 0"), std::string::npos) << result.m_strOut;
    EXPECT_EQ(result.m_strErr, "keloaudio: " + PluginDirectory() +
                                   ": aborted (signal 6) with all plug-ins loaded, but with none of them alone\n");
}

TEST_F(ListBesideHostile, TimeLimitIsANumberOfSeconds) {
    UseHealthy();
    EXPECT_EQ(RunWithChosen({"list", "--timeout", "60.5"}).m_nExit, 0);
    for (const std::string limit : {"nan", "inf", "-1", "0", "3601", "1e2", "soon"}) {
        ExpectFailure(RunWithChosen({"list", "--timeout", limit}), {"--timeout"}, 2);
    }
}

TEST_F(ListBesideHostile, WhatAPluginTellsBeforeItsEndIsListed) {
    UseHostile("AbortsInTerminate");
    const SRunResult result = RunWithChosen({"list"});
    EXPECT_EQ(result.m_nExit, 1);
    EXPECT_NE(result.m_strOut.find("Fixture  AbortsInTerminate.so 0  Fixture maker\n"), std::string::npos)
        << result.m_strOut;
}

TEST_F(ListBesideHostile, CrashInTheCodeThatRunsWhenAPluginIsUnloaded) {
    UseImpolite("CrashesWhenUnloaded");
    ExpectNamed("CrashesWhenUnloaded", "aborted (signal 6)");
}

TEST_F(ListBesideHostile, CrashWhenAPluginIsUnloadedThatGivesNoComponent) {
    UseHostile("AbortsWithoutComponent");
    ExpectNamed("AbortsWithoutComponent", "aborted (signal 6)");
}

// The stack of whoever runs the tests may have no end.
TEST_F(ListBesideHostile, ProgramsOfTheTestsComeToTheEndOfTheirStack) {
    rlimit stack = {};
    ASSERT_EQ(getrlimit(RLIMIT_STACK, &stack), 0);
    stack.rlim_cur = stack.rlim_max;
    ASSERT_EQ(setrlimit(RLIMIT_STACK, &stack), 0);
    EXPECT_LE(std::stoi(RunProgram({"bash", "-c", "ulimit -s"}).m_strOut), 8192);
}

TEST_F(ListBesideHostile, CollectionThatHoldsItselfIsNamed) {
    if (support::kThreadSanitizer) GTEST_SKIP() << "the sanitizer does not come back from a full stack";
    UseImpolite("CollectionHoldsItself");
    ExpectNamed("CollectionHoldsItself", "crashed (signal 11)");
}

TEST_F(ListBesideHostile, JsonHoldsTheFailuresBesideTheComponents) {
    UseHostile("AbortsInEntry");
    UseHostile("ThrowsErrorInGetName");
    UseHealthy();
    const SRunResult result = RunWithChosen({"list", "--json"});
    EXPECT_EQ(result.m_nExit, 1);
    const nlohmann::json listing = nlohmann::json::parse(result.m_strOut);
    EXPECT_EQ(listing.at("directory"), PluginDirectory());
    EXPECT_EQ(listing.at("components").at(0).at("name"), "Scripted Decoder");
    std::map<std::string, std::string> failures;
    for (const nlohmann::json& failure : listing.at("failures")) failures[failure.at("file")] = failure.at("reason");
    EXPECT_EQ(failures, (std::map<std::string, std::string>{{"AbortsInEntry.so", "aborted (signal 6)"},
                                                            {"ThrowsErrorInGetName.so", "threw: a hostile word"}}));
}

TEST_F(ListBesideHostile, JsonOfHealthyPluginsHasNoFailures) {
    UseHealthy();
    const nlohmann::json listing = nlohmann::json::parse(RunWithChosen({"list", "--json"}).m_strOut);
    EXPECT_EQ(listing.at("failures"), nlohmann::json::array());
}

TEST_F(ListBesideHostile, NothingButHostilePluginsListsNothing) {
    UseHostile("ThrowsErrorInGetName");
    ExpectFailure(RunWithChosen({"list"}), {FailureLine("ThrowsErrorInGetName", "threw: a hostile word")});
}

TEST_F(ListBesideHostile, NothingIsLeftAmongTheTemporaryFiles) {
    const std::string temporary = m_scratch / "temporary";
    std::filesystem::create_directory(temporary);
    setenv("TMPDIR", temporary.c_str(), 1);
    UseHostile("AbortsInEntry");
    ExpectNamed("AbortsInEntry", "aborted (signal 6)");
    unsetenv("TMPDIR");
    EXPECT_EQ(NamesIn(temporary), std::vector<std::string>{});
}

TEST_F(ListBesideHostile, WhatAPluginWritesToStandardOutputIsDropped) {
    for (const std::string operation : {"Entry", "GetName", "Terminate"}) {
        const std::string silent = ListingsOf("SilentIn" + operation);
        EXPECT_NE(silent.find("It.so"), std::string::npos) << silent;
        EXPECT_EQ(ListingsOf("SpeaksIn" + operation), silent);
    }
}

TEST_F(ListBesideHostile, NullTextsAreLeftOut) {
    UseHostile("NullName");
    ExpectListed("decoder  (no name)         NullName.so 0         -\n");
}

TEST_F(ListBesideHostile, TextsThatWouldSteerATerminalDoNot) {
    UseHostile("EscapingName");
    ExpectListed("decoder  ?[2JFixture?keloaudio: all is well  EscapingName.so 0");
}

TEST_F(ListBesideHostile, NullExtensionsAreLeftOut) {
    UseHostile("NullExtensions");
    ExpectListed("Fixture           NullExtensions.so 0   Fixture maker\n    can");
}

TEST_F(ListBesideHostile, MembersThatAreOnlyCountedAreLeftOut) {
    UseHostile("MissingMembers");
    UseHostile("NegativeMembers");
    ExpectListed("MissingMembers.so 1");
}

TEST_F(ListBesideHostile, TargetThatIsNotThereIsLeftOut) {
    UseHostile("OpensNothing");
    ExpectListed("OpensNothing.so 1");
}

TEST_F(ListBesideHostile, IntFromAnEntryPointPassesOverThePlugin) {
    UseHostile("ThrowsIntInEntry");
    UseHostile("ThrowsIntInGetType");
    ExpectListed("");
    EXPECT_EQ(RunWithChosen({"list"}).m_strOut.find("ThrowsInt"), std::string::npos);
}

TEST_F(ListBesideHostile, IntOfAStaticObjectIsNamedOnceThePluginsAreAskedOneByOne) {
    if (support::kThreadSanitizer) GTEST_SKIP() << "it keeps counts over dlopen that an exception upsets";
    UseHostile("ThrowsIntInLoading");
    ExpectListed("");
    UseHostile("AbortsInEntry");
    const SRunResult result = RunWithChosen({"list"});
    EXPECT_NE(result.m_strErr.find(FailureLine("ThrowsIntInLoading", "threw: an exception of type int")),
              std::string::npos)
        << result.m_strErr;
}

TEST_F(ListBesideHostile, PluginThatRefusesToFinishIsListed) {
    UseHostile("NeverReady");
    ExpectListed("NeverReady.so 0");
}

TEST_F(ListBesideHostile, PluginsThatChangeTheProcessAreListed) {
    for (const std::string name : {"LeavesThread", "ChangesDirectory", "ChangesLocale", "IgnoresSignal", "BlocksSignal",
                                   "ChangesFileCreationMask", "ChangesEnvironment"}) {
        UseImpolite(name);
    }
    ExpectListed("ChangesLocale.so 0");
}

TEST_F(ListBesideHostile, RelativeDirectoryIsFoundAgainByEveryProcess) {
    UseHostile("AbortsInEntry");
    UseHealthy();
    const SRunResult result = Run({"list", "--plugins", "../plugins"});
    EXPECT_EQ(result.m_nExit, 1);
    ExpectOthers(result);
}
