// The file name in a Content-Disposition header (RFC 6266).
#include "plugins/curl/ContentDisposition.h"

#include <algorithm>
#include <map>

#include "plugins/curl/AsciiText.h"
#include "plugins/curl/URLText.h"
#include "sdk/Utf8.h"

namespace {

// Takes a quoted string off the front, whose first quote is taken already (RFC 9110, 5.6.4).
std::string TakeQuoted(std::string_view& text) {
    std::string value;
    while (!text.empty() && text.front() != '"') {
        if (text.front() == '\\' && text.size() > 1) text.remove_prefix(1);
        value += text.front();
        text.remove_prefix(1);
    }
    return value;
}

// Takes everything up to `end` off the front, and `end` itself.
std::string_view TakeUpTo(char end, std::string_view& text) {
    const std::string_view taken = text.substr(0, text.find(end));
    text.remove_prefix(taken.size() < text.size() ? taken.size() + 1 : taken.size());
    return taken;
}

std::string TakeValue(std::string_view& text) {
    text = text.substr(std::min(text.find_first_not_of(" \t"), text.size()));
    if (text.empty() || text.front() != '"') return std::string(Trimmed(TakeUpTo(';', text)));
    text.remove_prefix(1);
    std::string value = TakeQuoted(text);
    TakeUpTo(';', text);
    return value;
}

// Names are in lower case; of two alike the first counts.
std::map<std::string, std::string> Parameters(std::string_view header) {
    std::map<std::string, std::string> parameters;
    TakeUpTo(';', header);
    while (!header.empty()) {
        const std::string_view name = header.substr(0, header.find_first_of("=;"));
        const bool hasValue = name.size() < header.size() && header[name.size()] == '=';
        header.remove_prefix(std::min(name.size() + 1, header.size()));
        if (hasValue) parameters.emplace(LowerCase(Trimmed(name)), TakeValue(header));
    }
    return parameters;
}

// "UTF-8'en'%e2%82%ac.au" (RFC 8187, 3.2); empty for other character sets.
std::string ExtendedValue(std::string_view text) {
    const std::string charset = LowerCase(TakeUpTo('\'', text));
    TakeUpTo('\'', text);
    if (charset == "utf-8") return PercentDecoded(text);
    return charset == "iso-8859-1" ? FromLatin1(PercentDecoded(text)) : std::string();
}

// A server's folders are its own, in whichever manner it writes them.
std::string WithoutFolders(const std::string& name) { return name.substr(name.find_last_of("/\\") + 1); }

}  // namespace

std::string FileNameOfDisposition(std::string_view header) {
    const std::map<std::string, std::string> parameters = Parameters(header);
    if (const auto extended = parameters.find("filename*"); extended != parameters.end()) {
        std::string name = WithoutFolders(ExtendedValue(extended->second));
        if (!name.empty()) return name;
    }
    const auto plain = parameters.find("filename");
    return plain != parameters.end() ? WithoutFolders(plain->second) : std::string();
}
