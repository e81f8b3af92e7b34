// Where the fetches of one load keep their files.
#include "plugins/curl/Downloads.h"

#include <string>

std::unique_ptr<CDownload> CDownloads::Begin() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    const bool usable = m_directory != nullptr && m_directory->IsOwn() && m_directory->IsInPlace();
    if (!usable) m_directory = std::make_shared<CPrivateDirectory>();
    return std::make_unique<CDownload>(m_directory, std::to_string(++m_nFolders));
}

void CDownloads::Remove() noexcept {
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_directory.reset();
}
