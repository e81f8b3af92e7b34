// Signals that ask the program to stop.
#include "host/StopSignal.h"

#include <signal.h>

#include <initializer_list>

namespace {

volatile sig_atomic_t g_nStopSignal = 0;

void RememberSignal(int signal) { g_nStopSignal = signal; }

}  // namespace

void WatchStopSignals() {
    struct sigaction action = {};
    action.sa_handler = RememberSignal;
    // Without SA_RESTART: a wait for a pipe or a slow file ends too.
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction inherited = {};
        sigaction(signal, nullptr, &inherited);
        if (inherited.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
    }
    signal(SIGXFSZ, SIG_IGN);
}

int GetStopSignal() { return g_nStopSignal; }
