// Signals that ask the program to stop.
#pragma once

#include <string>

// From here on SIGINT, SIGTERM and SIGHUP only leave a mark, and a file over the size limit and a pipe that
// nobody reads are write errors.
void WatchStopSignals();

// From here on the signals that only left a mark end the program, one that already came at once: while a dialog is open
// nobody asks for the mark.
void UnwatchStopSignals();

// The signal that asked to stop, 0 when none did.
int GetStopSignal();

// Throws CFailure about `subject` once a signal asks to stop.
void RequireNoStopSignal(const std::string& subject);
