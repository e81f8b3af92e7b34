// keloaudio validate under test.
#include "tests/host/validate/ValidateRun.h"

#include <gtest/gtest.h>

#include <algorithm>

CFixturePlugin::CFixturePlugin(const std::string& name) : m_strName(name) {
    const std::filesystem::path own = std::filesystem::path(KELO_FIXTURES) / (name + ".so");
    const std::filesystem::path byName = std::filesystem::path(KELO_FIXTURES) / "ByName.so";
    std::filesystem::create_symlink(std::filesystem::exists(own) ? own : byName, Path());
}

SRunResult Validate(std::vector<std::string> arguments) {
    const bool limited = std::find(arguments.begin(), arguments.end(), "--timeout") != arguments.end();
    if (!limited) arguments.insert(arguments.begin(), {"--timeout", "60"});
    arguments.insert(arguments.begin(), {KELOAUDIO, "validate"});
    return RunProgram(arguments);
}

nlohmann::json ValidateJson(const std::string& plugin, std::vector<std::string> arguments) {
    arguments.insert(arguments.end(), {"--json", plugin});
    const SRunResult result = Validate(arguments);
    EXPECT_EQ(result.m_strErr, "");
    const nlohmann::json report = nlohmann::json::parse(result.m_strOut).at("plugins").at(0);
    EXPECT_EQ(result.m_nExit, FindingsIn(report).empty() ? 0 : 1);
    return report;
}

std::vector<std::string> FindingsIn(const nlohmann::json& report) {
    std::vector<std::string> findings;
    for (const nlohmann::json& check : report.at("checks")) {
        const std::string verdict = check.at("verdict");
        if (verdict != "passed" && verdict != "skipped")
            findings.push_back(std::string(check.at("name")) + " " + verdict);
    }
    return findings;
}

std::string SeenBy(const nlohmann::json& report, const std::string& name) {
    for (const nlohmann::json& check : report.at("checks")) {
        if (check.at("name") == name) return check.at("seen");
    }
    return "(no such check)";
}

std::vector<SListedCheck> ListedChecks() {
    const SRunResult result = Validate({"--list-checks", "--json"});
    std::vector<SListedCheck> checks;
    for (const nlohmann::json& check : nlohmann::json::parse(result.m_strOut)) {
        checks.push_back({check.at("name"), check.at("sentence")});
    }
    return checks;
}
