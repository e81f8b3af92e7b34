// The output file: written under a temporary name, shown under its own name only when it is complete.
#include "host/TargetFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <utility>

#include "host/Failure.h"
#include "host/FailureText.h"
#include "host/StartDirectory.h"

namespace {

namespace fs = std::filesystem;

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

// Whether the kernel lets the name of this file, which is no directory, have another one put in its place: in a sticky
// directory that is its owner's alone. Asked in a way that changes nothing: rmdir looks for the right first.
bool MayBeReplaced(const std::string& file) { return rmdir(file.c_str()) == 0 || errno != EPERM; }

// Returns the mode that the output is to have.
mode_t RequireReplaceable(const std::string& given, const std::string& output, const char* source) {
    struct stat existing = {};
    if (stat(output.c_str(), &existing) != 0) {
        if (errno == ENOENT) return g_nModeOfNewFile;
        throw CFailure(given, SystemErrorText(errno));
    }
    if (S_ISDIR(existing.st_mode)) throw CFailure(given, SystemErrorText(EISDIR));
    if (!S_ISREG(existing.st_mode)) throw CFailure(given, "not a regular file");
    if (access(output.c_str(), W_OK) != 0 || !MayBeReplaced(output)) throw CFailure(given, SystemErrorText(errno));
    struct stat input = {};
    if (stat(source, &input) == 0 && input.st_dev == existing.st_dev && input.st_ino == existing.st_ino) {
        throw CFailure(given, "the output is the input file itself");
    }
    return existing.st_mode & kModeBits;
}

// False, with errno.
bool SyncToDisk(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool synced = fsync(file) == 0;
    const int error = errno;
    close(file);
    errno = error;
    return synced;
}

fs::path ParentOf(const std::string& path) { return fs::path(path).parent_path(); }

}  // namespace

std::string FileAtTheEndOfLinks(const std::string& given) {
    fs::path path = FromStart(given);
    for (int i = 0; i <= kMaxLinks; ++i) {
        std::error_code error;
        const fs::path target = fs::read_symlink(path, error);
        if (error) return path.string();
        path = path.parent_path() / target;
    }
    throw CFailure(given, SystemErrorText(ELOOP));
}

CTargetFile::CTargetFile(std::string output, const char* source)
    : m_strGiven(std::move(output)),
      m_strOutput(FileAtTheEndOfLinks(m_strGiven)),
      m_nMode(RequireReplaceable(m_strGiven, m_strOutput, source)),
      m_temporary(m_strGiven, ParentOf(m_strOutput), fs::path(m_strOutput).filename().string()) {}

void CTargetFile::Sync() {
    if (!SyncToDisk(m_temporary.GetPath())) throw CFailure(m_strGiven, SystemErrorText(errno));
    m_bSynced = true;
}

void CTargetFile::Commit() {
    if (chmod(m_temporary.GetPath().c_str(), m_nMode) != 0 || !m_temporary.MoveTo(m_strOutput)) {
        throw CFailure(m_strGiven, SystemErrorText(errno));
    }
    // The name itself may get lost without harm: the file is made again.
    if (m_bSynced) SyncToDisk(ParentOf(m_strOutput).string());
}
