// One transfer with libcurl.
#pragma once

#include <curl/curl.h>

#include <memory>
#include <string>

#include "plugins/curl/Download.h"
#include "plugins/curl/FetchLimits.h"
#include "plugins/curl/FileName.h"

struct SCurlDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};

// Only while libcurl is in use. Belongs to one thread.
class CTransfer {
public:
    CTransfer(std::string url, const SFetchLimits& limits, CDownload& download);

    CTransfer(const CTransfer&) = delete;
    CTransfer& operator=(const CTransfer&) = delete;

    // Transfers the whole resource or throws the reason why it is not there, without credentials.
    SNameSources Run();

private:
    template <typename TValue>
    void Set(CURLoption option, TValue value);
    template <typename TValue>
    TValue Get(CURLINFO info) const;

    static std::size_t Receive(char* data, std::size_t size, std::size_t count, void* self);
    bool Accept(const char* data, std::size_t count);

    void SetSource();
    void SetLimits();
    void SetReceiver();
    void Check(CURLcode code) const;
    std::string Reason(CURLcode code) const;
    std::string TooLarge() const;
    std::string WhyNotWhole() const;
    std::string FinalURL() const;
    std::string Header(const char* name) const;
    [[noreturn]] void Fail(const std::string& reason) const;

    std::string m_strURL;
    SFetchLimits m_limits;
    CDownload& m_download;
    std::unique_ptr<CURL, SCurlDeleter> m_handle;
    char m_szError[CURL_ERROR_SIZE] = "";
    int m_nWriteError = 0;
    bool m_bTooLarge = false;
};
