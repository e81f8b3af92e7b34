// The inputs that a command line names, with what its directories hold.
#include "host/convert/InputFiles.h"

#include <algorithm>
#include <system_error>

#include "host/Encoders.h"
#include "host/FailureText.h"
#include "host/StartDirectory.h"
#include "host/StopSignal.h"

namespace {

namespace fs = std::filesystem;

// Walks the directories of one request.
class CDirectoryWalk {
public:
    CDirectoryWalk(const SInputRequest& request, SInputFiles& found) : m_request(request), m_found(found) {
        std::error_code error;
        if (!request.m_strExcludedDirectory.empty())
            m_excluded = fs::weakly_canonical(FromStart(request.m_strExcludedDirectory), error);
    }

    void Enter(const fs::path& directory, const fs::path& folder) {
        std::error_code error;
        fs::directory_iterator entries(FromStart(directory), error);
        for (; !error && entries != fs::directory_iterator() && GetStopSignal() == 0; entries.increment(error))
            Take(*entries, directory / entries->path().filename(), folder);
        if (error) m_found.m_vFailures.emplace_back(directory.string(), error.message());
    }

private:
    // `given` is the entry's path as the person would name it.
    void Take(const fs::directory_entry& entry, const fs::path& given, const fs::path& folder) {
        std::error_code error;
        const bool link = entry.is_symlink(error);
        if (entry.is_directory(error)) {
            if (!link && !IsExcluded(given)) Enter(given, folder / given.filename());
            return;
        }
        if (!entry.is_regular_file(error) || !HasExtension(m_request.m_vExtensions, ExtensionOf(given.string()))) {
            ++m_found.m_nOthers;
            return;
        }
        m_found.m_vFiles.push_back({CSourceName(given.string()), folder, true});
    }

    bool IsExcluded(const fs::path& directory) const {
        std::error_code error;
        return !m_excluded.empty() && fs::weakly_canonical(FromStart(directory), error) == m_excluded;
    }

    const SInputRequest& m_request;
    SInputFiles& m_found;
    fs::path m_excluded;
};

bool IsDirectory(const CSourceName& name) {
    std::error_code error;
    return !name.IsRemote() && fs::is_directory(name.GetURL(), error);
}

}  // namespace

SInputFiles FindInputFiles(const SInputRequest& request) {
    SInputFiles found;
    CDirectoryWalk walk(request, found);
    for (const std::string& given : request.m_vNames) {
        const CSourceName name(given);
        if (!IsDirectory(name)) {
            found.m_vFiles.push_back({name, {}, false});
            continue;
        }
        if (!request.m_bRecursive) throw CFailure(given, "is a directory", " (--recursive converts what it holds)");
        walk.Enter(given, {});
    }
    std::sort(found.m_vFiles.begin(), found.m_vFiles.end(), [](const SInputFile& left, const SInputFile& right) {
        return left.m_name.GetGiven() < right.m_name.GetGiven();
    });
    return found;
}
