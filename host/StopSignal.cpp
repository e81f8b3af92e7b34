// Signals that ask the program to stop.
#include "host/StopSignal.h"

#include <signal.h>

#include <atomic>

#include "host/Failure.h"

namespace {

constexpr int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP};

// Set on whichever thread the signal reaches.
std::atomic<int> g_nStopSignal{0};
static_assert(std::atomic<int>::is_always_lock_free);

void RememberSignal(int signal) { g_nStopSignal = signal; }

}  // namespace

void WatchStopSignals() {
    struct sigaction action = {};
    action.sa_handler = RememberSignal;
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
        if (action.sa_handler == RememberSignal) signal(watched, SIG_DFL);
    }
    if (g_nStopSignal != 0) raise(g_nStopSignal);
}

int GetStopSignal() { return g_nStopSignal; }

void RequireNoStopSignal(const std::string& subject) {
    if (GetStopSignal() != 0) throw CFailure(subject, "interrupted, nothing is written");
}
