// Where files lie for the time of some work.
#pragma once

#include <filesystem>

// The directory that TMPDIR or its like names, else /tmp. Throws CFailure when it is none.
std::filesystem::path TemporaryDirectory();
