// A process of a check's own: its crash ends the check, and its hang is cut off.
#pragma once

#include <chrono>
#include <functional>

#include "host/ChildProcess.h"
#include "host/validate/ReportPage.h"

// One thread.
class CTrialProcess {
public:
    // `run` is called in the process. What the process prints is dropped, but for its standard error where that is
    // wanted. Throws CFailure when there is no process.
    CTrialProcess(const std::function<void()>& run, std::chrono::milliseconds limit, bool showsErrors);

    // Becomes readable when the process ends; for poll.
    int GetDescriptor() const { return m_process.GetDescriptor(); }

    std::chrono::steady_clock::time_point GetDeadline() const { return m_process.GetDeadline(); }

    // Returns when the process has ended, its time is over or a signal asks this program to stop.
    void Wait() const { m_process.Wait(); }

    // Once that is so.
    SOutcome Finish();

private:
    SOutcome CrashOutcome() const;

    CReportPage m_page;
    std::chrono::steady_clock::time_point m_begin;
    CChildProcess m_process;
};
