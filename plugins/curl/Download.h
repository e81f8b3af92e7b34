// The local file of one fetch, complete or gone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "plugins/curl/PrivateDirectory.h"
#include "plugins/shared/FileDescriptor.h"

// A file in a folder of its own, so that it can have any name. The destructor removes both unless they are kept.
// Belongs to one thread at a time.
class CDownload {
public:
    // `folder` is new in `directory`. Throws the reason why there is no file.
    CDownload(std::shared_ptr<const CPrivateDirectory> directory, std::string folder);
    ~CDownload();

    CDownload(const CDownload&) = delete;
    CDownload& operator=(const CDownload&) = delete;

    // 0, or the errno value of what went wrong.
    int Write(const char* data, std::size_t count);

    std::int64_t Size() const { return m_nSize; }

    // Completes the file under its name and returns its path, which fits into what Fetch is given. Throws the reason
    // why it cannot.
    std::string Keep(const std::string& name);

private:
    std::shared_ptr<const CPrivateDirectory> m_directory;
    std::string m_strFolder;
    CFileDescriptor m_folder;
    CFileDescriptor m_file;
    std::int64_t m_nSize = 0;
    bool m_bKept = false;
};
