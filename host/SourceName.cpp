// The name of a source as the person gave it and as the manager takes it.
#include "host/SourceName.h"

#include <strings.h>

#include <utility>

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
