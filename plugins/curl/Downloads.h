// Where the fetches of one load keep their files.
#pragma once

#include <memory>
#include <mutex>

#include "plugins/curl/Download.h"

// [any thread]
class CDownloads {
public:
    // The directory is made for the first one, and again when somebody has removed it or in a forked process. Throws
    // the reason why it cannot be had.
    std::unique_ptr<CDownload> Begin();

    // Removes every file.
    void Remove() noexcept;

private:
    std::mutex m_mutex;
    std::shared_ptr<const CPrivateDirectory> m_directory;
    unsigned long m_nFolders = 0;
};
