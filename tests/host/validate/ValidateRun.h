// keloaudio validate under test.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/host/RunProgram.h"
#include "tests/support/ScratchDirectory.h"

// A fixture plug-in under its own name, in a directory of its own.
class CFixturePlugin {
public:
    explicit CFixturePlugin(const std::string& name);

    std::string Path() const { return m_scratch / (m_strName + ".so"); }

private:
    CScratchDirectory m_scratch;
    std::string m_strName;
};

// With a limit that a busy machine does not reach, unless the arguments have one.
SRunResult Validate(std::vector<std::string> arguments);

// The report on one plug-in.
nlohmann::json ValidateJson(const std::string& plugin, std::vector<std::string> arguments = {});

// The findings of a report, each as "name verdict".
std::vector<std::string> FindingsIn(const nlohmann::json& report);

// What was seen by one check of a report.
std::string SeenBy(const nlohmann::json& report, const std::string& check);

struct SListedCheck {
    std::string m_strName;
    std::string m_strSentence;
};

// What --list-checks says.
std::vector<SListedCheck> ListedChecks();
