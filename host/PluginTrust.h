// Who may change the code that plug-ins bring into the process.
#pragma once

#include <string>

// Plug-ins run with the rights of whoever runs the program, so nobody else may be able to replace them. Throws CFailure
// when a directory or file among these can be written or replaced by anybody but root and the user: the directory, the
// files in it, what they link to with every link and directory on the way there and, unless `belongsToProgram`, those
// on the way to the directory. Whoever can change the directories above the program's own plug-ins can replace the
// program itself. [host set-up]
void RequireTrustedPlugins(const std::string& directory, bool belongsToProgram);
