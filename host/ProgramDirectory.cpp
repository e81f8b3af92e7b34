// Directories that belong to the running program.
#include "host/ProgramDirectory.h"

#include <filesystem>
#include <system_error>

namespace {

bool IsDirectory(const std::filesystem::path& path) {
    std::error_code ignored;
    return std::filesystem::is_directory(path, ignored);
}

}  // namespace

std::string ProgramDirectory(const std::string& installed, const std::string& built) {
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    const std::filesystem::path ofInstallation = (program / installed).lexically_normal();
    const std::filesystem::path ofBuild = (program / built).lexically_normal();
    return (!IsDirectory(ofInstallation) && IsDirectory(ofBuild) ? ofBuild : ofInstallation).string();
}
