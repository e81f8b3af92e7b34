// A URL handler plug-in to copy: fetches "http://" addresses with libcurl. Replace the fetching by your own.
#include <curl/curl.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>

#include "sdk/Plugin.h"
#include "sdk/URLHandler.h"

namespace {

namespace fs = std::filesystem;

constexpr long kConnectSeconds = 10;
constexpr long kStallSeconds = 30;
constexpr curl_off_t kMaxBytes = curl_off_t{4} << 30;

// The last part of the address's path: decoders are chosen by its extension, and people may read it as a title.
std::string NameOf(const std::string& url) {
    const std::string path = url.substr(0, url.find_first_of("?#"));
    const std::string name = path.substr(path.rfind('/') + 1);
    return name.empty() || name.front() == '.' ? "source" + name : name;
}

struct SFileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using CFilePtr = std::unique_ptr<std::FILE, SFileCloser>;

struct SCurlCloser {
    void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
};
using CCurlPtr = std::unique_ptr<CURL, SCurlCloser>;

// For messages, which show no password.
std::string WithoutUserInfo(const std::string& url) {
    const std::size_t host = url.find("://") + 3;
    const std::size_t at = url.rfind('@', url.find_first_of("/?#", host));
    return at == std::string::npos || at < host ? url : url.substr(0, host) + url.substr(at + 1);
}

// libcurl itself may look at the announced size alone, and some streams have no end.
std::size_t Store(char* data, std::size_t size, std::size_t count, void* file) {
    auto* const stream = static_cast<std::FILE*>(file);
    const std::size_t bytes = size * count;
    return ftello(stream) + static_cast<curl_off_t>(bytes) <= kMaxBytes ? std::fwrite(data, 1, bytes, stream) : 0;
}

// A host waits for it without a way to end it: the limits do.
void SetLimits(CURL* curl) {
    curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, kStallSeconds);
    curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, kMaxBytes);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, 5L);
}

void Download(const std::string& url, std::FILE* file) {
    const CCurlPtr curl(curl_easy_init());
    if (curl == nullptr) Refuse("libcurl cannot be used");
    curl_easy_setopt(curl.get(), CURLOPT_URL, url.c_str());
    // A redirect leads only where both lists allow it.
    curl_easy_setopt(curl.get(), CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl.get(), CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl.get(), CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEFUNCTION, &Store);
    curl_easy_setopt(curl.get(), CURLOPT_WRITEDATA, file);
    SetLimits(curl.get());
    const CURLcode result = curl_easy_perform(curl.get());
    if (result != CURLE_OK) Refuse(WithoutUserInfo(url) + ": " + curl_easy_strerror(result));
}

class CCurlHandler final : public CURLHandlerComponent<> {
public:
    CCurlHandler() : CURLHandlerComponent("Curl URL Handler", URL_HTTP) {}

private:
    void Begin() override {
        std::string name = fs::temp_directory_path() / "curl-handler-XXXXXX";
        if (mkdtemp(name.data()) == nullptr) Refuse("no private directory: " + SystemReason(errno));
        m_strDirectory = name;
    }

    // The fetched files live until here.
    void End() noexcept override {
        std::error_code ignored;
        fs::remove_all(m_strDirectory, ignored);
    }

    std::string FetchFile(const std::string& url) override {
        std::string path = NextPath(NameOf(url));
        const CFilePtr file(std::fopen(path.c_str(), "wb"));
        if (file == nullptr) Refuse(path + ": " + SystemReason(errno));
        try {
            Download(url, file.get());
            if (std::fflush(file.get()) != 0) Refuse(path + ": " + SystemReason(errno));
        } catch (...) {
            fs::remove(path);
            throw;
        }
        return path;
    }

    // Several threads may fetch at once, and the same name more than once.
    std::string NextPath(const std::string& name) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const std::string directory = m_strDirectory + "/" + std::to_string(++m_nFetches);
        if (!fs::create_directory(directory)) Refuse(directory + ": " + SystemReason(EEXIST));
        return directory + "/" + name;
    }

    std::string m_strDirectory;
    std::mutex m_mutex;
    int m_nFetches = 0;
};

}  // namespace

KELO_PLUGIN(CCurlHandler);
