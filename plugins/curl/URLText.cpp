// What the text of a URL tells (RFC 3986, 3).
#include "plugins/curl/URLText.h"

#include <charconv>

#include "plugins/curl/AsciiText.h"

namespace {

struct SURLParts {
    std::string_view m_scheme;  // with "://"
    std::string_view m_authority;
    std::string_view m_rest;
};

SURLParts Split(std::string_view url) {
    const std::size_t mark = url.find("://");
    const std::size_t begin = mark == std::string_view::npos ? 0 : mark + 3;
    const std::string_view behind = url.substr(begin);
    const std::string_view authority = behind.substr(0, behind.find_first_of("/?#"));
    return {url.substr(0, begin), authority, behind.substr(authority.size())};
}

std::string_view WithoutUserInfo(std::string_view authority) { return authority.substr(authority.rfind('@') + 1); }

// Where the port begins, with its colon; the end when there is none. An IPv6 address has colons of its own.
std::size_t PortOf(std::string_view hostAndPort) {
    const std::size_t address = hostAndPort.find(']');
    const std::size_t colon = hostAndPort.find(':', address == std::string_view::npos ? 0 : address);
    return colon == std::string_view::npos ? hostAndPort.size() : colon;
}

// A password with a bare slash ends the authority early, and what stands in the place of the port is no number.
bool IsCutPassword(std::string_view hostAndPort) {
    const std::string_view port = hostAndPort.substr(PortOf(hostAndPort));
    return port.find_first_not_of(":0123456789") != std::string_view::npos;
}

std::string_view PathOf(std::string_view url) {
    const std::string_view rest = Split(url).m_rest;
    return rest.substr(0, rest.find_first_of("?#"));
}

// "song.au;type=i" is the name of song.au and a way to transfer it (RFC 1738, 3.2.2).
struct STypedSegment {
    std::string_view m_name;
    char m_nType = 'i';  // in lower case
};

STypedSegment SplitTransferType(std::string_view segment) {
    constexpr std::string_view kMark = ";type=";
    const std::size_t length = kMark.size() + 1;
    if (segment.size() < length) return {segment};
    const std::size_t begin = segment.size() - length;
    const std::string suffix = LowerCase(segment.substr(begin));
    return suffix.substr(0, kMark.size()) == kMark ? STypedSegment{segment.substr(0, begin), suffix.back()}
                                                   : STypedSegment{segment};
}

std::string_view LastSegmentAsItIs(std::string_view url) {
    const std::string_view path = PathOf(url);
    return path.substr(path.rfind('/') + 1);
}

}  // namespace

std::string WithoutCredentials(std::string_view url) {
    const SURLParts parts = Split(url);
    std::string text(parts.m_scheme);
    const std::string_view hostAndPort = WithoutUserInfo(parts.m_authority);
    if (IsCutPassword(hostAndPort)) return text.append(WithoutUserInfo(url.substr(parts.m_scheme.size())));
    return text.append(hostAndPort).append(parts.m_rest);
}

std::string PercentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        unsigned char byte = 0;
        const std::string_view digits = text.substr(i + 1, 2);
        const char* const end = digits.data() + digits.size();
        if (text[i] == '%' && digits.size() == 2 && std::from_chars(digits.data(), end, byte, 16).ptr == end) {
            decoded += static_cast<char>(byte);
            i += 2;
        } else {
            decoded += text[i];
        }
    }
    return decoded;
}

std::string LastSegment(std::string_view url) {
    const std::string_view segment = LastSegmentAsItIs(url);
    return PercentDecoded(IsFtp(url) ? SplitTransferType(segment).m_name : segment);
}

bool IsListingOrText(std::string_view url) {
    return IsFtp(url) && SplitTransferType(LastSegmentAsItIs(url)).m_nType != 'i';
}

std::string HostOf(std::string_view url) {
    const std::string_view hostAndPort = WithoutUserInfo(Split(url).m_authority);
    return std::string(hostAndPort.substr(0, PortOf(hostAndPort)));
}

bool IsHttp(std::string_view url) { return LowerCase(url.substr(0, 7)) == "http://"; }

bool IsFtp(std::string_view url) { return LowerCase(url.substr(0, 6)) == "ftp://"; }
