// Reasons in words.
#pragma once

#include <string>

#include "com/Status.h"

// The words for an errno value.
std::string SystemErrorText(int error);

// The words for an error code of the library or of a plug-in.
std::string AudioErrorText(EAudioError error);

// The description of `status`, else its system error, else its audio error in words; `otherwise` when it is null or
// tells nothing.
std::string StatusText(IStatus* status, const std::string& otherwise);

// Writes "keloaudio: subject: reason" as one line to standard error; control characters come out as '?'.
// A null subject is left out. Allocates nothing, so that it works when memory is short.
void ReportFailure(const char* subject, const char* reason) noexcept;
