// Directories that belong to the running program.
#pragma once

#include <string>

// Both names are relative to the program's own directory. `installed` is the answer unless only `built` is there, as in
// a build tree. Throws std::filesystem::filesystem_error where the program cannot be found. [any thread]
std::string ProgramDirectory(const std::string& installed, const std::string& built);
