// Questions about a named path, answered without opening it or following a link.
#include <sys/stat.h>
#include <unistd.h>

#include <vector>

#include "portable/PathStatus.h"
#include "portable/PortableFile.h"

namespace {

constexpr unsigned int kDirectoryAttribute = 0x10;  // Win32 FILE_ATTRIBUTE_DIRECTORY
constexpr std::size_t kFirstLinkCapacity = 1024;

CPortableTime ModificationTime(const char* path) {
    struct stat status = {};
    return CPortableTime(ReadPathStatus(path, status) ? status.st_mtime : 0);
}

}  // namespace

int CPortableFile::FileExists() const {
    struct stat status = {};
    return ReadPathStatus(GetName(), status) ? 1 : 0;
}

int CPortableFile::IsLink() const {
    struct stat status = {};
    return ReadPathStatus(GetName(), status) && S_ISLNK(status.st_mode) ? 1 : 0;
}

int CPortableFile::IsDirectory() const { return IsDirectory(GetName()); }

int CPortableFile::IsDirectory(const char* path) {
    struct stat status = {};
    return ReadPathStatus(path, status) && S_ISDIR(status.st_mode) ? 1 : 0;
}

int CPortableFile::GetLength(long* length) {
    struct stat status = {};
    const bool exists = ReadPathStatus(GetName(), status);
    *length = exists ? status.st_size : 0;
    return exists ? 0 : 1;
}

long CPortableFile::FileLength() const {
    long length = -1;
    const_cast<CPortableFile*>(this)->GetLength(&length);
    return length;
}

int CPortableFile::GetAttributes_WinStyle(unsigned int& attributes) const {
    struct stat status = {};
    if (!ReadPathStatus(GetName(), status)) return 0;
    attributes = S_ISDIR(status.st_mode) ? kDirectoryAttribute : 0;
    return 1;
}

int CPortableFile::SetAttributes_WinStyle(unsigned int /*attributes*/) const { return 0; }

CPortableTime CPortableFile::GetCreationTime() const { return ModificationTime(GetName()); }

CPortableTime CPortableFile::GetLastWrite() const { return ModificationTime(GetName()); }

CPortableTime CPortableFile::GetLastAccessTime() const { return ModificationTime(GetName()); }

CBasicString<char> CPortableFile::ReadLink() const {
    ssize_t known = 0;
    // A text may have been cut as long as a larger buffer brings more of it.
    for (std::size_t capacity = kFirstLinkCapacity;; capacity *= 2) {
        std::vector<char> buffer(capacity);
        const ssize_t length = readlink(GetName(), buffer.data(), capacity - 1);
        if (length == -1) return {};
        if (length <= known) return CBasicString<char>(buffer.data(), static_cast<int>(length));
        known = length;
    }
}
