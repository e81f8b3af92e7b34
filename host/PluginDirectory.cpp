// The directory that plug-ins are loaded from.
#include "host/PluginDirectory.h"

#include <limits.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <memory>
#include <system_error>

#include "host/FailureText.h"
#include "host/PluginTrust.h"
#include "portable/DirEntry.h"
#include "portable/PortableFile.h"

namespace {

constexpr const char* kOtherDirectoryHint = " (--plugins DIR names another plug-in directory)";

// The manager's own words for its search.
constexpr const char* kPluginMask = "*.so";
constexpr unsigned int kAnyCase = 2;

// The manager itself passes over a directory that it cannot enter.
void RequireReadable(const std::string& directory) {
    std::error_code error;
    const std::filesystem::directory_iterator entries(directory, error);
    if (error) throw CFailure(directory, error.message() + kOtherDirectoryHint);
}

// Plug-in libraries keep their path in PATH_MAX bytes.
void RequireShortPath(const std::string& directory) {
    if (directory.size() + 1 + NAME_MAX >= PATH_MAX) throw CFailure(directory, SystemErrorText(ENAMETOOLONG));
}

std::string SortedNames(const std::string& directory) {
    std::vector<std::string> names = PluginFileNames(directory);
    std::sort(names.begin(), names.end());
    return JoinNames(names);
}

}  // namespace

std::string RequirePluginDirectory(const SPluginOptions& options) {
    const std::string directory = std::filesystem::absolute(ChosenPluginDirectory(options)).string();
    RequireReadable(directory);
    RequireShortPath(directory);
    if (PluginFileNames(directory).empty()) {
        throw CFailure(directory, std::string("no plug-ins (*.so) here") + kOtherDirectoryHint);
    }
    if (!options.m_bTrusted) RequireTrustedPlugins(directory, directory == DefaultPluginDirectory());
    return directory;
}

std::vector<std::string> PluginFileNames(const std::string& directory) {
    // With its slash the whole of the name is the directory, be it a link.
    const CPortableFile file((directory + "/.").c_str(), CPortableFile::OM_READ);
    std::vector<std::string> names;
    const std::unique_ptr<CDirEntry> search(file.OpenDir(kPluginMask, 0, 0, 0, kAnyCase));
    for (; search->IsValid() != 0; search->Next()) {
        names.push_back(std::filesystem::path(search->GetFile().GetName()).filename().string());
    }
    return names;
}

CNoUsablePlugin::CNoUsablePlugin(const std::string& directory)
    : CFailure(directory, "no usable plug-in here (tried: " + SortedNames(directory) + ")") {}
