// Refusals that name the file.
#include "plugins/sndfile/Refusal.h"

#include <system_error>

bool Refuse(IStatus** status, const std::string& path, const std::string& reason) {
    if (status == nullptr) return false;
    const std::string fileName = path.substr(path.rfind('/') + 1);
    ReportStatus(status, ((fileName.empty() ? path : fileName) + ": " + reason).c_str());
    return false;
}

std::string SystemReason(int error) { return std::generic_category().message(error); }
