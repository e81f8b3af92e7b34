// For programs that show text under a leak checker: Pango reads fonts in a thread of its own, where CExpectedLeaks does
// not reach, and fontconfig keeps what it read for the life of the process.

extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { return "leak:libfontconfig.so\n"; }
