// Standard output as a file that can fail.
#pragma once

// Writes out what was printed. Throws CFailure when any of it, now or before, could not be written, but only once: the
// command fails then, and one line tells it. One thread.
void FlushStandardOutput();
