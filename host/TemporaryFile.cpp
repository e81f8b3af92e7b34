// A private file for the time of some work. One thread.
#include "host/TemporaryFile.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "host/Failure.h"
#include "host/FailureText.h"

namespace {

constexpr const char* kSuffix = ".part";

// Leaves room in NAME_MAX for the rest of the temporary name.
constexpr std::size_t kLongestKeptName = 200;

}  // namespace

CTemporaryFile::CTemporaryFile(const std::string& subject, const std::filesystem::path& directory,
                               const std::string& name)
    : m_strPath((directory / ("." + name.substr(0, kLongestKeptName) + ".kelo-XXXXXX")).string() + kSuffix) {
    const int file = mkstemps(m_strPath.data(), static_cast<int>(std::char_traits<char>::length(kSuffix)));
    if (file < 0) {
        const int error = errno;
        throw CFailure(subject, "no file can be made in " + directory.string() + ": " + SystemErrorText(error));
    }
    close(file);
}

CTemporaryFile::~CTemporaryFile() {
    if (!m_strPath.empty()) unlink(m_strPath.c_str());
}

bool CTemporaryFile::MoveTo(const std::string& path) {
    if (std::rename(m_strPath.c_str(), path.c_str()) != 0) return false;
    m_strPath.clear();
    return true;
}
