// One transfer with libcurl.
#include "plugins/curl/Transfer.h"

#include <utility>

#include "plugins/curl/URLText.h"
#include "sdk/Guard.h"

namespace {

// libcurl takes only those redirects that it would also take as the first URL.
constexpr const char* kProtocols = "http,https,ftp";

}  // namespace

CTransfer::CTransfer(std::string url, const SFetchLimits& limits, CDownload& download)
    : m_strURL(std::move(url)), m_limits(limits), m_download(download), m_handle(curl_easy_init()) {
    if (m_handle == nullptr) Refuse("libcurl has no handle for it");
    SetSource();
    SetLimits();
    SetReceiver();
}

SNameSources CTransfer::Run() {
    Check(curl_easy_perform(m_handle.get()));
    if (const std::string reason = WhyNotWhole(); !reason.empty()) Fail(reason);
    return {m_strURL, FinalURL(), Header("Content-Disposition"), Header("Content-Type")};
}

// Cookies and .netrc are off unless they are asked for, and so is sending credentials on to other hosts.
void CTransfer::SetSource() {
    Set(CURLOPT_URL, m_strURL.c_str());
    Set(CURLOPT_PROTOCOLS_STR, kProtocols);
    Set(CURLOPT_REDIR_PROTOCOLS_STR, kProtocols);
    Set(CURLOPT_FOLLOWLOCATION, 1L);
    Set(CURLOPT_FAILONERROR, 1L);
    Set(CURLOPT_USERAGENT, "KeloAudio");
}

void CTransfer::SetLimits() {
    Set(CURLOPT_NOSIGNAL, 1L);  // signals are the host's
    Set(CURLOPT_CONNECTTIMEOUT, m_limits.m_nConnectSeconds);
    Set(CURLOPT_LOW_SPEED_LIMIT, 1L);
    Set(CURLOPT_LOW_SPEED_TIME, m_limits.m_nStallSeconds);
    Set(CURLOPT_SERVER_RESPONSE_TIMEOUT, m_limits.m_nStallSeconds);
    Set(CURLOPT_MAXREDIRS, m_limits.m_nRedirects);
    Set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(m_limits.m_nBytes));
}

void CTransfer::SetReceiver() {
    Set(CURLOPT_ERRORBUFFER, static_cast<char*>(m_szError));
    Set(CURLOPT_WRITEFUNCTION, &CTransfer::Receive);
    Set(CURLOPT_WRITEDATA, static_cast<void*>(this));
}

template <typename TValue>
void CTransfer::Set(CURLoption option, TValue value) {
    const CURLcode code = curl_easy_setopt(m_handle.get(), option, value);
    if (code != CURLE_OK) Refuse("libcurl refuses option " + std::to_string(option) + ": " + curl_easy_strerror(code));
}

template <typename TValue>
TValue CTransfer::Get(CURLINFO info) const {
    TValue value = {};
    return curl_easy_getinfo(m_handle.get(), info, &value) == CURLE_OK ? value : TValue{};
}

std::size_t CTransfer::Receive(char* data, std::size_t size, std::size_t count, void* self) {
    return static_cast<CTransfer*>(self)->Accept(data, size * count) ? size * count : 0;
}

// libcurl itself looks at the announced size alone.
bool CTransfer::Accept(const char* data, std::size_t count) {
    m_bTooLarge = static_cast<std::int64_t>(count) > m_limits.m_nBytes - m_download.Size();
    if (!m_bTooLarge) m_nWriteError = m_download.Write(data, count);
    return !m_bTooLarge && m_nWriteError == 0;
}

void CTransfer::Check(CURLcode code) const {
    if (code != CURLE_OK) Fail(Reason(code));
}

std::string CTransfer::Reason(CURLcode code) const {
    if (m_nWriteError != 0) return "writing the local file: " + SystemReason(m_nWriteError);
    if (m_bTooLarge || code == CURLE_FILESIZE_EXCEEDED) return TooLarge();
    if (code == CURLE_HTTP_RETURNED_ERROR) {
        return "the server answered with error " + std::to_string(Get<long>(CURLINFO_RESPONSE_CODE));
    }
    return m_szError[0] != '\0' ? m_szError : curl_easy_strerror(code);
}

std::string CTransfer::TooLarge() const {
    return "larger than " + std::to_string(m_limits.m_nBytes) + " bytes (KELO_CURL_SIZE_LIMIT)";
}

// What libcurl takes for success without a whole file.
std::string CTransfer::WhyNotWhole() const {
    const std::string url = FinalURL();
    const long answer = Get<long>(CURLINFO_RESPONSE_CODE);
    const bool isWhole = answer >= 200 && answer < 300 && answer != 206;  // RFC 9110, 15.3.7: 206 is a part
    if (!IsFtp(url) && !isWhole) return "the server answered " + std::to_string(answer) + " without the file";
    if (IsFtp(url) && LastSegment(url).empty()) return "a directory and not a file";
    if (IsListingOrText(url)) return "a transfer of another type than \";type=i\"";
    return m_download.Size() == 0 ? "the file is empty" : "";
}

std::string CTransfer::FinalURL() const {
    const char* const url = Get<const char*>(CURLINFO_EFFECTIVE_URL);
    return url != nullptr ? url : m_strURL;
}

std::string CTransfer::Header(const char* name) const {
    curl_header* header = nullptr;
    const CURLHcode code = curl_easy_header(m_handle.get(), name, 0, CURLH_HEADER, -1, &header);
    return code == CURLHE_OK ? header->value : std::string();
}

void CTransfer::Fail(const std::string& reason) const {
    if (Get<long>(CURLINFO_REDIRECT_COUNT) == 0) Refuse(reason);
    Refuse("redirected to " + WithoutCredentials(FinalURL()) + ": " + reason);
}
