// Reasons in words.
#pragma once

#include <string>
#include <vector>

#include "com/Status.h"

// The words for an errno value.
std::string SystemErrorText(int error);

// The words for an error code of the library or of a plug-in.
std::string AudioErrorText(EAudioError error);

// The description of `status`, else its system error, else its audio error in words; `otherwise` when it is null or
// tells nothing. Plug-ins may begin a description with the name of the file, which is `path` or its last component:
// that name is left out, since a report begins with the name that the person gave.
std::string StatusText(IStatus* status, const std::string& otherwise, const std::string& path);

// Names separated by ", "; "none" for no names.
std::string JoinNames(const std::vector<std::string>& names);

// Writes "keloaudio: subject: reason" as one line to standard error; control characters come out as '?'.
// A null subject is left out. Allocates nothing, so that it works when memory is short.
void ReportFailure(const char* subject, const char* reason) noexcept;
