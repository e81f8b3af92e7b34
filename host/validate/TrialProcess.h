// A process of a check's own: its crash ends the check, and its hang is cut off.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>

#include "host/validate/ReportPage.h"

// Forked from this process, which has loaded no plug-in and has one thread: the copy is as good as a fresh program and
// knows all that was found before. The destructor ends a process that still runs.
class CTrialProcess {
public:
    // `run` is called in the process. What the process prints is dropped, but for its standard error where that is
    // wanted. Throws CFailure when there is no process.
    CTrialProcess(const std::function<void()>& run, std::chrono::milliseconds limit, bool showsErrors);
    ~CTrialProcess();

    CTrialProcess(const CTrialProcess&) = delete;
    CTrialProcess& operator=(const CTrialProcess&) = delete;

    // Becomes readable when the process ends; for poll.
    int GetDescriptor() const { return m_nDescriptor; }

    std::chrono::steady_clock::time_point GetDeadline() const { return m_deadline; }

    // Returns when the process has ended, its time is over or a signal asks this program to stop.
    void Wait() const;

    // Once that is so.
    SOutcome Finish();

private:
    bool Reap(int options);
    SOutcome CrashOutcome() const;

    CReportPage m_page;
    std::chrono::steady_clock::time_point m_begin;
    std::chrono::steady_clock::time_point m_deadline;
    pid_t m_id;
    int m_nDescriptor = -1;
    bool m_bEnded = false;
    int m_nStatus = 0;
};
