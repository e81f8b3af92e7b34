// The local file of one fetch, complete or gone.
#include "plugins/curl/Download.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>

#include <utility>

#include "sdk/Guard.h"
#include "stream/URLSourceHandler.h"

namespace {

constexpr const char* kUnfinished = "unfinished";

void RemoveFolder(const CPrivateDirectory& directory, const std::string& name) {
    ::unlinkat(directory.Descriptor(), name.c_str(), AT_REMOVEDIR);
}

// A folder that cannot be used does not stay.
[[noreturn]] void RefuseFolder(const CPrivateDirectory& directory, const std::string& name) {
    const int error = errno;
    RemoveFolder(directory, name);
    Refuse(directory.Path() + ": " + SystemReason(error));
}

int MakeFolder(const CPrivateDirectory& directory, const std::string& name) {
    if (::mkdirat(directory.Descriptor(), name.c_str(), 0700) != 0) {
        Refuse(directory.Path() + ": " + SystemReason(errno));
    }
    const int folder = ::openat(directory.Descriptor(), name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0) RefuseFolder(directory, name);
    return folder;
}

}  // namespace

CDownload::CDownload(std::shared_ptr<const CPrivateDirectory> directory, std::string folder)
    : m_directory(std::move(directory)),
      m_strFolder(std::move(folder)),
      m_folder(MakeFolder(*m_directory, m_strFolder)),
      m_file(::openat(m_folder.Get(), kUnfinished, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)) {
    if (!m_file.IsOpen()) RefuseFolder(*m_directory, m_strFolder);
}

CDownload::~CDownload() {
    if (m_bKept) return;
    ::unlinkat(m_folder.Get(), kUnfinished, 0);
    RemoveFolder(*m_directory, m_strFolder);
}

int CDownload::Write(const char* data, std::size_t count) {
    while (count > 0) {
        const ssize_t written = ::write(m_file.Get(), data, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return written < 0 ? errno : ENOSPC;
        data += written;
        count -= static_cast<std::size_t>(written);
        m_nSize += written;
    }
    return 0;
}

std::string CDownload::Keep(const std::string& name) {
    std::string path = m_directory->Path() + "/" + m_strFolder + "/" + name;
    if (path.size() >= kLocalPathCapacity) Refuse("the path of the local file is too long: " + path);
    if (const int error = m_file.Close(); error != 0) Refuse(SystemReason(error));
    if (::renameat(m_folder.Get(), kUnfinished, m_folder.Get(), name.c_str()) != 0) Refuse(SystemReason(errno));
    m_bKept = true;
    return path;
}
