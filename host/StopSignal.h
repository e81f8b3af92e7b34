// Signals that ask the program to stop.
#pragma once

// From here on SIGINT, SIGTERM and SIGHUP only leave a mark, and a file over the size limit is a write error.
void WatchStopSignals();

// The signal that asked to stop, 0 when none did.
int GetStopSignal();
