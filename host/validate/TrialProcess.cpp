// A process of a check's own: its crash ends the check, and its hang is cut off.
#include "host/validate/TrialProcess.h"

#include <sys/wait.h>

#include "host/validate/GuardedRun.h"
#include "host/validate/SignalName.h"
#include "host/validate/Steps.h"

namespace {

// What a check holds of the plug-in goes with the process, and only the checks that are about releasing and unloading
// see how that goes.
std::function<void()> Reporting(CReportPage& page, const std::function<void()>& run) {
    return [&page, &run] {
        TellStepsTo(&page);
        page.TellOutcome(RunGuarded(run));
    };
}

std::string WhileText(const std::string& step) { return step.empty() ? "" : " in " + step; }

}  // namespace

CTrialProcess::CTrialProcess(const std::function<void()>& run, std::chrono::milliseconds limit, bool showsErrors)
    : m_begin(std::chrono::steady_clock::now()), m_process(Reporting(m_page, run), limit, showsErrors) {}

SOutcome CTrialProcess::Finish() {
    const bool inTime = m_process.Finish();
    if (m_page.HasOutcome()) return m_page.GetOutcome();
    if (inTime) return CrashOutcome();
    const std::chrono::duration<double, std::milli> time = GetDeadline() - m_begin;
    return {EVerdict::TimedOut, "did not come back" + WhileText(m_page.GetStep()), time.count()};
}

SOutcome CTrialProcess::CrashOutcome() const {
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - m_begin;
    const int status = m_process.GetStatus();
    const std::string how = WIFSIGNALED(status)
                                ? SignalName(WTERMSIG(status))
                                : "the process ended with status " + std::to_string(WEXITSTATUS(status));
    return {EVerdict::Crashed, how + WhileText(m_page.GetStep()), time.count()};
}
