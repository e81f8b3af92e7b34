// A process of its own for code that may crash or hang.
#include "host/ChildProcess.h"

#include <fcntl.h>
#include <signal.h>
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

namespace {

// Signals as a fresh program has them: the one that asks this program to stop only leaves a mark, and what was ignored
// when this program began stays so.
void ResetSignals() {
    for (int number = 1; number < NSIG; ++number) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        const bool ignoredHere = number == SIGXFSZ || number == SIGPIPE;
        if (action.sa_handler != SIG_IGN || ignoredHere) signal(number, SIG_DFL);
    }
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

[[noreturn]] void RunInChild(const std::function<void()>& run, bool showsErrors) noexcept {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    ResetSignals();
    DetachFromTerminal(showsErrors);
    run();
    _exit(0);
}

}  // namespace

CChildProcess::CChildProcess(const std::function<void()>& run, std::chrono::milliseconds limit, bool showsErrors)
    : m_deadline(std::chrono::steady_clock::now() + limit) {
    // Whoever started this program may ignore it, and then no process leaves a status, waitpid(2).
    signal(SIGCHLD, SIG_DFL);
    std::fflush(nullptr);
    m_id = fork();
    if (m_id == -1) throw CFailure("a process of its own", SystemErrorText(errno));
    if (m_id == 0) RunInChild(run, showsErrors);
    // The declaration in glibc 2.36 lacks the C linkage that C++ needs.
    m_nDescriptor = static_cast<int>(syscall(SYS_pidfd_open, m_id, 0));
    if (m_nDescriptor != -1) return;
    const int reason = errno;
    kill(m_id, SIGKILL);
    Reap(0);
    throw CFailure("a process of its own", "cannot be watched: " + SystemErrorText(reason));
}

CChildProcess::~CChildProcess() {
    if (!m_bEnded) {
        kill(m_id, SIGKILL);
        Reap(0);
    }
    close(m_nDescriptor);
}

bool CChildProcess::Reap(int options) {
    pid_t ended = 0;
    do {
        ended = waitpid(m_id, &m_nStatus, options);
    } while (ended == -1 && errno == EINTR);
    m_bEnded = ended == m_id;
    return m_bEnded;
}

void CChildProcess::Wait() const {
    pollfd descriptor = {m_nDescriptor, POLLIN, 0};
    while (PollUntilStopped(&descriptor, 1, m_deadline) == -1 && GetStopSignal() == 0) {
    }
}

bool CChildProcess::Finish() {
    if (Reap(WNOHANG)) return true;
    kill(m_id, SIGKILL);
    Reap(0);
    return false;
}
