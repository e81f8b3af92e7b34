// A last word before a plug-in takes the program down.
#include "host/CrashNote.h"

#include <signal.h>
#include <unistd.h>

#include <array>

#include "host/Printable.h"
#include "host/SignalStack.h"

namespace {

constexpr std::array<int, 5> kFatalSignals = {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV};

// What was installed before, a sanitizer's for example, has its turn afterwards.
std::array<struct sigaction, kFatalSignals.size()> g_earlier;

// Written before the handlers are installed, and still there when plug-ins go at the very end of the process.
std::array<char, 8192> g_words;
std::size_t g_nWords = 0;

// Async-signal-safe.
void TellAndPassOn(int signal, siginfo_t* info, void* /*context*/) {
    static_cast<void>(!write(STDERR_FILENO, g_words.data(), g_nWords));
    for (std::size_t i = 0; i < kFatalSignals.size(); ++i) {
        if (kFatalSignals[i] == signal) sigaction(signal, &g_earlier[i], nullptr);
    }
    // The instruction that failed fails again; a signal that was sent has to be sent again.
    if (info->si_code <= 0) raise(signal);
}

}  // namespace

void NoteCrashes(const std::string& pluginDirectory) {
    const std::string words = "keloaudio: " + Printable(pluginDirectory) +
                              ": crashed while these plug-ins were loaded (keloaudio list and keloaudio validate "
                              "find out which one it was)\n";
    g_nWords = words.copy(g_words.data(), g_words.size());
    UseSignalStack();
    for (std::size_t i = 0; i < kFatalSignals.size(); ++i) {
        struct sigaction action = {};
        action.sa_sigaction = TellAndPassOn;
        action.sa_flags = SA_SIGINFO | SA_ONSTACK;
        sigaction(kFatalSignals[i], &action, &g_earlier[i]);
    }
}
