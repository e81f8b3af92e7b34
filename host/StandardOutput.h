// Standard output as a file that can fail.
#pragma once

// Writes out what was printed. Throws CFailure when any of it, now or before, could not be written. One thread.
void FlushStandardOutput();
