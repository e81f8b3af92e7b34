// Many conversions, side by side.
#include "host/convert/Batch.h"

#include <nlohmann/json.hpp>

#include "host/FormatText.h"
#include "host/Json.h"
#include "host/StandardOutput.h"
#include "host/StopSignal.h"
#include "host/convert/Jobs.h"

namespace {

std::string Counted(int count, const char* one, const char* many) {
    return std::to_string(count) + " " + (count == 1 ? one : many);
}

std::string IfAny(int count, const std::string& text) { return count == 0 ? "" : ", " + text; }

std::vector<SConversionResult> ExpectedResults(const SConvertOptions& options, const SConversionPlan& plan) {
    std::vector<SConversionResult> results;
    for (const SPlannedFile& file : plan.m_vFiles) results.push_back(ExpectedResult(options, file));
    return results;
}

}  // namespace

CBatch::CBatch(const CPluginSession& session, const SConvertOptions& options, const SConversionPlan& plan)
    : m_session(session),
      m_options(options),
      m_plan(plan),
      m_vResults(ExpectedResults(options, plan)),
      m_console(!options.m_bQuiet && !options.m_bJson, WorkloadOf(plan.m_vFiles, m_vResults)) {}

int CBatch::Run() {
    const auto isOver = [this] { return m_bOutputLost.load(); };
    const int jobs = m_options.m_bDryRun ? 1 : m_options.m_nJobs;
    RunJobs(
        m_plan.m_vFiles.size(), jobs, [this](std::size_t n) { RunOne(n); }, isOver);
    if (m_bOutputLost) throw CFailure("standard output", m_strOutputFailure);
    ReportUnread();
    Summarise();
    return CountOf(m_vResults, EOutcome::Failed) == 0 ? 0 : kExitFailed;
}

void CBatch::RunOne(std::size_t n) {
    SConversionResult& result = m_vResults[n];
    const bool planned = result.m_eOutcome == EOutcome::Planned;
    try {
        if (planned && !m_options.m_bDryRun) {
            result = ConvertFile({m_session, m_options, m_console}, m_plan.m_vFiles[n], [](const auto&) {});
        }
        Report(result);
    } catch (const CFailure& failure) {
        const std::lock_guard<std::mutex> lock(m_failureMutex);
        m_strOutputFailure = failure.GetReason();
        m_bOutputLost = true;
    }
    if (planned) m_console.CountFile();
}

void CBatch::Report(const SConversionResult& result) {
    switch (result.m_eOutcome) {
        case EOutcome::Failed:
            m_console.ReportFailure(result.m_strFailure);
            return;
        case EOutcome::Interrupted:
            return;
        default:
            break;
    }
    ReportLosses({m_session, m_options, m_console}, result.m_strInput, result.m_report);
    m_console.PrintLine(LineText(result));
}

void CBatch::ReportUnread() {
    for (const CFailure& failure : m_plan.m_vFailures) {
        m_console.ReportFailure(failure.what());
        SConversionResult result;
        result.m_strInput = failure.GetSubject();
        SetFailure(result, failure);
        m_vResults.push_back(std::move(result));
    }
}

void CBatch::Summarise() {
    if (m_options.m_bJson) {
        PrintJson(SummaryJson());
        FlushStandardOutput();
    }
    const int converted = CountOf(m_vResults, EOutcome::Converted);
    const std::string ofAll = " of " + Counted(static_cast<int>(m_vResults.size()), "file", "files");
    const int failed = CountOf(m_vResults, EOutcome::Failed);
    if (GetStopSignal() != 0) {
        throw CFailure("interrupted", std::to_string(converted) + ofAll + " converted" +
                                          IfAny(failed, std::to_string(failed) + " failed"));
    }
    PrintSummary();
    if (failed == 0) return;
    m_console.ReportFailure(std::to_string(failed) + ofAll + " failed: " + ReasonsText(m_vResults));
}

void CBatch::PrintSummary() {
    const int done = CountOf(m_vResults, m_options.m_bDryRun ? EOutcome::Planned : EOutcome::Converted);
    std::string line = Counted(done, "file", "files") + (m_options.m_bDryRun ? " to convert" : " converted");
    if (!m_options.m_bDryRun && done > 0) {
        const double elapsed = m_console.GetElapsedSeconds();
        line += " in " + ClockText(elapsed) + ", " + SpeedText(m_console.GetSoundSeconds(), elapsed);
    }
    const int skipped = CountOf(m_vResults, EOutcome::Skipped);
    line += IfAny(skipped, std::to_string(skipped) + " skipped");
    line += IfAny(m_plan.m_nAlready, std::to_string(m_plan.m_nAlready) + " already ." + m_options.m_strExtension);
    line += IfAny(m_plan.m_nOthers, Counted(m_plan.m_nOthers, "other file", "other files") + " left out");
    m_console.PrintLine(line);
}

nlohmann::ordered_json CBatch::SummaryJson() const {
    nlohmann::ordered_json files = nlohmann::ordered_json::array();
    for (const SConversionResult& result : m_vResults) files.push_back(ToJson(result));
    return {{"files", std::move(files)},
            {"converted", CountOf(m_vResults, EOutcome::Converted)},
            {"skipped", CountOf(m_vResults, EOutcome::Skipped)},
            {"failed", CountOf(m_vResults, EOutcome::Failed)},
            {"already", m_plan.m_nAlready},
            {"otherFiles", m_plan.m_nOthers},
            {"interrupted", GetStopSignal() != 0},
            {"elapsedSeconds", m_console.GetElapsedSeconds()},
            {"soundSeconds", m_console.GetSoundSeconds()}};
}
