// A directory of this process's own below the temporary one.
#include "plugins/curl/PrivateDirectory.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <filesystem>
#include <system_error>

#include "sdk/Guard.h"

namespace {

// The variables that std::filesystem::temp_directory_path asks; that function takes an empty one for a place.
std::string NameOfPlace() {
    for (const char* const variable : {"TMPDIR", "TMP", "TEMP", "TEMPDIR"}) {
        const char* const place = ::secure_getenv(variable);
        if (place != nullptr && *place != '\0') return place;
    }
    return "/tmp";
}

std::filesystem::path TemporaryDirectory() {
    const std::string place = NameOfPlace();
    std::error_code error;
    const bool there = std::filesystem::is_directory(place, error);
    if (!there && !error) error = std::make_error_code(std::errc::not_a_directory);
    if (error) Refuse(place + ": there is no temporary directory (TMPDIR): " + error.message());
    return place;
}

std::string Make() {
    const std::filesystem::path place = TemporaryDirectory();
    std::string path = std::filesystem::absolute(place / "kelo-curl-XXXXXX");
    if (mkdtemp(path.data()) == nullptr) Refuse("no directory in " + place.string() + ": " + SystemReason(errno));
    return path;
}

int Open(const std::string& path) {
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (descriptor < 0) {
        const int error = errno;
        ::rmdir(path.c_str());
        Refuse(path + ": " + SystemReason(error));
    }
    return descriptor;
}

}  // namespace

CPrivateDirectory::CPrivateDirectory() : m_strPath(Make()), m_descriptor(Open(m_strPath)), m_nProcess(::getpid()) {}

CPrivateDirectory::~CPrivateDirectory() {
    if (!IsOwn() || !IsInPlace()) return;
    std::error_code ignored;
    std::filesystem::remove_all(m_strPath, ignored);  // goes by descriptors and removes links as links
}

bool CPrivateDirectory::IsOwn() const { return m_nProcess == ::getpid(); }

bool CPrivateDirectory::IsInPlace() const {
    struct stat own = {};
    struct stat named = {};
    return ::fstat(Descriptor(), &own) == 0 && ::lstat(m_strPath.c_str(), &named) == 0 && own.st_dev == named.st_dev &&
           own.st_ino == named.st_ino;
}
