// What the validator says, to people and to programs.
#include <gtest/gtest.h>

#include "tests/host/validate/ValidateRun.h"

namespace {

std::vector<std::string> LinesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

bool Contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

}  // namespace

TEST(ValidateReport, ACleanPluginIsOneLine) {
    const SRunResult result = Validate({CFixturePlugin("CleanConvertor").Path()});
    EXPECT_EQ(result.m_nExit, 0);
    ASSERT_TRUE(IsOneLine(result.m_strOut)) << result.m_strOut;
    EXPECT_TRUE(Contains(result.m_strOut, "CleanConvertor.so: ")) << result.m_strOut;
    EXPECT_TRUE(Contains(result.m_strOut, " skipped, 0 failed\n")) << result.m_strOut;
    EXPECT_EQ(result.m_strErr, "");
}

TEST(ValidateReport, AFindingIsALineWithTheCheckAndWhatWasSeen) {
    const SRunResult result = Validate({CFixturePlugin("StreamRawLengthIsInFrames").Path()});
    EXPECT_EQ(result.m_nExit, 1);
    const std::vector<std::string> lines = LinesOf(result.m_strOut);
    ASSERT_EQ(lines.size(), 2u) << result.m_strOut;
    EXPECT_EQ(lines[0].find("StreamRawLengthIsInFrames.so: source/raw-length failed ("), 0u) << lines[0];
    EXPECT_TRUE(Contains(lines[0], "decoder \"Fixture\" on sample.wav: tells 5003 bytes and delivers 20012"));
    EXPECT_TRUE(Contains(lines[1], ", 1 failed")) << lines[1];
}

TEST(ValidateReport, VerboseShowsEveryCheckWithItsTime) {
    const CFixturePlugin plugin("CleanConvertor");
    const nlohmann::json report = ValidateJson(plugin.Path());
    const std::vector<std::string> lines = LinesOf(Validate({"--verbose", plugin.Path()}).m_strOut);
    ASSERT_GE(lines.size(), report.at("checks").size() + 1);
    EXPECT_EQ(lines.front().find("CleanConvertor.so: entry/opens passed ("), 0u) << lines.front();
    EXPECT_TRUE(Contains(lines.front(), " ms)")) << lines.front();
}

TEST(ValidateReport, VerboseShowsWhatThePluginWritesToStandardError) {
    const CFixturePlugin plugin("WritesToStandardError");
    EXPECT_EQ(Validate({plugin.Path()}).m_strErr, "");
    EXPECT_TRUE(Contains(Validate({"--verbose", plugin.Path()}).m_strErr, "a word of the fixture"));
}

TEST(ValidateReport, JsonCountsWhatItLists) {
    const nlohmann::json report = ValidateJson(CFixturePlugin("StreamNeverEnds").Path());
    const nlohmann::json& summary = report.at("summary");
    EXPECT_EQ(report.at("file"), "StreamNeverEnds.so");
    EXPECT_EQ(report.at("components"), nlohmann::json::array({"decoder \"Fixture\""}));
    EXPECT_GE(report.at("loadMilliseconds"), 0.0);
    EXPECT_EQ(summary.at("checks"), report.at("checks").size());
    EXPECT_EQ(summary.at("failed"), 1);
    EXPECT_EQ(static_cast<int>(summary.at("passed")) + static_cast<int>(summary.at("skipped")) + 1,
              summary.at("checks"));
}

TEST(ValidateReport, SlowLoadingIsANoteAndNoFinding) {
    const nlohmann::json report = ValidateJson(CFixturePlugin("LoadsSlowly").Path(), {"--only", "entry/opens"});
    EXPECT_EQ(FindingsIn(report), std::vector<std::string>());
    ASSERT_EQ(report.at("notes").size(), 1u) << report.dump(1);
    EXPECT_TRUE(Contains(report.at("notes").at(0), " ms, more than 5")) << report.dump(1);
}

TEST(ValidateReport, ACheckWhoseNeededOneFailedIsSkippedAndSaysSo) {
    const nlohmann::json report = ValidateJson(CFixturePlugin("StreamDoesNotStart").Path());
    EXPECT_EQ(SeenBy(report, "source/reads-to-end"), "source/start did not pass");
    EXPECT_EQ(SeenBy(report, "source/end"), "source/reads-to-end was skipped");
}

TEST(ValidateReport, ACrashNamesTheSignalAndTheCall) {
    const nlohmann::json report = ValidateJson(CFixturePlugin("StreamCrashesInRead").Path());
    EXPECT_EQ(SeenBy(report, "source/reads-to-end"), "SIGABRT in RawRead of 49152 bytes");
}

TEST(ValidateReport, AProcessThatEndsInsideACheckNamesItsStatusAndTheCall) {
    const nlohmann::json report = ValidateJson(CFixturePlugin("StreamExitsInRead").Path());
    EXPECT_EQ(SeenBy(report, "source/reads-to-end"), "the process ended with status 3 in RawRead of 49152 bytes");
}

TEST(ValidateReport, AHangNamesTheCall) {
    const nlohmann::json report = ValidateJson(CFixturePlugin("StreamHangsInRead").Path(), {"--timeout", "2"});
    EXPECT_EQ(SeenBy(report, "source/reads-to-end"), "did not come back in RawRead of 49152 bytes");
}

TEST(ValidateReport, AnExceptionNamesItsTypeAndItsWords) {
    EXPECT_TRUE(Contains(SeenBy(ValidateJson(CFixturePlugin("ThrowsFromInitialize").Path()), "component/initialize"),
                         "an exception of type std::logic_error came across the border: out of the blue"));
    EXPECT_TRUE(
        Contains(SeenBy(ValidateJson(CFixturePlugin("ThrowsInsteadOfPrimaryObject").Path()), "entry/primary-object"),
                 "an exception of type int came across the border"));
    EXPECT_TRUE(Contains(SeenBy(ValidateJson(CFixturePlugin("StreamThrowsFromRead").Path()), "source/reads-to-end"),
                         "COwnTrouble came across the border"));
}

TEST(ValidateReport, AMissingSymbolIsNamedAndCppNamesAreExplained) {
    EXPECT_EQ(SeenBy(ValidateJson(CFixturePlugin("LacksReadyToFinish").Path()), "entry/both-symbols"),
              "KELO_PLUGIN_ReadyToFinish is missing");
    EXPECT_TRUE(Contains(SeenBy(ValidateJson(CFixturePlugin("ExportsCppNames").Path()), "entry/both-symbols"),
                         "it has its C++ name"));
}

TEST(ValidateReport, WhatKeepsAPluginInMemoryIsNamed) {
    EXPECT_TRUE(Contains(SeenBy(ValidateJson(CFixturePlugin("HasUniqueSymbol").Path()), "unload/leaves-memory"),
                         "kelo_fixture_unique"));
}

TEST(ValidateReport, AThreadLeftRunningAndAFileLeftOpenAreNamed) {
    EXPECT_TRUE(
        Contains(SeenBy(ValidateJson(CFixturePlugin("LeavesThread").Path()), "process/threads"), "new: thread "));
    EXPECT_TRUE(
        Contains(SeenBy(ValidateJson(CFixturePlugin("LeavesFileOpen").Path()), "process/descriptors"), "(/dev/null)"));
}

TEST(ValidateReport, AFileThatIsNoSharedObjectIsAFinding) {
    const CScratchDirectory scratch;
    const nlohmann::json report = ValidateJson(scratch.Write("text.so", "just words"));
    EXPECT_EQ(FindingsIn(report), std::vector<std::string>{"entry/opens failed"});
}
