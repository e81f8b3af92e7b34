// Many conversions, side by side.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "host/convert/FileConversion.h"

// A failed file does not stop the others. [host set-up]
class CBatch {
public:
    CBatch(const CPluginSession& session, const SConvertOptions& options, const SConversionPlan& plan);

    // Converts, or only says what would be converted, and says what became of it. The exit status. Throws CFailure when
    // what it says cannot be written, and when a signal asked to stop.
    int Run();

private:
    void RunOne(std::size_t n);
    void Report(const SConversionResult& result);
    void ReportUnread();
    void Summarise();
    void PrintSummary();
    nlohmann::ordered_json SummaryJson() const;

    const CPluginSession& m_session;
    const SConvertOptions& m_options;
    const SConversionPlan& m_plan;
    std::vector<SConversionResult> m_vResults;  // in the plan's order, then the directories that cannot be read
    CConsole m_console;
    std::atomic<bool> m_bOutputLost{false};
    std::string m_strOutputFailure;
    std::mutex m_failureMutex;
};
