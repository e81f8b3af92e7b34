// Plug-ins that keep the contract pass.
#include <gtest/gtest.h>

#include "tests/host/validate/ValidateRun.h"

namespace {

class CleanPlugin : public testing::TestWithParam<const char*> {};

std::vector<std::string> ChecksWith(const nlohmann::json& report, const std::string& verdict) {
    std::vector<std::string> names;
    for (const nlohmann::json& check : report.at("checks")) {
        if (check.at("verdict") == verdict) names.push_back(check.at("name"));
    }
    return names;
}

TEST_P(CleanPlugin, PassesEveryCheck) {
    const nlohmann::json report = ValidateJson(CFixturePlugin(GetParam()).Path(), {"--timeout", "60"});
    EXPECT_EQ(FindingsIn(report), std::vector<std::string>()) << report.dump(1);
    EXPECT_GT(ChecksWith(report, "passed").size(), 40u);
}

INSTANTIATE_TEST_SUITE_P(Validate, CleanPlugin,
                         testing::Values("CleanCollection", "CleanDecoder", "CleanEncoder", "CleanConvertor",
                                         "CleanHandler", "CleanSettings", "CleanStatus"),
                         [](const auto& test) { return std::string(test.param); });

TEST(Validate, CleanPluginsTogetherPassEveryCheckThatThereIs) {
    std::set<std::string> passed;
    for (const char* const fixture :
         {"CleanCollection", "CleanDecoder", "CleanConvertor", "CleanHandler", "CleanSettings"}) {
        for (const std::string& check : ChecksWith(ValidateJson(CFixturePlugin(fixture).Path()), "passed")) {
            passed.insert(check);
        }
    }
    for (const SListedCheck& check : ListedChecks()) {
        // No clean fixture takes float samples.
        const bool expected = check.m_strName != "convertor/advanced-formats";
        EXPECT_EQ(passed.count(check.m_strName) == 1, expected) << check.m_strName;
    }
}

class ReferencePlugin : public testing::TestWithParam<const char*> {};

TEST_P(ReferencePlugin, PassesEveryCheck) {
    const std::string path = std::string(KELO_PLUGINS) + "/" + GetParam() + ".so";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << path << " is not built";
    const nlohmann::json report = ValidateJson(path, {"--timeout", "60"});
    EXPECT_EQ(FindingsIn(report), std::vector<std::string>()) << report.dump(1);
    EXPECT_GT(ChecksWith(report, "passed").size(), 40u);
}

INSTANTIATE_TEST_SUITE_P(Validate, ReferencePlugin, testing::Values("curl", "sndfile", "soxr"),
                         [](const auto& test) { return std::string(test.param); });

// Its formats are none that the validator can write.
TEST(Validate, TheLibavPluginPassesEveryCheckOnRealFiles) {
    const std::string path = std::string(KELO_PLUGINS) + "/libav.so";
    if (!std::filesystem::exists(path)) GTEST_SKIP() << path << " is not built";
    const CScratchDirectory scratch;
    std::vector<std::string> arguments = {"--timeout", "60"};
    for (const char* const name : {"sound.m4a", "sound.wv"}) {
        const SRunResult made = RunProgram(
            {"ffmpeg", "-v", "error", "-i", "/usr/share/sounds/alsa/Front_Center.wav", "-t", "0.4", scratch / name});
        ASSERT_EQ(made.m_nExit, 0) << made.m_strErr;
        arguments.insert(arguments.end(), {"--sample", scratch / name});
    }
    const nlohmann::json report = ValidateJson(path, arguments);
    EXPECT_EQ(FindingsIn(report), std::vector<std::string>()) << report.dump(1);
    EXPECT_GT(ChecksWith(report, "passed").size(), 80u);
}

}  // namespace
