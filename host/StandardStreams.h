// The places of the standard streams.
#pragma once

// Takes those of descriptors 0 to 2 that are closed, so that no file gets one of them and what is said never lands in
// an output. The stream stays a failure to whoever uses it. False, with errno: one of them is still free. First of all
// in main.
bool OccupyStandardStreams();
