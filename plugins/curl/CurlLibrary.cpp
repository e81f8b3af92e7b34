// libcurl, loaded and initialised at its first use.
#include "plugins/curl/CurlLibrary.h"

#include <curl/curl.h>

#include <stdexcept>
#include <string>

#include "sdk/Guard.h"

// Generated: fills the jump stubs. Empty, or the reason why the library cannot be had.
std::string DelayLoad_curl();

void CCurlLibrary::Use() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_bInitialised) return;
    if (const std::string reason = DelayLoad_curl(); !reason.empty()) Refuse(reason);
    if (const CURLcode code = curl_global_init(CURL_GLOBAL_DEFAULT); code != CURLE_OK) Refuse(curl_easy_strerror(code));
    m_bInitialised = true;
}

std::string CCurlLibrary::Name() {
    try {
        Use();
        return std::string("libcurl ") + curl_version_info(CURLVERSION_NOW)->version;
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

void CCurlLibrary::Finish() noexcept {
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_bInitialised) curl_global_cleanup();
    m_bInitialised = false;
}
