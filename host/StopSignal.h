// Signals that ask the program to stop.
#pragma once

#include <poll.h>

#include <chrono>
#include <string>

// From here on SIGINT, SIGTERM and SIGHUP only leave a mark, except that one which comes a second or more after the
// first ends the program. A file over the size limit and a pipe that nobody reads are write errors.
void WatchStopSignals();

// From here on the signals that only left a mark end the program, one that already came at once: while a dialog is open
// nobody asks for the mark.
void UnwatchStopSignals();

// The signal that asked to stop, 0 when none did.
int GetStopSignal();

// poll(2) until `deadline`, which a signal that asks to stop ends, one that came before it too. Returns what poll does.
int PollUntilStopped(pollfd* descriptors, nfds_t count, std::chrono::steady_clock::time_point deadline);

// Throws CFailure about `subject` once a signal asks to stop.
void RequireNoStopSignal(const std::string& subject);
