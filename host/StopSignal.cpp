// Signals that ask the program to stop.
#include "host/StopSignal.h"

#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>

#include "host/Failure.h"

namespace {

constexpr int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP};

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

// Sooner, a second signal may mean the same wish: a session that closes sends several.
constexpr std::int64_t kPatience = kNanosecondsPerSecond;

// Set on whichever thread the signal reaches.
std::atomic<int> g_nStopSignal{0};
static_assert(std::atomic<int>::is_always_lock_free);

// When the first one came, 0 before.
std::atomic<std::int64_t> g_nFirstStop{0};
static_assert(std::atomic<std::int64_t>::is_always_lock_free);

// In nanoseconds. Async-signal-safe.
std::int64_t MonotonicTime() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * kNanosecondsPerSecond + now.tv_nsec;
}

// Whether this process has sent it to one of its threads.
bool IsPassedOn(const siginfo_t& info) { return info.si_code == SI_TKILL && info.si_pid == getpid(); }

// Async-signal-safe. A plug-in that does not return keeps everybody from asking for the mark; then the next signal
// ends the program.
void RememberSignal(int stop, siginfo_t* info, void* /*context*/) {
    if (IsPassedOn(*info)) return;
    g_nStopSignal = stop;
    const std::int64_t now = MonotonicTime();
    std::int64_t first = 0;
    if (g_nFirstStop.compare_exchange_strong(first, now) || now - first < kPatience) return;
    signal(stop, SIG_DFL);
    raise(stop);
}

// While it lives, the signals that ask to stop wait; Before() lets them through.
class CHeldSignals {
public:
    CHeldSignals() {
        sigset_t held;
        sigemptyset(&held);
        for (const int signal : kStopSignals) sigaddset(&held, signal);
        pthread_sigmask(SIG_BLOCK, &held, &m_before);
    }
    ~CHeldSignals() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }

    CHeldSignals(const CHeldSignals&) = delete;
    CHeldSignals& operator=(const CHeldSignals&) = delete;

    const sigset_t* Before() const { return &m_before; }

private:
    sigset_t m_before;
};

}  // namespace

void WatchStopSignals() {
    struct sigaction action = {};
    action.sa_sigaction = RememberSignal;
    action.sa_flags = SA_SIGINFO;
    // Without SA_RESTART: a wait for a pipe or a slow file ends too.
    for (const int signal : kStopSignals) {
        struct sigaction inherited = {};
        sigaction(signal, nullptr, &inherited);
        if (inherited.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
    }
    signal(SIGXFSZ, SIG_IGN);
    signal(SIGPIPE, SIG_IGN);
}

void UnwatchStopSignals() {
    for (const int watched : kStopSignals) {
        struct sigaction action = {};
        sigaction(watched, nullptr, &action);
        if (action.sa_sigaction == RememberSignal) signal(watched, SIG_DFL);
    }
    if (g_nStopSignal != 0) raise(g_nStopSignal);
}

int GetStopSignal() { return g_nStopSignal; }

int PollUntilStopped(pollfd* descriptors, nfds_t count, std::chrono::steady_clock::time_point deadline) {
    const CHeldSignals signals;
    if (GetStopSignal() != 0) {
        errno = EINTR;
        return -1;
    }
    const auto left = std::max(std::chrono::nanoseconds(0), deadline - std::chrono::steady_clock::now());
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
    const timespec limit = {seconds.count(), (left - seconds).count()};
    return ppoll(descriptors, count, &limit, signals.Before());
}

void RequireNoStopSignal(const std::string& subject) {
    if (GetStopSignal() != 0) throw CFailure(subject, "interrupted, nothing is written");
}
