// The output file: written under a temporary name, shown under its own name only when it is complete.
#include "host/TargetFile.h"

#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

#include "host/Failure.h"
#include "host/FailureText.h"

namespace {

constexpr const char* kSuffix = ".part";

// Leaves room in NAME_MAX for the rest of the temporary name.
constexpr std::size_t kLongestKeptName = 200;

// The kernel's limit, path_resolution(7).
constexpr int kMaxLinks = 40;

constexpr mode_t kModeBits = 07777;

mode_t ModeOfNewFile() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// Asked before there are threads: asking changes the mask of the whole process for a moment.
const mode_t g_nModeOfNewFile = ModeOfNewFile();

// Returns the mode that the output is to have.
mode_t RequireReplaceable(const std::string& given, const std::string& output, const char* source) {
    struct stat existing = {};
    if (stat(output.c_str(), &existing) != 0) {
        if (errno == ENOENT) return g_nModeOfNewFile;
        throw CFailure(given, SystemErrorText(errno));
    }
    if (S_ISDIR(existing.st_mode)) throw CFailure(given, SystemErrorText(EISDIR));
    if (!S_ISREG(existing.st_mode)) throw CFailure(given, "not a regular file");
    if (access(output.c_str(), W_OK) != 0) throw CFailure(given, SystemErrorText(errno));
    struct stat input = {};
    if (stat(source, &input) == 0 && input.st_dev == existing.st_dev && input.st_ino == existing.st_ino) {
        throw CFailure(given, "the output is the input file itself");
    }
    return existing.st_mode & kModeBits;
}

std::string MakeTemporary(const std::string& given, const std::filesystem::path& output) {
    const std::string name = output.filename().string().substr(0, kLongestKeptName);
    std::string path = (output.parent_path() / ("." + name + ".kelo-XXXXXX")).string() + kSuffix;
    const int file = mkstemps(path.data(), static_cast<int>(std::char_traits<char>::length(kSuffix)));
    if (file < 0) {
        const int error = errno;
        throw CFailure(given,
                       "no file can be made in " + output.parent_path().string() + ": " + SystemErrorText(error));
    }
    close(file);
    return path;
}

}  // namespace

std::string FileAtTheEndOfLinks(const std::string& given) {
    std::filesystem::path path = std::filesystem::absolute(given);
    for (int i = 0; i <= kMaxLinks; ++i) {
        std::error_code error;
        const std::filesystem::path target = std::filesystem::read_symlink(path, error);
        if (error) return path.string();
        path = path.parent_path() / target;
    }
    throw CFailure(given, SystemErrorText(ELOOP));
}

CTargetFile::CTargetFile(std::string output, const char* source)
    : m_strGiven(std::move(output)),
      m_strOutput(FileAtTheEndOfLinks(m_strGiven)),
      m_nMode(RequireReplaceable(m_strGiven, m_strOutput, source)),
      m_strTemporary(MakeTemporary(m_strGiven, m_strOutput)) {}

CTargetFile::~CTargetFile() {
    if (!m_strTemporary.empty()) unlink(m_strTemporary.c_str());
}

void CTargetFile::Commit() {
    if (chmod(m_strTemporary.c_str(), m_nMode) != 0 || std::rename(m_strTemporary.c_str(), m_strOutput.c_str()) != 0) {
        throw CFailure(m_strGiven, SystemErrorText(errno));
    }
    m_strTemporary.clear();
}
