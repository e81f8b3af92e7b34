// A process of a check's own: its crash ends the check, and its hang is cut off.
#include "host/validate/TrialProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <string.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/StopSignal.h"
#include "host/validate/GuardedRun.h"
#include "host/validate/Steps.h"

namespace {

// Signals as a fresh program has them: the one that asks this program to stop only leaves a mark.
void ResetSignals() {
    for (int number = 1; number < NSIG; ++number) signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void DetachFromTerminal(bool showsErrors) {
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO}) dup2(nowhere, descriptor);
    if (!showsErrors) dup2(nowhere, STDERR_FILENO);
    if (nowhere > STDERR_FILENO) close(nowhere);
}

[[noreturn]] void RunInChild(CReportPage& page, const std::function<void()>& run, bool showsErrors) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    ResetSignals();
    DetachFromTerminal(showsErrors);
    TellStepsTo(&page);
    page.TellOutcome(RunGuarded(run));
    // Without destructors: what a check holds of the plug-in goes with the process, and only the checks that are about
    // releasing and unloading see how that goes.
    _exit(0);
}

std::string WhileText(const std::string& step) { return step.empty() ? "" : " in " + step; }

std::string SignalText(int signal) {
    const char* const name = sigabbrev_np(signal);
    return name == nullptr ? "signal " + std::to_string(signal) : std::string("SIG") + name;
}

}  // namespace

CTrialProcess::CTrialProcess(const std::function<void()>& run, std::chrono::milliseconds limit, bool showsErrors)
    : m_begin(std::chrono::steady_clock::now()), m_deadline(m_begin + limit) {
    std::fflush(nullptr);
    m_id = fork();
    if (m_id == -1) throw CFailure("validate", "no process for a check: " + SystemErrorText(errno));
    if (m_id == 0) RunInChild(m_page, run, showsErrors);
    // The declaration in glibc 2.36 lacks the C linkage that C++ needs.
    m_nDescriptor = static_cast<int>(syscall(SYS_pidfd_open, m_id, 0));
    if (m_nDescriptor != -1) return;
    const int reason = errno;
    kill(m_id, SIGKILL);
    Reap(0);
    throw CFailure("validate", "cannot watch the process of a check: " + SystemErrorText(reason));
}

CTrialProcess::~CTrialProcess() {
    if (!m_bEnded) {
        kill(m_id, SIGKILL);
        Reap(0);
    }
    close(m_nDescriptor);
}

bool CTrialProcess::Reap(int options) {
    pid_t ended = 0;
    do {
        ended = waitpid(m_id, &m_nStatus, options);
    } while (ended == -1 && errno == EINTR);
    m_bEnded = ended == m_id;
    return m_bEnded;
}

void CTrialProcess::Wait() const {
    pollfd descriptor = {m_nDescriptor, POLLIN, 0};
    for (int ended = 0; ended <= 0;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0 || GetStopSignal() != 0) return;
        ended = poll(&descriptor, 1, static_cast<int>(left.count()));
    }
}

SOutcome CTrialProcess::Finish() {
    const bool inTime = Reap(WNOHANG);
    if (!inTime) {
        kill(m_id, SIGKILL);
        Reap(0);
    }
    if (m_page.HasOutcome()) return m_page.GetOutcome();
    if (inTime) return CrashOutcome();
    const std::chrono::duration<double, std::milli> time = m_deadline - m_begin;
    return {EVerdict::TimedOut, "did not come back" + WhileText(m_page.GetStep()), time.count()};
}

SOutcome CTrialProcess::CrashOutcome() const {
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - m_begin;
    const std::string how = WIFSIGNALED(m_nStatus)
                                ? SignalText(WTERMSIG(m_nStatus))
                                : "the process ended with status " + std::to_string(WEXITSTATUS(m_nStatus));
    return {EVerdict::Crashed, how + WhileText(m_page.GetStep()), time.count()};
}
