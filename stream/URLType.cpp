// Classes of source names.
#include "stream/URLType.h"

#include <cstring>
#include <string_view>

#include "stream/AsciiCase.h"

namespace {

bool StartsWith(const char* url, std::string_view prefix) {
    return std::strlen(url) > prefix.size() && EqualIgnoringAsciiCase({url, prefix.size()}, prefix);
}

}  // namespace

EURLType ClassifyURL(const char* url) {
    if (url == nullptr) return URL_UNKNOWN;
    if (StartsWith(url, "http://")) return URL_HTTP;
    if (StartsWith(url, "ftp://")) return URL_FTP;
    return StartsWith(url, "/") ? URL_LOCAL_PATH : URL_UNKNOWN;
}
