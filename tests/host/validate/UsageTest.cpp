// How the validator is asked.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/host/validate/ValidateRun.h"
#include "tests/support/ProcessState.h"

namespace {

void ExpectMisuse(const std::vector<std::string>& arguments, const std::string& words) {
    const SRunResult result = Validate(arguments);
    EXPECT_EQ(result.m_nExit, 2);
    EXPECT_EQ(result.m_strOut, "");
    EXPECT_TRUE(IsOneLine(result.m_strErr)) << result.m_strErr;
    EXPECT_NE(result.m_strErr.find(words), std::string::npos) << result.m_strErr;
}

std::vector<std::string> NamesIn(const nlohmann::json& report) {
    std::vector<std::string> names;
    for (const nlohmann::json& check : report.at("checks")) names.push_back(check.at("name"));
    return names;
}

using CNames = std::vector<std::string>;

}  // namespace

TEST(ValidateUsage, MisuseIsToldApartFromFindings) {
    const CFixturePlugin plugin("CleanConvertor");
    ExpectMisuse({}, "no plug-in is named");
    ExpectMisuse({"/no/such/plugin.so"}, "/no/such/plugin.so: No such file or directory");
    ExpectMisuse({"/tmp"}, "/tmp: a directory");
    ExpectMisuse({plugin.Path(), "--only", "source/strat"}, "source/strat: no check is named so");
    ExpectMisuse({plugin.Path(), "--skip", "nothing/*"}, "nothing/*: no check is named so");
    ExpectMisuse({plugin.Path(), "--timeout", "0"}, "--timeout");
    ExpectMisuse({plugin.Path(), "--sample", "/no/such/song.wav"}, "/no/such/song.wav: No such file or directory");
}

TEST(ValidateUsage, OnlyTakesNamesGroupsAndWildcards) {
    const CFixturePlugin plugin("CleanConvertor");
    EXPECT_EQ(NamesIn(ValidateJson(plugin.Path(), {"--only", "convertor/length"})), CNames{"convertor/length"});
    EXPECT_EQ(NamesIn(ValidateJson(plugin.Path(), {"--only", "ready,entry/opens"})),
              (CNames{"entry/opens", "ready/before-use", "ready/while-objects-live", "ready/after-use"}));
    EXPECT_EQ(NamesIn(ValidateJson(plugin.Path(), {"--only", "*/last-release"})),
              (CNames{"convertor/last-release", "status/last-release"}));
}

TEST(ValidateUsage, APluginMayFollowTheNamesOfChecksAndSamples) {
    const CFixturePlugin plugin("CleanDecoder");
    const SRunResult result = Validate({"--only", "entry/opens", "--skip", "seek", "--sample",
                                        "/usr/share/sounds/alsa/Front_Center.wav", plugin.Path()});
    EXPECT_EQ(result.m_strOut, "CleanDecoder.so: 1 checks, 1 passed, 0 skipped, 0 failed\n") << result.m_strErr;
}

TEST(ValidateUsage, SkipLeavesChecksOut) {
    const CFixturePlugin plugin("IsReadyOnceTerminated");
    EXPECT_EQ(FindingsIn(ValidateJson(plugin.Path(), {"--skip", "manager/unloads"})), CNames());
    EXPECT_EQ(NamesIn(ValidateJson(plugin.Path(), {"--only", "entry", "--skip", "entry/o*,entry/reference"})),
              (CNames{"entry/both-symbols", "entry/null-out-pointer", "entry/primary-object"}));
}

TEST(ValidateUsage, AChosenCheckRunsWithoutThoseThatItNeeds) {
    const nlohmann::json report = ValidateJson(CFixturePlugin("CleanDecoder").Path(), {"--only", "seek/sound"});
    EXPECT_EQ(report.at("checks").at(0).at("verdict"), "passed") << report.dump(1);
}

TEST(ValidateUsage, ChecksOfOtherTypesAreLeftOut) {
    for (const std::string& name : NamesIn(ValidateJson(CFixturePlugin("CleanConvertor").Path()))) {
        for (const char* const group : {"source/", "seek/", "encoder/", "handler/", "collection/"}) {
            EXPECT_NE(name.find(group), 0u) << name;
        }
    }
}

TEST(ValidateUsage, SeveralPluginsAreReportedInTheirOrder) {
    const CFixturePlugin first("CleanConvertor");
    const CFixturePlugin second("RefusesToInitialize");
    const SRunResult result = Validate({"--only", "component/initialize", first.Path(), second.Path()});
    EXPECT_EQ(result.m_nExit, 1);
    const std::size_t place = result.m_strOut.find("CleanConvertor.so: 1 checks, 1 passed, 0 skipped, 0 failed\n");
    EXPECT_EQ(place, 0u) << result.m_strOut;
    EXPECT_NE(result.m_strOut.find("RefusesToInitialize.so: 1 checks, 0 passed, 0 skipped, 1 failed\n"),
              std::string::npos);
}

TEST(ValidateUsage, SamplesReplaceTheValidatorsOwn) {
    const CScratchDirectory scratch;
    std::filesystem::copy("/usr/share/sounds/alsa/Front_Center.wav", scratch / "voice.wav");
    const nlohmann::json report =
        ValidateJson(CFixturePlugin("CleanDecoder").Path(), {"--only", "source", "--sample", scratch / "voice.wav"});
    EXPECT_EQ(FindingsIn(report), CNames()) << report.dump(1);
    EXPECT_EQ(SeenBy(report, "source/content"), "the samples are not the validator's own");
    const nlohmann::json broken = ValidateJson(CFixturePlugin("CleanDecoder").Path(),
                                               {"--only", "decoder", "--sample", scratch.Write("bad.wav", "no sound")});
    EXPECT_EQ(FindingsIn(broken), CNames{"decoder/opens-sample failed"});
}

TEST(ValidateUsage, AUrlReplacesTheValidatorsOwnServer) {
    const nlohmann::json report =
        ValidateJson(CFixturePlugin("CleanHandler").Path(), {"--only", "handler", "--url", "http://127.0.0.1:1/x.wav"});
    EXPECT_EQ(FindingsIn(report), CNames{"handler/fetches failed"});
    EXPECT_EQ(SeenBy(report, "handler/refuses-missing"), "the resource is not the validator's own");
}

// Each of the checks waits for the other two.
TEST(ValidateUsage, JobsAreChecksBesideEachOther) {
    const std::string checks = "component/null-status,component/initialize-again,component/type-stable";
    const nlohmann::json report = ValidateJson(CFixturePlugin("MeetsItself").Path(), {"--jobs", "3", "--only", checks});
    EXPECT_EQ(FindingsIn(report), CNames()) << report.dump(1);
    EXPECT_EQ(report.at("summary").at("passed"), 3) << report.dump(1);
}

TEST(ValidateUsage, TheValidatorsOwnServerIsReachedWithoutAProxy) {
    if (!std::filesystem::exists(KELO_PLUGINS "/curl.so")) GTEST_SKIP() << "no plug-in that knows proxies";
    const CScopedVariable proxy("http_proxy", "http://127.0.0.1:1");
    const nlohmann::json report = ValidateJson(KELO_PLUGINS "/curl.so", {"--only", "handler"});
    EXPECT_EQ(FindingsIn(report), CNames()) << report.dump(1);
}

TEST(ValidateUsage, ReferencePluginsThatOthersCouldReplaceAreLeftOut) {
    const CScratchDirectory scratch;
    for (const char* const name : {"bin", "plugins"}) std::filesystem::create_directory(scratch / name);
    std::filesystem::copy_file(KELOAUDIO, scratch / "bin/keloaudio");
    std::filesystem::copy_file(KELO_PLUGINS "/sndfile.so", scratch / "plugins/sndfile.so");
    const CFixturePlugin encoder("CleanEncoder");
    const auto report = [&] {
        return RunProgram({scratch / "bin/keloaudio", "validate", "--timeout", "60", "--verbose", "--only",
                           "encoder/decodes-again", encoder.Path()})
            .m_strOut;
    };
    ASSERT_EQ(chmod((scratch / "plugins").c_str(), 0755), 0);
    EXPECT_EQ(report().find("CleanEncoder.so: encoder/decodes-again passed ("), 0u) << report();
    ASSERT_EQ(chmod((scratch / "plugins").c_str(), 0777), 0);
    EXPECT_NE(report().find("no decoder at hand lists what its encoders write"), std::string::npos) << report();
}

TEST(ValidateUsage, NothingIsLeftAmongTheTemporaryFiles) {
    const CScratchDirectory scratch;
    setenv("TMPDIR", scratch.Path().c_str(), 1);
    const CFixturePlugin collection("CleanCollection");
    const CFixturePlugin handler("HandlerLeavesFiles");
    const std::size_t before = ::NamesIn(scratch.Path()).size();
    Validate({collection.Path(), handler.Path()});
    EXPECT_EQ(::NamesIn(scratch.Path()).size(), before);
    unsetenv("TMPDIR");
}

TEST(ValidateUsage, AStopSignalEndsTheRunAndItsProcesses) {
    const CFixturePlugin plugin("StreamHangsInRead");
    CRunningProgram program({KELOAUDIO, "validate", "--timeout", "600", plugin.Path()});
    EXPECT_FALSE(program.WaitFor(std::chrono::seconds(1)));
    program.Signal(SIGTERM);
    const SRunResult result = program.Wait();
    EXPECT_EQ(result.m_nExit, 128 + SIGTERM);
    EXPECT_TRUE(IsOneLine(result.m_strErr)) << result.m_strErr;
}

TEST(ValidateUsage, ListedChecksHaveAGroupANameAndASentence) {
    const std::vector<SListedCheck> checks = ListedChecks();
    EXPECT_GT(checks.size(), 100u);
    for (const SListedCheck& check : checks) {
        EXPECT_EQ(std::count(check.m_strName.begin(), check.m_strName.end(), '/'), 1) << check.m_strName;
        EXPECT_EQ(check.m_strName.find_first_not_of("abcdefghijklmnopqrstuvwxyz-/"), std::string::npos)
            << check.m_strName;
        EXPECT_EQ(check.m_strSentence.back(), '.') << check.m_strName;
    }
    EXPECT_EQ(Validate({"--list-checks"}).m_strOut.find("entry/opens: "), 0u);
}
