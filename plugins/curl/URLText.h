// What the text of a URL tells (RFC 3986, 3). [any thread]
#pragma once

#include <string>
#include <string_view>

// The URL without user name and password, as messages show it.
std::string WithoutCredentials(std::string_view url);

// Each "%" with two hexadecimal digits becomes its byte; everything else stays.
std::string PercentDecoded(std::string_view text);

// What stands behind the last slash of the path, decoded; empty for a path that ends with it.
std::string LastSegment(std::string_view url);

// Whether an FTP URL asks for a directory's names or for text with its line ends changed, by ";type=d" or ";type=a".
bool IsListingOrText(std::string_view url);

// Without the port.
std::string HostOf(std::string_view url);

bool IsHttp(std::string_view url);
bool IsFtp(std::string_view url);
