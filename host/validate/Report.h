// What a run has found, for people and for programs.
#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>

#include "host/validate/PluginRun.h"

// "passed", "failed", "skipped", "crashed" or "timed out".
std::string VerdictText(EVerdict verdict);

// One line for each finding, the notes and the summary; for each check and with every note where `verbose`. Control
// characters come out as '?'.
std::string ReportText(const SPluginReport& report, bool verbose);

nlohmann::ordered_json ToJson(const SPluginReport& report);

// Name and sentence of each check.
std::string CatalogueText(const CCheckList& checks);
nlohmann::ordered_json ToJson(const CCheckList& checks);
