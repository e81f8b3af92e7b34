// What a run has found, for people and for programs.
#include "host/validate/Report.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "host/Printable.h"

namespace {

std::string FileName(const SPluginReport& report) {
    return std::filesystem::path(report.m_strPath).filename().string();
}

std::string MillisecondsText(double milliseconds) {
    char text[32];
    std::snprintf(text, sizeof(text), "%.1f ms", milliseconds);
    return text;
}

std::string LineText(const std::string& file, const SCheckResult& result) {
    const SOutcome& outcome = result.m_outcome;
    const std::string line = file + ": " + result.m_pCheck->m_szName + " " + VerdictText(outcome.m_eVerdict) + " (" +
                             MillisecondsText(outcome.m_fMilliseconds) + ")";
    return Printable(outcome.m_strSeen.empty() ? line : line + ": " + outcome.m_strSeen) + "\n";
}

std::string SummaryText(const SPluginReport& report) {
    const auto count = [](int number, const char* what) { return std::to_string(number) + " " + what; };
    return Printable(FileName(report)) + ": " + count(static_cast<int>(report.m_vResults.size()), "checks, ") +
           count(report.Count(EVerdict::Passed), "passed, ") + count(report.Count(EVerdict::Skipped), "skipped, ") +
           count(report.Findings(), "failed\n");
}

// Programs compare it: one word.
std::string VerdictKey(EVerdict verdict) { return verdict == EVerdict::TimedOut ? "timedOut" : VerdictText(verdict); }

nlohmann::ordered_json ToJson(const SCheckResult& result) {
    return {{"name", result.m_pCheck->m_szName},
            {"verdict", VerdictKey(result.m_outcome.m_eVerdict)},
            {"seen", result.m_outcome.m_strSeen},
            {"milliseconds", result.m_outcome.m_fMilliseconds}};
}

}  // namespace

std::string VerdictText(EVerdict verdict) {
    switch (verdict) {
        case EVerdict::Passed:
            return "passed";
        case EVerdict::Failed:
            return "failed";
        case EVerdict::Skipped:
            return "skipped";
        case EVerdict::Crashed:
            return "crashed";
        case EVerdict::TimedOut:
            return "timed out";
    }
    return "";
}

std::string ReportText(const SPluginReport& report, bool verbose) {
    const std::string file = FileName(report);
    std::string text;
    for (const SCheckResult& result : report.m_vResults) {
        if (verbose || IsFinding(result.m_outcome.m_eVerdict)) text += LineText(file, result);
    }
    for (const SNote& note : report.m_vNotes) {
        if (verbose || note.m_bInShort) text += Printable(file + ": note: " + note.m_strText) + "\n";
    }
    return text + SummaryText(report);
}

nlohmann::ordered_json ToJson(const SPluginReport& report) {
    nlohmann::ordered_json notes = nlohmann::ordered_json::array();
    for (const SNote& note : report.m_vNotes) notes.push_back(note.m_strText);
    nlohmann::ordered_json checks = nlohmann::ordered_json::array();
    for (const SCheckResult& result : report.m_vResults) checks.push_back(ToJson(result));
    return {{"file", FileName(report)},
            {"path", report.m_strPath},
            {"loadMilliseconds", report.m_survey.m_fLoadMilliseconds},
            {"components", report.m_survey.m_vComponents},
            {"notes", notes},
            {"checks", checks},
            {"summary",
             {{"checks", report.m_vResults.size()},
              {"passed", report.Count(EVerdict::Passed)},
              {"skipped", report.Count(EVerdict::Skipped)},
              {"failed", report.Findings()}}}};
}

std::string CatalogueText(const CCheckList& checks) {
    std::string text;
    for (const SCheck& check : checks) text += std::string(check.m_szName) + ": " + check.m_szSentence + "\n";
    return text;
}

nlohmann::ordered_json ToJson(const CCheckList& checks) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const SCheck& check : checks) list.push_back({{"name", check.m_szName}, {"sentence", check.m_szSentence}});
    return list;
}
