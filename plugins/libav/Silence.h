// Keeping the libraries' messages out of a log that belongs to the host.
#pragma once

// The libraries' log and its level are the process's own. What they say about the files of this plug-in is kept back
// context by context: this is added to the level of every message, which makes it less important than any that is
// shown. A parser adds 127 to that, and the level's next byte would be a colour.
constexpr int kSilentLevels = 64;
