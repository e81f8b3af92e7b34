// The dynamic loader's lock, which plug-ins can leave taken.
#pragma once

// Whether threads other than the calling one can load libraries. An exception that a static object of a plug-in throws
// through the loader leaves its lock to the thread that loaded, for good. [main]
bool OtherThreadsCanLoad();
