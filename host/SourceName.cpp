// The name of a source as the person gave it and as the manager takes it.
#include "host/SourceName.h"

#include <strings.h>

#include <cerrno>
#include <utility>

#include "host/FailureText.h"
#include "host/StartDirectory.h"

namespace {

bool BeginsWith(const std::string& text, const std::string& prefix) {
    return strncasecmp(text.c_str(), prefix.c_str(), prefix.size()) == 0;
}

}  // namespace

CSourceName::CSourceName(std::string given)
    : m_strGiven(std::move(given)),
      m_bRemote(BeginsWith(m_strGiven, "http://") || BeginsWith(m_strGiven, "ftp://")),
      m_strURL(m_bRemote ? m_strGiven : FromStart(m_strGiven).string()) {}

std::string CSourceName::FailureTextOf(int error) const {
    const std::size_t colon = m_strGiven.find("://");
    const bool isAddress = colon != std::string::npos && colon != 0 && m_strGiven.find('/') == colon + 1;
    if (error != ENOENT || !isAddress) return SystemErrorText(error);
    return m_strGiven.substr(0, colon) + ":// addresses are not fetched, only http:// and ftp:// ones";
}
