// Standard output as a file that can fail.
#pragma once

#include <cstddef>

// Writes out what was printed. Throws CFailure when any of it, now or before, could not be written, but only once: the
// command fails then, and one line tells it. One thread.
void FlushStandardOutput();

// Writes bytes past what was printed, which is flushed before. Throws CFailure when they cannot be written, and when a
// signal asks to stop before all of them are taken. One thread.
void WriteToStandardOutput(const char* data, std::size_t size);
