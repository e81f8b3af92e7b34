// Names of fetched files: the URL, the one behind its redirects, and what the server says of name and type.
#include <string>

#include "fuzz/FuzzTarget.h"
#include "fuzz/FuzzedInput.h"
#include "fuzz/Require.h"
#include "plugins/curl/ContentDisposition.h"
#include "plugins/curl/FileName.h"
#include "plugins/curl/URLText.h"
#include "sdk/Utf8.h"

namespace {

// What a file system takes (NAME_MAX of limits.h).
constexpr std::size_t kLongestName = 255;

// C0 and C1 of ISO 6429, and the marks that turn the rest around.
bool HasControl(const std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const std::string next = text.substr(i, 3);
        if (byte < ' ' || byte == 0x7F || (byte == 0xC2 && next.size() > 1 && next[1] < '\xA0')) return true;
        if ((next >= "\u202A" && next <= "\u202E") || (next >= "\u2066" && next <= "\u2069")) return true;
    }
    return false;
}

void CheckName(const std::string& name) {
    fuzz::Require(!name.empty(), "there is a name");
    fuzz::Require(name.size() <= kLongestName, "the name fits");
    fuzz::Require(name.front() != '.', "the name shows in listings");
    fuzz::Require(name.find('/') == std::string::npos, "the name has no folder");
    fuzz::Require(!HasControl(name), "the name is printable");
    fuzz::Require(IsUtf8(name), "the name is UTF-8");
}

int DigitOf(char character) {
    const std::string digits = "0123456789abcdef0123456789ABCDEF";
    const std::size_t at = character != '\0' ? digits.find(character) : std::string::npos;
    return at == std::string::npos ? -1 : static_cast<int>(at % 16);
}

std::string ModelDecoded(const std::string& text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool marked = text[i] == '%' && i + 2 < text.size();
        const int high = marked ? DigitOf(text[i + 1]) : -1;
        const int low = marked ? DigitOf(text[i + 2]) : -1;
        if (high >= 0 && low >= 0) i += 2;
        decoded += high >= 0 && low >= 0 ? static_cast<char>(high * 16 + low) : text[i];
    }
    return decoded;
}

void CheckURL(const std::string& url) {
    const std::string shown = WithoutCredentials(url);
    const std::size_t scheme = shown.find("://");
    const std::string behind = shown.substr(scheme == std::string::npos ? 0 : scheme + 3);
    fuzz::Require(behind.substr(0, behind.find_first_of("/?#")).find('@') == std::string::npos, "no user is told of");
    fuzz::Require(shown.size() <= url.size(), "a message adds nothing to the URL");
    fuzz::RequireEqual("the decoded text", PercentDecoded(url), ModelDecoded(url));
    fuzz::Require(url.find(HostOf(url)) != std::string::npos, "the host is a part of the URL");
    fuzz::Require(!IsListingOrText(url) || IsFtp(url), "only FTP lists");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    CFuzzedInput input(data, size);
    SNameSources sources;
    sources.m_strURL = input.Text();
    sources.m_strFinalURL = input.Text();
    sources.m_strContentDisposition = input.Text();
    sources.m_strContentType = input.Text();
    CheckName(ChooseFileName(sources));
    CheckURL(sources.m_strURL);
    const std::string name = FileNameOfDisposition(sources.m_strContentDisposition);
    fuzz::Require(name.find_first_of("/\\") == std::string::npos, "a server's folders are left out");
    return 0;
}
